#include "Reception.h"

#include <new>
#include <stdexcept>

namespace BDA {
namespace {

thread_local Reception* current = nullptr;

}  // namespace

Notes::Notes(Reception* reception) noexcept : before_(current) { current = reception; }
Notes::~Notes() { current = before_; }

void Notes::refusal(BulkDumpRefusal refusal) noexcept {
  if (current != nullptr && current->refusal == BulkDumpRefusal::none) current->refusal = refusal;
}

void Notes::thrown() noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    refusal(BulkDumpRefusal::outOfMemory);
  } catch (const std::length_error&) {
    refusal(BulkDumpRefusal::outOfMemory);
  } catch (...) {
    refusal(BulkDumpRefusal::serviceThrew);
  }
}

void Notes::handedOver(std::size_t contents) noexcept {
  if (current != nullptr) current->handedOver += std::uint32_t(contents);
}

}  // namespace BDA
