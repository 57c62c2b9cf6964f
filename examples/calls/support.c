#include "support.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

void expect(int is_so, const char* words) {
  if (is_so) return;
  fprintf(stderr, "not as it should be: %s\n", words);
  exit(1);
}

void expect_in(const char* text, const char* part) {
  if (text != NULL && strstr(text, part) != NULL) return;
  fprintf(stderr, "no %s in: %s\n", part, text == NULL ? "nothing" : text);
  exit(1);
}

size_t lines_in(const char* text) {
  size_t lines = 0;
  for (; text != NULL && *text != '\0'; ++text) lines += *text == '\n';
  return lines;
}

uint8_t* read_file(const char* path, size_t* size) {
  const size_t most = (size_t)1 << 24;
  FILE* const file = fopen(path, "rb");
  uint8_t* const bytes = malloc(most);
  expect(file != NULL && bytes != NULL, path);
  *size = fread(bytes, 1, most, file);
  expect(*size > 0 && *size < most && ferror(file) == 0, path);
  fclose(file);
  return bytes;
}
