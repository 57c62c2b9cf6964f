// A stream of bytes, cut into messages.

#include <new>

#include "midi/StreamJoiner.h"
#include "surface/Call.h"

struct bda_joiner final : private Editor::StreamJoiner::Receiver {
  bda_joiner(bda_visit visitMessage, bda_drop visitDrop, void* callerContext)
      : visit(visitMessage), drop(visitDrop), context(callerContext), joiner(*this, Editor::kLongestMessage) {}

  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
    visit(context, ++number, offset, bytes.data(), bytes.size());
  }
  void dropped(std::uint64_t offset, std::uint64_t count, Editor::StreamJoiner::Reason reason) override {
    if (drop != nullptr) drop(context, offset, count, describe(reason));
  }

  const bda_visit visit;
  const bda_drop drop;
  void* const context;
  std::uint64_t number = 0;
  Editor::StreamJoiner joiner;
};

bda_result bda_joiner_new(bda_visit message, bda_drop drop, void* context, bda_joiner** joiner) {
  if (joiner == nullptr) return BDA_MISUSED;
  *joiner = nullptr;
  if (message == nullptr) return BDA_MISUSED;
  *joiner = new (std::nothrow) bda_joiner(message, drop, context);
  return *joiner == nullptr ? BDA_FAILED : BDA_OK;
}

bda_result bda_joiner_feed(bda_joiner* joiner, const uint8_t* bytes, size_t size) {
  if (joiner == nullptr || (bytes == nullptr && size > 0)) return BDA_MISUSED;
  std::string ignored;
  return Editor::call(ignored, [&] {
    joiner->joiner.feed({bytes, size});
    return BDA_OK;
  });
}

bda_result bda_joiner_finish(bda_joiner* joiner) {
  if (joiner == nullptr) return BDA_MISUSED;
  std::string ignored;
  return Editor::call(ignored, [&] {
    joiner->joiner.finish();
    return BDA_OK;
  });
}

void bda_joiner_close(bda_joiner* joiner) { delete joiner; }
