#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "Program.h"
#include "arrange/Arrangement.h"
#include "convert/Batch.h"
#include "output/ChangeLines.h"
#include "wire/Pace.h"

namespace Editor {

class TranscriptFile;

// The verbs of the program, each with the words of its command line. What they refuse or find broken is told on the
// console and makes the exit code; what ends them early is thrown as Failure. "-" is standard input or output.

using Words = std::vector<std::string>;

// Judging messages, without a library.
void list(const Words& files, bool json, Program& program);
void verify(const Words& files, bool json, Program& program);
struct SalvageOptions {
  std::string output;         // where what is whole goes
  std::string requests;       // where the requests for the rest go; "": nowhere
  std::string preferred;      // the file that counts where two differ; "": none
  bool fixChecksums = false;  // messages of which the checksum alone is wrong are kept, with the right one
  bool merge = false;         // captures complete each other, whatever they have in common
  bool json = false;
};
void salvage(const Words& files, const SalvageOptions& options, Program& program);

// A file; a file and an offset; an address, which can be three words, and the path of a parameter.
void explain(const Words& words, bool json, Program& program);

// Messages into other files, without a library. The files may also stand behind the addresses of `select`.
struct ConvertOptions {
  std::string output;     // one file; "": none
  std::string directory;  // one file a unit; "": none
  std::string place;      // where units are addressed to; "": they stay
  Words select;           // which units are taken; none: all messages
  std::optional<unsigned> device;
  std::chrono::milliseconds pause{20};  // between the messages of a .mid
  bool pauses = false;                  // it was asked for
  bool json = false;
};
void convert(Words files, ConvertOptions options, Program& program);

// Handing messages to the library's instrument.
struct ExchangeOptions {
  unsigned port = 1;       // on which the messages arrive: 1, 4, 5 or 6
  std::string output;      // where the answers go; "": nowhere for received requests, to standard output for our own
  std::string trace;       // "": none
  bool anyDevice = false;  // messages for other device numbers are taken too
};
struct ReceiveOptions {
  bool whole = false;   // only units that are whole are stored, the rest is refused
  bool dryRun = false;  // said what would be done, and nothing done
  bool json = false;    // said as the trace says it
};
void receive(const Words& files, const ExchangeOptions& exchange, const ReceiveOptions& options, Program& program);
void request(const Words& words, const ExchangeOptions& options, Program& program);

// The messages of a transcript, a file, once more, with what becomes of them now. `otherLibrary`: the one that they
// meet;
// "": that of the transcript, or else the one that the command line names.
void replay(const std::string& file, const std::string& otherLibrary, Program& program);

// What can be sent to and received from.
void ports(bool json, Program& program);

// What arrives at a port, into a file.
struct RecordOptions {
  std::string from;                    // a port
  std::string output;                  // a file
  std::optional<WireTime> quietAfter;  // nothing: until Ctrl-C
  bool json = false;                   // said as the trace says it, as far as it goes
};
void record(const RecordOptions& options, Program& program);

// The library at a port, as the instrument.
struct InstrumentOptions {
  std::string on;                     // a port
  std::optional<std::string> faults;  // "drop=0.01,delay=5%:300"
  std::uint64_t seed = 0;             // of the faults
  unsigned port = 1;                  // as on which messages arrive: 1, 4, 5 or 6
  bool echoes = false;                // what the instrument echoes goes out as well
  std::optional<Pace> pace;           // nothing: the port's
  Pauses pauses;
  bool json = false;  // said as the trace says it
};
void instrument(const InstrumentOptions& options, Program& program);

// Dumps to an instrument at a port: of files, or of the library.
struct SendOptions {
  std::string to;             // a port
  bool toEditBuffer = false;  // nothing that is stored is overwritten
  bool verify = false;        // what was sent is read back
  bool changed = false;       // what the instrument has already stays
  WireTime timeout = std::chrono::seconds(2);
  unsigned retries = 2;
  std::optional<Pace> pace;  // nothing: the port's
  Pauses pauses;
  bool dryRun = false;
  bool json = false;
};
void send(const Words& words, const SendOptions& options, Program& program);
// What else a verb has to send, the same way; `read` has it, and what it asks an editor for goes into the transcript.
void send(const char* verb, const std::function<Batch(TranscriptFile&)>& read, const SendOptions& options,
          Program& program);
// What one of the assistant's jobs sends, by its name.
void job(const std::string& name, const SendOptions& options, Program& program);

// What an instrument at a port holds, into the library or a file.
struct FetchOptions {
  std::string from;      // a port
  std::string output;    // a file; "": the library
  std::string requests;  // a file for the requests of what is lost; ""
  WireTime timeout = std::chrono::seconds(2);
  unsigned retries = 2;
  std::optional<Pace> pace;  // nothing: the port's
  Pauses pauses;
  bool atomic = false;       // all of it or nothing
  bool removeEmpty = false;  // what is empty there is removed here
  bool trigger = false;      // a write trigger at the end of the file
  bool dryRun = false;
  bool json = false;
};
void fetch(const Words& words, const FetchOptions& options, Program& program);

// The parameters of targets, whose addresses can be three words each; apply takes one, and a file of them behind it.
struct ShowOptions {
  bool json = false;
  std::string from;  // a file of messages; "": the library
};
void show(const Words& words, const ShowOptions& options, Program& program);
void apply(Words words, const ChangeOptions& options, Program& program);

// The library itself. No name: all settings; no value: what it is.
void settings(const std::string& name, const std::optional<std::string>& value, const ChangeOptions& options,
              Program& program);
struct ContentsOptions {  // one of them at most; none: a grid on a terminal, else lines
  bool json = false;
  bool grid = false;
  bool lines = false;
};
void contents(const Words& words, const ContentsOptions& options, Program& program);  // no words: all

// Contents by what is asked of them: their names by terms, and all else.
struct FindOptions {
  Words sources;       // libraries, message files and folders of them; none: the library
  std::string kind;    // "": any
  Words conditions;    // "voice.common[3]>64"
  std::string sameAs;  // addresses in the library; "": none
  std::string like;
  bool favourite = false;
  bool editBuffers = false;
  bool duplicates = false;
  bool json = false;
};
void find(const Words& terms, const FindOptions& options, Program& program);

// Single contents: their addresses, then the new name of one, or on or off. A table has addresses and names instead.
void rename(const Words& words, const std::string& table, const ChangeOptions& options, Program& program);
void favourite(const Words& words, const ChangeOptions& options, Program& program);
void remove(const Words& words, const ChangeOptions& options, Program& program);

// Copies, moves or swaps what places hold: those of one word, and where it goes. `otherLibrary` is what is copied from.
void arrange(Arrangement::Kind kind, const Words& words, const std::string& otherLibrary, const ChangeOptions& options,
             Program& program);

// What changed the library, and taking that back.
struct HistoryOptions {
  std::size_t most = std::numeric_limits<std::size_t>::max();  // entries
  bool json = false;
};
void history(const HistoryOptions& options, Program& program);
// No entry: the newest. `force`: also where places changed since.
void undo(std::optional<std::int64_t> entry, bool force, const ChangeOptions& options, Program& program);

// Whole libraries.
void check(bool json, Program& program);
// `manifest`: a file for what the backup holds, or "".
void backup(const std::string& output, const std::string& manifest, Program& program);
struct RestoreOptions : ChangeOptions {
  bool anyDevice = false;  // as above
};
void restore(const std::string& file, const RestoreOptions& options, Program& program);
enum class DiffForm : std::uint8_t { words, brief, json };
void diff(const std::string& first, const std::string& second, DiffForm form, Program& program);

void screen(const std::string& output, Program& program);

}  // namespace Editor
