#pragma once

// Contents of a library for tests, put there directly or as file dumps.

#include <string>

#include "contents/Library.h"
#include "editor/messages/BulkMessages.h"

// A file dump of bytes below 80, as an instrument would send it.
inline Bytes fileDump(Editor::BulkAddress address, const std::string& name, const Bytes& bytes) {
  Bytes field;
  const auto append = [&](const Bytes& plain) {
    Bytes packed;
    for (std::size_t i = 0; i < plain.size(); ++i) {
      if (i % 7 == 0) packed.push_back(0);
      packed.push_back(plain[i]);
    }
    field.push_back(std::uint8_t(packed.size() >> 7));
    field.push_back(std::uint8_t(packed.size() & 0x7F));
    field.insert(field.end(), packed.begin(), packed.end());
  };
  append({name.begin(), name.end()});
  append(bytes);
  return dump(address, field);
}

// Contents by type and number.
inline constexpr Editor::ContentId kPresetVoice1{4, 0x3F0000};
inline constexpr Editor::ContentId kUserVoice6{4, 0x3F0805};
inline constexpr Editor::ContentId kMulti1{1, 0};
inline constexpr Editor::ContentId kMulti2{1, 1};
