// BAD=0: the sound twin
// BAD=1: two rows write this data byte
// BAD=2: a row lies outside the block
// BAD=3: this byte is neither claimed nor a declared gap
// BAD=4: this byte is declared a gap but a row claims it
// BAD=5: two rows write the same parameter
// BAD=6: a_pair_must_be_two_adjacent_bytes
// BAD=7: two rows write this data byte
// BAD=8: a_pair_must_be_two_adjacent_bytes
// BAD=9: this byte is neither claimed nor a declared gap
// BAD=10: two rows write this data byte
// BAD=11: this byte is declared a gap but a row claims it
// BAD=12: two rows write the same parameter
// BAD=13: this shared byte is written by no other row
// BAD=14: a_pair_must_be_two_adjacent_bytes
// BAD=15: two rows write the same parameter
// BAD=16: this byte is neither claimed nor a declared gap
// BAD=17: this byte is neither claimed nor a declared gap
// BAD=18: this byte is declared a gap but a row claims it
// BAD=19: two rows write this data byte
#include "Layout.h"

using namespace BDA;

#if BAD == 0
constexpr Layout kLayout{5, std::array{setByteRun(0, 2, 0, 0), setNameParam(4, 1, 0)}, std::array{gap(3)}};
#elif BAD == 1   // byte 1
constexpr Layout kLayout{4, std::array{setByteRun(0, 1, 0, 0), setByteParam(1, 0, 9)}, std::array{gap(2, 3)}};
#elif BAD == 2   // row 0 ends at byte 4
constexpr Layout kLayout{4, std::array{setByteRun(0, 4, 0, 0)}, std::array<Gap, 0>{}};
#elif BAD == 3   // byte 3 forgotten
constexpr Layout kLayout{4, std::array{setByteRun(0, 2, 0, 0)}, std::array<Gap, 0>{}};
#elif BAD == 4   // byte 2
constexpr Layout kLayout{4, std::array{setByteRun(0, 2, 0, 0)}, std::array{gap(2, 3)}};
#elif BAD == 5   // index 1
constexpr Layout kLayout{4, std::array{setByteRun(0, 1, 0, 0), setByteParam(2, 0, 1)}, std::array{gap(3)}};
#elif BAD == 6   // the bytes of the pair do not touch
constexpr Layout kLayout{4, std::array{setPairParam(0, 2, 0, 0)}, std::array{gap(1), gap(3)}};
#elif BAD == 7   // bit 0x02
constexpr Layout kLayout{1, std::array{setBitParam(0, 0x03, 0, 0), setBitParam(0, 0x02, 0, 1)},
                         std::array{spareBits(0, 0xFC)}};
#elif BAD == 8   // low byte first
constexpr Layout kLayout{2, std::array{setSplitByteParam(1, 0, 0, 0)}, std::array<Gap, 0>{}};
#elif BAD == 9   // bit 0x04
constexpr Layout kLayout{1, std::array{setBitParam(0, 0x03, 0, 0)}, std::array{spareBits(0, 0xF8)}};
#elif BAD == 10  // a nibble of the word and a whole byte
constexpr Layout kLayout{4, std::array{setNibbleWord(0, 3, 0, 0), setByteParam(3, 0, 1)},
                         std::array{spareBits(0, 2, 0xF0)}};
#elif BAD == 11  // a gap beyond the end
constexpr Layout kLayout{2, std::array{setByteRun(0, 1, 0, 0)}, std::array{gap(2)}};
#elif BAD == 12  // the name twice
constexpr Layout kLayout{4, std::array{setNameParam(0, 2, 0), setNameParam(2, 2, 0)}, std::array<Gap, 0>{}};
#elif BAD == 13  // byte 1
constexpr Layout kLayout{2, std::array{setByteParam(0, 0, 0), setSharedByteParam(1, 0, 1)}, std::array<Gap, 0>{}};
#elif BAD == 14  // a word of three bytes
constexpr Layout kLayout{3, std::array{setNibbleWord(0, 2, 0, 0)}, std::array{spareBits(0, 2, 0xF0)}};
#elif BAD == 15  // both nibbles into one parameter
constexpr Layout kLayout{1, std::array{setNibbleParams(0, 0, 5, 0, 5)}, std::array<Gap, 0>{}};
#elif BAD == 16  // of the high byte bit 0 alone travels
constexpr Layout kLayout{2, std::array{setSplitByteParam(0, 1, 0, 0)}, std::array<Gap, 0>{}};
#elif BAD == 17  // bit 0x80
constexpr Layout kLayout{1, std::array{setBitParam(0, 0x7F, 0, 0)}, std::array<Gap, 0>{}};
#elif BAD == 18  // bit 0x80 of the low byte is received
constexpr Layout kLayout{2, std::array{setPairParam(0, 1, 0, 0)}, std::array{spareBits(1, 0x80)}};
#elif BAD == 19  // the nibble is dumped over the switch
constexpr Layout kLayout{4, std::array{setBitParam(3, 0x40, 0, 0), setNibbleWord(0, 3, 0, 1)},
                         std::array{spareBits(0, 2, 0xF0), spareBits(3, 0xB0)}};
#endif

void use(const Targets<kLayout>& targets, std::uint8_t* data) { convert<kLayout>(targets, data, 1); }
