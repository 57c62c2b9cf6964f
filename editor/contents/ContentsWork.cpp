#include "contents/ContentsWork.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <exception>
#include <limits>

#include "models/ContentAddress.h"

namespace Editor {
namespace {

using ContSrv::_ContResult;
using ContSrv::_ContType;

constexpr unsigned long kMultis = 128;
constexpr unsigned long kVoicesPerMulti = 16;

bool isMulti(_ContType type, unsigned long number) { return type == ContSrv::ContType_Multi && number < kMultis; }

ContentId mixingVoice(unsigned long multi, unsigned long voice) {
  return {ContSrv::ContType_Voice, mixingVoiceNumber(std::uint32_t(multi), std::uint32_t(voice))};
}

// A path is "type/number".
std::string pathOf(ContentId id) { return std::to_string(id.type) + '/' + std::to_string(id.number); }

std::optional<ContentId> idOf(const std::string& path) {
  ContentId id;
  const char* const end = path.data() + path.size();
  const auto type = std::from_chars(path.data(), end, id.type);
  if (type.ec != std::errc() || type.ptr == end || *type.ptr != '/') return std::nullopt;
  const auto number = std::from_chars(type.ptr + 1, end, id.number);
  if (number.ec != std::errc() || number.ptr != end || !isContent(id)) return std::nullopt;
  return id;
}

// The bytes of a file, all of them in memory.
class FileData final : public ContSrv::Data {
 public:
  FileData(Library::Bytes bytes, bool forWriting) : bytes_(std::move(bytes)), forWriting_(forWriting) {}

  std::int64_t write(const std::uint8_t* bytes, std::int64_t size) override {
    const std::int64_t room = std::numeric_limits<std::int32_t>::max() - getSize();
    failed_ = failed_ || !forWriting_ || size < 0 || size > room || (bytes == nullptr && size > 0);
    if (failed_) return 0;
    try {
      if (size > 0) bytes_.insert(bytes_.end(), bytes, bytes + size);
    } catch (const std::exception&) {
      failed_ = true;
      return 0;
    }
    written_ = true;
    return size;
  }

  std::int64_t read(std::uint8_t* bytes, std::int64_t size) override {
    if (forWriting_ || bytes == nullptr || size <= 0) return 0;
    const std::int64_t count = std::min(size, getSize() - position_);
    if (count > 0) std::memcpy(bytes, bytes_.data() + position_, std::size_t(count));
    position_ += count;
    return count;
  }

  std::int64_t getSize() override { return std::int64_t(bytes_.size()); }

  bool isWhole() const { return written_ && !failed_; }
  const Library::Bytes& bytes() const { return bytes_; }

 private:
  Library::Bytes bytes_;
  bool forWriting_;
  std::int64_t position_ = 0;
  bool written_ = false;
  bool failed_ = false;
};

}  // namespace

class ContentsWork::File final : public ContSrv::DataFile {
 public:
  File(ContentsWork& work, ContentId id, Library::Bytes bytes, bool forWriting)
      : work_(work), id_(canonical(id)), forWriting_(forWriting), data_(std::move(bytes), forWriting) {}

  // A file has its data once.
  ContSrv::Data* openData() override {
    if (state_ != State::Fresh) return nullptr;
    state_ = State::Open;
    return &data_;
  }

  _ContResult closeDataWithoutSync(ContSrv::Data* data) override {
    if (state_ != State::Open || data != &data_) return ContSrv::ContRes_Failure;
    return finish();
  }

  _ContResult closeData(ContSrv::Data* data) override {
    const _ContResult closed = closeDataWithoutSync(data);
    if (closed != ContSrv::ContRes_Success || !forWriting_) return closed;
    return work_.sync();
  }

  _ContResult finish() {
    const bool store = forWriting_ && state_ == State::Open && data_.isWhole();
    state_ = State::Closed;
    if (!store) return ContSrv::ContRes_Success;  // whoever wrote, or could not, knows already
    return work_.write([this] {
      if (name_)
        work_.library_.store(id_, data_.bytes(), *name_);
      else
        work_.library_.store(id_, data_.bytes());
      return ContSrv::ContRes_Success;
    });
  }

  bool takesName(ContentId id) const { return forWriting_ && state_ != State::Closed && id_ == canonical(id); }
  void setName(const std::string& name) { name_ = name; }

 private:
  enum class State { Fresh, Open, Closed };

  ContentsWork& work_;
  ContentId id_;
  bool forWriting_;
  FileData data_;
  std::optional<std::string> name_;
  State state_ = State::Fresh;
};

ContentsWork::ContentsWork(Library& library) : library_(library) {}
ContentsWork::~ContentsWork() = default;

bool ContentsWork::abandonPass() {
  const bool abandoned = inPass();
  files_.clear();
  pass_.reset();
  failed_ = false;
  return abandoned;
}

void ContentsWork::fail(const char* what) {
  pass_.reset();
  try {
    if (error_.empty()) error_ = what;
  } catch (const std::exception&) {
    error_ = "?";  // out of memory: too short a text to need any
  }
}

template <typename Operation>
_ContResult ContentsWork::read(Operation operation) {
  try {
    return operation();
  } catch (const std::exception& error) {
    failed_ = inPass();
    fail(error.what());
    return ContSrv::ContRes_StoreError;
  }
}

template <typename Operation>
_ContResult ContentsWork::write(Operation operation) {
  if (failed_) return ContSrv::ContRes_StoreError;
  try {
    if (!pass_) pass_.emplace(library_);
    return operation();
  } catch (const std::exception& error) {
    failed_ = true;
    fail(error.what());
    return ContSrv::ContRes_StoreError;
  }
}

_ContResult ContentsWork::sync() {
  if (failed_) {
    failed_ = false;
    return ContSrv::ContRes_StoreError;
  }
  if (!pass_) return ContSrv::ContRes_Success;
  try {
    pass_->commit();
    pass_.reset();
    return ContSrv::ContRes_Success;
  } catch (const std::exception& error) {
    fail(error.what());
    return ContSrv::ContRes_StoreError;
  }
}

_ContResult ContentsWork::removeMixingVoice(_ContType type, unsigned long number, unsigned long voice) {
  const bool all = voice == ContSrv::ContentNumber_All;
  if (!isMulti(type, number) || (!all && voice >= kVoicesPerMulti)) return ContSrv::ContRes_NoSuchContent;
  const bool ownPass = !all && !inPass();
  const _ContResult removed = write([&] {
    bool any = false;
    for (unsigned long v = all ? 0 : voice; v < (all ? kVoicesPerMulti : voice + 1); ++v)
      any = library_.remove(mixingVoice(number, v)) || any;
    return any ? ContSrv::ContRes_Success : ContSrv::ContRes_DoNothing;
  });
  const _ContResult synced = ownPass ? sync() : ContSrv::ContRes_Success;
  return synced == ContSrv::ContRes_Success ? removed : synced;
}

_ContResult ContentsWork::getMixingVoiceName(_ContType type, unsigned long number, unsigned long voice,
                                             std::string& name) {
  if (!isMulti(type, number) || voice >= kVoicesPerMulti) return ContSrv::ContRes_NoSuchContent;
  const ContentId id = mixingVoice(number, voice);
  return getContentName(id.type, id.number, name);
}

std::uint32_t ContentsWork::getMixingVoiceNumber(_ContType type, unsigned long number, unsigned long voice) {
  const bool exists = isMulti(type, number) && voice < kVoicesPerMulti;
  return (exists ? mixingVoice(number, voice) : mixingVoice(kMultis, kVoicesPerMulti)).number;
}

_ContResult ContentsWork::getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) {
  return read([&] {
    count = library_.mixingVoiceCount();
    maximum = library_.mixingVoiceMaximum();
    return ContSrv::ContRes_Success;
  });
}

_ContResult ContentsWork::requestOverWriteConfig(_ContType type) {
  if (type == ContSrv::ContType_None && !inPass()) return ContSrv::ContRes_Success;  // nothing will be written
  return write([] { return ContSrv::ContRes_Success; });
}

_ContResult ContentsWork::remove(_ContType type, std::span<const std::uint32_t> numbers) {
  return write([&] {
    bool any = false;
    for (const std::uint32_t number : numbers) any = library_.remove({type, number}) || any;
    return any ? ContSrv::ContRes_Success : ContSrv::ContRes_DoNothing;
  });
}

_ContResult ContentsWork::removeContents(_ContType type, const std::vector<std::uint32_t>& numbers, bool sync) {
  const _ContResult removed = remove(type, numbers);
  const _ContResult synced = sync ? this->sync() : ContSrv::ContRes_Success;
  return synced == ContSrv::ContRes_Success ? removed : synced;
}

_ContResult ContentsWork::removeContent(_ContType type, std::uint32_t number) { return remove(type, {&number, 1}); }

_ContResult ContentsWork::getDataFilePath(_ContType type, std::uint32_t number, std::string& path) {
  if (!isContent({type, number})) return ContSrv::ContRes_NoSuchContent;
  path = pathOf({type, number});
  return ContSrv::ContRes_Success;
}

_ContResult ContentsWork::getContentName(_ContType type, std::uint32_t number, std::string& name) {
  if (!isContent({type, number})) return ContSrv::ContRes_NoSuchContent;
  return read([&] {
    const std::optional<std::string> stored = library_.contentName({type, number});
    if (!stored) return ContSrv::ContRes_EmptyContent;
    name = *stored;
    return ContSrv::ContRes_Success;
  });
}

_ContResult ContentsWork::setContentName(_ContType type, std::uint32_t number, const std::string& name, bool sync) {
  const ContentId id{type, number};
  for (const std::unique_ptr<File>& file : files_)
    if (file->takesName(id))
      return write([&] {
        file->setName(name);
        return ContSrv::ContRes_Success;
      });
  if (!isContent(id)) return ContSrv::ContRes_NoSuchContent;
  const _ContResult renamed =
      write([&] { return library_.rename(id, name) ? ContSrv::ContRes_Success : ContSrv::ContRes_EmptyContent; });
  const _ContResult synced = sync ? this->sync() : ContSrv::ContRes_Success;
  return synced == ContSrv::ContRes_Success ? renamed : synced;
}

ContSrv::DataFile* ContentsWork::openDataFile(const std::string& path, ContSrv::_OpenMode mode) {
  const std::optional<ContentId> id = idOf(path);
  if (!id) return nullptr;
  const auto open = [&](Library::Bytes bytes, bool forWriting) {
    files_.push_back(std::make_unique<File>(*this, *id, std::move(bytes), forWriting));
    return ContSrv::ContRes_Success;
  };
  _ContResult opened = ContSrv::ContRes_Failure;
  if (mode == ContSrv::OpenMode_Write) {
    opened = write([&] { return open({}, true); });
  } else if (mode == ContSrv::OpenMode_Read) {
    opened = read([&] {
      std::optional<Library::Content> content = library_.content(*id);
      return content ? open(std::move(content->bytes), false) : ContSrv::ContRes_EmptyContent;
    });
  }
  return opened == ContSrv::ContRes_Success ? files_.back().get() : nullptr;
}

_ContResult ContentsWork::closeDataFile(ContSrv::DataFile* file, int /*mode*/) {
  const auto found = std::find_if(files_.begin(), files_.end(), [&](const auto& one) { return one.get() == file; });
  if (found == files_.end()) return ContSrv::ContRes_Failure;
  const _ContResult finished = (*found)->finish();
  files_.erase(found);
  return finished;
}

_ContResult ContentsWork::setContentFavoriteFlag(_ContType type, std::uint32_t number, ContSrv::_ContFavoriteFlag flag,
                                                 bool last) {
  const _ContResult set = write([&] {
    library_.setFavourite({type, number}, flag);
    return ContSrv::ContRes_Success;
  });
  // Nobody goes on with a run after a failure: no last flag will come.
  return last || set != ContSrv::ContRes_Success ? sync() : set;
}

_ContResult ContentsWork::getContentInformation(_ContType type, std::uint32_t number,
                                                ContSrv::ContentInformation& information) {
  return read([&] {
    information.favoriteFlag = library_.favourite({type, number});
    return library_.contentName({type, number}) ? ContSrv::ContRes_Success : ContSrv::ContRes_EmptyContent;
  });
}

}  // namespace Editor
