#include "history/Check.h"

#include <array>
#include <set>

#include "contents/ContentFormat.h"
#include "history/History.h"
#include "messages/AddressNames.h"
#include "models/ContentAddress.h"
#include "models/LiveKeys.h"

namespace Editor {

namespace {

using State = Checked::State;

class Checking {
 public:
  Checking(Library& library, const std::function<void(const Checked&)>& visit) : library_(library), visit_(visit) {}

  void tables() {
    for (const auto& [name, wrong] : library_.checkTables()) {
      visit_({Checked::Kind::table, name, wrong.empty() ? State::good : State::damaged, wrong});
      if (!wrong.empty()) told_.insert(name);
    }
  }

  // What is left out of a list: of a table that is told already only places.
  void leftOut(const Library::Unread& unread) {
    if (unread.place && unread.place->kind == Place::Kind::content)
      return visit_({Checked::Kind::content, nameOf(*unread.place), State::damaged, unread.reason});
    const std::string reason = unread.place ? nameOf(*unread.place) + ": " + unread.reason : unread.reason;
    if (unread.place || told_.insert(unread.table).second)
      visit_({Checked::Kind::table, unread.table, State::damaged, reason});
  }

  void contents() {
    inTable("content", [&] {
      for (const ContentId id : library_.contents()) {
        const ModelSet shape = emptySetFor(id);
        thing(contentAt(id), haveSameShape(shape, ModelSet()) ? std::vector<ModelSet>() : std::vector{shape});
      }
    });
    inTable("live_model", [&] {
      for (const std::string& key : library_.liveKeys()) thing(liveAt(key), shapesOfLiveKey(key));
    });
  }

  void favourites() {
    inTable("favourite", [&] {
      for (const auto& [id, flag] : library_.favourites())
        if (!canBeFavourite(id))
          visit_({Checked::Kind::table, "favourite", State::damaged, nameOf(id) + ": it cannot be a favourite"});
    });
  }

  void settings() {
    inTable("setting", [&] {
      for (const Setting& setting : Settings::kAll) {
        const Place place = settingAt(setting.name);
        const std::optional<Held> held = setting.parameter ? std::nullopt : library_.held(place);
        if (held && !isSound(place, *held))
          visit_({Checked::Kind::table, "setting", State::damaged, outOfRange(setting, held->name)});
      }
    });
  }

  void history() {
    inTable("change", [&] {
      const std::vector<RecordedEntry> newestFirst = library_.recordedEntries();
      for (const RecordedEntry& recorded : newestFirst) entry(recorded, newestFirst);
      if (told_.contains("entry")) return;  // what is missing there may only be out of reach
      for (const std::int64_t number : library_.missingEntries())
        damaged("entry", number, "it is not there, though changes of it are");
    });
  }

 private:
  // What cannot even be listed keeps nothing else from being looked at.
  template <typename Look>
  void inTable(const char* name, Look look) {
    try {
      look();
    } catch (const LibraryError& error) {
      visit_({Checked::Kind::table, name, State::damaged, error.reason()});
    }
  }

  static std::string outOfRange(const Setting& setting, const std::string& number) {
    return std::string(setting.name) + ": " + number + " is none of its values: " + setting.values;
  }

  // What is wrong with settings among the system settings that can be read; empty: nothing.
  static std::string faultOf(const ModelSet& models) {
    if (!models.system) return {};
    for (const Setting& setting : Settings::kAll) {
      if (!setting.parameter) continue;
      const std::int64_t number = numberIn(*models.system, setting);
      if (!setting.has(number)) return outOfRange(setting, wordsOf(setting, number));
    }
    return {};
  }

  void damaged(const char* table, std::int64_t number, const std::string& what) {
    visit_({Checked::Kind::table, table, State::damaged, "entry " + std::to_string(number) + ": " + what});
  }

  void entry(const RecordedEntry& entry, const std::vector<RecordedEntry>& newestFirst) {
    const std::vector<RecordedChange> changes = library_.recordedChanges(entry.number, true);
    if (const std::string fault = Editor::faultOf(entry, changes, newestFirst); !fault.empty())
      damaged("entry", entry.number, fault);
    for (const RecordedChange& change : changes)
      if (change.before && !isSound(change.place, *change.before))
        damaged("change", entry.number,
                "what " + nameOf(change.place) + " held before " +
                    (isWhole(*change.before) ? "is nothing that it can hold" : "does not fit its checksum"));
  }

  void thing(const Place& place, std::vector<ModelSet> shapes) {
    const auto tell = [&](State state, const std::string& reason) {
      visit_({Checked::Kind::content, nameOf(place), state, reason});
    };
    try {
      const std::optional<Held> held = library_.held(place);
      if (!held) return tell(State::damaged, "it is listed, and not there");
      if (!isWhole(*held)) return tell(State::damaged, "it does not fit its checksum");
      // Models of this editor are in no other format.
      const State unknown = place.kind == Place::Kind::live && !shapes.empty() ? State::damaged : State::opaque;
      if (!isContentFormat(held->bytes)) return tell(unknown, "its bytes are not in this editor's format");
      std::string reason = "nothing in this editor's format belongs there";
      for (ModelSet& shape : shapes) {
        const std::optional<std::string> wrong = decodeContent(held->bytes, shape);
        if (!wrong) {
          const std::string fault = faultOf(shape);
          return tell(fault.empty() ? State::good : State::damaged, fault);
        }
        reason = *wrong;
      }
      tell(shapes.empty() ? State::opaque : State::damaged, reason);
    } catch (const LibraryError& error) {
      tell(State::damaged, error.reason());
    }
  }

  Library& library_;
  const std::function<void(const Checked&)>& visit_;
  std::set<std::string> told_;  // tables that are damaged
};

}  // namespace

const char* wordOf(State state) {
  constexpr std::array kWords{"good", "damaged", "opaque"};
  return kWords.at(std::size_t(state));
}

CheckCounts checkLibrary(Library& library, const std::function<void(const Checked&)>& visit) {
  const Library::Transaction oneState(library, Library::Transaction::Access::Read);
  CheckCounts counts;
  const std::function<void(const Checked&)> count = [&](const Checked& checked) {
    counts.contents += checked.kind == Checked::Kind::content ? 1 : 0;
    counts.opaque += checked.state == State::opaque ? 1 : 0;
    if (checked.state == State::damaged)
      ++(checked.kind == Checked::Kind::content ? counts.damaged : counts.damagedInTables[checked.name]);
    visit(checked);
  };
  Checking checking(library, count);
  library.leaveOutUnread([&checking](const Library::Unread& unread) { checking.leftOut(unread); });
  checking.tables();
  checking.contents();
  checking.favourites();
  checking.settings();
  checking.history();
  library.leaveOutUnread({});
  return counts;
}

}  // namespace Editor
