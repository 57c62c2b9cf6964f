#include "input/InputFile.h"

#include "ExitCode.h"
#include "output/LossReport.h"

namespace Editor {

InputFile::InputFile(const std::string& path, Console& console) : name_(path) {
  LossReport losses(console);
  const std::vector<std::string> problems = InputStream({path}).read(
      [this](const InputMessage& message) {
        messages_.push_back({message.offset, bytes_.size(), bytes_.size() + message.bytes.size()});
        bytes_.insert(bytes_.end(), message.bytes.begin(), message.bytes.end());
      },
      [&](const InputLoss& loss) {
        isReadInFull_ = isReadInFull_ && loss.kind != InputLoss::Kind::brokenFile;
        losses.add(loss);
      });
  losses.finish();
  isWhole_ = losses.areAllWhole();
  if (!problems.empty()) throw Failure(kUnusableInput, problems.front());
}

InputMessage InputFile::message(std::uint64_t number) const {
  const Place& place = messages_[number - 1];
  return {number, name_, place.offset, {bytes_.data() + place.begin, place.end - place.begin}};
}

}  // namespace Editor
