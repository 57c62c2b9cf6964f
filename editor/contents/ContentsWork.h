#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "bda/platform/ContSrv/ContSrv.h"
#include "contents/Library.h"

namespace Editor {

// The contents store over a library, which outlives it.
//
// What is written forms a pass: from the first write, or request to overwrite, to sync() everything is one transaction
// of the library. Once anything in a pass has failed, all of it is taken back and everything up to and with sync()
// answers ContRes_StoreError. No operation throws.
//
// A whole pass each: the favourite flags of a run, the removal of one mixing voice, a name that is set or contents
// that are removed with `sync` true. The removal of all mixing voices of a content only begins one: it stands before
// contents that are written.
class ContentsWork final : public ContSrv::Work {
 public:
  explicit ContentsWork(Library& library);
  ContentsWork(const ContentsWork&) = delete;
  ContentsWork& operator=(const ContentsWork&) = delete;
  ~ContentsWork() override;

  // For the time in which the editor itself loads or saves contents.
  void setLoadSaveFlag(bool busy) { loadSaveFlag_ = busy ? 1 : 0; }

  // To be called when a message has been handled: takes back a pass that never came to its sync(), and drops files
  // that were never closed. True when there was such a pass.
  bool abandonPass();

  // What first went wrong in the library since the last call, for a human; empty when nothing did. The caller of
  // sync() need not look at its result: this tells the editor.
  std::string takeError() { return std::exchange(error_, {}); }

  unsigned char getLoadSaveFlag() override { return loadSaveFlag_; }

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
  // Names a content, or the file that is open for writing there: its name is stored, or not, with its bytes.
  ContSrv::_ContResult setContentName(ContSrv::_ContType type, std::uint32_t number, const std::string& name,
                                      bool sync) override;
  // A file that is written replaces the content's bytes when its data is closed, and its name if it was given one. If
  // any write failed, or there was none, the content stays as it is.
  ContSrv::DataFile* openDataFile(const std::string& path, ContSrv::_OpenMode mode) override;
  ContSrv::_ContResult closeDataFile(ContSrv::DataFile* file, int mode) override;
  ContSrv::_ContResult sync() override;

  // Flags can be set for any number.
  ContSrv::_ContResult setContentFavoriteFlag(ContSrv::_ContType type, std::uint32_t number,
                                              ContSrv::_ContFavoriteFlag flag, bool last) override;
  ContSrv::_ContResult getContentInformation(ContSrv::_ContType type, std::uint32_t number,
                                             ContSrv::ContentInformation& information) override;

 private:
  class File;

  template <typename Operation>
  ContSrv::_ContResult read(Operation operation);
  template <typename Operation>
  ContSrv::_ContResult write(Operation operation);
  ContSrv::_ContResult remove(ContSrv::_ContType type, std::span<const std::uint32_t> numbers);
  void fail(const char* what);
  bool inPass() const { return pass_.has_value() || failed_; }

  Library& library_;
  unsigned char loadSaveFlag_ = 0;
  std::optional<Library::Transaction> pass_;
  bool failed_ = false;  // the pass has been taken back, its sync() is still to come
  std::string error_;
  std::vector<std::unique_ptr<File>> files_;
};

}  // namespace Editor
