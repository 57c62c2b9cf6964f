#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bda/platform/ContSrv/ContSrv.h"
#include "support/Bytes.h"
#include "support/Calls.h"

namespace Testing {

// A store in memory. Every call is recorded under the operation's own name and answers ContRes_Success, or what is
// scripted; a failing one changes nothing.
class FakeWork : public ContSrv::Work {
 public:
  explicit FakeWork(Calls& calls);
  ~FakeWork() override;

  unsigned char getLoadSaveFlag() override;
  ContSrv::_ContResult removeMixingVoice(ContSrv::_ContType type, unsigned long number, unsigned long voice) override;
  ContSrv::_ContResult getMixingVoiceName(ContSrv::_ContType type, unsigned long number, unsigned long voice,
                                          std::string& name) override;
  std::uint32_t getMixingVoiceNumber(ContSrv::_ContType type, unsigned long number, unsigned long voice) override;
  ContSrv::_ContResult getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) override;
  ContSrv::_ContResult requestOverWriteConfig(ContSrv::_ContType type) override;
  ContSrv::_ContResult removeContents(ContSrv::_ContType type, const std::vector<std::uint32_t>& numbers,
                                      bool sync) override;
  ContSrv::_ContResult removeContent(ContSrv::_ContType type, std::uint32_t number) override;
  ContSrv::_ContResult getDataFilePath(ContSrv::_ContType type, std::uint32_t number, std::string& path) override;
  ContSrv::_ContResult getContentName(ContSrv::_ContType type, std::uint32_t number, std::string& name) override;
  ContSrv::_ContResult setContentName(ContSrv::_ContType type, std::uint32_t number, const std::string& name,
                                      bool sync) override;
  ContSrv::DataFile* openDataFile(const std::string& path, ContSrv::_OpenMode mode) override;
  ContSrv::_ContResult closeDataFile(ContSrv::DataFile* file, int mode) override;
  ContSrv::_ContResult sync() override;
  ContSrv::_ContResult setContentFavoriteFlag(ContSrv::_ContType type, std::uint32_t number,
                                              ContSrv::_ContFavoriteFlag flag, bool last) override;
  ContSrv::_ContResult getContentInformation(ContSrv::_ContType type, std::uint32_t number,
                                             ContSrv::ContentInformation& information) override;

  using Place = std::pair<ContSrv::_ContType, std::uint32_t>;
  struct Content {
    std::string name;
    Bytes bytes;
  };
  std::map<Place, Content> contents;
  std::map<Place, std::uint8_t> favourites;
  std::int64_t mixingVoices = 0;
  std::int64_t maximumOfMixingVoices = 2048;

 private:
  struct File;
  Calls& calls_;
  std::unique_ptr<File> file_;  // the one that is open
};

}  // namespace Testing
