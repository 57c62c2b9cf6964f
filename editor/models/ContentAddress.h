#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "bda/platform/ContSrv/ContSrv.h"

// Which content or edit buffer an address of the instrument names, and the other way round.
namespace Editor {

// Content types beside those that the contents store fixes; no file dump carries them.
inline constexpr ContSrv::_ContType kContentPerformance = 101;  // numbers 0 to 255: bank << 7 | number
inline constexpr ContSrv::_ContType kContentMaster = 102;       // numbers 0 to 127
inline constexpr ContSrv::_ContType kContentRemote = 103;       // numbers 0 to 49

// What a content is stored under.
struct ContentId {
  ContSrv::_ContType type = ContSrv::ContType_None;
  std::uint32_t number = 0;

  friend bool operator==(const ContentId& a, const ContentId& b) { return a.type == b.type && a.number == b.number; }
  friend bool operator!=(const ContentId& a, const ContentId& b) { return !(a == b); }
  friend bool operator<(const ContentId& a, const ContentId& b) {
    return a.type != b.type ? a.type < b.type : a.number < b.number;
  }
};

// The middle and low bytes of an address whose high byte is known from the context.
struct MidLo {
  std::uint8_t mid = 0;
  std::uint8_t lo = 0;

  friend bool operator==(const MidLo& a, const MidLo& b) { return a.mid == b.mid && a.lo == b.lo; }
};

// ---- Voice banks, by the codes 0 to 15 of CMA::voiceBankSelTable --------------------------------------------------

inline constexpr unsigned kBankCount = 16;
inline constexpr unsigned kMixingBank = 15;
inline constexpr std::array<std::uint8_t, kBankCount> kVoicesPerBank{128, 128, 128, 128, 128, 128, 128, 128,
                                                                     128, 128, 128, 64,  32,  128, 1,   16};

constexpr bool isDrumBank(unsigned code) { return code == 11 || code == 12 || code == 14; }

std::optional<unsigned> bankOf(std::uint8_t bankSelectMsb, std::uint8_t bankSelectLsb);

// bank select MSB << 16 | LSB << 8 | voice. `voice` may lie outside the bank; a code above 15 gives a number that no
// content has.
std::uint32_t voiceContentNumber(unsigned bank, std::uint8_t voice);

// Mixing voice `voice` (0 to 15) of multi `multi` (0 to 127). Those of multi 0 are the voices of bank 15, and have the
// numbers that they have there.
std::uint32_t mixingVoiceNumber(std::uint32_t multi, std::uint32_t voice);

struct BankVoice {
  unsigned bank;
  std::uint8_t voice;
};
// The bank that a voice lies in; null for mixing voices of the multis 1 to 127 and for numbers that no voice has.
std::optional<BankVoice> bankVoiceOf(ContentId id);

bool isMixingVoice(ContentId id);
// A voice of a drum bank.
bool isDrumVoice(ContentId id);
// Whether a block of favourites has a flag for it: the voices of all banks but the mixing voices.
bool canBeFavourite(ContentId id);

// Two numbers stand for each voice of bank 15: this gives the one it is kept under, any other content unchanged.
ContentId canonical(ContentId id);
// Whether there can be such a content at all.
bool isContent(ContentId id);

// ---- Headers and footers (high bytes 0E and 0F) --------------------------------------------------------------------

// The live models, one set each.
enum class EditBuffer : std::uint8_t { normalVoice, drumVoice, partVoice, multi, performance, master, remote };

// Those that there is one of; of partVoice there are sixteen.
inline constexpr std::array kSingleEditBuffers{EditBuffer::normalVoice, EditBuffer::drumVoice, EditBuffer::multi,
                                               EditBuffer::performance, EditBuffer::master,    EditBuffer::remote};

// The edit buffer that a middle byte names.
std::optional<EditBuffer> editBufferOf(std::uint8_t mid);
// The header of an edit buffer; `part` (0 to 15) counts for partVoice only.
MidLo headerOf(EditBuffer buffer, std::uint8_t part = 0);

// 1 to 17; 0 when there is no such header.
unsigned headerTypeOf(MidLo header);

// The content that a header or footer names; null when there is no such header or it names an edit buffer.
std::optional<ContentId> contentOfHeader(MidLo header);
// Null for contents that only file dumps carry: multis, mixing voices of the multis 1 to 127, the single one.
std::optional<MidLo> headerOf(ContentId id);

// ---- File dumps (high byte 0C) -------------------------------------------------------------------------------------

std::optional<ContentId> contentOfFileDump(MidLo address);
// Null for contents that no file dump carries: performances, masters, remote settings.
std::optional<MidLo> fileDumpOf(ContentId id);

}  // namespace Editor
