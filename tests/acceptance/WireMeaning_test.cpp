// What is sent leaves in the instrument what a file of it means to whoever receives it.

#include "Wire.h"

TEST_F(Wire, aTriggerGoesOutWhereTheFileHasIt) {
  const Bytes wiping = dump({0x11, 0x01, 0x00});
  const Bytes user1 = unit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice, 0x41);
  const Bytes mix1 = unit({0x0E, 0x31, 0x00}, BDA::List::normalVoice, 0x41);
  write("stored-last.syx", {fileDump({0x0C, 0x0A, 0x00}, "Last", {1, 2, 3}), user1, dump(Editor::kWriteTrigger)});
  write("removed.syx", {fileDump({0x0C, 0x31, 0x05}, "Stays", {1, 2, 3}), mix1, wiping});
  for (const char* const file : {"stored-last.syx", "removed.syx"}) {
    bda({"receive", "-q", file, "--library", "received.db"});
    Serving instrument = serve();
    EXPECT_THAT(bda({"send", file, "--to", instrument.path, "--pace", "none"}), Exits(0));
    EXPECT_THAT(fetch(instrument, {"system:common", "--dry-run"}), Exits(0)) << "it has heard all of it by then";
    instrument.stop();
    EXPECT_THAT(bda({"diff", "received.db", "instrument.db"}), Exits(0)) << file;
    for (const char* const name : {"received.db", "instrument.db"}) std::filesystem::remove(directory / name);
  }
}
