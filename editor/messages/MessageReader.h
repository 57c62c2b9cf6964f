#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "messages/InputMessage.h"

namespace Editor {

// The bytes of a file, some at a time.
class ByteSource {
 public:
  using Bytes = std::span<const std::uint8_t>;

  // Whether nobody has to wait for them: all are there, and can be read once more.
  virtual bool isPlain() const = 0;
  // As many as there are, at least one; none: the end. Valid until the next call.
  virtual Bytes next() = 0;
  // The first bytes, which next() gives again: at least so many, fewer when there are no more.
  virtual Bytes first(std::size_t least) = 0;

 protected:
  ~ByteSource() = default;
};

// Those of a file that is in memory, and stays there.
class BytesInMemory final : public ByteSource {
 public:
  explicit BytesInMemory(Bytes bytes) : bytes_(bytes) {}

  bool isPlain() const override { return true; }
  Bytes next() override { return std::exchange(bytes_, {}); }
  Bytes first(std::size_t /*least*/) override { return bytes_; }

 private:
  Bytes bytes_;
};

// Why a file cannot be read any further.
class ReadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// That a file holds no messages, or only those of other makers; `kind` is what it seems to be.
std::string whyNoMessages(bool hasForeign, const std::string& kind);

// Whether a file is one of messages at all: it has some, and begins as such files do or has one of this maker.
class FileJudgement {
 public:
  // Of the bytes of the file, in their order: all of them, or as many as one likes.
  void look(ByteSource::Bytes bytes);
  void see(ByteSource::Bytes message);

  bool isUsable() const { return hasMessage_ && isMidi_; }
  // Of one that is not: whether it is the remains of one that was.
  bool isCut() const { return isCut_; }
  bool hasMessage() const { return hasMessage_; }
  // What it seems to be, in words.
  std::string kind() const;
  // Of one that is not usable: why, as it stands behind the file's name.
  std::string whyUnusable() const { return whyNoMessages(hasMessage_, kind()); }

 private:
  static constexpr std::size_t kFirst = 512;

  std::vector<std::uint8_t> first_;
  bool isBegun_ = false;  // something else than real-time bytes has come
  bool isCut_ = false;    // it begins as messages do
  bool isMidi_ = false;   // it begins as such files do, or has a message of this maker
  bool hasMessage_ = false;
};

// Reads files of messages, whatever their kind, one after the other. Of a stream no more than one message is in memory,
// with some thousand losses at most.
class MessageReader {
 public:
  using VisitMessage = std::function<void(const InputMessage&)>;
  using VisitLoss = std::function<void(const InputLoss&)>;

  MessageReader(VisitMessage visitMessage, VisitLoss visitLoss)
      : visitMessage_(std::move(visitMessage)), visitLoss_(std::move(visitLoss)) {}

  // Calls one of the two for each piece of the file, in its order; what it gets is valid as long as the call. Messages
  // are numbered on from the file before. Of one that has to be waited for, losses are not told before its first
  // message: there may never be one. Throws ReadError, and what source and visitors throw.
  FileJudgement read(ByteSource& source, const std::string& file);

 private:
  const VisitMessage visitMessage_;
  const VisitLoss visitLoss_;
  std::uint64_t number_ = 0;
};

// The same of a file of which nothing else is asked: read no further than to where that is known.
FileJudgement judgeFile(ByteSource& source);

// Whether it is no file of messages, but an object, as it begins: what `show --json` prints.
bool isJson(ByteSource& source);

// All bytes of a file that is read whole. Throws ReadError for one that is too large.
std::vector<std::uint8_t> readWhole(ByteSource& source);

}  // namespace Editor
