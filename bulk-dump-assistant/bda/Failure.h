#pragma once

// Failure reports. A failure writes two texts through the platform's tracer, a location and a message, and the editor
// relies on both. So both are data: a source file declares its failures at its top, and the code that fails calls one:
//
//     constexpr Failure<int> kTooLong{{kFile, 12, "BDA::X::f"}, Refusal::nameTooLong, "too long [size = %d]\n"};
//     ...
//     kTooLong(int(size));
//     return BDA_ERR;
//
// The compiler checks each message's conversions against the argument types, so that a failure path that nothing has
// run yet cannot print rubbish. The refusal is what an observer of the assistant is told.

#include <type_traits>

#include "Compiler.h"
#include "Reception.h"
#include "bda/platform/Basekit/Tracer.h"

namespace BDA {

// The line number of a location. Some are fixed by contract and never move with the code; the others may be any number,
// so they tell where the report is declared.
class Line {
 public:
  constexpr Line(int fixedByContract) : number_(fixedByContract) {}  // NOLINT(google-explicit-constructor): a number
  static constexpr Line ofThisSource(int line = BDA_CALLERS_LINE) { return {line}; }
  constexpr int number() const { return number_; }

 private:
  int number_;
};

using Refusal = BulkDumpRefusal;

struct Site {
  const char* file;
  Line line;
  const char* function;  // as the editor expects it, qualified or not
};

namespace detail {

// Not constexpr on purpose: reaching one of these while a Failure is built at compile time stops the build, and its
// name is the error message.
void message_has_more_conversions_than_arguments();
void message_has_fewer_conversions_than_arguments();
void message_conversion_does_not_fit_its_argument();
void message_has_an_unknown_conversion();
void message_does_not_end_with_a_newline();

// The conversion that prints an argument of that type: wider or narrower types are cast by the caller.
template <typename Argument>
constexpr char conversionFor() {
  static_assert(
      std::is_same_v<Argument, int> || std::is_same_v<Argument, unsigned> || std::is_same_v<Argument, const char*>,
      "a message takes int (%d), unsigned (%x) and const char* (%s)");
  if constexpr (std::is_same_v<Argument, int>)
    return 'd';
  else if constexpr (std::is_same_v<Argument, unsigned>)
    return 'x';
  else
    return 's';
}

template <typename... Arguments>
consteval void checkMessage(const char* text) {
  constexpr int count = sizeof...(Arguments);
  constexpr char expected[count + 1] = {conversionFor<Arguments>()..., '\0'};
  int found = 0;
  char last = '\0';
  for (const char* p = text; *p != '\0'; ++p) {
    last = *p;
    if (*p != '%') continue;
    ++p;
    if (*p == '%') continue;
    while (*p >= '0' && *p <= '9') ++p;
    if (*p != 'd' && *p != 'x' && *p != 's') message_has_an_unknown_conversion();
    if (found == count) message_has_more_conversions_than_arguments();
    if (*p != expected[found]) message_conversion_does_not_fit_its_argument();
    ++found;
  }
  if (found != count) message_has_fewer_conversions_than_arguments();
  if (last != '\n') message_does_not_end_with_a_newline();
}

}  // namespace detail

template <typename... Arguments>
class Failure {
 public:
  consteval Failure(Site site, Refusal refusal, const char* message)
      : site_(site), refusal_(refusal), message_(message) {
    detail::checkMessage<Arguments...>(message);
  }

  void operator()(Arguments... arguments) const {
    Basekit::Tracer::dumpError("%s:%d [%s] ", site_.file, site_.line.number(), site_.function);
    Basekit::Tracer::dumpError(message_, arguments...);
    Notes::refusal(refusal_);
  }

 private:
  Site site_;
  Refusal refusal_;
  const char* message_;
};

// The one report that carries no location.
class BareMessage {
 public:
  consteval BareMessage(Refusal refusal, const char* message) : refusal_(refusal), message_(message) {
    detail::checkMessage<>(message);
  }

  void operator()() const {
    Basekit::Tracer::dumpError(message_);
    Notes::refusal(refusal_);
  }

 private:
  Refusal refusal_;
  const char* message_;
};

}  // namespace BDA
