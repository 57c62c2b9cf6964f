#include "input/InputStream.h"

#include <gtest/gtest.h>

#include <fstream>

#include "editor/contents/TemporaryLibrary.h"
#include "output/LossReport.h"
#include "support/Allocations.h"

using Editor::InputLoss;
using Editor::InputMessage;
using Editor::InputStream;

namespace {

constexpr int kManyBytes = 100'000;

class Input : public testing::Test {
 protected:
  // A request, and so many times the beginning of a message.
  std::string noise(int count) const {
    const std::string file = directory_.path() / "noise.syx";
    std::ofstream(file, std::ios::binary)
        << "\xF0\x7D\x20\x7F\x14" << std::string(3, '\0') << "\xF7" << std::string(std::size_t(count), '\xF0');
    return file;
  }

 private:
  const Editor::TemporaryDirectory directory_;
};

}  // namespace

// Each byte of noise can be a loss of its own.
TEST_F(Input, aLossCostsNothingButTheCall) {
  int losses = 0;
  InputStream input({noise(kManyBytes)});
  const long count = Testing::allocations.of(
      [&] { input.read([](const InputMessage&) {}, [&](const InputLoss& loss) { losses += loss.dropped == 1; }); });
  EXPECT_EQ(losses, kManyBytes);
  EXPECT_LT(count, 1000);
}

TEST_F(Input, aLossThatIsNotToldAnyMoreIsOnlyCounted) {
  const std::string file = noise(1);
  Editor::Console console;
  console.setLoudness(Editor::Console::Loudness::quiet);
  Editor::LossReport report(console);
  testing::internal::CaptureStderr();
  const long count = Testing::allocations.of([&] {
    for (int i = 0; i < kManyBytes; ++i)
      report.add({file, std::uint64_t(i), 1, "message cut short", InputLoss::Kind::cutShort});
  });
  report.finish();
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_LT(count, 1000);
  EXPECT_NE(told.find("and 99980 more: " + file + ": message cut short\n"), std::string::npos) << told;
}
