#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Testing {

// The record that all fakes of one test write to. Each call has a short name (checkMode, store, set, system.utility for
// the getter of that group ...) under which its uses are counted, from 1, and scripted.
class Calls {
 public:
  // Use `nth` of the call, or every use if 0, fails: null, false or a failing result, whatever that call has.
  void fail(std::string_view name, unsigned nth = 0) { scripts_[std::string(name)][nth] = Script{Script::fails, 0}; }
  // ... answers `value`.
  void answer(std::string_view name, long value, unsigned nth = 0) {
    scripts_[std::string(name)][nth] = Script{Script::answers, value};
  }
  // ... throws std::bad_alloc.
  void raise(std::string_view name, unsigned nth = 0) { scripts_[std::string(name)][nth] = Script{Script::throws, 0}; }
  // ... runs `action` first, from inside the call.
  void during(std::string_view name, std::function<void()> action) { actions_[std::string(name)] = std::move(action); }
  // Everything works again; counting starts anew.
  void heal();
  // How often a call threw since construction or heal().
  unsigned thrown() const { return thrown_; }

  // How often each call was used since construction or heal().
  const std::map<std::string, unsigned, std::less<>>& uses() const { return uses_; }

  // What was recorded so far, and from here on anew.
  std::vector<std::string> take();
  const std::vector<std::string>& list() const { return list_; }

  // Getters and reads of parameters are counted, but recorded only on demand; log lines likewise.
  bool recordsReads = false;
  bool recordsTrace = false;
  // False: calls are neither recorded nor counted nor scripted, and nothing is allocated for them.
  bool records = true;

  // For the fakes. `text` makes the line to record; the answer is `good` unless scripted otherwise.
  template <typename Text>
  long use(std::string_view name, long good, long bad, Text text) {
    if (!records) return good;
    list_.push_back(text());
    return scripted(name, good, bad);
  }
  template <typename Text>
  long read(std::string_view name, long good, long bad, Text text) {
    if (!records) return good;
    if (recordsReads) list_.push_back(text());
    return scripted(name, good, bad);
  }
  void trace(const std::string& text) {
    if (recordsTrace) list_.push_back("trace: " + text);
  }

 private:
  struct Script {
    enum { fails, answers, throws } kind;
    long value;
  };
  long scripted(std::string_view name, long good, long bad);

  std::vector<std::string> list_;
  std::map<std::string, unsigned, std::less<>> uses_;
  unsigned thrown_ = 0;
  std::map<std::string, std::map<unsigned, Script>, std::less<>> scripts_;
  std::map<std::string, std::function<void()>, std::less<>> actions_;
};

}  // namespace Testing
