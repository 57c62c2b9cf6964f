#include "input/InputFile.h"

#include "ExitCode.h"
#include "output/LossReport.h"

namespace Editor {

InputFile::InputFile(const std::string& path) : name_(path) {
  const std::vector<std::string> problems = InputStream({path}).read(
      [this](const InputMessage& message) {
        messages_.push_back({message.offset, bytes_.size(), bytes_.size() + message.bytes.size()});
        bytes_.insert(bytes_.end(), message.bytes.begin(), message.bytes.end());
      },
      [this](const InputLoss& loss) {
        losses_.push_back({loss.offset, loss.dropped, std::string(loss.reason), loss.kind});
      });
  if (!problems.empty()) throw Failure(kUnusableInput, problems.front());
}

bool InputFile::reportLosses(Console& console) const {
  LossReport report(console);
  for (const Loss& loss : losses_) report.add({name_, loss.offset, loss.dropped, loss.reason, loss.kind});
  report.finish();
  return report.areAllWhole();
}

InputMessage InputFile::message(std::uint64_t number) const {
  const Place& place = messages_[number - 1];
  return {number, name_, place.offset, {bytes_.data() + place.begin, place.end - place.begin}};
}

}  // namespace Editor
