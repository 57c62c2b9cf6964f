#include "exchange/ScreenLines.h"

#include <fmt/format.h>

#include <algorithm>

#include "bda/platform/CMA/DeviceNumber.h"
#include "exchange/Handover.h"

namespace Editor {

std::vector<std::string> screenLines(Library& library, const EditorJobTools& tools) {
  const Library::Transaction oneState(library, Library::Transaction::Access::Read);
  const std::vector<ContentId> contents = library.contents();
  const auto count = [&](auto belongs) { return std::count_if(contents.begin(), contents.end(), belongs); };
  const auto countType = [&](ContSrv::_ContType type) { return count([&](ContentId id) { return id.type == type; }); };
  const auto countBanks = [&](auto belongs) {
    return count([&](ContentId id) {
      const std::optional<BankVoice> voice = bankVoiceOf(id);
      return voice && belongs(voice->bank);
    });
  };
  const auto isUserBank = [](unsigned bank) { return bank >= 8 && bank <= 10; };
  const std::vector<std::uint16_t>& utility = tools.liveSystem().system->utility.values();
  const auto line = [](const char* left, auto leftCount, const char* right, auto rightCount) {
    return fmt::format("{:<8}{:>4}  {:<8}{:>4}", left, leftCount, right, rightCount);
  };
  return {"Bulk Dump Assistant",
          library.file().filename().string(),
          fmt::format("Device {}, receive {}", deviceNumberWords(tools),
                      utility[SystemModel::kReceiveBulk] != 0 ? "on" : "off"),
          line("Preset",
               countBanks([&](unsigned bank) { return !isUserBank(bank) && !isDrumBank(bank) && bank != kMixingBank; }),
               "User", countBanks(isUserBank)),
          line("Drum", countBanks(isDrumBank), "Mixing", count(isMixingVoice)),
          line("Multi", countType(ContSrv::ContType_Multi), "Perform.", countType(kContentPerformance)),
          line("Master", countType(kContentMaster), "Remote", countType(kContentRemote)),
          fmt::format("{} contents in all", contents.size())};
}

}  // namespace Editor
