#pragma once

// Calls with files of messages, and with streams of bytes.

#include <utility>

#include "surface.h"

namespace Surface {

inline constexpr Texts kConverting{"{}",
                                   R"({"format": "mid", "pause": 100})",
                                   R"({"format": "txt"})",
                                   R"({"place": "voice:user2:1", "device": 5})",
                                   R"({"select": ["voice:user1:6", "0E 0B 05"]})",
                                   R"({"place": "voice:edit"})",
                                   R"({"place": "voice:user2:1..5", "format": "mid"})"};
inline constexpr Texts kSalvaging{"{}", R"({"merge": true})", R"({"fix-checksums": true})", R"({"prefer": "a.syx"})"};

inline bda_result filesNew(Caller& caller) {
  bda_files*& files = caller.files[caller.slot()];
  bda_files_close(std::exchange(files, nullptr));
  const bda_result result = bda_files_new(&files);
  judge(result, bda_files_error(files));
  return result;
}

inline bda_result filesAdd(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const char* const name = caller.text(kNames);
  const std::span<const std::uint8_t> bytes = caller.bytes();
  const bda_result result = bda_files_add(files, name, bytes.data(), bytes.size());
  judge(result, bda_files_error(files));
  return result;
}

inline bda_result filesEach(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  Visited visited;
  const bda_result result = bda_files_each(files, caller.wants() ? visit : nullptr, &visited);
  judge(result, bda_files_error(files));
  return result;
}

template <bda_result (*kFunction)(bda_files*, char**)>
bda_result filesRead(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  Answer<char> answer(caller.wants());
  const bda_result result = kFunction(files, answer.out());
  return json(caller, answer, result, bda_files_error(files));
}

inline bda_result filesNameParameters(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const bda_result result = bda_files_name_parameters(files, caller.text(kNameFiles));
  judge(result, bda_files_error(files));
  return result;
}

inline bda_result filesExplain(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const std::size_t file = caller.input.byte() % 4;
  const std::uint8_t where = caller.input.byte();
  const std::uint64_t offset = where == 255 ? UINT64_MAX : where * 8U;
  const std::uint8_t most = caller.input.byte();
  Answer<char> answer(caller.wants());
  const bda_result result = bda_files_explain(files, file, offset, most == 255 ? UINT64_MAX : most, answer.out());
  return json(caller, answer, result, bda_files_error(files));
}

inline bda_result filesSalvage(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const char* const options = caller.text(kSalvaging);
  Answer<std::uint8_t> whole(caller.wants());
  Answer<std::uint8_t> requests(caller.wants());
  Answer<char> answer(caller.wants());
  std::size_t wholeSize = 0;
  std::size_t requestsSize = 0;
  const bda_result result = bda_files_salvage(files, options, whole.out(), caller.wants() ? &wholeSize : nullptr,
                                              requests.out(), &requestsSize, answer.out());
  whole.check(result);
  requests.check(result);
  if (whole.isThere()) caller.lastBytes.assign(whole.get(), whole.get() + wholeSize);
  return json(caller, answer, result, bda_files_error(files));
}

inline bda_result filesConvert(Caller& caller) {
  bda_files* const files = caller.oneFiles();
  const char* const options = caller.text(kConverting);
  Answer<std::uint8_t> bytes(caller.wants());
  Answer<char> answer(caller.wants());
  std::size_t size = 0;
  const bda_result result =
      bda_files_convert(files, options, bytes.out(), caller.wants() ? &size : nullptr, answer.out());
  bytes.check(result);
  if (bytes.isThere()) caller.lastBytes.assign(bytes.get(), bytes.get() + size);
  return json(caller, answer, result, bda_files_error(files));
}

inline bda_result filesClose(Caller& caller) {
  bda_files_close(std::exchange(caller.files[caller.slot()], nullptr));
  return BDA_OK;
}

// ---- Streams of bytes

// One, and what was heard of it.
inline bda_result joinerNew(Caller& caller) {
  Joiner& joiner = caller.joiners[caller.slot()];
  bda_joiner_close(std::exchange(joiner.handle, nullptr));
  joiner.fed = 0;
  joiner.heard = {};
  return bda_joiner_new(caller.wants() ? visit : nullptr, visitLoss, &joiner.heard, &joiner.handle);
}

inline bda_result joinerFeed(Caller& caller) {
  Joiner& joiner = caller.joiners[caller.slot()];
  const std::span<const std::uint8_t> bytes = caller.bytes();
  const bda_result result = bda_joiner_feed(joiner.handle, bytes.data(), bytes.size());
  if (result == BDA_OK) joiner.fed += bytes.size();
  require(joiner.heard.bytes <= joiner.fed, "more bytes than there were");
  return result;
}

inline bda_result joinerFinish(Caller& caller) {
  Joiner& joiner = caller.joiners[caller.slot()];
  const bda_result result = bda_joiner_finish(joiner.handle);
  require(result != BDA_OK || joiner.heard.bytes == joiner.fed, "a byte that is of no message, and not lost");
  return result;
}

inline bda_result joinerClose(Caller& caller) {
  bda_joiner_close(std::exchange(caller.joiners[caller.slot()].handle, nullptr));
  return BDA_OK;
}

}  // namespace Surface
