#include "Reception.h"

#include <new>
#include <stdexcept>

namespace BDA {

constinit thread_local Reception* Notes::current_ = nullptr;

void Notes::refusal(BulkDumpRefusal refusal) noexcept {
  if (current_ != nullptr && current_->refusal == BulkDumpRefusal::none) current_->refusal = refusal;
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
  if (current_ != nullptr) current_->handedOver += std::uint32_t(contents);
}

}  // namespace BDA
