// BAD=0: the sound twin
// BAD=1: message_has_more_conversions_than_arguments
// BAD=2: message_has_fewer_conversions_than_arguments
// BAD=3: message_conversion_does_not_fit_its_argument
// BAD=4: message_does_not_end_with_a_newline
// BAD=5: message_has_an_unknown_conversion
// BAD=6: message_conversion_does_not_fit_its_argument
// BAD=7: message_conversion_does_not_fit_its_argument
// BAD=8: message_conversion_does_not_fit_its_argument
// BAD=9: a message takes int (%d), unsigned (%x) and const char* (%s)
// BAD=10: message_has_an_unknown_conversion
// BAD=11: message_has_more_conversions_than_arguments
// BAD=12: message_does_not_end_with_a_newline
#include "Failure.h"

using namespace BDA;

constexpr Site kSite{"f.cpp", 1, "f"};

#if BAD == 0
constexpr Failure<int, const char*, unsigned> kFailure{kSite, Refusal::none, "%d %s %02x 100%%\n"};
#elif BAD == 1
constexpr Failure<> kFailure{kSite, Refusal::none, "length = %d\n"};
#elif BAD == 2
constexpr Failure<int, int> kFailure{kSite, Refusal::none, "length = %d\n"};
#elif BAD == 3
constexpr Failure<int> kFailure{kSite, Refusal::none, "name = %s\n"};
#elif BAD == 4
constexpr Failure<> kFailure{kSite, Refusal::none, "no newline"};
#elif BAD == 5
constexpr Failure<int> kFailure{kSite, Refusal::none, "%f\n"};
#elif BAD == 6
constexpr Failure<int> kFailure{kSite, Refusal::none, "byte = %02x\n"};
#elif BAD == 7
constexpr Failure<unsigned> kFailure{kSite, Refusal::none, "length = %d\n"};
#elif BAD == 8
constexpr Failure<const char*> kFailure{kSite, Refusal::none, "length = %d\n"};
#elif BAD == 9  // wider than the conversion
constexpr Failure<unsigned long> kFailure{kSite, Refusal::none, "length = %d\n"};
#elif BAD == 10
constexpr Failure<unsigned> kFailure{kSite, Refusal::none, "byte = %02lx\n"};
#elif BAD == 11
constexpr BareMessage kFailure{Refusal::none, "length = %d\n"};
#elif BAD == 12
constexpr BareMessage kFailure{Refusal::none, "no newline"};
#endif

const auto& use = kFailure;
