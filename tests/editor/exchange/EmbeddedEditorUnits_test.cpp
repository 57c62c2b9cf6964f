// Whole units of random bytes through the editor on its library: what comes back on request, where in the models each
// byte is, and that showing and applying the models changes nothing.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <sstream>

#include "bda/ParameterBlocks.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"
#include "midi/Hex.h"
#include "models/ModelJson.h"
#include "targets/CarryCheck.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using ParameterBlocks::Routine;
using ParameterBlocks::Step;
using ParameterBlocks::Steps;

// ---- The system blocks, typed a second time as ParameterBlockKinds.h has the others ----

const std::vector<ParameterBlocks::Kind>& systemKinds() {
  using ParameterBlocks::insertionEffect;
  static const std::vector<ParameterBlocks::Kind> all{
      {{49}, "System", "Common", "", 68, R"(
         byte 0-1 system.common 0
         low 2-5 system.tune 0
         byte 6-11 system.common 2
         byte 13 system.common 8
         byte 17-18 system.common 12
         byte 20-21 system.common 14
         byte 24 system.common 16
         byte 27-31 system.common 21
         byte 35 system.common 27
         byte 40-51 system.common 28
         byte 53 system.common 41
         byte 55 system.common 42
         byte 57 system.common 44
         byte 59-60 system.common 45
         byte 62 system.common 48
         byte 64 system.common 49)"},
      {{50}, "System", "Ad", "", 8, "byte 0-4 system.adPart[0].params 0\n byte 6 system.adPart[0].params 5"},
      {{51}, "System", "AdInsAB", "", 36, insertionEffect("system.adPart[0].insertionA")},
      {{52}, "System", "AdInsAB", "", 36, insertionEffect("system.adPart[0].insertionB")},
      {{53},
       "System",
       "Meq",
       "",
       20,
       "byte 0-6 system.masterEq 0\n byte 8-10 system.masterEq 8\n"
       "byte 12-14 system.masterEq 11\n byte 16-19 system.masterEq 14"},
      {{54}, "System", "Mef", "", 38, insertionEffect("system.masterEffect") + "byte 36 system.masterEffectSettings 0"},
      {{57},
       "System",
       "UserQuickSetup",
       "",
       10,
       "name 0-7 system.quickSetup[#].name\n byte 8-9 system.quickSetup[#].params 0"},
      {{58}, "System", "Seq", "", 22, "byte 0-3 system.sequencer 0\n byte 11-13 system.sequencer 4"},
      {{59}, "System", "Remote", "", 5, "byte 0-1 system.remote 0"},
  };
  return all;
}

const ParameterBlocks::Kind& kindOf(unsigned type) {
  for (const ParameterBlocks::Kind& kind : systemKinds())
    if (kind.types.front() == type) return kind;
  return ParameterBlocks::kindOf(type);
}

// ---- What the editor corrects ----

struct Bank {
  std::uint8_t msb;
  std::uint8_t lsb;
  unsigned programs;
};
constexpr Bank kBanks[] = {
    {0x3F, 0x00, 128}, {0x3F, 0x01, 128}, {0x3F, 0x02, 128}, {0x3F, 0x03, 128}, {0x3F, 0x04, 128}, {0x3F, 0x05, 128},
    {0x3F, 0x06, 128}, {0x3F, 0x07, 128}, {0x3F, 0x08, 128}, {0x3F, 0x09, 128}, {0x3F, 0x0A, 128}, {0x3F, 0x20, 64},
    {0x3F, 0x28, 32},  {0x00, 0x00, 128}, {0x7F, 0x00, 1},   {0x3F, 0x3C, 16},  {0x3F, 0x32, 128}};

// A part keeps its selection, here that of a fresh part, unless it is given a voice that there is.
bool isVoice(const std::uint8_t* selection) {
  return std::any_of(std::begin(kBanks), std::end(kBanks), [&](const Bank& bank) {
    return selection[0] == bank.msb && selection[1] == bank.lsb && selection[2] < bank.programs;
  });
}

// ---- Blocks and units ----

struct Block {
  BulkAddress address;
  Steps steps;
  Bytes data;

  Bytes canonical() const {
    Bytes corrected = data;
    for (const Step& step : steps)
      if (step.routine == Routine::selection && !isVoice(&data[step.byte]))
        std::fill_n(&corrected[step.byte], 3, std::uint8_t{0});
    return ParameterBlocks::canonical(steps, corrected);
  }
};

using Random = std::mt19937;

std::uint8_t anyByte(Random& random) { return std::uint8_t(random() % 128); }

Block anyBlock(const InstrumentMap::Block& place, Random& random) {
  const ParameterBlocks::Kind& kind = kindOf(place.type);
  Block block{{place.hi, place.mid, place.lo}, ParameterBlocks::stepsOf(kind, place.index), Bytes(kind.length)};
  for (std::uint8_t& byte : block.data) byte = anyByte(random);
  for (const Step& step : block.steps)
    if (step.routine == Routine::selection && random() % 2 == 0) {  // hardly any three bytes select a voice
      const Bank& bank = kBanks[random() % std::size(kBanks)];
      block.data[step.byte] = bank.msb;
      block.data[step.byte + 1] = bank.lsb;
    }
  return block;
}

std::vector<Block> anyBlocks(InstrumentMap::List list, Random& random) {
  std::vector<Block> blocks;
  for (const InstrumentMap::Block& place : InstrumentMap::lists().at(list)) blocks.push_back(anyBlock(place, random));
  return blocks;
}

struct Unit {
  BulkAddress header;
  std::vector<Block> blocks;

  std::vector<Bytes> messages() const {
    std::vector<Bytes> all{dump(header)};
    for (const Block& block : blocks) all.push_back(dump(block.address, block.data));
    all.push_back(dump({0x0F, header.mid, header.lo}));
    return all;
  }
  Unit canonical() const {
    Unit unit = *this;
    for (Block& block : unit.blocks) block.data = block.canonical();
    return unit;
  }
  Unit cleared() const {
    Unit unit = *this;
    for (Block& block : unit.blocks) std::fill(block.data.begin(), block.data.end(), std::uint8_t{0});
    return unit;
  }
};

// The first difference of what was sent and what should have been; empty when there is none.
std::string difference(const std::vector<Bytes>& sent, const std::vector<Bytes>& expected) {
  if (sent.size() != expected.size())
    return std::to_string(sent.size()) + " messages instead of " + std::to_string(expected.size());
  for (std::size_t i = 0; i < sent.size(); ++i) {
    if (sent[i] == expected[i]) continue;
    const auto at = std::mismatch(sent[i].begin(), sent[i].end(), expected[i].begin(), expected[i].end()).first;
    return formatHex(expected[i]) + "\ncame as\n" + formatHex(sent[i]) + "\nfrom byte " +
           std::to_string(at - sent[i].begin());
  }
  return {};
}

// ---- Where the bytes are in the models ----

// "voice.element[3].params" in the published JSON.
const nlohmann::ordered_json& at(const nlohmann::ordered_json& json, const std::string& path) {
  std::string pointer = "/";
  for (const char c : path)
    if (c != ']') pointer += c == '.' || c == '[' ? '/' : c;
  return json.at(nlohmann::ordered_json::json_pointer(pointer));
}

// The first parameter or name that has another value than the block gave it; empty when there is none.
std::string misplaced(const nlohmann::ordered_json& json, const Block& block) {
  const Bytes data = block.canonical();
  for (const Step& step : block.steps) {
    if (step.routine >= Routine::off) continue;
    const auto& target = at(json, step.target);
    const auto differs = [&](unsigned index, unsigned value) {
      return target.at(index) == value ? std::string()
                                       : step.target + "[" + std::to_string(index) + "] is " + target.at(index).dump() +
                                             " instead of " + std::to_string(value);
    };
    std::string found;
    if (step.routine == Routine::name) {
      const std::string text(data.begin() + long(step.byte), data.begin() + long(step.byte + step.size));
      if (target != text.c_str()) found = step.target + " is " + target.dump();
    } else if (step.routine == Routine::selection) {
      for (unsigned i = 0; i < 3 && found.empty(); ++i) found = differs(i, data[step.byte + i]);
    } else if (step.routine == Routine::nibbles) {
      found = differs(step.index, data[step.byte] % 16U) + differs(step.index2, data[step.byte] / 16U);
    } else if (step.target == "system.tune") {  // one parameter of four nibbles
      if (step.index == 0) found = differs(0, data[2] * 4096U + data[3] * 256U + data[4] * 16U + data[5]);
    } else {
      found = differs(step.index, ParameterBlocks::valueOf(step, data));
    }
    if (!found.empty()) return formatAddress(block.address) + ": " + found;
  }
  return {};
}

// ---- The editor ----

// What `bda show --json` prints, as `bda apply` takes it.
ModelSet shownAndRead(const Target& target, const ModelSet& models) {
  const std::string text = toJson(models).dump(-1, ' ', true);
  nlohmann::ordered_json json;
  RC_ASSERT(!parseJson(text, json));
  ModelSet read = freshTarget(target, models.voice && models.voice->isDrum());
  RC_ASSERT(!fromJson(json, read));
  return read;
}

void expectCarried(const Target& target, const ModelSet& models) {
  const CarryCheck check = checkCarried(target, models);
  RC_ASSERT(check.refusal == "");
  RC_ASSERT(check.unchecked == "");
}

class Units : public testing::Test {
 protected:
  Units() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-units-XXXXXX").string();
    directory_ = ::mkdtemp(name.data());
    editor.emplace(directory_ / "library.db");
  }
  ~Units() override {
    editor.reset();
    std::filesystem::remove_all(directory_);
  }

  Record send(const Bytes& message, BDA::DevicePortNum port) {
    Record record = editor->handle(message, port, ++count_);
    RC_ASSERT(record.reason == "");
    return record;
  }
  void sendUnit(const std::vector<Bytes>& messages, BDA::DevicePortNum port) {
    for (const Bytes& message : messages) {
      const Record record = send(message, port);
      const bool isFooter = &message == &messages.back();
      RC_ASSERT(record.outcome == (isFooter ? Outcome::stored : Outcome::accepted));
      RC_ASSERT(record.missing.size() == 0U);
    }
  }
  // All of it as one change of the library.
  void sendUnitInARun(const std::vector<Bytes>& messages, BDA::DevicePortNum port) {
    EmbeddedEditor::Run run(*editor);
    for (const Bytes& message : messages) RC_ASSERT(send(message, port).missing.size() == 0U);
    run.commit();
  }
  // What is sent in answer to a request; all of it to `answerPort`.
  std::vector<Bytes> ask(BulkAddress address, BDA::DevicePortNum port, BDA::DevicePortNum answerPort) {
    const Record record = send(request(address), port);
    RC_ASSERT(record.outcome == Outcome::answered);
    std::vector<Bytes> messages;
    for (const auto& sent : record.sent) {
      RC_ASSERT(sent.port == answerPort);
      messages.push_back(sent.bytes);
    }
    return messages;
  }

  // Few runs: each draws thousands of bytes, and what they are does not depend on the size that grows with the runs.
  template <typename Property>
  static void check(Property property) {
    rc::detail::TestParams params = rc::detail::configuration().testParams;
    params.maxSuccess = 2;
    const auto result = rc::detail::checkTestable(
        [&] {
          Random random(
              *rc::gen::noShrink(rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::uint32_t>(0, 0xFFFFFFFF))));
          property(random);
        },
        rc::detail::TestMetadata(), params);
    if (result.template is<rc::detail::SuccessResult>()) return;
    std::ostringstream text;
    rc::detail::printResultMessage(result, text);
    ADD_FAILURE() << text.str();
  }
  static BDA::DevicePortNum anyPort(Random& random, bool ofRequest) {
    constexpr BDA::DevicePortNum kPorts[] = {BDA::DevicePort_Main, BDA::DevicePort_Echo, BDA::DevicePort_Remote,
                                             BDA::DevicePort_Thru};
    return kPorts[random() % (ofRequest ? 3 : 4)];  // a request that arrives on the last is not answered
  }

  std::optional<EmbeddedEditor> editor;

 private:
  std::filesystem::path directory_;
  std::uint64_t count_ = 0;
};

// ---- From header to footer ----

struct UnitKind {
  const char* name;
  unsigned headerType;
  InstrumentMap::List blocks;
  Bank bank = {0x3F, 0x00, 128};  // of a part whose voice it is
};

void PrintTo(const UnitKind& kind, std::ostream* out) { *out << kind.name; }

class WholeUnit : public Units, public testing::WithParamInterface<UnitKind> {
 protected:
  // The live editor as the unit needs it: a part plays the kind of voice that the part's bank says.
  void prepare(const Unit& unit) {
    if (GetParam().headerType != 9) return;
    ModelSet multi = editor->tools().live(EditBuffer::multi);
    const std::uint8_t part = unit.header.lo;
    RC_ASSERT(multi.multi->part[part].bankProgram.assign({GetParam().bank.msb, GetParam().bank.lsb, 0}));
    RC_ASSERT(editor->tools().replaceLive(EditBuffer::multi, 0, multi));
  }
  static Unit anyUnit(Random& random) {
    std::vector<BulkAddress> headers;
    for (const InstrumentMap::Block& header : InstrumentMap::lists().at(InstrumentMap::header))
      if (header.type == GetParam().headerType) headers.push_back({header.hi, header.mid, header.lo});
    return {headers.at(random() % headers.size()), anyBlocks(GetParam().blocks, random)};
  }
};

INSTANTIATE_TEST_SUITE_P(
    Every, WholeUnit,
    testing::Values(
        UnitKind{"PresetNormalVoice", 1, InstrumentMap::normalVoice},
        UnitKind{"GmNormalVoice", 2, InstrumentMap::normalVoice},
        UnitKind{"UserNormalVoice", 3, InstrumentMap::normalVoice},
        UnitKind{"NormalVoiceEditBuffer", 4, InstrumentMap::normalVoice},
        UnitKind{"PresetDrumVoice", 5, InstrumentMap::drumVoice},
        UnitKind{"UserDrumVoice", 6, InstrumentMap::drumVoice}, UnitKind{"GmDrumVoice", 7, InstrumentMap::drumVoice},
        UnitKind{"DrumVoiceEditBuffer", 8, InstrumentMap::drumVoice},
        UnitKind{"NormalVoiceOfAPart", 9, InstrumentMap::normalVoice},
        UnitKind{"DrumVoiceOfAPart", 9, InstrumentMap::drumVoice, {0x3F, 0x20, 64}},
        UnitKind{"MixingVoiceOfAPart", 9, InstrumentMap::normalVoice, {0x3F, 0x3C, 16}},
        UnitKind{"MixingVoice", 10, InstrumentMap::normalVoice}, UnitKind{"MultiEditBuffer", 11, InstrumentMap::multi},
        UnitKind{"Performance", 12, InstrumentMap::performance},
        UnitKind{"PerformanceEditBuffer", 13, InstrumentMap::performance},
        UnitKind{"Master", 14, InstrumentMap::master}, UnitKind{"MasterEditBuffer", 15, InstrumentMap::master},
        UnitKind{"Remote", 16, InstrumentMap::remote}, UnitKind{"RemoteEditBuffer", 17, InstrumentMap::remote}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(WholeUnit, OfRandomBytesComesBackWithEachByteInItsPlaceAndOutlivesShowAndApply) {
  check([&](Random& random) {
    const Unit unit = anyUnit(random);
    prepare(unit);
    const BDA::DevicePortNum port = anyPort(random, true);
    const auto answer = [&] {
      return ask(unit.header, port, GetParam().blocks == InstrumentMap::remote ? BDA::DevicePort_Remote : port);
    };
    const std::vector<Bytes> canonical = unit.canonical().messages();

    sendUnit(unit.messages(), anyPort(random, false));
    RC_ASSERT(difference(answer(), canonical) == "");
    sendUnitInARun(answer(), anyPort(random, false));
    RC_ASSERT(difference(answer(), canonical) == "");

    const Target target = parseTarget(formatAddress(unit.header));
    const ModelSet models = loadTarget(*editor, target);
    const nlohmann::ordered_json json = toJson(models);
    for (const Block& block : unit.blocks) RC_ASSERT(misplaced(json, block) == "");

    sendUnitInARun(unit.cleared().messages(), anyPort(random, false));
    RC_ASSERT_FALSE(loadTarget(*editor, target) == models);
    const ModelSet read = shownAndRead(target, models);
    expectCarried(target, read);
    storeTarget(*editor, target, read);
    RC_ASSERT(difference(answer(), canonical) == "");
  });
}

// ---- Blocks that stand alone ----

TEST_F(Units, SystemBlocksOfRandomBytesComeBackWithEachByteInItsPlaceAndOutliveShowAndApply) {
  check([&](Random& random) {
    const std::vector<Block> blocks = anyBlocks(InstrumentMap::system, random);
    const auto sendAll = [&](auto dataOf) {
      for (const Block& block : blocks) {
        const Record record = send(dump(block.address, dataOf(block)), anyPort(random, false));
        RC_ASSERT(record.outcome == Outcome::completed);
      }
    };
    const auto expectCanonical = [&] {
      for (const Block& block : blocks) {
        const BDA::DevicePortNum port = anyPort(random, true);
        RC_ASSERT(difference(ask(block.address, port, port), {dump(block.address, block.canonical())}) == "");
      }
    };

    sendAll([](const Block& block) { return block.data; });
    expectCanonical();
    sendAll([](const Block& block) { return block.canonical(); });
    expectCanonical();

    const Target target = parseTarget("system");
    const ModelSet models = loadTarget(*editor, target);
    const nlohmann::ordered_json json = toJson(models);
    for (const Block& block : blocks) RC_ASSERT(misplaced(json, block) == "");

    sendAll([](const Block& block) { return Bytes(block.data.size()); });
    RC_ASSERT_FALSE(loadTarget(*editor, target) == models);
    const ModelSet read = shownAndRead(target, models);
    expectCarried(target, read);
    storeTarget(*editor, target, read);
    expectCanonical();
  });
}

TEST_F(Units, FavouritesOfRandomBytesComeBackAsTheyWentAndStandAtTheirVoices) {
  check([&](Random& random) {
    std::vector<Block> banks;
    for (const InstrumentMap::Block& place : InstrumentMap::lists().at(InstrumentMap::favorite)) {
      Bytes flags(InstrumentMap::kExecuters.at(place.executer - 1).dataLength);
      for (std::uint8_t& flag : flags) flag = anyByte(random);
      banks.push_back({{place.hi, place.mid, place.lo}, {}, flags});
    }
    for (int time = 0; time < 2; ++time) {
      for (const Block& bank : banks) {
        const Record record = send(dump(bank.address, bank.data), anyPort(random, false));
        RC_ASSERT(record.outcome == Outcome::completed);
      }
      for (const Block& bank : banks) {
        const BDA::DevicePortNum port = anyPort(random, true);
        RC_ASSERT(difference(ask(bank.address, port, port), {dump(bank.address, bank.data)}) == "");
      }
    }
    for (const Block& bank : banks)
      for (std::size_t voice = 0; voice < bank.data.size(); ++voice) {
        const std::optional<ContentId> id = contentOfHeader({bank.address.mid, std::uint8_t(voice)});
        RC_ASSERT(id.has_value());
        RC_ASSERT(editor->library().favourite(*id) == bank.data[voice]);
      }
  });
}

}  // namespace
}  // namespace Editor
