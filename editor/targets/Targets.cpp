#include "targets/Targets.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "AddressRows.h"
#include "messages/Text.h"

namespace Editor {

namespace {

bool isByte(const std::string& word) {
  return word.size() == 2 &&
         std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

BulkAddress parse(const std::string& text) {
  try {
    return parseAddress(text);
  } catch (const std::invalid_argument& error) {
    throw TargetError(TargetError::Kind::noTarget, escape(error.what()));
  }
}

}  // namespace

void refuse(const Target& target, const std::string& why) {
  throw TargetError(TargetError::Kind::refused, fmt::format("{}: {}", target.name, escape(why)));
}

std::vector<std::string> joinAddresses(const std::vector<std::string>& words) {
  std::vector<std::string> joined;
  for (std::size_t i = 0; i < words.size(); ++i) {
    joined.push_back(words[i]);
    if (i + 2 >= words.size() || !isByte(words[i]) || !isByte(words[i + 1]) || !isByte(words[i + 2])) continue;
    joined.back() += words[i + 1] + words[i + 2];
    i += 2;
  }
  return joined;
}

std::vector<BulkAddress> parseAddresses(const std::vector<std::string>& words) {
  std::vector<BulkAddress> addresses;
  for (const std::string& word : joinAddresses(words)) {
    if (word == "system") {
      for (const BulkAddress address : systemAddresses()) addresses.push_back(address);
    } else {
      addresses.push_back(parse(word));
    }
  }
  return addresses;
}

Target parseOneTarget(const std::vector<std::string>& words) {
  const std::vector<std::string> joined = joinAddresses(words);
  if (joined.size() != 1) throw TargetError(TargetError::Kind::noTarget, "expected one target");
  return parseTarget(joined.front());
}

Target parseTarget(const std::string& text) {
  Target target;
  target.name = text;
  if (text == "system") return target;
  if (text == "additional") {
    target.kind = Target::Kind::additional;
    return target;
  }
  const BulkAddress address = parse(text);
  target.name = nameOrBytes(address);
  const std::size_t list = BDA::listOf(address.hi);
  if (list == std::size_t(BDA::List::header) && findBlock(address)) {
    target.header = address;
    if (const auto buffer = editBufferOf(address.mid)) {
      target.kind = Target::Kind::editBuffer;
      target.buffer = *buffer;
      target.part = *buffer == EditBuffer::partVoice ? address.lo : std::uint8_t(0);
      return target;
    }
    if (const auto content = contentOfHeader({address.mid, address.lo})) {
      target.kind = Target::Kind::content;
      target.content = *content;
      return target;
    }
  }
  if (list == std::size_t(BDA::List::fileDump)) {
    if (const auto content = contentOfFileDump({address.mid, address.lo}); content && address.hi == BDA::kFileDumpHi) {
      target.kind = Target::Kind::content;
      target.content = *content;
      if (const auto header = headerOf(*content)) target.header = BulkAddress{BDA::kHeaderHi, header->mid, header->lo};
      return target;
    }
  }
  throw TargetError(
      TargetError::Kind::noTarget,
      fmt::format("{} ({}) is no target: expected system, additional, or the address or name of a header or "
                  "a file dump",
                  formatAddress(address), describeAddress(address)));
}

Target parseContent(const std::string& text) {
  Target target = parseTarget(text);
  if (target.kind != Target::Kind::content)
    throw TargetError(TargetError::Kind::noTarget,
                      fmt::format("{} is no stored content: expected the address or name of one, such as "
                                  "voice:user1:6 or file:multi:1",
                                  target.name));
  return target;
}

}  // namespace Editor
