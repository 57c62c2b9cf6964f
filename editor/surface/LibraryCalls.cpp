// The functions of the C surface that take a library.

#include <memory>
#include <optional>
#include <sstream>
#include <vector>

#include "contents/PastDamage.h"
#include "exchange/Answers.h"
#include "history/History.h"
#include "models/ModelJson.h"
#include "surface/Handles.h"
#include "targets/Inventory.h"
#include "targets/InventoryJson.h"
#include "targets/TargetJson.h"
#include "targets/TargetModels.h"
#include "transcript/MessageJson.h"

namespace Editor {

namespace {

// What is left out of an answer for it is damaged, in words: the answer is not whole then.
class LeftOut {
 public:
  explicit LeftOut(EmbeddedEditor& editor) : library_(editor.library()) {
    library_.leaveOutUnread([this](const Library::Unread& unread) {
      add(unread.place ? nameOf(*unread.place) : "table " + unread.table, unread.reason);
    });
  }
  LeftOut(const LeftOut&) = delete;
  LeftOut& operator=(const LeftOut&) = delete;
  ~LeftOut() { library_.leaveOutUnread({}); }

  void add(const std::string& what, const std::string& why) {
    words_ += (words_.empty() ? "" : "\n") + what + ": " + why;
  }
  bda_result end(std::string& error) {
    error = std::move(words_);
    return error.empty() ? BDA_OK : BDA_REFUSED;
  }

 private:
  Library& library_;
  std::string words_;
};

std::vector<std::string> wordsOf(std::string_view places) {
  std::istringstream text{std::string(places)};
  std::vector<std::string> words;
  for (std::string word; text >> word;) words.push_back(word);
  if (words.empty()) throw CallFailure{BDA_UNUSABLE, "places names none"};
  return words;
}

std::vector<Places<Target>> targetsIn(std::string_view places) {
  std::vector<Places<Target>> targets;
  for (const std::string& word : joinAddresses(wordsOf(places))) targets.push_back(parseTargets(word));
  return targets;
}

// Those who call with a handle. `act` gets its editor.
template <typename Act>
bda_result callWith(bda_library* library, Act act) noexcept {
  if (library == nullptr) return BDA_MISUSED;
  return call(library->error, [&] { return act(editorOf(library)); });
}

void showAll(EmbeddedEditor& editor, const std::vector<Places<Target>>& asked, std::string& lines, LeftOut& leftOut) {
  if (asked.size() == 1 && asked.front().isOne) {
    lines = jsonLine(toJson(loadTarget(editor, asked.front().list.front()))) + '\n';
    return;
  }
  for (const Places<Target>& places : asked) {
    const std::size_t empty =
        loadTargets(editor, places,
                    {.loaded = [&](const Target& target,
                                   const ModelSet& models) { lines += jsonLine(toJson(target, models)) + '\n'; },
                     .refused = [&](const TargetError& error) { leftOut.add(places.name, error.what()); },
                     .damaged = [&](const Target& target) { leftOut.add(target.name, kItIsDamaged); }});
    if (empty == places.list.size()) leftOut.add(places.name, "nothing is stored there");
  }
}

}  // namespace

}  // namespace Editor

using namespace Editor;

bda_result bda_library_open(const char* path, unsigned flags, bda_library** library) {
  if (library == nullptr) return BDA_MISUSED;
  *library = new (std::nothrow) bda_library;
  if (*library == nullptr) return BDA_FAILED;
  return call((*library)->error, [&] {
    if ((flags & ~unsigned(BDA_OPEN_READ)) != 0) throw CallFailure{BDA_MISUSED, "there is no such flag"};
    Library::Options options;
    if (flags == BDA_OPEN_READ) options.use = Library::Use::read;
    if (path == nullptr) options.use = Library::Use::memory;
    (*library)->editor = std::make_unique<EmbeddedEditor>(path == nullptr ? "memory" : path, options);
    return BDA_OK;
  });
}

void bda_library_close(bda_library* library) { delete library; }

const char* bda_library_error(const bda_library* library) {
  return library == nullptr ? "library is NULL" : library->error.c_str();
}

bda_result bda_library_contents(bda_library* library, const char* places, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor) {
    const std::vector<Places<Target>> asked =
        places == nullptr ? std::vector<Places<Target>>() : targetsIn(textOf(places, "places"));
    LeftOut leftOut(editor);
    const Inventory found = inventoryOf(editor, asked);
    std::string lines;
    for (const Inventory::Entry& entry : found.entries) {
      lines += jsonLine(toJson(entry)) + '\n';
      if (entry.isDamaged) leftOut.add(nameOf(entry.id), kItIsDamaged);
    }
    for (const Target& live : found.damaged) leftOut.add(live.name, kItIsDamaged);
    handOut(copyOf(lines), json);
    return leftOut.end(library->error);
  });
}

bda_result bda_library_show(bda_library* library, const char* places, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor) {
    std::vector<Places<Target>> asked = targetsIn(textOf(places, "places"));
    LeftOut leftOut(editor);
    std::string lines;
    const EmbeddedEditor::View oneState(editor);
    if (library->isOfFiles)
      for (Places<Target>& one : asked) {
        dropUnstored(editor, one.list);
        if (one.list.empty()) throw CallFailure{BDA_REFUSED, one.name + ": it is in none of the files"};
      }
    showAll(editor, asked, lines, leftOut);
    handOut(copyOf(lines), json);
    return leftOut.end(library->error);
  });
}

bda_result bda_library_handle(bda_library* library, unsigned port, const uint8_t* message, size_t size, bda_send send,
                              void* context, char** json) {
  if (json != nullptr) *json = nullptr;
  return callWith(library, [&](EmbeddedEditor& editor) {
    require(message, "message");
    const std::span<const std::uint8_t> bytes(message, size);
    const Record record = editor.handle(bytes, BDA::DevicePortNum(port), ++library->messages);
    if (json != nullptr)
      handOut(copyOf(jsonOf({library->messages, nullptr, {}}, BDA::DevicePortNum(port), bytes, record) + '\n'), json);
    if (send != nullptr)
      for (const AssistantHost::Sent& sent : record.sent)
        send(context, sent.port, sent.bytes.data(), sent.bytes.size());
    if (record.libraryFailed) throw CallFailure{BDA_FAILED, record.reason};
    if (record.outcome == Outcome::refused) throw CallFailure{BDA_REFUSED, record.reason};
    if (isSilentlyBroken(record)) throw CallFailure{BDA_REFUSED, describeFault(record.reading)};
    return BDA_OK;
  });
}

bda_result bda_library_request(bda_library* library, const char* places, bda_send send, void* context) {
  return callWith(library, [&](EmbeddedEditor& editor) {
    const std::vector<BulkAddress> addresses = parseAddresses(wordsOf(textOf(places, "places")));
    LeftOut leftOut(editor);
    for (const BulkAddress address : addresses) {
      const Record record = editor.handle(editor.requestFor(address), BDA::DevicePort_Main, ++library->messages);
      const std::string why = whyUnanswered(record);
      if (!why.empty() && record.libraryFailed) throw CallFailure{BDA_FAILED, why};
      if (!why.empty()) leftOut.add(nameOrBytes(address), why);
      if (!why.empty() || send == nullptr) continue;
      for (const AssistantHost::Sent& sent : record.sent)
        send(context, sent.port, sent.bytes.data(), sent.bytes.size());
    }
    return leftOut.end(library->error);
  });
}
