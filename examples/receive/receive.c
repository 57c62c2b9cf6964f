/* Receives a file of messages into a library, and lists what it holds then: receive LIBRARY FILE */
#include <bda/editor.h>
#include <stdio.h>
#include <stdlib.h>

static void receive(void* library, uint64_t number, uint64_t offset, const uint8_t* message, size_t size) {
  if (bda_library_handle(library, 1, message, size, NULL, NULL, NULL) != BDA_OK)
    fprintf(stderr, "message %lu at %lu: %s\n", (unsigned long)number, (unsigned long)offset,
            bda_library_error(library));
}

static uint8_t* load(const char* name, size_t* size) {
  FILE* const file = fopen(name, "rb");
  uint8_t* const bytes = malloc(1U << 24);
  *size = file == NULL || bytes == NULL ? 0 : fread(bytes, 1, 1U << 24, file);
  if (file != NULL) fclose(file);
  return bytes;
}

int main(int argc, char** argv) {
  bda_library* library = NULL;
  bda_files* files = NULL;
  char* contents = NULL;
  size_t size = 0;
  int is_good = 0;
  uint8_t* const bytes = argc == 3 ? load(argv[2], &size) : NULL;
  if (argc != 3)
    fprintf(stderr, "usage: receive LIBRARY FILE\n");
  else if (bda_library_open(argv[1], 0, &library) != BDA_OK)
    fprintf(stderr, "%s\n", bda_library_error(library));
  else if (bda_files_new(&files) != BDA_OK || bda_files_add(files, argv[2], bytes, size) != BDA_OK)
    fprintf(stderr, "%s\n", bda_files_error(files));
  else if (bda_files_each(files, receive, library) == BDA_FAILED)
    fprintf(stderr, "%s\n", bda_files_error(files));
  else if (bda_library_contents(library, NULL, &contents) != BDA_OK)
    fprintf(stderr, "%s\n", bda_library_error(library));
  else
    is_good = printf("%s", contents) >= 0;
  bda_free(contents);
  bda_files_close(files);
  bda_library_close(library);
  free(bytes);
  return is_good ? 0 : 1;
}
