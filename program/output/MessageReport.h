#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "Program.h"
#include "exchange/Tally.h"
#include "input/InputStream.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/OtherDevices.h"

namespace Editor {

// Tells what became of messages that were handed to the library's instrument, and makes of it what the run ends with.
class MessageReport {
 public:
  struct Options {
    BDA::DevicePortNum port = BDA::DevicePort_Main;  // on which they arrive
    bool isRehearsal = false;                        // said of what would be done
    bool json = false;                               // as the trace says it
    // What there is to do about messages for other devices.
    OtherDevices::WayOut wayOut = OtherDevices::WayOut::optionOrSetting;
  };
  // The editor, which they are handed to, outlives this object, as the names of their files do.
  MessageReport(Program& program, const EmbeddedEditor& editor, const Options& options)
      : program_(program),
        console_(program.console),
        editor_(editor),
        options_(options),
        losses_(console_),
        refusals_(console_) {}

  // What became of a message. `unsendable`: why its answer cannot be passed on; empty: it can.
  void tell(const InputMessage& message, const Record& record, const std::string& unsendable = "");
  // One that was not handed on. `kind` says in words what those have in common that count as one; empty: the next one
  // tells it.
  void refuse(const std::string& kind, const std::string& text);
  // Bytes that became no message.
  void lose(const InputLoss& loss) { losses_.add(loss); }

  // Call it once, at the end. `isHandled`: all that came.
  void finish(bool isHandled);
  // What all messages came to.
  std::string words() const { return (options_.isRehearsal ? "dry run, nothing is changed: " : "") + tally_.words(); }

  // "stored", or what would be.
  std::string said(const char* word) const { return (options_.isRehearsal ? "would be " : "") + std::string(word); }

 private:
  // Where messages stand that something may still have to be said of when they have gone by.
  class Places {
   public:
    void add(const InputMessage& message, const EmbeddedEditor& editor);
    std::string at(std::uint64_t number) const;

   private:
    void forgetEnded(const EmbeddedEditor& editor);

    struct Place {
      const std::string* file;
      std::uint64_t offset;
    };
    static constexpr std::size_t kFew = 100;
    std::map<std::uint64_t, Place> places_;
    std::size_t most_ = kFew;
  };

  void say(const std::string& line) {
    if (!options_.json) console_.line(line);
  }
  void complain(const std::string& text);
  void tellOutcome(const InputMessage& message, const Record& record);
  void tellContents(const InputMessage& message, const Record& record);
  void tellRefusal(const InputMessage& message, const Record& record);
  std::string wasIn(const std::string& name, bool isRemoved) const;

  Program& program_;
  Console& console_;
  const EmbeddedEditor& editor_;
  const Options options_;
  LossReport losses_;
  Complaints refusals_;
  Places places_;
  OtherDevices otherDevices_;
  Tally tally_;
};

}  // namespace Editor
