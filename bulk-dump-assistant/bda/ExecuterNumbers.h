#pragma once

// The executers by number: 1 to 77, the order in which they are made. The address map names them by it.

#include <array>
#include <cstddef>
#include <cstdint>

namespace BDA {

inline constexpr std::size_t kExecuterCount = 77;

// Data bytes of each executer's block at [number]; 0: none, or no fixed length.
// clang-format off
inline constexpr std::array<std::uint16_t, kExecuterCount + 1> kExecuterDataLength{
    0,                                         // there is no number 0
    0, 0,                                      // 1-2 header, footer
    80, 38, 40, 36, 36, 68, 60, 86,            // 3-10 normal voice: common, reverb, chorus, insertion A, B, L, controls, arp
    88, 74,                                    // 11-12 element: oscillator, filter
    72, 38, 40, 36, 36, 68, 24, 86,            // 13-20 drum voice, as 3-10
    46,                                        // 21 drum key
    80, 38, 40, 36, 36,                        // 22-26 multi: common, reverb, chorus, insertion A, B
    20, 38, 14, 62, 72, 8,                     // 27-32 master EQ, master effect, arpeggio, part, part arpeggio, AD part
    81, 38, 40, 36, 36,                        // 33-37 performance, as 22-26
    20, 38, 13, 63, 72, 8,                     // 38-43 as 27-32; the arpeggio block is a byte shorter here
    32, 16,                                    // 44-45 master: common, zone
    27, 26,                                    // 46-47 remote: common, controller
    68, 8, 36, 36, 20, 38, 10, 22, 5,          // 48-56 system: common, AD, its A, B, EQ, effect, setup, seq, remote
    448, 448, 2560, 0, 10240,                  // 57-61 wave, arpeggio and multi names, file dump, screen
    128, 128, 128, 128, 128, 128, 128, 128,    // 62-69 favourites: preset banks
    128, 128, 128, 128,                        // 70-73 user banks, and one that no block uses
    128, 64, 32, 1,                            // 74-77 GM, preset drums, user drums, GM drum
};
// clang-format on

}  // namespace BDA
