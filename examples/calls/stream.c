/* A MIDI input: what comes in pieces goes to the instrument, and what it answers goes out: stream VOICE.syx */
#include <bda/editor.h>
#include <stdlib.h>
#include <string.h>

#include "support.h"

struct input {
  bda_library* library;
  uint64_t messages;
  uint64_t lost; /* bytes */
};

/* Each message, as soon as its F7 has come. What it stores is on disk when bda_library_handle() returns. */
static void receive(void* context, uint64_t number, uint64_t offset, const uint8_t* message, size_t size) {
  struct input* const input = context;
  char* json = NULL;
  const bda_result result = bda_library_handle(input->library, 1, message, size, NULL, NULL, &json);
  expect(result == BDA_OK, bda_library_error(input->library));
  (void)offset;
  input->messages = number;
  if (number == 26) expect_in(json, "\"contents\":[\"voice:user1:1\"]"); /* the last of a voice has it stored */
  bda_free(json);
}

static void lose(void* context, uint64_t offset, uint64_t count, const char* reason) {
  struct input* const input = context;
  (void)offset;
  expect(*reason != '\0', "it says why");
  input->lost += count;
}

/* A cable brings pieces of any size, and a clock between the bytes of a message. */
static void join(bda_library* library, const uint8_t* bytes, size_t size) {
  const uint8_t clock = 0xF8;
  uint64_t clocks = 0;
  struct input input = {NULL, 0, 0};
  bda_joiner* joiner = NULL;
  input.library = library;
  expect(bda_joiner_new(receive, lose, &input, &joiner) == BDA_OK, "there is memory");
  for (size_t at = 0; at < size; at += 100) {
    const size_t piece = size - at < 100 ? size - at : 100;
    expect(bda_joiner_feed(joiner, bytes + at, piece) == BDA_OK, "there is memory");
    expect(bda_joiner_feed(joiner, &clock, 1) == BDA_OK, "there is memory");
    ++clocks;
  }
  expect(input.messages == 26, "all messages came whole");

  /* Somebody pulls the cable in the midst of one: what had begun is told as lost, and each clock was. */
  expect(bda_joiner_feed(joiner, bytes, 10) == BDA_OK, "there is memory");
  expect(bda_joiner_finish(joiner) == BDA_OK, "there is memory");
  expect(input.messages == 26 && input.lost == clocks + 10, "every byte is of a message or told as lost");
  bda_joiner_close(joiner);
}

struct output {
  uint8_t bytes[8192];
  size_t size;
};

static void send(void* context, unsigned port, const uint8_t* message, size_t size) {
  struct output* const output = context;
  expect(port == 1 && output->size + size <= sizeof output->bytes, "an answer goes out on the main port");
  memcpy(output->bytes + output->size, message, size);
  output->size += size;
}

/* The same by its name, and by the message that an instrument gets when it is asked. */
static void answer(bda_library* library, const uint8_t* bytes, size_t size) {
  struct output output = {{0}, 0};
  bda_result result = bda_library_request(library, "voice:user1:1", send, &output);
  expect(result == BDA_OK, bda_library_error(library));
  expect(output.size == size && memcmp(output.bytes, bytes, size) == 0, "every byte came back");

  result = bda_library_request(library, "voice:user1:1 voice:user1:2", send, &output);
  expect(result == BDA_REFUSED, "nothing is stored at the second place");
  expect_in(bda_library_error(library), "voice:user1:2: ");
  expect(output.size == 2 * size, "the first was answered all the same");
}

int main(int argc, char** argv) {
  expect(argc == 2, "stream VOICE.syx");
  size_t size = 0;
  uint8_t* const bytes = read_file(argv[1], &size);
  bda_library* library = NULL;
  const bda_result result = bda_library_open(NULL, 0, &library);
  expect(result == BDA_OK, bda_library_error(library));
  join(library, bytes, size);
  answer(library, bytes, size);
  bda_library_close(library);
  free(bytes);
  return 0;
}
