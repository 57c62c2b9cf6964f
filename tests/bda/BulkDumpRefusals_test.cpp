// Each reason for which a message can be refused, as an observer is told it: what arrives, and what goes wrong in the
// editor meanwhile. A reason that no message leads to stands below with what keeps it away.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "AddressRows.h"
#include "ExecuterNumbers.h"
#include "FileDumpFixture.h"
#include "bda/BulkDumpObserver.h"
#include "support/Allocations.h"
#include "support/AssistantFixture.h"
#include "support/RecordingObserver.h"

namespace {

using namespace Testing;
using namespace BDA;
using Refusal = BulkDumpRefusal;

// All of them, in the order of their declaration: the compiler misses one that is not here.
// clang-format off
#define BDA_FOR_EACH_REFUSAL(DO)                                                                            \
  DO(none)                                                                                                  \
  DO(malformedMessage) DO(wrongByteCount) DO(wrongCheckSum) DO(deviceNumberOff) DO(wrongDeviceNumber)       \
  DO(receiveSwitchOff)                                                                                      \
  DO(wrongMode) DO(wrongVoiceTypeInMode) DO(editCompare) DO(sampleAudition) DO(mixingVoicesFull)            \
  DO(unknownModeResult) DO(loadingOrSaving)                                                                 \
  DO(noBlock) DO(headerMismatch) DO(unknownHeader) DO(unknownVoiceType) DO(wrongBank) DO(notRequestedAlone) \
  DO(requestOnly) DO(wrongBlockType)                                                                        \
  DO(wrongDataLength) DO(modelMissing) DO(wrongDirection) DO(dumpNotCreated) DO(blockFailed) DO(noExecuter) \
  DO(notLoaded) DO(notStored)                                                                               \
  DO(nameNotFound) DO(nameTooLong) DO(noSuchFavorites) DO(favoriteNotSet) DO(favoriteNotRead)               \
  DO(fileDumpTooLong) DO(emptyFileDump) DO(fileDumpNameCutShort) DO(fileDumpDataCutShort) DO(notPacked)     \
  DO(notUnpacked) DO(nameNotUnpacked) DO(noContentType)                                                     \
  DO(noContentNumber) DO(mixingVoicesNotCounted) DO(mixingVoiceNotRemoved) DO(overwriteRefused)             \
  DO(contentNotRemoved) DO(noFilePath) DO(fileNotOpened)                                                    \
  DO(fileNotClosed) DO(dataNotOpened) DO(dataNotClosed) DO(dataNotWritten) DO(dataNotRead) DO(nameNotSet)   \
  DO(nameNotRead)                                                                                           \
  DO(noBridge) DO(outOfMemory) DO(serviceThrew) DO(notConstructed)
// clang-format on

#define BDA_VALUE(name) Refusal::name,
constexpr Refusal kAll[] = {BDA_FOR_EACH_REFUSAL(BDA_VALUE)};

// Compiled editors rely on the numbers: what is new stands behind all others.
constexpr bool isNumberedInThisOrder() {
  unsigned number = 0;
  for (const Refusal refusal : kAll)
    if (unsigned(refusal) != number++) return false;
  return true;
}
static_assert(isNumberedInThisOrder());
static_assert(unsigned(Refusal::notConstructed) == 60);

std::string nameOf(Refusal refusal) {
#define BDA_CASE(name) \
  case Refusal::name:  \
    return #name;
  switch (refusal) { BDA_FOR_EACH_REFUSAL(BDA_CASE) }
  return "?";
}

constexpr struct {
  Refusal refusal;
  const char* reason;
} kReachedByNoMessage[] = {
    {Refusal::none, "nothing is refused"},
    {Refusal::wrongBlockType, "the address map gives the blocks of insertion effects A and B to their converters only"},
    {Refusal::wrongDirection, "a footer is received or sent, and only the received one is handed to the store"},
    {Refusal::notPacked, "there is nothing that cannot be packed"},
    {Refusal::noContentType, "every file dump that the address map knows is of a type of content"},
    {Refusal::noContentNumber, "and has a number, or is refused as it cannot be written"},
};

class Refusals;
using Editor = std::function<void(Refusals&)>;

struct Message {
  Bytes bytes;
  BulkMsgType kind;  // what receiveBulkDump returns
};
Message dump(const char* address, const Bytes& data = {}) { return {dumpMessage(address, data), BulkMsg_BulkDump}; }
Message ask(const char* address) { return {requestMessage(address), BulkMsg_BulkRequest}; }
Message other(BulkMsgType kind, const char* bytes) { return {bytesOf(bytes), kind}; }

struct Row {
  Refusal refusal;
  const char* when;
  Message arrives;
  Editor editor = {};                // how it misbehaves, or what it is like
  std::vector<Message> before = {};  // what came while it was well
  std::uint32_t handedOver = 0;

  friend void PrintTo(const Row& row, std::ostream* out) { *out << nameOf(row.refusal) << ": " << row.when; }
};
using Rows = std::vector<Row>;

class Refusals : public AssistantFixture, public ::testing::WithParamInterface<Row> {
 public:
  using AssistantFixture::assistant;
  using AssistantFixture::manager;
  using AssistantFixture::record;
  using AssistantFixture::setDevice;
  using AssistantFixture::setReceiveSwitch;
  using AssistantFixture::tools;
  using AssistantFixture::work;

  // An assistant for what the editor is now, instead of the one that stands.
  void constructAnew(ContSrv::Work* store) {
    assistant.reset();
    assistant = std::make_unique<OpenAssistant>(&manager, &executerJobs, &bulkJobs, &tools, store, false);
    registerBridge();
    assistant->registerObserver(&observer);
  }
  // ... that lacks one of its objects, counted from 1, for want of storage.
  void constructWithout(long object) {
    allocations.onlyNothrow = true;
    allocations.ofWithFailure(object, false, [&] { constructAnew(&work); });
    allocations.onlyNothrow = false;
  }

 protected:
  void SetUp() override {
    AssistantFixture::SetUp();
    assistant->registerObserver(&observer);
  }
  void TearDown() override {
    trace();
    AssistantFixture::TearDown();
  }

  RecordingObserver observer{record};
};

// ---- What goes wrong ----

Editor fails(const char* call, unsigned nth = 0) {
  return [=](Refusals& own) { own.record.fail(call, nth); };
}
Editor answers(const char* call, long answer) {
  return [=](Refusals& own) { own.record.answer(call, answer); };
}
void hasNoStore(Refusals& own) { own.constructAnew(nullptr); }

Editor isSetTo(int device, int receiveSwitch) {
  return [=](Refusals& own) {
    own.setDevice(device);
    own.setReceiveSwitch(receiveSwitch);
  };
}

// Part 4 of the multi plays a voice of that bank.
Editor plays(std::uint8_t bankMsb, std::uint8_t bankLsb) {
  return [=](Refusals& own) {
    FakeGroup& bankProgram = own.tools.liveMulti().parts.at(3)->bankProgram;
    bankProgram[0] = bankMsb;
    bankProgram[1] = bankLsb;
  };
}

Editor namesEverything(std::size_t length) {
  return [=](Refusals& own) {
    own.tools.contentName.assign(length, 'n');
    own.work.contents[{ContSrv::ContType_Multi, 0}].name.assign(length, 'n');
    own.manager.work = &own.work;
    own.tools.manager = &own.manager;
  };
}

// What an assistant makes, in this order: the model of the screen, five jobs, the creator of the converters, those, the
// table, its blocks, the receivers of dumps and of requests.
constexpr long kCreator = 7;
constexpr long kTable = kCreator + long(kExecuterCount) + 1;
constexpr long kDumpReceiver = kTable + long(kBlockCount) + 1;
Editor lacks(long object) {
  return [=](Refusals& own) { own.constructWithout(object); };
}
long objectOfBlock(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) {
  long object = kTable;
  long found = 0;
  forEachBlock([&](const AddressRow& row, std::uint8_t middle, std::uint8_t low) {
    ++object;
    if (row.hi == hi && middle == mid && low == lo) found = object;
  });
  return found;
}

// ---- The table, in the order of the reasons ----

Rows ofTheMessage() {
  return {
      {Refusal::malformedMessage, "type", other(BulkMsg_ReceiveError, "F0 7D 50 7F 14 00 00 00 F7")},
      {Refusal::malformedMessage, "long_request", other(BulkMsg_ReceiveError, "F0 7D 20 7F 14 00 00 00 00 F7")},
      {Refusal::malformedMessage, "short_dump", other(BulkMsg_ReceiveError, "F0 7D 00 7F 14 00 40 00 F7")},
      {Refusal::wrongByteCount, "dump", other(BulkMsg_CheckSumError, "F0 7D 00 7F 14 00 08 00 40 00 38 F7")},
      {Refusal::wrongCheckSum, "dump", other(BulkMsg_CheckSumError, "F0 7D 00 7F 14 00 00 00 40 00 41 F7")},
      {Refusal::deviceNumberOff, "dump", {dump("00 40 00").bytes, BulkMsg_DeviceNumberOff}, isSetTo(17, 1)},
      {Refusal::wrongDeviceNumber, "dump", {dump("00 40 00").bytes, BulkMsg_WrongDeviceNumber}, isSetTo(4, 1)},
      {Refusal::receiveSwitchOff, "dump", {dump("00 40 00").bytes, BulkMsg_ReceiveSwOff}, isSetTo(0, 0)},
      {Refusal::receiveSwitchOff, "request", {ask("00 40 00").bytes, BulkMsg_ReceiveSwOff}, isSetTo(0, 0)},
  };
}

Rows ofTheMode() {
  const Message arrives = dump("00 40 00", pattern(8));
  return {
      {Refusal::wrongMode, "dump", arrives, answers("checkMode", CMA::JOB::Result_CurrentStateError)},
      {Refusal::wrongMode, "request", ask("00 40 00"), answers("checkMode", CMA::JOB::Result_CurrentStateError)},
      {Refusal::wrongVoiceTypeInMode, "dump", arrives, answers("checkMode", CMA::JOB::Result_VoiceTypeError)},
      {Refusal::editCompare, "dump", arrives, answers("checkMode", CMA::JOB::Result_EditCompareModeError)},
      {Refusal::sampleAudition, "dump", arrives, answers("checkMode", CMA::JOB::Result_SampleAuditionError)},
      {Refusal::mixingVoicesFull, "mode", arrives, answers("checkMode", CMA::JOB::Result_MixingVoiceFullError)},
      {Refusal::unknownModeResult, "dump", arrives, answers("checkMode", 77)},
      {Refusal::loadingOrSaving, "dump", arrives, fails("getLoadSaveFlag")},
      {Refusal::loadingOrSaving, "request", ask("00 40 00"), fails("getLoadSaveFlag")},
  };
}

Rows ofTheAddress() {
  return {
      {Refusal::noBlock, "dump", dump("05 05 05")},
      {Refusal::noBlock, "request", ask("05 05 05")},
      {Refusal::noBlock, "header_of_another_kind", dump("36 10 00", pattern(20)), {}, {dump("0E 0A 05")}},
      {Refusal::headerMismatch, "normal_voice", dump("40 00 00", pattern(80))},
      {Refusal::headerMismatch, "drum_voice", dump("46 00 00", pattern(80)), {}, {dump("0E 0A 05")}},
      {Refusal::headerMismatch, "footer", dump("0F 0A 06"), {}, {dump("0E 0A 05")}},
      {Refusal::headerMismatch, "bank_changed", dump("0F 30 03"), plays(0x3F, 0x20), {dump("0E 30 03")}},
      {Refusal::unknownHeader, "footer_missing", ask("0E 0A 05"), lacks(objectOfBlock(kFooterHi, 0x0A, 0x05))},
      {Refusal::unknownVoiceType, "no_voice", dump("0E 30 03"), fails("voice")},
      {Refusal::unknownVoiceType, "type", dump("0E 30 03"), [](Refusals& own) { own.tools.liveVoice(3).type[0] = 2; }},
      {Refusal::wrongBank, "request", ask("0E 30 03"), plays(0x55, 0x55)},
      {Refusal::notRequestedAlone, "footer", ask("0F 5F 00"), {}, {dump("0E 5F 00")}},
      {Refusal::requestOnly, "waveforms", dump("70 20 00", pattern(kExecuterDataLength[57]))},
      {Refusal::requestOnly, "arpeggios", dump("70 10 00", pattern(kExecuterDataLength[58]))},
      {Refusal::requestOnly, "multis", dump("70 30 00", pattern(kExecuterDataLength[59]))},
  };
}

Rows ofTheBlock() {
  return {
      {Refusal::wrongDataLength, "parameters", dump("00 40 00", pattern(7))},
      {Refusal::wrongDataLength, "favorites", dump("71 00 00", pattern(127))},
      {Refusal::wrongDataLength, "names", dump("70 20 00", pattern(1))},
      {Refusal::modelMissing, "dump", dump("00 00 00", pattern(68)), fails("system.common")},
      {Refusal::modelMissing, "request", ask("00 00 00"), fails("system.common")},
      {Refusal::dumpNotCreated, "favorites", ask("71 00 00"), hasNoStore},
      {Refusal::dumpNotCreated, "file_dump", ask("0C 50 05"), hasNoStore},
      {Refusal::blockFailed, "swallowed_bank", dump("0E 30 03"), plays(0x3F, 0x32)},
      {Refusal::blockFailed, "preset", dump("0C 00 05", fieldOf("Song", pattern(3)))},
      {Refusal::blockFailed, "no_store", dump("71 00 00", pattern(128)), hasNoStore},
      {Refusal::blockFailed, "no_screen", ask("51 00 00"), fails("screenImage")},
      {Refusal::noExecuter, "dump", dump("0E 0A 05"), lacks(kCreator + 1)},
      {Refusal::noExecuter, "request", ask("00 40 00"), lacks(kCreator)},
      {Refusal::notLoaded, "request", ask("0E 70 03"), fails("load")},
      {Refusal::notStored, "footer", dump("0F 0A 05"), fails("store"), {dump("0E 0A 05")}},
  };
}

Rows ofNamesAndFavorites() {
  const Message favorites = dump("71 00 00", pattern(128));
  const Editor hasEmptyBanks = [](Refusals& own) {
    own.record.answer("voiceContentNumber", 7);
    own.constructAnew(&own.work);
  };
  return {
      {Refusal::nameNotFound, "waveform", ask("70 20 00"), fails("waveformName", 3)},
      {Refusal::nameNotFound, "arpeggio", ask("70 10 00"), fails("arpeggioName", 3)},
      {Refusal::nameNotFound, "no_manager", ask("70 30 00")},
      {Refusal::nameTooLong, "waveform", ask("70 20 00"), namesEverything(29)},
      {Refusal::nameTooLong, "arpeggio", ask("70 10 00"), namesEverything(29)},
      {Refusal::nameTooLong, "multi", ask("70 30 00"), namesEverything(21)},
      {Refusal::noSuchFavorites, "dump", favorites, hasEmptyBanks},
      {Refusal::noSuchFavorites, "request", ask("71 00 00"), hasEmptyBanks},
      {Refusal::favoriteNotSet, "dump", favorites, fails("setContentFavoriteFlag", 128)},
      {Refusal::favoriteNotRead, "request", ask("71 00 00"), fails("getContentInformation", 128)},
  };
}

// A trigger, for which three contents and a removal are held: three of the four are handed over all the same.
Rows ofWriting() {
  const Message trigger = dump("11 00 00");
  const std::vector<Message> held{
      dump("0C 10 05", fieldOf("Mix", pattern(3))),
      dump("0C 10 06", kEmptyDump),
      dump("0C 50 05", fieldOf("Song", pattern(3))),
      dump("0C 50 06", kEmptyDump),
  };
  const std::vector<Message> mixingVoice(held.begin(), held.begin() + 1);
  const auto wrong = [&](Refusal refusal, const char* when, const Bytes& field) {
    return Row{refusal, when, trigger, {}, {held[0], dump("0C 50 05", field)}, 1};
  };
  const Editor isFull = [](Refusals& own) { own.work.mixingVoices = own.work.maximumOfMixingVoices; };
  const Editor isFullByOne = [](Refusals& own) { own.work.mixingVoices = own.work.maximumOfMixingVoices - 1; };
  return {
      {Refusal::mixingVoicesFull, "trigger", trigger, isFull, mixingVoice, 0},
      {Refusal::mixingVoicesFull,
       "trigger_later",
       trigger,
       isFullByOne,
       {held[0], dump("0C 10 06", fieldOf("Mix", pattern(3)))},
       1},
      wrong(Refusal::emptyFileDump, "trigger", {}),
      wrong(Refusal::fileDumpNameCutShort, "trigger", {0, 5, 1}),
      wrong(Refusal::fileDumpDataCutShort, "trigger", {0, 0, 0, 5, 1}),
      wrong(Refusal::notUnpacked, "trigger", {0, 0, 0, 1, 1}),
      wrong(Refusal::nameNotUnpacked, "trigger", {0, 1, 1, 0, 2, 0, 1}),
      {Refusal::mixingVoicesNotCounted, "trigger", trigger, fails("getMixingVoiceSumSync"), held, 0},
      {Refusal::mixingVoiceNotRemoved, "footer", dump("0F 31 45"), fails("removeMixingVoice")},
      {Refusal::mixingVoiceNotRemoved, "trigger", dump("11 01 00"), fails("removeMixingVoice", 5), {}, 127},
      {Refusal::overwriteRefused, "trigger", trigger, fails("requestOverWriteConfig"), held, 4},
      {Refusal::contentNotRemoved, "mixing_voice", trigger, fails("removeContent"), held, 3},
      {Refusal::contentNotRemoved, "contents", trigger, fails("removeContents"), held, 3},
      {Refusal::noFilePath, "trigger", trigger, fails("getDataFilePath", 1), held, 3},
      {Refusal::fileNotOpened, "trigger", trigger, fails("openDataFile", 2), held, 3},
      {Refusal::fileNotClosed, "trigger", trigger, fails("closeDataFile", 1), held, 3},
      {Refusal::dataNotOpened, "trigger", trigger, fails("openData", 1), held, 3},
      {Refusal::dataNotClosed, "trigger", trigger, fails("closeDataWithoutSync", 1), held, 3},
      {Refusal::dataNotWritten, "trigger", trigger, fails("write", 2), held, 3},
      {Refusal::nameNotSet, "trigger", trigger, fails("setContentName", 1), held, 3},
  };
}

Rows ofReading() {
  const Message request = ask("0C 50 05");
  const std::vector<Message> stored{dump("0C 50 05", fieldOf("Song", pattern(3))), dump("11 00 00")};
  const Editor hasALongContent = [](Refusals& own) {
    own.work.contents[{ContSrv::ContType_Multi, 5}].bytes = pattern(0x4000);
  };
  return {
      {Refusal::fileDumpTooLong, "request", request, hasALongContent},
      {Refusal::noFilePath, "request", request, fails("getDataFilePath"), stored},
      {Refusal::fileNotClosed, "request", request, fails("closeDataFile"), stored},
      {Refusal::dataNotOpened, "request", request, fails("openData"), stored},
      {Refusal::dataNotClosed, "request", request, fails("closeData"), stored},
      {Refusal::dataNotRead, "request", request, fails("read"), stored},
      {Refusal::dataNotRead, "size", request, answers("getSize", -1), stored},
      {Refusal::nameNotRead, "request", request, fails("getContentName"), stored},
  };
}

Rows ofTheAssistant() {
  const Message system = dump("00 40 00", pattern(8));
  const Editor hasNoBridge = [](Refusals& own) { own.assistant->registerBDABridge(nullptr); };
  const Editor losesItsBridge = [](Refusals& own) {
    own.record.during("send", [&] { own.assistant->registerBDABridge(nullptr); });
  };
  const Editor throws = [](Refusals& own) {
    own.record.during("checkMode", [] { throw std::runtime_error("no mode"); });
  };
  const Editor isUndone = [](Refusals& own) {
    own.record.raise("createTemporaryModel");
    own.constructAnew(&own.work);
  };
  return {
      {Refusal::noBridge, "dump", system, hasNoBridge},
      {Refusal::noBridge, "request", ask("00 40 00"), hasNoBridge},
      {Refusal::noBridge, "halfway", ask("0E 70 03"), losesItsBridge},
      {Refusal::outOfMemory,
       "footer",
       dump("0F 0A 05"),
       [](Refusals& own) { own.record.raise("store"); },
       {dump("0E 0A 05")}},
      {Refusal::serviceThrew, "mode", system, throws},
      {Refusal::notConstructed, "undone_dump", system, isUndone},
      {Refusal::notConstructed, "undone_request", ask("00 40 00"), isUndone},
      {Refusal::notConstructed, "no_table", system, lacks(kTable)},
      {Refusal::notConstructed, "no_receiver", system, lacks(kDumpReceiver)},
      {Refusal::notConstructed, "no_receiver_of_requests", ask("00 40 00"), lacks(kDumpReceiver + 1)},
  };
}

const Rows& table() {
  static const Rows all = [] {
    Rows rows;
    for (const Rows& group : {ofTheMessage(), ofTheMode(), ofTheAddress(), ofTheBlock(), ofNamesAndFavorites(),
                              ofWriting(), ofReading(), ofTheAssistant()})
      rows.insert(rows.end(), group.begin(), group.end());
    return rows;
  }();
  return all;
}

TEST_P(Refusals, AreToldOnceWithWhatWasHandedOver) {
  const Row& row = GetParam();
  for (const Message& message : row.before) {
    EXPECT_EQ(sendBytes(message.bytes), message.kind);
    for (const BulkDumpReport& report : observer.reports()) EXPECT_EQ(report.refusal, Refusal::none);
  }
  record.heal();
  if (row.editor) row.editor(*this);
  EXPECT_EQ(sendBytes(row.arrives.bytes), row.arrives.kind);
  const std::vector<BulkDumpReport> reports = observer.reports();
  ASSERT_EQ(reports.size(), 1U);
  const BulkDumpReport& told = reports.front();
  EXPECT_EQ(told.kind, row.arrives.kind);
  EXPECT_EQ(told.outcome, BulkDumpOutcome::refused);
  EXPECT_EQ(nameOf(told.refusal), nameOf(row.refusal));
  EXPECT_EQ(told.handedOver, row.handedOver);
  EXPECT_FALSE(told.isTaken);

  const bool isRequest = told.kind == BulkMsg_BulkRequest;
  EXPECT_EQ(told.hasAddress, isRequest || told.kind == BulkMsg_BulkDump || told.kind == BulkMsg_CheckSumError);
  if (!told.hasAddress) return;
  EXPECT_EQ(textOf(told.address, 3), textOf(row.arrives.bytes.data() + (isRequest ? 5 : 7), 3));
}
INSTANTIATE_TEST_SUITE_P(All, Refusals, ::testing::ValuesIn(table()),
                         [](const auto& row) { return nameOf(row.param.refusal) + "_" + row.param.when; });

TEST(BulkDumpRefusal, IsReachedByAMessageOrSaidToBeOutOfReach) {
  for (const Refusal refusal : kAll) {
    const auto isOfIt = [refusal](const auto& row) { return row.refusal == refusal; };
    const auto rows = std::count_if(table().begin(), table().end(), isOfIt);
    const auto reasons = std::count_if(std::begin(kReachedByNoMessage), std::end(kReachedByNoMessage), isOfIt);
    EXPECT_EQ(reasons, rows == 0 ? 1 : 0) << nameOf(refusal);
  }
}

}  // namespace
