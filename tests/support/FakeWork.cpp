#include "support/FakeWork.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/FakeCalls.h"

namespace Testing {
namespace {

constexpr long kStoreFailed = ContSrv::ContRes_Failure;

}  // namespace

struct FakeWork::File : ContSrv::DataFile, ContSrv::Data {
  File(Calls& recordedCalls, FakeWork& owner, Place openedPlace, bool forWriting)
      : calls(recordedCalls), work(owner), place(openedPlace), writes(forWriting) {
    if (!writes) bytes = work.contents[place].bytes;
  }

  ContSrv::Data* openData() override {
    return calls.use("openData", 1, 0, [] { return call("openData"); }) != 0 ? this : nullptr;
  }
  ContSrv::_ContResult closeData(ContSrv::Data* data) override {
    EXPECT_EQ(data, this);
    return close("closeData");
  }
  ContSrv::_ContResult closeDataWithoutSync(ContSrv::Data* data) override {
    EXPECT_EQ(data, this);
    return close("closeDataWithoutSync");
  }
  std::int64_t write(const std::uint8_t* from, std::int64_t size) override {
    const long written = calls.use("write", long(size), 0, [&] { return call("write", size); });
    bytes.insert(bytes.end(), from, from + std::clamp(written, 0L, long(size)));
    return written;
  }
  std::int64_t read(std::uint8_t* to, std::int64_t size) override {
    const std::int64_t left = std::min(size, std::int64_t(bytes.size() - position));
    const long count = calls.use("read", long(left), 0, [&] { return call("read", size); });
    const std::size_t copied = std::size_t(std::max(count, 0L));
    std::copy_n(bytes.begin() + std::ptrdiff_t(position), copied, to);
    position += copied;
    return count;
  }
  std::int64_t getSize() override {
    return calls.use("getSize", long(bytes.size()), 0, [] { return call("getSize"); });
  }

  ContSrv::_ContResult close(std::string_view name) {
    const long result = calls.use(name, ContSrv::ContRes_Success, kStoreFailed, [&] { return call(name); });
    if (result == ContSrv::ContRes_Success && writes) work.contents[place].bytes = bytes;
    return ContSrv::_ContResult(result);
  }

  Calls& calls;
  FakeWork& work;
  Place place;
  bool writes;
  Bytes bytes;
  std::size_t position = 0;
};

FakeWork::FakeWork(Calls& calls) : calls_(calls) {}
FakeWork::~FakeWork() { EXPECT_EQ(file_, nullptr) << "a file that nobody closed"; }

unsigned char FakeWork::getLoadSaveFlag() {
  return static_cast<unsigned char>(calls_.use("getLoadSaveFlag", 0, 1, [] { return call("getLoadSaveFlag"); }));
}

ContSrv::_ContResult FakeWork::removeMixingVoice(ContSrv::_ContType type, unsigned long number, unsigned long voice) {
  return ContSrv::_ContResult(calls_.use("removeMixingVoice", ContSrv::ContRes_Success, kStoreFailed,
                                         [&] { return call("removeMixingVoice", type, number, voice); }));
}

ContSrv::_ContResult FakeWork::getMixingVoiceName(ContSrv::_ContType type, unsigned long number, unsigned long voice,
                                                  std::string& name) {
  EXPECT_EQ(name, "");
  const long result = calls_.use("getMixingVoiceName", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("getMixingVoiceName", type, number, voice); });
  if (result == ContSrv::ContRes_Success) name = "Mixing";
  return ContSrv::_ContResult(result);
}

std::uint32_t FakeWork::getMixingVoiceNumber(ContSrv::_ContType type, unsigned long number, unsigned long voice) {
  const long answer = long(0x3F8000 + 16 * number + voice);
  return std::uint32_t(calls_.use("getMixingVoiceNumber", answer, answer,
                                  [&] { return call("getMixingVoiceNumber", type, number, voice); }));
}

ContSrv::_ContResult FakeWork::getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) {
  const long result = calls_.use("getMixingVoiceSumSync", ContSrv::ContRes_Success, kStoreFailed,
                                 [] { return call("getMixingVoiceSumSync"); });
  if (result == ContSrv::ContRes_Success) {
    count = mixingVoices;
    maximum = maximumOfMixingVoices;
  }
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::requestOverWriteConfig(ContSrv::_ContType type) {
  return ContSrv::_ContResult(calls_.use("requestOverWriteConfig", ContSrv::ContRes_Success, kStoreFailed,
                                         [&] { return call("requestOverWriteConfig", type); }));
}

ContSrv::_ContResult FakeWork::removeContents(ContSrv::_ContType type, const std::vector<std::uint32_t>& numbers,
                                              bool sync) {
  const long result = calls_.use("removeContents", ContSrv::ContRes_Success, kStoreFailed, [&] {
    std::string list;
    for (const std::uint32_t number : numbers) list += (list.empty() ? "" : " ") + std::to_string(number);
    return call("removeContents", type, "{" + list + "}", yesNo(sync));
  });
  if (result == ContSrv::ContRes_Success)
    for (const std::uint32_t number : numbers) contents.erase({type, number});
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::removeContent(ContSrv::_ContType type, std::uint32_t number) {
  const long result = calls_.use("removeContent", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("removeContent", type, number); });
  if (result == ContSrv::ContRes_Success) contents.erase({type, number});
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::getDataFilePath(ContSrv::_ContType type, std::uint32_t number, std::string& path) {
  const long result = calls_.use("getDataFilePath", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("getDataFilePath", type, number); });
  if (result == ContSrv::ContRes_Success) path = std::to_string(type) + "/" + std::to_string(number);
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::getContentName(ContSrv::_ContType type, std::uint32_t number, std::string& name) {
  const auto found = contents.find({type, number});
  const long good = found == contents.end() ? ContSrv::ContRes_EmptyContent : ContSrv::ContRes_Success;
  const long result =
      calls_.use("getContentName", good, kStoreFailed, [&] { return call("getContentName", type, number); });
  if (result == ContSrv::ContRes_Success && found != contents.end()) name = found->second.name;
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::setContentName(ContSrv::_ContType type, std::uint32_t number, const std::string& name,
                                              bool sync) {
  const long result = calls_.use("setContentName", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("setContentName", type, number, name, yesNo(sync)); });
  if (result == ContSrv::ContRes_Success) contents[{type, number}].name = name;
  return ContSrv::_ContResult(result);
}

ContSrv::DataFile* FakeWork::openDataFile(const std::string& path, ContSrv::_OpenMode mode) {
  const bool writes = mode == ContSrv::OpenMode_Write;
  const auto text = [&] { return call("openDataFile", path, writes ? "write" : "read"); };
  const bool opened = calls_.use("openDataFile", 1, 0, text) != 0;
  const std::size_t slash = path.find('/');
  if (!opened || slash == std::string::npos) return nullptr;
  const Place place{std::uint32_t(std::stoul(path.substr(0, slash))),
                    std::uint32_t(std::stoul(path.substr(slash + 1)))};
  if (!writes && contents.find(place) == contents.end()) return nullptr;
  EXPECT_EQ(file_, nullptr) << "one file at a time";
  file_ = std::make_unique<File>(calls_, *this, place, writes);
  return file_.get();
}

ContSrv::_ContResult FakeWork::closeDataFile(ContSrv::DataFile* file, int mode) {
  EXPECT_EQ(file, file_.get());
  file_.reset();
  return ContSrv::_ContResult(
      calls_.use("closeDataFile", ContSrv::ContRes_Success, kStoreFailed, [&] { return call("closeDataFile", mode); }));
}

ContSrv::_ContResult FakeWork::sync() {
  return ContSrv::_ContResult(calls_.use("sync", ContSrv::ContRes_Success, kStoreFailed, [] { return call("sync"); }));
}

ContSrv::_ContResult FakeWork::setContentFavoriteFlag(ContSrv::_ContType type, std::uint32_t number,
                                                      ContSrv::_ContFavoriteFlag flag, bool last) {
  const long result = calls_.use("setContentFavoriteFlag", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("setContentFavoriteFlag", type, number, flag, yesNo(last)); });
  if (result == ContSrv::ContRes_Success) favourites[{type, number}] = flag;
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::getContentInformation(ContSrv::_ContType type, std::uint32_t number,
                                                     ContSrv::ContentInformation& information) {
  const bool stored = contents.find({type, number}) != contents.end();
  const long result =
      calls_.use("getContentInformation", stored ? ContSrv::ContRes_Success : ContSrv::ContRes_EmptyContent,
                 kStoreFailed, [&] { return call("getContentInformation", type, number); });
  const auto found = favourites.find({type, number});
  if (result < kStoreFailed && found != favourites.end()) information.favoriteFlag = found->second;
  return ContSrv::_ContResult(result);
}

}  // namespace Testing
