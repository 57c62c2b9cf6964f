#include "surface/Call.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "contents/Library.h"
#include "messages/MessageReader.h"
#include "targets/TargetJson.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

bda_result resultOf(const LibraryError& error) {
  switch (error.kind()) {
    case LibraryError::Kind::CannotOpen:
    case LibraryError::Kind::NotALibrary:
    case LibraryError::Kind::NewerVersion:
      return BDA_UNUSABLE;
    case LibraryError::Kind::DamagedPlace:
      return BDA_REFUSED;
    case LibraryError::Kind::Locked:
    case LibraryError::Kind::Damaged:
    case LibraryError::Kind::Failed:
      break;
  }
  return BDA_FAILED;
}

void say(std::string& error, const char* text) noexcept {
  try {
    error = text;
  } catch (const std::bad_alloc&) {
    error.clear();
  }
}

}  // namespace

bda_result resultOfException(std::string& error) noexcept {
  try {
    throw;
  } catch (const CallFailure& failure) {
    say(error, failure.text.c_str());
    return failure.result;
  } catch (const TargetError& refused) {
    say(error, refused.what());
    return refused.kind() == TargetError::Kind::noTarget ? BDA_UNUSABLE : BDA_REFUSED;
  } catch (const TargetJsonError& other) {
    say(error, other.what());
    return BDA_UNUSABLE;
  } catch (const std::invalid_argument& wrong) {
    say(error, wrong.what());
    return BDA_UNUSABLE;
  } catch (const LibraryError& failed) {
    say(error, failed.what());
    return resultOf(failed);
  } catch (const ReadError& unreadable) {
    say(error, unreadable.what());
    return BDA_UNUSABLE;
  } catch (const std::bad_alloc&) {
    say(error, "there is no memory left");
  } catch (const std::exception& other) {
    say(error, other.what());
  } catch (...) {
    say(error, "it failed for no reason that is known");
  }
  return BDA_FAILED;
}

void require(const void* pointer, const char* what) {
  if (pointer == nullptr) throw CallFailure{BDA_MISUSED, std::string(what) + " is NULL"};
}

std::string_view textOf(const char* text, const char* what) {
  require(text, what);
  // To print it says whether it is UTF-8.
  try {
    (void)nlohmann::json(text).dump();
  } catch (const nlohmann::json::type_error&) {
    throw CallFailure{BDA_UNUSABLE, std::string(what) + " is not UTF-8"};
  }
  return text;
}

Copy copyOf(std::string_view bytes) {
  // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): C gives it back
  Copy copy(static_cast<char*>(std::malloc(bytes.size() + 1)), &std::free);
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy.get(), bytes.data(), bytes.size());
  copy.get()[bytes.size()] = '\0';
  return copy;
}

}  // namespace Editor
