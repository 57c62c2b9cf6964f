#include "convert/Conversion.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "targets/TargetJson.h"

namespace Editor {

namespace {

using Form = Batch::Unit::Form;
using Kind = ConversionError::Kind;

void tellBroken(const Batch& batch, Conversion::Listener& listener) {
  if (const std::vector<MessageFault> faults = faultsIn(batch); !faults.empty()) listener.broken(faults);
}

void select(const Selection& selection, Batch& batch, Conversion::Listener& listener) {
  const Selection::Result result = selection.apply(batch);
  for (const std::string& word : result.notFound) listener.missing(word + ": there is none in the files");
  if (result.tamesTrigger) listener.note("a trigger that removes all mixing voices has become one that only writes");
  tellBroken(batch, listener);
}

void tellLeftOut(Placing::LeftOut leftOut, const std::string& place, Conversion::Listener& listener) {
  constexpr std::size_t kMostTold = 3;
  if (const std::size_t count = leftOut.parameters.size(); count > 0) {
    leftOut.parameters.resize(std::min(count, kMostTold));
    listener.missing(fmt::format("{}: no message carries {}: {}{}", place, counted(count, "parameter"),
                                 fmt::join(leftOut.parameters, ", "), count > kMostTold ? " ..." : ""));
  }
  if (!leftOut.name.empty())
    listener.missing(
        fmt::format("{}: no message carries the name of its file dump: \"{}\"", place, showName(leftOut.name)));
}

void placeUnit(Placing& placing, const Batch& batch, std::size_t unit, const Destination& to,
               Conversion::Listener& listener) {
  const std::string source = batch.units[unit].source;
  try {
    tellLeftOut(placing.place(unit, to), to.target.name, listener);
  } catch (const TargetJsonError& error) {
    throw ConversionError(Kind::unusable, fmt::format("{}: {}: {}", source, to.target.name, escape(error.what())));
  } catch (const TargetError& error) {
    if (source.empty()) throw;
    throw TargetError(error.kind(), fmt::format("{}: {}", source, error.what()));
  }
}

}  // namespace

Conversion::Conversion(Options options)
    : options_(std::move(options)),
      destinations_(options_.place.empty() ? std::vector<Destination>() : parseDestinations(options_.place)),
      selection_(options_.select) {}

void Conversion::apply(Batch& batch, UnitModels& models, Listener& listener) const {
  if (!options_.select.empty()) select(selection_, batch, listener);
  place(batch, models, listener);
  if (options_.device)
    for (Batch::Message& message : batch.messages) setDevice(message.bytes, *options_.device);
  if (batch.messages.empty()) throw ConversionError(Kind::refused, "no message is left, nothing is written");
}

void Conversion::place(Batch& batch, UnitModels& models, Listener& listener) const {
  const bool areMoved = !options_.place.empty();
  const auto isJson = [](const Batch::Unit& unit) { return unit.form == Form::json; };
  if (!areMoved && std::ranges::none_of(batch.units, isJson)) return;
  if (areMoved) requirePlaces(batch, listener);
  Placing placing(batch, models);
  for (std::size_t i = 0; i < batch.units.size(); ++i) {
    listener.placing();
    Batch::Unit& unit = batch.units[i];
    if (!areMoved && !isJson(unit)) continue;
    if (!areMoved && unit.place.empty())
      throw ConversionError(Kind::noPlace, fmt::format("{}: JSON that does not say its target", unit.source));
    if (areMoved) unit.from = unit.place;
    placeUnit(placing, batch, i, areMoved ? destinations_[i] : parseDestinations(unit.target).front(), listener);
  }
  placing.finish();
}

// One unit a place, and each of them whole.
void Conversion::requirePlaces(const Batch& batch, Listener& listener) const {
  const std::size_t units = batch.units.size();
  if (options_.select.empty()) tellBroken(batch, listener);
  if (!batch.broken.empty() || std::ranges::any_of(batch.brokenMessages, &Batch::BrokenMessage::isFileDump))
    throw ConversionError(Kind::refused, "only whole units can be placed, nothing is written");
  if (units == 0) throw ConversionError(Kind::unusable, "no unit that could be placed, nothing is written");
  if (units > destinations_.size())
    throw ConversionError(Kind::unusable, fmt::format("{} for {} ({}), nothing is written", counted(units, "unit"),
                                                      counted(destinations_.size(), "place"), options_.place));
  if (units < destinations_.size())
    listener.note(fmt::format("{} for {}: the first of them are taken", counted(units, "unit"),
                              counted(destinations_.size(), "place")));
}

std::vector<MessageFault> faultsIn(const Batch& batch) {
  std::vector<MessageFault> faults;
  for (const UnitReport& unit : batch.broken) faults.push_back({wordOf(unit.state), describeUnit(unit)});
  for (const Batch::BrokenMessage& message : batch.brokenMessages)
    faults.push_back({message.isFileDump ? "broken file dump" : "broken message", describe(message)});
  return faults;
}

}  // namespace Editor
