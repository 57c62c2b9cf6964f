#include "support/Calls.h"

#include <new>
#include <utility>

namespace Testing {

void Calls::heal() {
  scripts_.clear();
  actions_.clear();
  uses_.clear();
  thrown_ = 0;
}

std::vector<std::string> Calls::take() { return std::exchange(list_, {}); }

long Calls::scripted(std::string_view name, long good, long bad) {
  auto use = uses_.find(name);
  if (use == uses_.end()) use = uses_.emplace(std::string(name), 0U).first;
  const unsigned nth = ++use->second;
  if (const auto action = actions_.find(name); action != actions_.end()) {
    const std::function<void()> run = action->second;
    run();
  }
  const auto scripts = scripts_.find(name);
  if (scripts == scripts_.end()) return good;
  auto script = scripts->second.find(nth);
  if (script == scripts->second.end()) script = scripts->second.find(0);
  if (script == scripts->second.end()) return good;
  switch (script->second.kind) {
    case Script::fails:
      return bad;
    case Script::answers:
      return script->second.value;
    case Script::throws:
      break;
  }
  ++thrown_;
  throw std::bad_alloc();
}

}  // namespace Testing
