#include "output/MessageReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "exchange/LogLines.h"
#include "history/History.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/ChangeLines.h"
#include "transcript/MessageJson.h"

namespace Editor {

void MessageReport::Places::add(const InputMessage& message, const EmbeddedEditor& editor) {
  if (places_.size() >= most_) forgetEnded(editor);
  places_.emplace(message.number, Place{&message.file, message.offset});
}

std::string MessageReport::Places::at(std::uint64_t number) const {
  const Place& place = places_.at(number);
  return placeOf({number, *place.file, place.offset, {}});
}

void MessageReport::Places::forgetEnded(const EmbeddedEditor& editor) {
  std::map<std::uint64_t, Place> open;
  for (const UnitReport& unit : editor.openUnits())
    if (auto place = places_.extract(unit.firstMessage); !place.empty()) open.insert(std::move(place));
  places_ = std::move(open);
  most_ = 2 * places_.size() + kFew;
}

void MessageReport::complain(const std::string& text) {
  console_.problem(text);
  program_.refuse();
}

void MessageReport::refuse(const std::string& kind, const std::string& text) {
  tally_.addRefused();
  program_.refuse();
  if (!kind.empty()) refusals_.tell(kind, text);
}

void MessageReport::tell(const InputMessage& message, const Record& record, const std::string& unsendable) {
  places_.add(message, editor_);
  if (unsendable.empty()) {
    tellOutcome(message, record);
    tally_.add(record);
  } else {
    complain(fmt::format("{}: {}: {}", placeOf(message), describeContent(record.reading), unsendable));
    tally_.addRefused();
  }
  if (options_.json)
    console_.line(jsonOf({message.number, &message.file, message.offset}, options_.port, message.bytes, record));
  for (const UnitReport& unit : record.ended)
    if (isBroken(unit) || !unit.note.empty()) complain(fmt::format("{}: {}", placeOf(message), describeUnit(unit)));
  for (const std::string& line : linesOf(record.log, record.reading)) console_.detail("    log: " + line);
  if (!isSilentlyBroken(record)) return;
  program_.refuse();
  refusals_.tell(wordOf(record.reading.verdict),
                 fmt::format("{}: {}", placeOf(message), describeFault(record.reading)));
}

void MessageReport::finish(bool isHandled) {
  for (const UnitReport& unit : editor_.openUnits())
    complain(fmt::format("{}: {}", places_.at(unit.firstMessage),
                         isHandled ? describeUnit(unit) : "what began here is not handled to its end, nor stored"));
  refusals_.finish();
  losses_.finish();
  if (!losses_.areAllWhole()) program_.refuse();
  otherDevices_.tell(console_, options_.wayOut);
}

void MessageReport::tellOutcome(const InputMessage& message, const Record& record) {
  const std::string what = describeContent(record.reading);
  switch (record.outcome) {
    case Outcome::stored:
      tellContents(message, record);
      break;
    case Outcome::refused:
      tellRefusal(message, record);
      tellContents(message, record);
      break;
    case Outcome::answered:
      say(fmt::format("{}: {}, {} ({})", said("answered"), what, counted(record.sent.size(), "message"),
                      placeOf(message)));
      break;
    case Outcome::accepted:
      console_.detail(fmt::format("{}: {} ({})", said("accepted"), what, placeOf(message)));
      break;
    case Outcome::completed:
      say(fmt::format("{}: {} ({})", said("completed"), what, placeOf(message)));
      for (const Change& change : record.changed)
        if (change.place.kind == Place::Kind::favourite && change.wasDamaged)
          say(fmt::format("{}: its favourite flag {}{}", nameOf(change.place), said("set"), kOverDamage));
      break;
    case Outcome::notOurs:
    case Outcome::ignored:
    case Outcome::nothingToSend:
      say(fmt::format("{}: {} ({})", wordOf(record.outcome), what, placeOf(message)));
      break;
  }
}

void MessageReport::tellContents(const InputMessage& message, const Record& record) {
  for (const std::string& content : record.contents) {
    const bool isRemoved = std::ranges::find(record.removed, content) != record.removed.end();
    const auto before = record.replaced.find(content);
    const bool wasDamaged = std::ranges::any_of(record.changed, [&](const Change& change) {
      return change.wasDamaged && change.place.kind != Place::Kind::favourite && nameOf(change.place) == content;
    });
    say(fmt::format("{}: {} ({}){}{}", said(isRemoved ? "removed" : "stored"), content, placeOf(message),
                    before == record.replaced.end() ? "" : wasIn(before->second, isRemoved),
                    wasDamaged ? kOverDamage : ""));
  }
  // The edit buffers that a footer stores along with its own: the parts of a multi, the multi of a part.
  for (const Change& change : record.changed) {
    const std::string place = nameOf(change.place);
    if (change.place.kind != Place::Kind::live || std::ranges::find(record.contents, place) != record.contents.end())
      continue;
    say(fmt::format("{}: {} ({}){}{}", said("stored with it"), place, placeOf(message),
                    change.before ? wasIn(change.before->name, false) : "", change.wasDamaged ? kOverDamage : ""));
  }
}

// What stood in the place.
std::string MessageReport::wasIn(const std::string& name, bool isRemoved) const {
  if (name.empty()) return isRemoved ? "" : ", replaces what was there";
  const char* const verb = options_.isRehearsal ? "it is" : "it was";
  return fmt::format(", {} \"{}\"", isRemoved ? verb : "replaces", showName(name));
}

void MessageReport::tellRefusal(const InputMessage& message, const Record& record) {
  program_.refuse();
  if (record.report.refusal == BDA::BulkDumpRefusal::wrongDeviceNumber && !otherDevices_.add(*record.reading.device))
    return;
  refusals_.tell(fmt::format("{}: {}", said("refused"), escape(record.reasonInCommon)),
                 fmt::format("{}: {}: {}: {}", placeOf(message), said("refused"), describeContent(record.reading),
                             escape(record.reason)));
}

}  // namespace Editor
