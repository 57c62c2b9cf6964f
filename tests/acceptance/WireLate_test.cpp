// An instrument that takes its time: what it sends when nobody waits for it any longer.

#include <algorithm>

#include "Wire.h"
#include "messages/Messages.h"
#include "wire/BytePort.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr Editor::BulkAddress kLate{0x0E, 0x0A, 0x05};   // voice:user1:6, sent with the next one
constexpr Editor::BulkAddress kOther{0x0E, 0x0A, 0x06};  // voice:user1:7

class WireLate : public Wire {
 protected:
  // Asks an instrument in this process's hands for both, and for one behind them: the code, and what is told.
  std::pair<int, std::string> fetchThem(const std::string& options) {
    Editor::BytePort port("pty:", Editor::BytePort::Direction::both);
    const std::string program = "env -C '" + directory.string() + "' " BDA_PROGRAM;
    Serving fetching(program + " fetch voice:user1:6..8 --timeout 0.2 --pace none --library new.db " + options +
                     " --from " + port.name() + " 2>&1");
    std::vector<std::uint8_t> request;
    while (!isDone_) {
      for (const std::uint8_t byte : port.wait(port.now() + std::chrono::seconds(1), false)) {
        request.push_back(byte);
        if (byte != 0xF7) continue;
        for (const Bytes& message : answerTo(*Editor::readMessage(request).address)) {
          std::span<const std::uint8_t> rest = message;
          while (!rest.empty()) rest = rest.subspan(port.send(rest));
        }
        request.clear();
      }
    }
    const int code = fetching.wait();
    return {code, fetching.told};
  }

 private:
  std::vector<Bytes> answerTo(Editor::BulkAddress asked) {
    if (asked == Editor::BulkAddress{0x00, 0x00, 0x00}) {  // is anybody there?
      isDone_ = wasLast_;
      return {systemDump(1)};
    }
    wasLast_ = asked != kLate && asked != kOther;
    if (asked != kOther) return {};
    return {unit({kLate.hi, kLate.mid, kLate.lo}, BDA::List::normalVoice),
            unit({kOther.hi, kOther.mid, kOther.lo}, BDA::List::normalVoice)};
  }
  bool wasLast_ = false;
  bool isDone_ = false;
};

}  // namespace

TEST_F(WireLate, whatComesTooLateIsToldAndAskedForAgain) {
  const auto [code, told] = fetchThem("--requests again.syx");
  EXPECT_EQ(code, 3);
  EXPECT_THAT(told, AllOf(HasSubstr("empty: voice:user1:6 "), HasSubstr("stored: voice:user1:7\n"),
                          HasSubstr("too late: voice:user1:6: "), HasSubstr("--timeout SECONDS waits longer\n")));
  const std::vector<std::uint8_t> again = Editor::requestMessage(kLate);
  EXPECT_EQ(read("again.syx"), std::string(again.begin(), again.end()));
}

TEST_F(WireLate, withAtomicNothingIsStoredThen) {
  const auto [code, told] = fetchThem("--atomic");
  EXPECT_EQ(code, 3);
  EXPECT_THAT(told, AllOf(HasSubstr("lost: voice:user1:7: not stored"), Not(HasSubstr("stored: voice:user1:7\n"))));
  EXPECT_THAT(told, AllOf(HasSubstr("lost: voice:user1:6: silent"), Not(HasSubstr("empty: voice:user1:6"))))
      << "it has come, too late";
  EXPECT_FALSE(exists("new.db"));
}
