// The verb replay: a transcript once more, compared with what came of it then.

#include "transcript/Replay.h"

#include <fmt/format.h>

#include <optional>

#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/MidiFile.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

Replay readTranscript(const std::string& file) {
  std::string error;
  const auto bytes = loadBytes(file, error);
  if (!bytes) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), error));
  return Replay({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

// The bytes of the one that was named, or nothing: that of the transcript.
std::optional<Library::Bytes> libraryFor(const Replay& transcript, const std::string& file) {
  if (!file.empty()) {
    try {
      Library library(file, {.use = Library::Use::read});
      const Library::Transaction oneState(library, Library::Transaction::Access::Read);
      return library.image();
    } catch (const LibraryError& error) {
      throw Failure(kUnusableInput, escape(error.what()));
    }
  }
  if (!transcript.needsLibrary()) return std::nullopt;
  const std::string name = transcript.libraryName();
  throw Failure(kUnusableInput, name.empty() ? "nothing in it was handed to a library: there is nothing to replay"
                                             : fmt::format("it does not hold the library that it met ({}): name one "
                                                           "that is as that was, with --from-library or --library",
                                                           escape(name)));
}

}  // namespace

void replay(const std::string& file, const std::string& otherLibrary, Program& program) {
  std::string library = otherLibrary;
  try {
    Replay transcript = readTranscript(file);
    if (library.empty() && transcript.needsLibrary()) library = program.namedLibrary();
    // It bears the name of the one that it stands for: the screen shows that.
    const std::string name = transcript.libraryName();
    EmbeddedEditor editor(name.empty() ? "library" : name, {.use = Library::Use::memory});
    const Replay::Result result = transcript.run(editor, libraryFor(transcript, library));
    const auto place = [&](std::size_t line) { return fmt::format("{}, line {}", escape(file), line); };
    if (result.isCutShort) {
      program.console.problem(fmt::format("{}: its last line is cut short, and not compared", escape(file)));
      program.refuse();
    }
    if (result.difference) {
      program.console.problem(fmt::format("{}: {}", place(result.difference->line), escape(result.difference->text)));
      program.refuse();
    } else if (result.endsAt) {
      program.console.problem(fmt::format(
          "{}: another program has changed the library, and the transcript does not hold it: nothing behind it can be "
          "replayed",
          place(*result.endsAt)));
      program.refuse();
    } else if (result.unwritten > 0 && !result.isCutShort) {
      program.console.problem(fmt::format("{}: it ends before {} that were sent had gone out: these are not compared",
                                          escape(file), counted(result.unwritten, "message")));
      program.refuse();
    } else if (result.messages == 0) {
      throw Failure(kUnusableInput, "nothing in it was handed to a library: there is nothing to replay");
    }
    program.console.note(fmt::format("{} replayed: {}", counted(result.messages, "message"),
                                     result.difference ? "a difference" : "no difference"));
  } catch (const TranscriptError& error) {
    throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), escape(error.what())));
  } catch (const LibraryError& error) {  // whose own text names the library that this one stands for
    throw Failure(kUnusableInput,
                  fmt::format("{}: {}", escape(library.empty() ? file : library), escape(error.reason())));
  }
}

}  // namespace Editor
