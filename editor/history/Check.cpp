#include "history/Check.h"

#include <array>

#include "contents/ContentFormat.h"
#include "history/History.h"
#include "messages/AddressNames.h"
#include "models/LiveKeys.h"

namespace Editor {

namespace {

using State = Checked::State;

class Checking {
 public:
  Checking(Library& library, const std::function<void(const Checked&)>& visit) : library_(library), visit_(visit) {}

  void tables() {
    for (const auto& [name, wrong] : library_.checkTables())
      visit_({Checked::Kind::table, name, wrong.empty() ? State::good : State::damaged, wrong});
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

  void history() {
    inTable("change", [&] {
      for (const RecordedEntry& entry : library_.recordedEntries())
        for (const RecordedChange& change : library_.recordedChanges(entry.number, true))
          if (change.before && !isWhole(*change.before))
            visit_({Checked::Kind::table, "change", State::damaged,
                    "entry " + std::to_string(entry.number) + ": what " + nameOf(change.place) +
                        " held before does not fit its checksum"});
    });
  }

 private:
  // What cannot even be listed keeps nothing else from being looked at.
  template <typename Look>
  void inTable(const char* name, Look look) {
    try {
      look();
    } catch (const LibraryError& error) {
      visit_({Checked::Kind::table, name, State::damaged, error.what()});
    }
  }

  void thing(const Place& place, std::vector<ModelSet> shapes) {
    const auto tell = [&](State state, const std::string& reason) {
      visit_({Checked::Kind::content, nameOf(place), state, reason});
    };
    try {
      const std::optional<Held> held = library_.held(place);
      if (!held) return tell(State::damaged, "it is listed, and not there");
      if (!isWhole(*held)) return tell(State::damaged, "it does not fit its checksum");
      if (!isContentFormat(held->bytes)) return tell(State::opaque, "its bytes are not in this editor's format");
      std::string reason = "nothing in this editor's format belongs there";
      for (ModelSet& shape : shapes) {
        const std::optional<std::string> wrong = decodeContent(held->bytes, shape);
        if (!wrong) return tell(State::good, "");
        reason = *wrong;
      }
      tell(shapes.empty() ? State::opaque : State::damaged, reason);
    } catch (const LibraryError& error) {
      tell(State::damaged, error.what());
    }
  }

  Library& library_;
  const std::function<void(const Checked&)>& visit_;
};

}  // namespace

const char* wordOf(State state) {
  constexpr std::array kWords{"good", "damaged", "opaque"};
  return kWords.at(std::size_t(state));
}

void checkLibrary(Library& library, const std::function<void(const Checked&)>& visit) {
  const Library::Transaction oneState(library, Library::Transaction::Access::Read);
  Checking checking(library, visit);
  checking.tables();
  checking.contents();
  checking.history();
}

}  // namespace Editor
