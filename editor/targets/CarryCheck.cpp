#include "targets/CarryCheck.h"

#include <fmt/format.h>

#include <set>

#include "contents/Settings.h"
#include "exchange/AssistantHost.h"
#include "exchange/Outcome.h"
#include "messages/Messages.h"
#include "messages/Text.h"
#include "models/ScratchStore.h"

namespace Editor {

namespace {

using Messages = std::vector<std::vector<std::uint8_t>>;

// An instrument that holds one target and nothing else.
class Scratch {
 public:
  explicit Scratch(const Target& target) : target_(target), host_(store_, nullptr) {}

  void put(const ModelSet& models) {
    EditorJobTools& tools = host_.tools();
    if (target_.kind == Target::Kind::system) {
      tools.replaceSystem(reachable(models));
    } else if (target_.kind == Target::Kind::content) {
      store_.contents[target_.content] = models;
    } else if (target_.buffer == EditBuffer::partVoice) {
      ModelSet multi = models;
      multi.voice.reset();
      ModelSet voice;
      voice.voice = models.voice;
      tools.replaceLive(EditBuffer::multi, 0, multi);
      tools.replaceLive(EditBuffer::partVoice, target_.part, voice);
    } else {
      tools.replaceLive(target_.buffer, 0, models);
    }
  }

  ModelSet get(const ModelSet& whenNothingCame) {
    if (target_.kind == Target::Kind::system) return host_.tools().liveSystem();
    if (target_.kind == Target::Kind::content) {
      const auto found = store_.contents.find(target_.content);
      return found == store_.contents.end() ? whenNothingCame : found->second;
    }
    if (target_.buffer != EditBuffer::partVoice) return host_.tools().live(target_.buffer);
    ModelSet models = host_.tools().live(EditBuffer::multi);
    models.voice = host_.tools().live(EditBuffer::partVoice, target_.part).voice;
    return models;
  }

  // The target's dumps as a MIDI cable carries them: seven bits of every byte. Nothing when they cannot be built.
  std::optional<Messages> dump() {
    Messages messages;
    for (const BulkAddress address :
         target_.kind == Target::Kind::system ? systemAddresses() : std::vector<BulkAddress>{*target_.header}) {
      const AssistantHost::Effects effects = host_.handle(requestMessage(address), BDA::DevicePort_Main);
      if (hasFailed(effects) || effects.sent.empty()) return std::nullopt;
      for (const AssistantHost::Sent& sent : effects.sent) {
        messages.push_back(sent.bytes);
        for (std::size_t i = 1; i + 1 < messages.back().size(); ++i) messages.back()[i] &= 0x7F;
      }
    }
    return messages;
  }

  void receive(const Messages& messages) {
    for (const std::vector<std::uint8_t>& message : messages) host_.handle(message, BDA::DevicePort_Main);
  }

  // With the receive switch on and device number 1, so that the instrument can be talked to.
  static ModelSet reachable(ModelSet models) {
    const std::uint8_t on = 1;
    const std::uint8_t first = 0;
    if (models.system) {
      models.system->utility.set(&on, SystemModel::kReceiveBulk, 0);
      models.system->utility.set(&first, SystemModel::kDeviceNumber, 0);
    }
    return models;
  }

 private:
  const Target& target_;
  ScratchStore store_;
  AssistantHost host_;
};

// Other values than those that are there, but where they decide what the other blocks are. A bit that is carried shows
// when it is turned over; a switch is carried as on or off, whatever else its value says.
enum class Other : std::uint8_t { turnedOver, off, on };
struct Replace {
  Other by;

  void group(const std::string& key, ArrayGroup& group) {
    if (key == "bankProgram" || key == "type") return;
    std::vector<std::uint16_t> values = group.values();
    for (std::uint16_t& value : values)
      value = by == Other::turnedOver ? std::uint16_t(value ^ (group.width() == Width::byte ? 0xFF : 0xFFFF))
                                      : std::uint16_t(by == Other::on);
    group.assign(values);
  }
  void name(const char* /*key*/, NameText& name) {
    name.assign(std::string(name.capacity(), !name.text().empty() && name.text().front() == 'x' ? 'y' : 'x'));
  }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

// What an instrument has after it received the dumps of `models`, its own values before being `before`.
std::optional<ModelSet> passThrough(const Target& target, const ModelSet& models, const ModelSet& before) {
  Scratch sender(target);
  sender.put(models);
  const std::optional<Messages> messages = sender.dump();
  if (!messages) return std::nullopt;
  Scratch receiver(target);
  if (target.kind != Target::Kind::content) receiver.put(before);
  receiver.receive(*messages);
  return receiver.get(before);
}

ModelSet freshReceiver(const ModelSet& models) {
  ModelSet fresh;
  forEachSlot(
      [](const char* /*key*/, auto& to, const auto& from) {
        using Model = typename std::remove_reference_t<decltype(from)>::value_type;
        if (!from) return;
        if constexpr (std::is_same_v<Model, VoiceModel>)
          to.emplace(from->isDrum());
        else
          to.emplace();
      },
      fresh, models);
  if (models.multi)  // the banks decide which kind of voice a part takes
    for (std::size_t part = 0; part < kParts; ++part)
      fresh.multi->part[part].bankProgram = models.multi->part[part].bankProgram;
  return fresh;
}

std::string refuseUnreachable(const ModelSet& models) {
  if (!models.system) return {};
  const unsigned device = models.system->utility.values()[SystemModel::kDeviceNumber];
  if (Settings::kDeviceNumber.has(device)) return {};
  return fmt::format("system.utility[{}]: {} is no device number (0 to 15, 16 is all, 17 is off)",
                     SystemModel::kDeviceNumber, device);
}

// Nothing carries the receive switch, and messages have no other device number than one of theirs; a receiver is as new
// in both.
std::vector<std::string> leftOutOfReach(const ModelSet& models) {
  std::vector<std::string> paths;
  if (!models.system) return paths;
  const std::vector<std::uint16_t>& values = models.system->utility.values();
  const auto leaveOut = [&](std::uint16_t at) { paths.push_back(fmt::format("system.utility[{}]", at)); };
  if (values[SystemModel::kReceiveBulk] != 1) leaveOut(SystemModel::kReceiveBulk);
  if (values[SystemModel::kDeviceNumber] >= unsigned(CMA::DeviceNumber_All)) leaveOut(SystemModel::kDeviceNumber);
  return paths;
}

}  // namespace

CarryCheck checkCarried(const Target& target, const ModelSet& models) {
  CarryCheck check;
  check.refusal = refuseUnreachable(models);
  const bool hasBlocks = target.kind == Target::Kind::system || target.header.has_value();
  if (!check.refusal.empty() || !hasBlocks) return check;
  check.leftOut = leftOutOfReach(models);

  const ModelSet wanted = Scratch::reachable(models);
  const ModelSet fresh = Scratch::reachable(freshReceiver(models));
  const std::optional<ModelSet> arrived = passThrough(target, wanted, fresh);
  if (!arrived) {
    check.unchecked = "its blocks cannot be built, so it was not checked that they carry these values";
    return check;
  }
  const std::vector<ParameterDifference> wrong = differencesOf(wanted, *arrived);
  if (wrong.empty()) return check;

  // A parameter that no block holds stays as it was, whatever is sent: only the others count.
  std::set<std::string> held;
  const auto findMoved = [&](const ModelSet& from, const ModelSet& to) {
    for (std::string& path : differingPaths(from, to)) held.insert(std::move(path));
  };
  findMoved(*arrived, fresh);
  for (const Other by : {Other::turnedOver, Other::off, Other::on}) {
    ModelSet other = wanted;
    Replace replace{by};
    forEachModel(other, [&](const char* /*key*/, auto& model) { visitFields(model, replace); });
    const ModelSet otherArrived = passThrough(target, other, fresh).value_or(*arrived);
    findMoved(*arrived, otherArrived);
    findMoved(otherArrived, fresh);
  }
  for (const ParameterDifference& difference : wrong) {
    if (!held.contains(difference.path)) {
      check.leftOut.push_back(difference.path);
      continue;
    }
    check.refusal = fmt::format("{}: {} cannot be carried, it would arrive as {}", difference.path,
                                showValue(difference.a), showValue(difference.b));
    return check;
  }
  return check;
}

}  // namespace Editor
