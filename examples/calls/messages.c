/* What message files hold, before any of it comes near a library: messages VOICE.syx DRUM.syx */
#include <bda/editor.h>
#include <stdlib.h>
#include <string.h>

#include "support.h"

static bda_files* files_of(const char* name, const uint8_t* bytes, size_t size) {
  bda_files* files = NULL;
  expect(bda_files_new(&files) == BDA_OK, "there is memory");
  const bda_result result = bda_files_add(files, name, bytes, size);
  expect(result == BDA_OK, bda_files_error(files));
  return files;
}

/* Each message and each unit of a file somebody sent, and whether all of it is whole. */
static void judge(const uint8_t* bytes, size_t size) {
  bda_files* const files = files_of("voice.syx", bytes, size);
  char* json = NULL;
  bda_result result = bda_files_verify(files, &json);
  expect(result == BDA_OK, bda_files_error(files));
  expect_in(json, "\"unit\":\"voice:user1:1\"");
  expect_in(json, "\"state\":\"complete\"");
  bda_free(json);

  /* The same file, cut off: the answer is there all the same, and the error has a line for each thing wrong. */
  result = bda_files_add(files, "cut.syx", bytes, size - 1);
  expect(result == BDA_OK, bda_files_error(files));
  result = bda_files_list(files, &json);
  expect(result == BDA_REFUSED, "a message of the second file is cut short");
  expect_in(json, "\"verdict\":\"cut short\"");
  expect_in(bda_files_error(files), "cut.syx: at offset ");
  bda_free(json);
  bda_files_close(files);
}

/* What is no file of messages is not added, and the error says what it looks like. */
static void refuse_a_letter(void) {
  const char letter[] = "Dear all, here are my sounds";
  bda_files* files = NULL;
  expect(bda_files_new(&files) == BDA_OK, "there is memory");
  expect(bda_files_add(files, "letter.txt", (const uint8_t*)letter, sizeof letter - 1) == BDA_UNUSABLE, "a letter");
  expect_in(bda_files_error(files), "it seems to be text");
  bda_files_close(files);
}

/* A backup lies in memory as one block. Where each message begins: to send them one after the other, for example. */
struct course {
  const uint8_t* bytes;
  size_t joined; /* bytes of the messages so far */
  uint64_t messages;
};

static void follow(void* context, uint64_t number, uint64_t offset, const uint8_t* message, size_t size) {
  struct course* const course = context;
  expect(offset == course->joined && memcmp(course->bytes + offset, message, size) == 0, "nothing is between them");
  course->joined += size;
  course->messages = number;
}

static void visit_each(const uint8_t* bytes, size_t size) {
  struct course course = {NULL, 0, 0};
  bda_files* const files = files_of("voice.syx", bytes, size);
  course.bytes = bytes;
  const bda_result result = bda_files_each(files, follow, &course);
  expect(result == BDA_OK, bda_files_error(files));
  expect(course.joined == size && course.messages == 26, "a normal voice has 26 messages");
  bda_files_close(files);
}

/* Which parameter a byte carries, by the name that its owner gave to it. */
static void explain(const uint8_t* bytes, size_t size) {
  bda_files* const files = files_of("voice.syx", bytes, size);
  char* json = NULL;
  bda_result result = bda_files_name_parameters(files, "parameter voice.common[3] Volume\n");
  expect(result == BDA_OK, bda_files_error(files));
  result = bda_files_explain(files, 0, 0, UINT64_MAX, &json);
  expect(result == BDA_OK, bda_files_error(files));
  expect(lines_in(json) == size, "each byte has a line");
  expect_in(json, "\"name\":\"Volume\"");
  bda_free(json);

  result = bda_files_explain(files, 0, size - 2, 1, &json); /* one byte of file 0 */
  expect(result == BDA_OK && lines_in(json) == 1, bda_files_error(files));
  expect_in(json, "\"part\":\"checksum\"");
  bda_free(json);
  bda_files_close(files);
}

/* Two captures of one sound, each with a hole: what is whole in both together, and nothing to ask for. */
static void complete(const uint8_t* bytes, size_t size, const uint8_t* other, size_t other_size) {
  bda_files* files = files_of("first.syx", bytes, size);
  uint8_t* whole = NULL;
  uint8_t* requests = NULL;
  char* json = NULL;
  size_t whole_size = 0;
  size_t requests_size = 0;
  bda_result result = bda_files_salvage(files, NULL, &whole, &whole_size, &requests, &requests_size, &json);
  expect(result == BDA_REFUSED, "the first is not whole by itself");
  expect_in(json, "\"state\":\"lost\"");
  expect(whole_size == 0 && requests_size > 0 && requests[0] == 0xF0, "it says what to ask the instrument for");
  bda_free(whole);
  bda_free(requests);
  bda_free(json);

  result = bda_files_add(files, "second.syx", other, other_size);
  expect(result == BDA_OK, bda_files_error(files));
  result = bda_files_salvage(files, "{\"prefer\": \"second.syx\", \"merge\": true, \"fix-checksums\": true}", &whole,
                             &whole_size, NULL, NULL, &json);
  expect(result == BDA_OK && whole_size > 0, bda_files_error(files));
  expect_in(json, "\"state\":\"completed\"");
  bda_files_close(files);

  files = files_of("whole.syx", whole, whole_size);
  result = bda_files_verify(files, NULL);
  expect(result == BDA_OK, bda_files_error(files));
  bda_free(whole);
  bda_free(json);
  bda_files_close(files);
}

/* A sound for another place and another device, as a song that a sequencer plays; and back. */
static void convert(const uint8_t* voice, size_t voice_size, const uint8_t* drum, size_t drum_size) {
  bda_files* files = files_of("voice.syx", voice, voice_size);
  bda_result result = bda_files_add(files, "drum.syx", drum, drum_size);
  expect(result == BDA_OK, bda_files_error(files));
  uint8_t* song = NULL;
  size_t size = 0;
  char* json = NULL;
  const char* const options =
      "{\"select\": \"voice:user1:1\", \"place\": \"voice:user3:7\", "
      "\"device\": 2, \"format\": \"mid\", \"pause\": 40}";
  result = bda_files_convert(files, options, &song, &size, &json);
  expect(result == BDA_OK, bda_files_error(files));
  expect_in(json, "\"unit\":\"voice:user3:7\"");
  expect(lines_in(json) == 1 && size > 4 && memcmp(song, "MThd", 4) == 0, "one sound, as a Standard MIDI File");
  bda_free(json);
  bda_files_close(files);

  files = files_of("song.mid", song, size);
  result = bda_files_list(files, &json);
  expect(result == BDA_OK && lines_in(json) == 26, bda_files_error(files));
  expect_in(json, "\"device\":2");
  bda_free(json);
  bda_free(song);
  bda_files_close(files);
}

int main(int argc, char** argv) {
  expect(argc == 3, "messages VOICE.syx DRUM.syx");
  size_t size = 0;
  size_t drum_size = 0;
  uint8_t* const voice = read_file(argv[1], &size);
  uint8_t* const drum = read_file(argv[2], &drum_size);
  judge(voice, size);
  refuse_a_letter();
  visit_each(voice, size);
  explain(voice, size);
  complete(voice, size / 2, voice + size / 4, size - size / 4);
  convert(voice, size, drum, drum_size);
  free(voice);
  free(drum);
  return 0;
}
