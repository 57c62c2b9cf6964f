/* What a library holds: shown, searched, compared, saved; nothing is changed: library VOICE.syx PERFORMANCE.syx */
#include <bda/editor.h>
#include <stdlib.h>
#include <string.h>

#include "support.h"

static void add(bda_files* files, const char* name, const uint8_t* bytes, size_t size) {
  const bda_result result = bda_files_add(files, name, bytes, size);
  expect(result == BDA_OK, bda_files_error(files));
}

/* All that an instrument has room for, for an editor's tree of banks; and which version says so. */
static void list_banks(void) {
  char* json = NULL;
  expect(bda_places(&json) == BDA_OK, "there is memory");
  expect_in(json, "{\"bank\":\"voice:user1\",\"kind\":\"voice\"");
  expect_in(json, "\"last\":\"voice:user1:128\",\"places\":128");
  bda_free(json);
  expect(strchr(bda_version(), '.') != NULL, "it has numbers with dots");
}

/* What files hold, without a library on disk. */
static bda_library* library_of(const char* voice, const char* performance) {
  size_t size = 0;
  bda_files* files = NULL;
  bda_library* library = NULL;
  expect(bda_files_new(&files) == BDA_OK, "there is memory");
  uint8_t* bytes = read_file(voice, &size);
  add(files, "voice.syx", bytes, size);
  free(bytes);
  bytes = read_file(performance, &size);
  add(files, "performance.syx", bytes, size);
  free(bytes);
  const bda_result result = bda_library_of_files(files, &library);
  expect(result == BDA_OK, bda_files_error(files));
  bda_files_close(files);
  return library;
}

/* A list of what is there, and all parameters of one. */
static void show(bda_library* library) {
  char* json = NULL;
  bda_result result = bda_library_contents(library, NULL, &json);
  expect(result == BDA_OK && lines_in(json) == 2, bda_library_error(library));
  bda_free(json);
  result = bda_library_contents(library, "voice:user1", &json);
  expect(result == BDA_OK && lines_in(json) == 1, bda_library_error(library));
  expect_in(json, "\"name\":\"Amber Strings\"");
  bda_free(json);

  result = bda_library_show(library, "voice:user1:1", &json);
  expect(result == BDA_OK, bda_library_error(library));
  expect_in(json, "{\"voice\":{\"name\":\"Amber Strings\"");
  bda_free(json);

  result = bda_library_show(library, "system", &json);
  expect(result == BDA_REFUSED && json == NULL, "no file has system settings");
  expect_in(bda_library_error(library), "it is in none of the files");
}

static void find(bda_library* library, const char* options, const char* found) {
  char* json = NULL;
  const bda_result result = bda_library_find(library, options, &json);
  if (found != NULL) {
    expect(result == BDA_OK && lines_in(json) >= 1, bda_library_error(library));
    expect_in(json, found);
  } else {
    expect(result == BDA_REFUSED && lines_in(json) == 0, "nothing is found");
  }
  bda_free(json);
}

/* Sounds by what is known of them: a name, a parameter by its path or the owner's name for it, another sound. */
static void search(bda_library* library) {
  const char* const names = "parameter voice.common[3] Volume\n";
  bda_result result = bda_library_name_parameters(library, names);
  expect(result == BDA_OK, bda_library_error(library));
  find(library, "{\"terms\": [\"amber\"], \"kind\": \"voice\"}", "\"content\":\"voice:user1:1\"");
  find(library, "{\"kind\": \"performance\"}", "\"content\":\"performance:a:1\"");
  find(library, "{\"where\": [\"Volume>=0\", \"voice.name=Amber Strings\"]}", "\"name\":\"Volume\"");
  find(library, "{\"favourite\": true}", NULL);
  find(library, "{\"duplicates\": true}", NULL);

  /* In a copy where the voice is twice. */
  bda_library* copy = NULL;
  result = bda_library_clone(library, &copy);
  expect(result == BDA_OK, bda_library_error(library));
  result = bda_library_copy_places(copy, "voice:user1:1", "voice:user2:1", NULL);
  expect(result == BDA_OK, bda_library_error(copy));
  find(copy, "{\"duplicates\": true}", "\"group\":1");
  find(copy, "{\"same-as\": \"voice:user1:1\"}", "\"content\":\"voice:user2:1\"");
  find(copy, "{\"like\": \"voice:user2:1\", \"edit-buffers\": true}", "\"likeness\":1.0");
  bda_library_close(copy);

  expect(bda_library_find(library, "{\"kindd\": \"voice\"}", NULL) == BDA_UNUSABLE, "there is no such option");
  expect_in(bda_library_error(library), "did you mean kind?");
}

/* Where a parameter travels: an editor that changes it alone sends this byte. */
static void explain(bda_library* library) {
  char* json = NULL;
  const bda_result result = bda_library_explain(library, "voice:user1:1", "Volume", &json);
  expect(result == BDA_OK && lines_in(json) >= 1, bda_library_error(library));
  expect_in(json, "\"address\":\"40 00 00\"");
  bda_free(json);
}

/* Before an editor relies on a library: whether all of it can be read, who changed it, and how it is set. */
static void inspect(bda_library* library) {
  char* json = NULL;
  bda_result result = bda_library_check(library, &json);
  expect(result == BDA_OK, bda_library_error(library));
  expect_in(json, "\"state\":\"good\"");
  bda_free(json);
  result = bda_library_history(library, 1, &json);
  expect(result == BDA_OK && lines_in(json) <= 1, bda_library_error(library));
  bda_free(json);
  result = bda_library_settings(library, "device-number", &json);
  expect(result == BDA_OK && lines_in(json) == 1, bda_library_error(library));
  expect_in(json, "{\"setting\":\"device-number\"");
  bda_free(json);
}

/* A copy is as the library, until one of them is changed. */
static void compare(bda_library* library) {
  bda_library* copy = NULL;
  char* json = NULL;
  bda_result result = bda_library_clone(library, &copy);
  expect(result == BDA_OK, bda_library_error(library));
  result = bda_library_diff(library, copy, &json);
  expect(result == BDA_OK && lines_in(json) == 1, bda_library_error(library));
  bda_free(json);

  result = bda_library_rename(copy, "voice:user1:1", "Amber Brass", NULL);
  expect(result == BDA_OK, bda_library_error(copy));
  result = bda_library_diff(library, copy, &json);
  expect(result == BDA_REFUSED, "they differ");
  expect_in(json, "\"a\":\"Amber Strings\",\"b\":\"Amber Brass\"");
  bda_free(json);
  bda_library_close(copy);
}

/* The whole of it as messages, and a list of what they are. */
static void back_up(bda_library* library) {
  uint8_t* bytes = NULL;
  size_t size = 0;
  char* manifest = NULL;
  bda_files* files = NULL;
  bda_result result = bda_library_backup(library, &bytes, &size, &manifest);
  expect(result == BDA_OK, bda_library_error(library));
  expect_in(manifest, "\"place\":\"voice:user1:1\"");
  expect(bda_files_new(&files) == BDA_OK, "there is memory");
  add(files, "backup.syx", bytes, size);
  result = bda_files_verify(files, NULL);
  expect(result == BDA_OK, bda_files_error(files));
  bda_files_close(files);
  bda_free(manifest);
  bda_free(bytes);
}

/* A library that cannot be opened has a handle, which says why, and is closed as any other. */
static void say_what_is_wrong(const char* path) {
  bda_library* library = NULL;
  expect(bda_library_open(path, BDA_OPEN_READ, &library) == BDA_UNUSABLE, "a file of messages is no library");
  expect(*bda_library_error(library) != '\0', "it says so");
  expect(bda_library_contents(library, NULL, NULL) == BDA_MISUSED, "it is not open");
  bda_library_close(library);
}

int main(int argc, char** argv) {
  expect(argc == 3, "library VOICE.syx PERFORMANCE.syx");
  list_banks();
  bda_library* const library = library_of(argv[1], argv[2]);
  show(library);
  search(library);
  explain(library);
  inspect(library);
  compare(library);
  back_up(library);
  bda_library_close(library);
  say_what_is_wrong(argv[1]);
  return 0;
}
