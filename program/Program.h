#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ExitCode.h"
#include "contents/LibraryMark.h"
#include "exchange/EmbeddedEditor.h"
#include "names/ParameterNames.h"
#include "output/Console.h"
#include "targets/TargetModels.h"

namespace Editor {

// What goes into a transcript of the run, and where.
struct TranscriptOptions {
  std::string file;          // "": there is none
  bool withLibrary = false;  // the library that it meets is in it
};

// What the verbs share: where they speak, which library they use, how the run ends.
class Program {
 public:
  Console console;

  // The library that the command line, the environment or the default names. Throws Failure when none of them does.
  std::string libraryFile() const;
  std::optional<std::string> findLibraryFile() const;
  TranscriptOptions transcript;
  void setLibraryFile(const std::string& file) { library_ = file; }
  // The one that the command line names; "": it names none.
  const std::string& namedLibrary() const { return library_; }
  // Throws Failure with that code unless there is one: for a verb that has no use for a new one.
  void requireLibrary(ExitCode code) const;
  bool hasLibrary() const;
  // The names of waveforms, arpeggios and parameters; without it the file beside the library, or else the built-in
  // ones.
  void setNameFile(const std::string& file) { names_ = file; }
  // The verb has a use for those of waveforms and arpeggios.
  void needNames() { needsNames_ = true; }
  std::string nameFileOf(const std::string& library) const {
    return names_.empty() ? library + std::string(kNamesEnding) : names_;
  }
  // That of the library, if the verb has a use for it, and it was named or is there.
  std::optional<std::string> nameFileInUse(const std::string& library) const;
  // Those of parameters: in the file beside the first of these libraries that has one, or beside the program's own.
  // Throws Failure (kUnusableInput).
  ParameterNames parameterNames(std::vector<std::string> libraries = {}) const;
  // Opens it to change it; one that does not exist is made by the first change, and that is told. `run` is what the
  // history says of the changes. Throws Failure (kUnusableInput).
  std::unique_ptr<EmbeddedEditor> openToChange(LibraryRun run);
  // Opens it to read it, as if it were empty when it is the default one and does not exist. Throws the same.
  // What cannot be read of it is left out, and told.
  std::unique_ptr<EmbeddedEditor> openToRead() { return open(libraryFile(), useToRead()); }
  // The same without an editor: live models are not read.
  std::unique_ptr<Library> openLibraryToRead();
  std::unique_ptr<EmbeddedEditor> openToRead(const std::string& file) { return open(file, Library::Use::read); }

  // A copy of it in memory, to see what such a run would change; empty when it does not exist. Throws the same.
  std::unique_ptr<EmbeddedEditor> openToRehearse(LibraryRun run);

  // Something was refused or is broken: the run goes on, and ends with this.
  void refuse() {
    if (exitCode_ == kAllGood) exitCode_ = kRefused;
  }
  // What stands there is damaged, or what belongs to it: the run goes on, without it.
  void tellDamaged(const std::string& place, const std::string& why = kItIsDamaged);
  void leaveOutDamaged(const std::string& place, const std::string& why = kItIsDamaged) {
    tellDamaged(place + ": left out", why);
  }
  // Inputs proved unusable while they were read, a text for each: the run ends with kUnusableInput.
  void failInputs(const std::vector<std::string>& problems);
  // The run ends with this, whatever it has refused.
  void endWith(ExitCode code) { exitCode_ = code; }
  // An output could not be written: the run may go on, and ends with that, whatever else is found.
  void failOutput() { hasOutputFailed_ = true; }
  bool hasOutputFailed() const { return hasOutputFailed_; }
  // The library was changed, whatever becomes of what the run says of it.
  void noteChange() { hasChanged_ = true; }
  bool hasChanged() const { return hasChanged_; }
  ExitCode exitCode() const { return exitCode_; }

 private:
  std::unique_ptr<EmbeddedEditor> open(const std::string& file, Library::Use use);
  Library::Use useToRead();
  void leaveOut(const std::string& library, const Library::Unread& unread);
  void readPastDamage(const std::string& file, Library& library);

  std::string library_;
  std::string names_;
  bool needsNames_ = false;
  std::set<std::string> leftOut_;  // what is told of each once
  ExitCode exitCode_ = kAllGood;
  bool hasOutputFailed_ = false;
  bool hasChanged_ = false;
};

}  // namespace Editor
