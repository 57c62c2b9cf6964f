#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <memory>
#include <set>

#include "ParameterBlocks.h"
#include "TableFixture.h"
#include "support/AssistantFixture.h"

// Whole units, header, parameter blocks and footer, through the assistant into an editor that keeps what is stored, and
// out of it again by a request for the header.

namespace BDA {
namespace {

using ParameterBlocks::Models;
using Testing::FakeJobTools;

// What a set of models holds, under their paths.
struct Values {
  std::map<std::string, std::vector<std::uint16_t>> groups;
  std::map<std::string, std::string> names;

  explicit Values(const Models& models) {
    for (const auto& [path, group] : models.groups)
      for (std::size_t index = 0; index < 256; ++index) groups[path].push_back((*group)[index]);
    for (const auto& [path, name] : models.names) names[path] = name->text;
  }
  Values() = default;

  void copyTo(const Models& models) const {
    for (const auto& [path, values] : groups)
      if (const auto found = models.groups.find(path); found != models.groups.end())
        for (std::size_t index = 0; index < values.size(); ++index) (*found->second)[index] = values[index];
    for (const auto& [path, text] : names)
      if (const auto found = models.names.find(path); found != models.names.end()) found->second->text = text;
  }
};

class KeepingJobTools : public FakeJobTools {
 public:
  using FakeJobTools::FakeJobTools;

  std::vector<std::string> stores;  // the addresses, in order
  std::vector<std::string> loads;

  unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) override {
    stores.push_back(Testing::textOf({mid, lo}));
    const unsigned long result = FakeJobTools::storeForReceivedSysExBulk(model, mid, lo);
    const std::uint16_t voice = mid == 0x30 ? lo : 0;
    Values values(temporaryModels(voice));
    if (mid == 0x30)  // the voice of a part changes, not which voice it is
      std::erase_if(values.groups, [](const auto& group) { return group.first.ends_with("bankProgram"); });
    static const std::set<unsigned> editBuffers{0x0F, 0x2F, 0x30, 0x4F, 0x5F, 0x6F, 0x7F};
    if (editBuffers.count(mid) == 0)
      kept_[{mid, lo}] = values;
    else
      values.copyTo(liveModels(voice));
    return result;
  }
  unsigned long loadForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) override {
    loads.push_back(Testing::textOf({mid, lo}));
    const unsigned long result = FakeJobTools::loadForReceivedSysExBulk(model, mid, lo);
    kept_[{mid, lo}].copyTo(temporaryModels(0));
    return result;
  }

  Models temporaryModels(std::uint16_t voice) {
    Models models;
    if (temporaryVoice(voice) != nullptr) models.add(*temporaryVoice(voice));
    if (temporaryMulti != nullptr) models.add(*temporaryMulti);
    if (temporaryArpeggio != nullptr) models.add(*temporaryArpeggio);
    if (temporaryMaster != nullptr) models.add(*temporaryMaster);
    if (temporaryRemote != nullptr) models.add(*temporaryRemote);
    return models;
  }
  Models liveModels(std::uint16_t voice) {
    Models models;
    models.add(liveVoice(voice));
    models.add(liveMulti());
    models.add(liveArpeggio());
    models.add(liveMaster());
    models.add(liveRemote());
    return models;
  }

 private:
  std::map<std::pair<unsigned, unsigned>, Values> kept_;
};

class SentMessages : public BulkDumpBridge {
 public:
  using BulkDumpBridge::BulkDumpBridge;
  void sendSysEx(const unsigned char* message, std::uint32_t length, DevicePortNum) override {
    messages.emplace_back(message, message + length);
  }
  std::vector<Bytes> messages;
};

struct Unit {
  std::string header;
  std::vector<std::string> addresses;  // of the blocks
  std::vector<Bytes> data;
  std::string footer;
};

class WholeUnits : public testing::Test {
 protected:
  WholeUnits() { record.records = false; }

  static int listOf(const Opening& opening) {
    if (opening.type <= 4 || opening.type == 10) return InstrumentMap::normalVoice;
    if (opening.type <= 8) return InstrumentMap::drumVoice;
    if (opening.type == 9) return opening.bankType == 2 ? InstrumentMap::drumVoice : InstrumentMap::normalVoice;
    if (opening.type == 11) return InstrumentMap::multi;
    if (opening.type <= 13) return InstrumentMap::performance;
    return opening.type <= 15 ? InstrumentMap::master : InstrumentMap::remote;
  }
  static const std::vector<InstrumentMap::Block>& blocksOf(const Opening& opening) {
    return InstrumentMap::lists().at(std::size_t(listOf(opening)));
  }
  static std::string addressOf(const InstrumentMap::Block& block) {
    return Testing::textOf({block.hi, block.mid, block.lo});
  }

  // The live editor as the header needs it.
  void prepare(const Opening& opening) {
    const std::uint16_t voice = opening.type == 9 ? bytesOf(opening.address)[2] : 0;
    tools.liveVoice(voice, listOf(opening) != InstrumentMap::drumVoice);
    for (auto& part : tools.liveMulti().parts) {
      part->bankProgram[0] = opening.bank.msb;
      part->bankProgram[1] = opening.bank.lsb;
    }
  }

  // A unit with data of `make(length)`.
  template <typename Make>
  static Unit unitOf(const Opening& opening, Make make) {
    Unit unit;
    unit.header = opening.address;
    unit.footer = "0F" + unit.header.substr(2);
    for (const InstrumentMap::Block& block : blocksOf(opening)) {
      unit.addresses.push_back(addressOf(block));
      unit.data.push_back(make(ParameterBlocks::kindOf(block.type).length));
    }
    return unit;
  }
  static Unit canonical(const Opening& opening, Unit unit) {
    for (std::size_t i = 0; i < unit.data.size(); ++i) {
      const InstrumentMap::Block& block = blocksOf(opening)[i];
      unit.data[i] = ParameterBlocks::canonical(
          ParameterBlocks::stepsOf(ParameterBlocks::kindOf(block.type), block.index), unit.data[i]);
    }
    return unit;
  }

  BulkMsgType sendBytes(const Bytes& message) {
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[message.size()]);
    std::copy(message.begin(), message.end(), exact.get());
    return assistant.receiveBulkDump(exact.get(), Testing::lengthOf(message), DevicePort_Main);
  }
  Lines send(const std::string& address, const Bytes& data = {}) {
    EXPECT_EQ(sendBytes(Testing::dumpMessage(address, data)), BulkMsg_BulkDump);
    return reportsOf(traceScope.take());
  }
  void sendUnit(const Unit& unit) {
    EXPECT_EQ(send(unit.header), Lines{});
    for (std::size_t i = 0; i < unit.addresses.size(); ++i)
      EXPECT_EQ(send(unit.addresses[i], unit.data[i]), Lines{}) << unit.addresses[i];
    EXPECT_EQ(send(unit.footer), Lines{});
  }
  // All that is sent in answer to a request, without ports.
  std::vector<Bytes> request(const std::string& address) {
    bridge.messages.clear();
    EXPECT_EQ(sendBytes(Testing::requestMessage(address)), BulkMsg_BulkRequest);
    return bridge.messages;
  }
  static std::vector<Bytes> messagesOf(const Unit& unit) {
    std::vector<Bytes> messages{Testing::dumpMessage(unit.header)};
    for (std::size_t i = 0; i < unit.addresses.size(); ++i)
      messages.push_back(Testing::dumpMessage(unit.addresses[i], unit.data[i]));
    messages.push_back(Testing::dumpMessage(unit.footer));
    return messages;
  }
  static std::string middleAndLow(const std::string& address) { return address.substr(3); }

  static std::string notFound(const std::string& address) {
    const Bytes bytes = bytesOf(address);
    char text[120];
    std::snprintf(
        text, sizeof text,
        "Receiver.cpp [BDA::BulkDumpReceiver::receiveBulkDump] error : not found block [ %02x, %02x, %02x ]\n",
        unsigned{bytes[0]}, unsigned{bytes[1]}, unsigned{bytes[2]});
    return text;
  }
  static std::string refused(unsigned result) {
    char text[120];
    std::snprintf(text, sizeof text,
                  "Receiver.cpp [BDA::BulkDumpReceiver::receiveBulkDump] error : setBulkDumpMessage() ! "
                  "[ BDAErr = 0x%02x ] \n",
                  result);
    return text;
  }

  Testing::Calls record;
  Testing::TraceScope traceScope;
  Testing::FakeEventPortManager manager{record};
  KeepingJobTools tools{record};
  Testing::FakeWork work{record};
  std::vector<CMA::JobReceiver*> jobs;
  Testing::OpenAssistant assistant{&manager, &jobs, &jobs, &tools, &work, false};
  SentMessages bridge{&assistant};
};

// Those that hold something: without the voice of a part whose bank is none.
std::vector<Opening> unitOpenings() {
  std::vector<Opening> openings;
  for (const Opening& opening : kOpenings)
    if (opening.address != nullptr && !(opening.type == 9 && opening.bankType == 0)) openings.push_back(opening);
  return openings;
}

class WholeUnit : public WholeUnits, public testing::WithParamInterface<Opening> {};

INSTANTIATE_TEST_SUITE_P(Of, WholeUnit, testing::ValuesIn(unitOpenings()), nameOf);

TEST_P(WholeUnit, ComesBackOnRequestInItsCanonicalForm) {
  prepare(GetParam());
  const Unit unit = unitOf(GetParam(), Testing::pattern);
  sendUnit(unit);
  EXPECT_EQ(tools.stores, Lines{middleAndLow(unit.header)});
  EXPECT_EQ(request(unit.header), messagesOf(canonical(GetParam(), unit)));
}

TEST_P(WholeUnit, IsLoadedForARequestUnlessItIsAnEditBuffer) {
  prepare(GetParam());
  const std::string header = GetParam().address;
  EXPECT_EQ(request(header).size(), blocksOf(GetParam()).size() + 2);
  const std::set<unsigned> editBuffers{4, 8, 9, 11, 13, 15, 17};
  EXPECT_EQ(tools.loads, editBuffers.count(GetParam().type) == 1 ? Lines{} : Lines{middleAndLow(header)});
  EXPECT_EQ(tools.stores, Lines{});
}

TEST_P(WholeUnit, GoesOnAfterBlocksThatDoNotFit) {
  prepare(GetParam());
  const Unit unit = unitOf(GetParam(), Testing::pattern);
  std::vector<InstrumentMap::Block> unfitting;
  for (const int list : {InstrumentMap::normalVoice, InstrumentMap::drumVoice, InstrumentMap::multi,
                         InstrumentMap::performance, InstrumentMap::master, InstrumentMap::remote})
    if (list != listOf(GetParam()))
      for (const InstrumentMap::Block& block : InstrumentMap::lists().at(std::size_t(list))) unfitting.push_back(block);

  EXPECT_EQ(send(unit.header), Lines{});
  for (std::size_t i = 0; i < unfitting.size(); ++i) {
    const std::string address = addressOf(unfitting[i]);
    const Lines told = send(address, Bytes(ParameterBlocks::kindOf(unfitting[i].type).length, 0x7E));
    ASSERT_FALSE(told.empty()) << address;
    EXPECT_EQ(told.back(), notFound(address));
    const bool isOfVoice = unfitting[i].type <= 80;  // only these say why
    EXPECT_EQ(told.size(), isOfVoice ? 2u : 1u) << address;
    if (i < unit.addresses.size()) {
      EXPECT_EQ(send(unit.addresses[i], unit.data[i]), Lines{});
    }
  }
  for (std::size_t i = unfitting.size(); i < unit.addresses.size(); ++i)
    EXPECT_EQ(send(unit.addresses[i], unit.data[i]), Lines{});
  EXPECT_EQ(send("05 05 05", {1}), Lines{notFound("05 05 05")});
  EXPECT_EQ(send(unit.footer), Lines{});
  EXPECT_EQ(tools.stores, Lines{middleAndLow(unit.header)});
  EXPECT_EQ(request(unit.header), messagesOf(canonical(GetParam(), unit)));
}

TEST_P(WholeUnit, EndsWithABlockOfTheWrongLength) {
  prepare(GetParam());
  const Unit unit = unitOf(GetParam(), Testing::pattern);
  for (std::size_t bad = 0; bad < unit.addresses.size(); bad += 3) {
    EXPECT_EQ(send(unit.header), Lines{});
    Bytes data = unit.data[bad];
    data.pop_back();
    EXPECT_EQ(send(unit.addresses[bad], data),
              (Lines{ParameterBlocks::wrongLength(ParameterBlocks::kindOf(blocksOf(GetParam())[bad].type), data.size()),
                     refused(0x88000000)}));
    // Nothing is open now: blocks and footer are refused.
    EXPECT_EQ(send(unit.addresses[0], unit.data[0]).back(), notFound(unit.addresses[0]));
    EXPECT_EQ(send(unit.footer).back(), notFound(unit.footer));
  }
  EXPECT_EQ(tools.stores, Lines{});
}

TEST_P(WholeUnit, MayLackBlocksAndHaveThemInAnyOrder) {
  prepare(GetParam());
  const Unit unit = unitOf(GetParam(), Testing::pattern);
  EXPECT_EQ(send(unit.header), Lines{});
  Unit expected = canonical(GetParam(), unit);
  for (std::size_t i = unit.addresses.size(); i-- > 0;) {
    if (i % 2 == 1)  // not sent: as the header left it
      expected.data[i] = Bytes(unit.data[i].size(), 0);
    else
      EXPECT_EQ(send(unit.addresses[i], unit.data[i]), Lines{});
  }
  EXPECT_EQ(send(unit.footer), Lines{});
  EXPECT_EQ(request(unit.header), messagesOf(expected));
}

TEST_P(WholeUnit, IsNotStoredWithoutItsFooterOrByAnother) {
  prepare(GetParam());
  const Unit unit = unitOf(GetParam(), Testing::pattern);
  EXPECT_EQ(send(unit.header), Lines{});
  EXPECT_EQ(send(unit.addresses[0], unit.data[0]), Lines{});
  EXPECT_EQ(send("0F 00 77").back(), notFound("0F 00 77"));
  EXPECT_EQ(tools.stores, Lines{});
  EXPECT_EQ(send(unit.footer), Lines{});
  EXPECT_EQ(tools.stores, Lines{middleAndLow(unit.header)});
}

RC_GTEST_FIXTURE_PROP(WholeUnits, AnyUnitComesBackAndItsAnswerChangesNothing, ()) {
  const std::vector<Opening> openings = unitOpenings();
  const Opening opening = openings[*rc::gen::inRange<std::size_t>(0, openings.size())];
  prepare(opening);
  const Unit unit = unitOf(opening, [](std::size_t length) {
    return *rc::gen::container<Bytes>(length, rc::gen::inRange<std::uint8_t>(0, 0x80));
  });
  sendUnit(unit);
  const Unit back = canonical(opening, unit);
  RC_ASSERT(request(unit.header) == messagesOf(back));
  sendUnit(back);
  RC_ASSERT(request(unit.header) == messagesOf(back));
}

// ---- The voice of a multi part, by its bank ----

struct BankCase {
  CMA::BankSelect select;
  unsigned type;
};
// Every bank of an editor by its code, the swallowed one, and two that are none.
std::vector<BankCase> banks() {
  std::vector<BankCase> all;
  for (std::size_t code = 0; code < 16; ++code) {
    const bool isDrum = code == 11 || code == 12 || code == 14;
    all.push_back({CMA::voiceBankSelTable[code], isDrum ? 2U : code == 15 ? 3U : 1U});
  }
  all.push_back({kSwallowedBank, 4});
  all.push_back({kNoBank, 0});
  all.push_back({{0x3F, 0x7F}, 0});
  return all;
}

class VoiceOfPart : public WholeUnits, public testing::WithParamInterface<BankCase> {
 protected:
  Opening opening(const std::string& address) const { return {9, address.c_str(), GetParam().select, GetParam().type}; }
};

// Parts whose voice has blocks at all.
class VoiceOfPlayingPart : public VoiceOfPart {};

std::vector<BankCase> banksOfVoices() {
  std::vector<BankCase> all = banks();
  std::erase_if(all, [](const BankCase& bank) { return bank.type == 0 || bank.type == 4; });
  return all;
}

std::string nameOfBank(const testing::TestParamInfo<BankCase>& test) {
  char name[30];
  std::snprintf(name, sizeof name, "Bank%02X%02X", unsigned{test.param.select.msb}, unsigned{test.param.select.lsb});
  return name;
}
INSTANTIATE_TEST_SUITE_P(Of, VoiceOfPart, testing::ValuesIn(banks()), nameOfBank);
INSTANTIATE_TEST_SUITE_P(Of, VoiceOfPlayingPart, testing::ValuesIn(banksOfVoices()), nameOfBank);

TEST_P(VoiceOfPart, TakesTheBlocksOfItsKindOfVoiceOnly) {
  for (const std::string header : {"0E 30 00", "0E 30 03", "0E 30 0F"}) {
    const Opening unitOpening = opening(header);
    prepare(unitOpening);
    const Lines told = send(header);
    EXPECT_EQ(told, GetParam().type == 4 ? Lines{refused(0x80000000)} : Lines{});
    for (const int list : {InstrumentMap::normalVoice, InstrumentMap::drumVoice}) {
      const bool fits =
          list == InstrumentMap::drumVoice ? GetParam().type == 2 : GetParam().type == 1 || GetParam().type == 3;
      for (const InstrumentMap::Block& block : InstrumentMap::lists().at(std::size_t(list))) {
        const Lines reports = send(addressOf(block), Testing::pattern(ParameterBlocks::kindOf(block.type).length));
        ASSERT_EQ(reports.empty(), fits) << addressOf(block);
        if (!fits) {
          ASSERT_EQ(reports.back(), notFound(addressOf(block)));
        }
      }
    }
  }
}

TEST_P(VoiceOfPlayingPart, IsWrittenToTheTemporaryVoiceOfThePart) {
  const std::string header = "0E 30 0B";
  prepare(opening(header));
  send(header);
  const bool isDrum = GetParam().type == 2;
  Bytes common(isDrum ? 72 : 80, 0);
  common[24] = 0x5A;
  EXPECT_EQ(send(isDrum ? "46 00 00" : "40 00 00", common), Lines{});
  ASSERT_NE(tools.temporaryVoice(11), nullptr);
  EXPECT_EQ(tools.temporaryVoice(0), nullptr);
  EXPECT_EQ(tools.temporaryVoice(11)->common[0], 0x5A);
  EXPECT_EQ(tools.temporaryVoice(11)->elements.empty(), isDrum);
}

TEST_P(VoiceOfPart, ComesBackOnRequest) {
  const std::string header = "0E 30 0B";
  const Opening unitOpening = opening(header);
  prepare(unitOpening);
  if (GetParam().type == 4) {  // such a request is answered with nothing
    EXPECT_EQ(sendBytes(Testing::requestMessage(header)), BulkMsg_RequestSkipped);
    EXPECT_TRUE(bridge.messages.empty());
  } else if (GetParam().type == 0) {
    EXPECT_EQ(request(header), std::vector<Bytes>{});
    EXPECT_EQ(reportsOf(traceScope.take()),
              (Lines{"BulkTable.cpp [BDA::BulkTable::getBulkBlockHolderForBulkReq] error : invalid bank Type ! "
                     "[ bank = 0 ] \n",
                     "Receiver.cpp [BDA::BulkRequestReceiver::receiveBulkRequest] error : not found address ! "
                     "[ 0e 30 0b ]\n"}));
  } else {
    const Unit unit = unitOf(unitOpening, Testing::pattern);
    sendUnit(unit);
    EXPECT_EQ(request(header), messagesOf(canonical(unitOpening, unit)));
  }
}

// By contract: a part whose bank is none has its voice replaced by one that nothing was written to.
TEST_F(WholeUnits, AVoiceOfAPartWithoutABankIsStoredFreshlyInitialised) {
  prepare({9, "0E 30 03", kNoBank, 0});
  EXPECT_EQ(send("0E 30 03"), Lines{});
  EXPECT_EQ(send("40 00 00", Testing::pattern(80)).back(), notFound("40 00 00"));
  EXPECT_EQ(send("0F 30 03"), Lines{});
  EXPECT_EQ(tools.stores, Lines{"30 03"});
  EXPECT_EQ(tools.temporaryVoice(3)->common[0], 0);
}

TEST_F(WholeUnits, ASwallowedHeaderEndsTheUnitThatWasOpen) {
  prepare({9, "0E 30 03", kSwallowedBank, 4});
  EXPECT_EQ(send("0E 5F 00"), Lines{});
  EXPECT_EQ(send("36 10 00", Testing::pattern(20)), Lines{});
  EXPECT_EQ(send("0E 30 03"), Lines{refused(0x80000000)});
  EXPECT_EQ(send("36 10 00", Testing::pattern(20)), Lines{notFound("36 10 00")});
  EXPECT_EQ(send("0F 30 03").back(), notFound("0F 30 03"));
  EXPECT_EQ(send("0F 5F 00").back(), notFound("0F 5F 00"));
  EXPECT_EQ(tools.stores, Lines{});
}

// The bank says one kind of voice, the live voice is of the other: its elements are not there.
TEST_F(WholeUnits, ElementsOfAPartThatPlaysADrumVoiceAreRefusedAndEndTheUnit) {
  tools.liveVoice(3, false);
  tools.liveMulti().parts[3]->bankProgram[0] = kPresetBank.msb;
  tools.liveMulti().parts[3]->bankProgram[1] = kPresetBank.lsb;
  EXPECT_EQ(send("0E 30 03"), Lines{});
  EXPECT_EQ(send("40 00 00", Testing::pattern(80)), Lines{});
  EXPECT_EQ(send("41 00 00", Testing::pattern(88)),
            (Lines{ParameterBlocks::noModel(ParameterBlocks::kindOf(69)), refused(0x80000000)}));
  EXPECT_EQ(send("0F 30 03").back(), notFound("0F 30 03"));
  EXPECT_EQ(tools.stores, Lines{});
}

TEST_F(WholeUnits, ARequestOfAnEditBufferReadsTheLiveModelsAndTheNextUnitTheTemporaryOnesAgain) {
  tools.liveMulti().masterEq[0] = 11;
  const std::vector<Bytes> answer = request("0E 5F 00");
  EXPECT_EQ(answer.at(6), Testing::dumpMessage("36 10 00", [] {
              Bytes data(20, 0);
              data[0] = 11;
              return data;
            }()));
  EXPECT_EQ(send("0E 5F 00"), Lines{});
  EXPECT_EQ(send("36 10 00", Bytes(20, 22)), Lines{});
  EXPECT_EQ(tools.liveMulti().masterEq[0], 11);
  EXPECT_EQ(tools.temporaryMulti->masterEq[0], 22);
}

TEST_F(WholeUnits, ALoadInTheMiddleOfAUnitTakesItsPlaceInTheOneTemporaryModel) {
  EXPECT_EQ(send("0E 40 01"), Lines{});
  EXPECT_EQ(send("30 10 00", Bytes(20, 22)), Lines{});
  request("0E 40 02");
  EXPECT_EQ(tools.temporaryMulti->masterEq[0], 0);
  EXPECT_EQ(send("0F 40 01").back(), notFound("0F 40 01"));
  EXPECT_EQ(tools.stores, Lines{});
}

TEST_F(WholeUnits, ARefusedVoiceSelectionComesBackAsItWas) {
  record.records = true;
  record.fail("correctBankSelAndProgramNum");
  const Opening opening{12, "0E 40 05"};
  const Unit unit = unitOf(opening, Testing::pattern);
  sendUnit(unit);
  Unit expected = canonical(opening, unit);
  for (std::size_t i = 0; i < expected.addresses.size(); ++i)
    if (expected.addresses[i].starts_with("31")) std::fill_n(expected.data[i].begin() + 1, 3, std::uint8_t{0});
  EXPECT_EQ(request(unit.header), messagesOf(expected));
}

}  // namespace
}  // namespace BDA
