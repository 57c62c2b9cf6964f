/* What an owner changes in a library on disk, and takes back: changes LIBRARY VOICE.syx DRUM.syx */
#include <bda/editor.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "support.h"

/* That it went well, and that what it has changed has that in it; "": it has changed nothing. */
static void expect_change(bda_library* library, bda_result result, char* json, const char* part) {
  expect(result == BDA_OK, bda_library_error(library));
  expect((*part == '\0') == (*json == '\0'), "something has changed, or nothing");
  expect((bda_library_entry(library) != 0) == (*json != '\0'), "what has changed something is an entry of the history");
  expect_in(json, part);
  bda_free(json);
}

static bda_library* open_library(const char* path, unsigned flags) {
  bda_library* library = NULL;
  const bda_result result = bda_library_open(path, flags, &library);
  expect(result == BDA_OK, bda_library_error(library));
  return library;
}

/* Backups go in whole, or not at all. */
static void restore(bda_library* library, const char* voice, const char* drum) {
  bda_files* files = NULL;
  expect(bda_files_new(&files) == BDA_OK, "there is memory");
  const char* const paths[] = {voice, drum};
  for (int i = 0; i < 2; ++i) {
    size_t size = 0;
    uint8_t* const bytes = read_file(paths[i], &size);
    const bda_result result = bda_files_add(files, paths[i], bytes, size);
    expect(result == BDA_OK, bda_files_error(files));
    free(bytes);
  }
  char* json = NULL;
  bda_result result = bda_library_restore(library, files, NULL, &json);
  expect(lines_in(json) > 1, "more than one place has changed");
  expect_change(library, result, json, "\"after\":\"Amber Strings\"");
  result = bda_library_restore(library, files, "{\"any-device\": true}", &json);
  expect_change(library, result, json, ""); /* all is so already */
  bda_files_close(files);
}

/* An object that was shown goes back with another value in it. An editor changes it as JSON; here it is text. */
static void edit(bda_library* library) {
  char* object = NULL;
  char* json = NULL;
  bda_result result = bda_library_show(library, "voice:user1:1", &object);
  expect(result == BDA_OK, bda_library_error(library));
  char* const name = strstr(object, "Amber Strings");
  expect(name != NULL, "it has its name");
  memcpy(name, "Amber Voices!", strlen("Amber Strings"));
  result = bda_library_apply(library, "voice:user1:1", object, &json);
  expect_change(library, result, json, "\"before\":\"Amber Strings\",\"after\":\"Amber Voices!\"");
  bda_free(object);

  result = bda_library_rename(library, "voice:user1:1", "Amber Choir", &json);
  expect_change(library, result, json, "\"what\":\"renamed\"");
  result = bda_library_favourite(library, "voice:user1:1", 1, &json);
  expect_change(library, result, json, "\"what\":\"flagged\"");
  result = bda_library_set(library, "device-number", "6", &json);
  expect_change(library, result, json, "\"after\":");
}

/* Contents go to other places: one, a range, a bank. */
static void arrange(bda_library* library) {
  char* json = NULL;
  bda_result result = bda_library_copy_places(library, "voice:user1:1", "voice:user2:1", &json);
  expect_change(library, result, json, "\"content\":\"voice:user2:1\"");
  result = bda_library_move_places(library, "voice:user2:1..4", "voice:user3:11..14", &json);
  expect_change(library, result, json, "\"content\":\"voice:user3:11\"");
  result = bda_library_rename(library, "voice:user3:11", "Amber Solo", NULL);
  expect(result == BDA_OK, bda_library_error(library));
  result = bda_library_swap_places(library, "voice:user1:1", "voice:user3:11", &json);
  expect_change(library, result, json, "\"after\":\"Amber Solo\"");
  result = bda_library_remove(library, "voice:user3:11", &json);
  expect_change(library, result, json, "\"what\":\"removed\"");
  result = bda_library_undo(library, 0, 0, &json); /* the newest: the removal */
  expect_change(library, result, json, "\"after\":\"Amber Choir\"");
}

/* What a change would do: it is made in a copy in memory. */
static void try_out(bda_library* library) {
  bda_library* copy = NULL;
  char* before = NULL;
  char* after = NULL;
  char* json = NULL;
  bda_result result = bda_library_contents(library, NULL, &before);
  expect(result == BDA_OK, bda_library_error(library));
  result = bda_library_clone(library, &copy);
  expect(result == BDA_OK, bda_library_error(library));
  result = bda_library_remove(copy, "drum:user:1", &json);
  expect_change(copy, result, json, "\"before\":\"Cellar Kit\",\"after\":null");
  bda_library_close(copy);
  result = bda_library_contents(library, NULL, &after);
  expect(result == BDA_OK && strcmp(before, after) == 0, "the library is as it was");
  bda_free(before);
  bda_free(after);
}

/* An entry that somebody has built upon is taken back only by force. */
static void take_back(bda_library* library) {
  char* json = NULL;
  bda_result result = bda_library_rename(library, "drum:user:1", "Cellar", NULL);
  expect(result == BDA_OK, bda_library_error(library));
  const int64_t entry = bda_library_entry(library);
  result = bda_library_rename(library, "drum:user:1", "Attic", NULL);
  expect(result == BDA_OK, bda_library_error(library));

  result = bda_library_undo(library, entry, 0, &json);
  expect(result == BDA_REFUSED && json == NULL, "the place has changed since");
  expect_in(bda_library_error(library), "drum:user:1: ");
  result = bda_library_undo(library, entry, 1, &json);
  expect_change(library, result, json, "\"before\":\"Attic\",\"after\":\"Cellar Kit\"");
  result = bda_library_history(library, 1, &json);
  expect(result == BDA_OK && lines_in(json) == 1, bda_library_error(library));
  expect_in(json, "\"verb\":\"undo\"");
  bda_free(json);
}

/* Two handles on one file: each call sees what was last on disk. One that only reads changes nothing. */
static void share(bda_library* library, const char* path) {
  bda_library* const reader = open_library(path, BDA_OPEN_READ);
  char* json = NULL;
  bda_result result = bda_library_rename(library, "drum:user:1", "Roof", NULL);
  expect(result == BDA_OK, bda_library_error(library));
  result = bda_library_contents(reader, "drum:user:1", &json);
  expect(result == BDA_OK, bda_library_error(reader));
  expect_in(json, "\"name\":\"Roof\"");
  bda_free(json);
  expect(bda_library_remove(reader, "drum:user:1", NULL) == BDA_REFUSED, "it was opened to be read");
  bda_library_close(reader);
}

int main(int argc, char** argv) {
  expect(argc == 4, "changes LIBRARY VOICE.syx DRUM.syx");
  remove(argv[1]);
  bda_library* const library = open_library(argv[1], 0);
  restore(library, argv[2], argv[3]);
  edit(library);
  arrange(library);
  try_out(library);
  take_back(library);
  share(library, argv[1]);
  bda_library_close(library);
  return 0;
}
