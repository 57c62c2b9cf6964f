#pragma once

// What receiving and dumping the parameter blocks should do: what the module's layouts are compared with.

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "ParameterBlockKinds.h"
#include "support/RecordingPlatform.h"

namespace ParameterBlocks {

using Testing::Bytes;
using Lines = std::vector<std::string>;

// ---- The models by paths ----

// The groups and names of a set of models under their paths, without "temporary." and the number of a voice.
struct Models {
  std::map<std::string, Testing::FakeGroup*> groups;
  std::map<std::string, Testing::FakeName*> names;
  std::map<std::string, std::string> realPaths;  // of the models: "voice" -> "temporary.voice"

  void add(Testing::FakeVoice& voice) {
    begin("voice", voice.path);
    groupsOf({&voice.type, &voice.common, &voice.commonExtra, &voice.arpeggioCommon, &voice.arpeggioTempo,
              &voice.arpeggioEntry, &voice.arpeggioSix, &voice.insertionA, &voice.insertionB, &voice.insertionL});
    for (auto& element : voice.elements) groupsOf({&element->params, &element->wave});
    for (auto& key : voice.keys) groupsOf({&key->params, &key->wave});
    names["voice.name"] = &voice.name;
  }
  void add(Testing::FakeMulti& multi) {
    begin("multi", multi.path);
    groupsOf({&multi.common, &multi.reverb, &multi.reverbSettings, &multi.chorus, &multi.chorusSettings,
              &multi.insertionA, &multi.insertionB, &multi.masterEq, &multi.masterEffect, &multi.masterEffectSettings,
              &multi.adPart->params});
    for (auto& part : multi.parts) groupsOf({&part->bankProgram, &part->main, &part->extra});
    names["multi.name"] = &multi.name;
  }
  void add(Testing::FakeArpeggio& arpeggio) {
    begin("arpeggio", arpeggio.path);
    groupsOf({&arpeggio.tempo, &arpeggio.common});
    for (auto& part : arpeggio.parts) groupsOf({&part->params, &part->six});
  }
  void add(Testing::FakeMaster& master) {
    begin("master", master.path);
    groupsOf({&master.common});
    for (auto& zone : master.zones) groupsOf({&zone->params});
    names["master.name"] = &master.name;
  }
  void add(Testing::FakeRemote& remote) {
    begin("remote", remote.path);
    groupsOf({&remote.common});
    names["remote.name1"] = &remote.name1;
    names["remote.name2"] = &remote.name2;
    for (std::size_t i = 0; i < remote.controllers.size(); ++i) {
      const std::string path = "remote.controller[" + std::to_string(i) + "]";
      groupsOf({&remote.controllers[i]->params});
      names[path + ".name1"] = &remote.controllers[i]->name1;
      names[path + ".name2"] = &remote.controllers[i]->name2;
    }
  }
  std::string realPath(const std::string& path) const {
    const std::size_t end = std::min(path.find('.'), path.size());
    return realPaths.at(path.substr(0, end)) + path.substr(end);
  }

 private:
  void begin(const std::string& model, const std::string& path) {
    model_ = model;
    path_ = path;
    realPaths[model] = path;
  }
  void groupsOf(const std::vector<Testing::FakeGroup*>& added) {
    for (Testing::FakeGroup* group : added) groups[model_ + group->path().substr(path_.size())] = group;
  }
  std::string model_;
  std::string path_;
};

// ---- What a block does ----

enum class Routine { byte, wide, pair, split, high, nibsplit, nibbles, low, bits, name, selection, off, hold, release };

struct Step {
  Routine routine = Routine::byte;
  std::size_t byte = 0;
  std::size_t size = 1;  // data bytes
  std::string target;
  unsigned index = 0;
  unsigned index2 = 0;  // nibbles: of the high one
  unsigned mask = 0;    // bits
  // Where the target is, once found.
  std::string path;
  Testing::FakeGroup* group = nullptr;
  Testing::FakeName* name = nullptr;
};
using Steps = std::vector<Step>;

inline Routine routineOf(const std::string& word) {
  static const std::map<std::string, Routine> routines{
      {"byte", Routine::byte},           {"wide", Routine::wide},
      {"pair", Routine::pair},           {"split", Routine::split},
      {"high", Routine::high},           {"nibsplit", Routine::nibsplit},
      {"nibbles", Routine::nibbles},     {"low", Routine::low},
      {"bits", Routine::bits},           {"name", Routine::name},
      {"selection", Routine::selection}, {"off", Routine::off},
      {"hold", Routine::hold},           {"release", Routine::release}};
  return routines.at(word);
}

// One step for each parameter, name, or other thing done.
inline Steps stepsOf(const Kind& kind, unsigned blockIndex) {
  Steps steps;
  std::istringstream lines(kind.rows);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string word;
    if (!(words >> word)) continue;
    Step step;
    step.routine = routineOf(word);
    const bool hasBytes =
        step.routine != Routine::off && step.routine != Routine::hold && step.routine != Routine::release;
    std::size_t last = 0;
    if (hasBytes) {
      words >> step.byte;
      last = step.byte;
      if (words.peek() == '-') words.ignore() >> last;
    }
    words >> step.target;
    if (const std::size_t hash = step.target.find('#'); hash != std::string::npos)
      step.target.replace(hash, 1, std::to_string(blockIndex));
    switch (step.routine) {
      case Routine::name:
      case Routine::selection:
        step.size = last - step.byte + 1;
        steps.push_back(step);
        break;
      case Routine::off:
      case Routine::hold:
      case Routine::release:
        steps.push_back(step);
        break;
      case Routine::nibbles:
        words >> step.index >> step.index2;
        steps.push_back(step);
        break;
      case Routine::bits:
        words >> step.index >> std::hex;
        for (; words >> step.mask; ++step.index) steps.push_back(step);
        words.clear();
        break;
      default:
        words >> step.index;
        step.size = step.routine == Routine::pair || step.routine == Routine::split || step.routine == Routine::nibsplit
                        ? 2
                        : 1;
        for (; step.byte <= last; step.byte += step.size, ++step.index) steps.push_back(step);
        break;
    }
    std::string rest;
    if (words.fail() || words >> rest) throw std::logic_error("row not understood: " + line);
  }
  return steps;
}

inline void findTargets(Steps& steps, const Models& models) {
  for (Step& step : steps) {
    step.path = models.realPath(step.target);
    if (step.routine == Routine::name)
      step.name = models.names.at(step.target);
    else if (step.routine < Routine::off)
      step.group = models.groups.at(step.target);
  }
}

// The bits of a 7-bit data byte that reach the model.
inline unsigned carriedBits(const Steps& steps, const Bytes& data, std::size_t byte) {
  unsigned bits = 0;
  for (const Step& step : steps) {
    if (step.routine >= Routine::off || byte < step.byte || byte >= step.byte + step.size) continue;
    const bool isHigh = byte == step.byte;
    switch (step.routine) {
      case Routine::split:
      case Routine::high:
        bits |= isHigh ? 0x01U : 0x7FU;
        break;
      case Routine::nibsplit:  // the two are ORed
        bits |= isHigh ? 0x0FU & ~(unsigned{data[byte + 1]} >> 4) : 0x7FU & ~(unsigned{data[byte - 1]} << 4);
        break;
      case Routine::low:
        bits |= 0x0FU;
        break;
      case Routine::bits:
        bits |= step.mask;
        break;
      default:
        bits |= 0x7FU;
    }
  }
  return bits;
}

// The value that a step gives its parameter when it receives.
inline unsigned valueOf(const Step& step, const Bytes& data) {
  const unsigned first = data[step.byte];
  const unsigned second = step.size == 2 ? data[step.byte + 1] : 0;
  switch (step.routine) {
    case Routine::pair:
      return first * 128 | second;
    case Routine::split:
    case Routine::high:
      return (first * 128 | second) % 256;
    case Routine::nibsplit:
      return (first * 16 | second) % 256;
    case Routine::low:
      return first % 16;
    case Routine::bits:
      return (first & step.mask) != 0 ? 1 : 0;
    default:
      return first;
  }
}

inline std::string setLine(const Step& step, unsigned index, unsigned value) {
  const bool is16Bits = step.routine == Routine::wide || step.routine == Routine::pair;
  return (is16Bits ? "set16(" : "set(") + step.path + ", " + std::to_string(index) + ", " + std::to_string(value) +
         ", flag 1)";
}

// What the models are told when the block is received, in order.
inline Lines expectedCalls(const Steps& steps, unsigned blockIndex, const Bytes& data) {
  Lines lines;
  for (const Step& step : steps) {
    const auto at = data.begin() + long(step.byte);
    switch (step.routine) {
      case Routine::name:
        lines.push_back("setName(" + step.path + ", " + std::string(at, at + long(step.size)).c_str() + ")");
        break;
      case Routine::selection:
        lines.push_back("correctBankSelAndProgramNum(" + step.path.substr(0, step.path.rfind('.')) + ", " +
                        std::to_string(blockIndex) + ", " + std::to_string(at[0]) + ", " + std::to_string(at[1]) +
                        ", " + std::to_string(at[2]) + ", true)");
        for (unsigned i = 0; i < 3; ++i) lines.push_back(setLine(step, i, at[std::ptrdiff_t(i)]));
        break;
      case Routine::off:
        lines.push_back("insertionSwitchAllOff(" + step.path + ")");
        break;
      case Routine::hold:
      case Routine::release:
        lines.push_back("changeCorrectType(" + step.path + (step.routine == Routine::hold ? ", false)" : ", true)"));
        break;
      case Routine::nibbles:
        lines.push_back(setLine(step, step.index, at[0] % 16));
        lines.push_back(setLine(step, step.index2, at[0] / 16));
        break;
      default:
        lines.push_back(setLine(step, step.index, valueOf(step, data)));
    }
  }
  return lines;
}

// ... and when it is dumped.
inline Lines expectedCallsOfDump(const Steps& steps) {
  Lines lines;
  for (const Step& step : steps)
    if (step.routine == Routine::hold || step.routine == Routine::release)
      lines.push_back(expectedCalls({step}, 0, {0})[0]);
  return lines;
}

// What the block holds when it is dumped from the models as they stand.
inline Bytes expectedDump(const Steps& steps, std::size_t length) {
  Bytes data(length, 0);
  for (const Step& step : steps) {
    std::uint8_t* const at = data.data() + step.byte;
    const auto value = [&](unsigned index) { return unsigned{(*step.group)[index]}; };
    switch (step.routine) {
      case Routine::byte:
      case Routine::wide:
        at[0] = std::uint8_t(value(step.index) % 256);
        break;
      case Routine::pair:
        at[0] = std::uint8_t(value(step.index) / 128 % 128);
        at[1] = std::uint8_t(value(step.index) % 128);
        break;
      case Routine::split:
        at[1] = std::uint8_t(value(step.index) % 128);
        [[fallthrough]];
      case Routine::high:
        at[0] = std::uint8_t(value(step.index) % 256 / 128);
        break;
      case Routine::nibsplit:
        at[0] = std::uint8_t(value(step.index) % 256 / 16);
        at[1] = std::uint8_t(value(step.index) % 128);
        break;
      case Routine::nibbles:
        at[0] = std::uint8_t(value(step.index2) % 16 * 16 + value(step.index) % 16);
        break;
      case Routine::low:
        at[0] = std::uint8_t(at[0] + value(step.index) % 16);
        break;
      case Routine::bits:
        if (value(step.index) % 256 == 1) at[0] = std::uint8_t(at[0] + step.mask);
        break;
      case Routine::name:
        for (std::size_t i = 0; i < std::min(step.size, step.name->text.size()); ++i)
          at[i] = std::uint8_t(step.name->text[i]);
        break;
      case Routine::selection:
        for (unsigned i = 0; i < 3; ++i) at[i] = std::uint8_t(value(i) % 256);
        break;
      case Routine::off:
      case Routine::hold:
      case Routine::release:
        break;
    }
  }
  return data;
}

// 7-bit data as it comes back after it was received: what carries nothing is 0, names end at their first zero.
inline Bytes canonical(const Steps& steps, const Bytes& data) {
  Bytes back(data.size(), 0);
  for (const Step& step : steps) {
    if (step.routine >= Routine::off) continue;
    const std::size_t at = step.byte;
    switch (step.routine) {
      case Routine::split:
        back[at + 1] = data[at + 1];
        [[fallthrough]];
      case Routine::high:
        back[at] = data[at] & 0x01;
        break;
      case Routine::nibsplit:
        back[at] = std::uint8_t((data[at] | data[at + 1] >> 4) & 0x0F);
        back[at + 1] = std::uint8_t((data[at] << 4 & 0x70) | data[at + 1]);
        break;
      case Routine::low:
        back[at] = std::uint8_t(back[at] | (data[at] & 0x0F));
        break;
      case Routine::bits:
        back[at] = std::uint8_t(back[at] | (data[at] & step.mask));
        break;
      case Routine::name:
        for (std::size_t i = at; i < at + step.size && data[i] != 0; ++i) back[i] = data[i];
        break;
      default:
        for (std::size_t i = at; i < at + step.size; ++i) back[i] = data[i];
    }
  }
  return back;
}

// Data without gaps in its names.
inline Bytes patternOf(const Kind& kind, const Steps& steps) {
  Bytes data = Testing::pattern(kind.length);
  for (const Step& step : steps)
    if (step.routine == Routine::name)
      for (std::size_t i = 0; i < step.size; ++i) data[step.byte + i] = std::uint8_t('A' + (step.byte + i) % 26);
  return data;
}

// ---- Reports ----

inline std::string report(const Kind& kind, const std::string& message) {
  return "BulkExecuter" + kind.file + ".cpp [BDA::BulkExecuter" + kind.className + "::execBulkBlock] " + message;
}
inline std::string noModel(const Kind& kind) {
  return report(kind, kind.className == "MasterZone" ? "error :model is NULL !\n" : "Temporary Model is NULL !!!\n");
}
inline std::string wrongLength(const Kind& kind, std::size_t length) {
  char lengths[60];
  std::snprintf(lengths, sizeof lengths,
                kind.file == "Master" ? "correct = [%02x], data = [%02x]\n" : "Correct = [%02x], Data = [%02x]\n",
                unsigned(kind.length), unsigned(length));
  const char* const start = kind.file == "Master"   ? "error : invalid length. ("
                            : kind.file == "Remote" ? "error : wrong data length. ("
                                                    : "Wrong data length. (";
  return report(kind, start + kind.title + "): " + lengths);
}

}  // namespace ParameterBlocks
