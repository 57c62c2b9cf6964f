#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <span>
#include <string>

#include "compare/Compare.h"
#include "targets/BackupPlan.h"

namespace Editor {

// Asks a library for everything, in one of its states, which it holds still. Each message is also received by a library
// in memory: what that does not have in the end, the backup does not carry. Throws LibraryError.
class Backup {
 public:
  explicit Backup(EmbeddedEditor& editor);

  // How many are asked for; what no address carries is not.
  std::size_t count() const { return count_; }
  std::size_t unaddressed() const { return plan_.unaddressed.size(); }

  struct Visitor {
    std::function<void(std::span<const std::uint8_t>)> message;
    std::function<void(std::uint64_t)> asked;                             // for one item: the bytes that came of it
    std::function<void(const std::string&, const std::string&)> leftOut;  // an item, and why it is not in the backup
  };
  // Once.
  void run(const Visitor& visitor);
  std::size_t done() const { return done_; }
  std::uint64_t messages() const { return messages_; }
  std::uint64_t bytes() const { return bytes_; }

  // Visits what of the rest no message carries.
  void visitLost(const std::function<void(const Difference&)>& visit);
  nlohmann::ordered_json manifest();

 private:
  void add(const std::vector<BackupPlan::Item>& items, const Visitor& visitor);
  void leaveOut(const std::string& name, const std::string& why, const Visitor& visitor);
  std::uint64_t back(const BackupPlan::Item& item, const Visitor& visitor);

  EmbeddedEditor& editor_;
  const EmbeddedEditor::Run oneState_;
  EmbeddedEditor proof_;
  const EmbeddedEditor::Run received_;
  const BackupPlan plan_;
  const std::size_t count_;
  std::uint64_t number_ = 0;
  std::size_t done_ = 0;
  std::uint64_t messages_ = 0;
  std::uint64_t bytes_ = 0;
  std::set<std::string> leftOut_;
};

}  // namespace Editor
