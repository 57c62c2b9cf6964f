/* Two libraries on one cable, and time that runs as fast as they let it: wire VOICE.syx DRUM.syx */
#include <bda/editor.h>
#include <stdlib.h>
#include <string.h>

#include "support.h"

/* One direction of the cable: what one end has sent, and the other has not heard yet. */
struct cable {
  uint8_t bytes[1 << 16];
  size_t size;
};

/* Takes what there is room for, as a port does. */
static ptrdiff_t put(void* context, const uint8_t* bytes, size_t size) {
  struct cable* const cable = context;
  const size_t room = sizeof cable->bytes - cable->size;
  const size_t taken = size < room ? size : room;
  memcpy(cable->bytes + cable->size, bytes, taken);
  cable->size += taken;
  return (ptrdiff_t)taken;
}

/* One end sends what it has to, and the other hears it. When the first wants to be called again is in *due. */
static size_t pass(bda_wire* from, bda_wire* to, int64_t now, int64_t* due) {
  static struct cable cable;
  cable.size = 0;
  bda_result result = bda_wire_tick(from, now, put, &cable, due);
  expect(result == BDA_OK, bda_wire_error(from));
  if (cable.size > 0) {
    result = bda_wire_feed(to, now, cable.bytes, cable.size);
    expect(result == BDA_OK, bda_wire_error(to));
  }
  return cable.size;
}

/* Until `wire` is done: with a port there is no other end here, and who has nothing to send waits for it. */
static void run(bda_wire* wire, bda_wire* instrument) {
  int64_t now = 0;
  while (!bda_wire_is_done(wire)) {
    int64_t due = BDA_NEVER;
    int64_t due_there = BDA_NEVER;
    const size_t sent = pass(wire, instrument, now, &due);
    const size_t answered = pass(instrument, wire, now, &due_there);
    if (sent > 0 || answered > 0 || bda_wire_is_done(wire)) continue;
    const int64_t next = due < due_there ? due : due_there;
    expect(next != BDA_NEVER, "somebody wants to go on");
    if (next > now) now = next;
  }
}

/* What became of all that was asked for or sent since it was asked last. */
static void expect_results(bda_wire* wire, bda_result expected, const char* part) {
  char* json = NULL;
  const bda_result result = bda_wire_results(wire, &json);
  expect(result == expected, bda_wire_error(wire));
  expect_in(json, part);
  bda_free(json);
}

static bda_library* library_with(bda_files* files) {
  bda_library* library = NULL;
  bda_result result = bda_library_open(NULL, 0, &library);
  expect(result == BDA_OK, bda_library_error(library));
  if (files == NULL) return library;
  result = bda_library_restore(library, files, NULL, NULL);
  expect(result == BDA_OK, bda_library_error(library));
  return library;
}

static bda_wire* instrument_of(bda_library* library, const char* options) {
  bda_wire* wire = NULL;
  const bda_result result = bda_wire_instrument(library, options, &wire);
  expect(result == BDA_OK, bda_wire_error(wire));
  return wire;
}

static bda_wire* fetch_to(bda_library* library, const char* places, const char* options) {
  bda_wire* wire = NULL;
  const bda_result result = bda_wire_fetch(library, places, options, &wire);
  expect(result == BDA_OK, bda_wire_error(wire));
  return wire;
}

static bda_wire* send_from(bda_library* library, const char* places, const char* options) {
  bda_wire* wire = NULL;
  const bda_result result = bda_wire_send(library, places, options, &wire);
  expect(result == BDA_OK, bda_wire_error(wire));
  return wire;
}

/* That both have the same there. */
static void expect_same(bda_library* library, bda_library* other, const char* place) {
  char* here = NULL;
  char* there = NULL;
  expect(bda_library_show(library, place, &here) == BDA_OK, bda_library_error(library));
  expect(bda_library_show(other, place, &there) == BDA_OK, bda_library_error(other));
  expect(strcmp(here, there) == 0, place);
  bda_free(here);
  bda_free(there);
}

/* What the instrument holds comes into a library, and each unit is stored when its line is there. */
static void fetch(bda_files* held) {
  bda_library* const library = library_with(NULL);
  bda_library* const other = library_with(held);
  bda_wire* const instrument = instrument_of(other, NULL);
  bda_wire* const wire = fetch_to(library, "voice:user1:1 drum:user:1", "{\"timeout\": 2, \"retries\": 2}");
  expect(bda_library_contents(library, NULL, NULL) == BDA_MISUSED, "the wire uses it");
  run(wire, instrument);
  char* json = NULL;
  expect(bda_wire_progress(wire, &json) == BDA_OK, bda_wire_error(wire));
  expect_in(json, "{\"done\":2,\"units\":2,");
  bda_free(json);
  expect_results(wire, BDA_OK, "\"unit\":\"drum:user:1\",\"address\":\"0E 28 00\",\"state\":\"stored\",\"tries\":1");
  bda_wire_close(wire);
  bda_wire_close(instrument);
  expect_same(library, other, "voice:user1:1");
  expect_same(library, other, "drum:user:1");
  bda_library_close(library);
  bda_library_close(other);
}

/* A library that is to be as the instrument: all or nothing, and what it says to be empty is removed. Places of voices
   say nothing when they are empty; their file dumps do. */
static void mirror(bda_files* held) {
  bda_library* const library = library_with(held);
  bda_library* const other = library_with(held);
  const bda_result result = bda_library_move_places(other, "voice:user1:1", "voice:user1:2", NULL);
  expect(result == BDA_OK, bda_library_error(other));
  bda_wire* const instrument = instrument_of(other, "{\"pace\": \"none\"}");
  bda_wire* const wire = fetch_to(library, "file:voice:user1:1..2",
                                  "{\"pace\": \"usb\", \"atomic\": true, \"remove-empty\": true, \"timeout\": 0.5}");
  run(wire, instrument);
  expect_results(wire, BDA_OK, "\"removed\":true");
  bda_wire_close(wire);
  bda_wire_close(instrument);
  expect_same(library, other, "voice:user1:2");
  bda_library_close(library);
  bda_library_close(other);
}

/* A bad cable: a message of fifty is lost, so that a sound is asked for again. The same seed loses the same ones. */
static void fetch_by_a_bad_cable(bda_files* held) {
  bda_library* const library = library_with(NULL);
  bda_library* const other = library_with(held);
  bda_wire* const instrument = instrument_of(other, "{\"faults\": \"drop=2%,clock=10%\", \"seed\": 3}");
  bda_wire* const wire = fetch_to(library, "voice:user1:1 drum:user:1", "{\"timeout\": 0.5, \"retries\": 20}");
  run(wire, instrument);
  char* json = NULL;
  expect(bda_wire_results(wire, &json) == BDA_OK, bda_wire_error(wire));
  const char* const drum = strchr(json, '\n') + 1; /* the second line, of 83 messages */
  expect_in(drum, "\"state\":\"stored\"");
  expect(strstr(drum, "\"tries\":1,") == NULL, "it was asked for again");
  bda_free(json);
  bda_wire_close(wire);
  bda_wire_close(instrument);
  expect_same(library, other, "voice:user1:1");
  bda_library_close(library);
  bda_library_close(other);
}

/* Sounds go to the instrument: first what that overwrites, for its owner to agree; then they are read back. This one
   gives back what it is sent, too. */
static void send(bda_files* held) {
  bda_library* const library = library_with(held);
  bda_library* const other = library_with(NULL);
  bda_wire* const instrument = instrument_of(other, "{\"echo\": true, \"port\": 1}");
  bda_wire* wire = send_from(library, "voice:user1:1 voice:user1:2", "{\"verify\": true, \"unit-pause\": 50}");
  char* lines = NULL;
  expect(bda_wire_effects(wire, &lines) == BDA_OK, bda_wire_error(wire));
  expect_in(lines, "overwrites: voice:user1:1\n");
  bda_free(lines);
  expect_results(wire, BDA_REFUSED, ""); /* before it begins: what cannot be sent */
  run(wire, instrument);
  expect_results(wire, BDA_OK, "\"unit\":\"voice:user1:1\",\"address\":\"0E 0A 00\",\"state\":\"equal\"");
  bda_wire_close(wire);

  wire = send_from(library, "voice:user1:1", "{\"to-edit-buffer\": true}"); /* to hear it there: nothing is replaced */
  run(wire, instrument);
  expect_results(wire, BDA_OK, "\"unit\":\"voice:edit\"");
  bda_wire_close(wire);
  bda_wire_close(instrument);
  expect_same(library, other, "voice:user1:1");
  bda_library_close(library);
  bda_library_close(other);
}

/* Files go as they are, without a library; only what is different there, and a message at a time. */
static void send_files(bda_files* held) {
  bda_library* const other = library_with(held);
  const bda_result result = bda_library_remove(other, "drum:user:1", NULL);
  expect(result == BDA_OK, bda_library_error(other));
  bda_wire* const instrument = instrument_of(other, NULL);
  bda_wire* wire = NULL;
  const char* const options =
      "{\"changed\": true, \"whole-messages\": true, \"pause\": 5, \"timeout\": 0.5, \"retries\": 1}";
  expect(bda_wire_send_files(held, options, &wire) == BDA_OK, bda_wire_error(wire));
  run(wire, instrument);
  char* json = NULL;
  expect(bda_wire_results(wire, &json) == BDA_OK, bda_wire_error(wire));
  expect(lines_in(json) == 2, "each sound has a line");
  expect_in(json, "\"unit\":\"voice:user1:1\",\"address\":\"0E 0A 00\",\"state\":\"equal\"");
  expect_in(json, "\"unit\":\"drum:user:1\",\"address\":\"0E 28 00\",\"state\":\"sent\"");
  bda_free(json);
  bda_wire_close(wire);
  bda_wire_close(instrument);
  bda_library_close(other);
}

/* Its owner has enough: what has begun goes out to its end, and the rest is told. */
static void stop(bda_files* held) {
  bda_library* const library = library_with(held);
  bda_library* const other = library_with(NULL);
  bda_wire* const instrument = instrument_of(other, NULL);
  bda_wire* const wire = send_from(library, "voice:user1:1 drum:user:1", NULL);
  int64_t due = 0;
  expect(pass(wire, instrument, 0, &due) > 0, "the first bytes are out");
  expect(bda_wire_stop(wire) == BDA_OK, bda_wire_error(wire));
  run(wire, instrument);
  expect_results(wire, BDA_REFUSED, "");
  expect_in(bda_wire_error(wire), "not sent");
  bda_wire_close(wire);
  expect(bda_wire_stop(instrument) == BDA_OK && bda_wire_is_done(instrument), bda_wire_error(instrument));
  bda_wire_close(instrument);
  bda_library_close(library);
  bda_library_close(other);
}

static ptrdiff_t gone(void* context, const uint8_t* bytes, size_t size) {
  (void)context, (void)bytes, (void)size;
  return -1;
}

/* Somebody pulls the cable out: it is done at once, and says what became of the rest. */
static void lose_the_port(bda_files* held) {
  bda_library* const library = library_with(held);
  bda_wire* const wire = send_from(library, "voice:user1:1", NULL);
  expect(bda_wire_tick(wire, 0, gone, NULL, NULL) == BDA_FAILED && bda_wire_is_done(wire), "nobody is there");
  expect_results(wire, BDA_REFUSED, "");
  expect_in(bda_wire_error(wire), "1 unit not sent");
  bda_wire_close(wire);
  bda_library_close(library);
}

int main(int argc, char** argv) {
  expect(argc == 3, "wire VOICE.syx DRUM.syx");
  bda_files* files = NULL;
  expect(bda_files_new(&files) == BDA_OK, "there is memory");
  for (int i = 1; i < argc; ++i) {
    size_t size = 0;
    uint8_t* const bytes = read_file(argv[i], &size);
    const bda_result result = bda_files_add(files, argv[i], bytes, size);
    expect(result == BDA_OK, bda_files_error(files));
    free(bytes);
  }
  fetch(files);
  mirror(files);
  fetch_by_a_bad_cable(files);
  send(files);
  send_files(files);
  stop(files);
  lose_the_port(files);
  bda_files_close(files);
  return 0;
}
