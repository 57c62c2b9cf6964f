// File dumps, favourites, names and the screen from message to message: through the assistant, its table and receivers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "bda/BulkDumpAssistant.h"
#include "support/AssistantFixture.h"
#include "support/PlainFileDumpCodec.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Lines = std::vector<std::string>;

const Bytes kEmptyDump{0, 0, 0, 0};
const char* const kTrigger = "11 00 00";
const char* const kTriggerAfterRemoval = "11 01 00";

Bytes fieldOf(std::string_view name, const Bytes& bytes) {
  Bytes field;
  for (const Bytes& packed : {Plain::encode(Bytes(name.begin(), name.end())), Plain::encode(bytes)}) {
    field.push_back(std::uint8_t(packed.size() / 128));
    field.push_back(std::uint8_t(packed.size() % 128));
    field.insert(field.end(), packed.begin(), packed.end());
  }
  return field;
}

class Files : public AssistantFixture {
 protected:
  // The calls on the store, in order.
  Lines storeCalls() {
    static const std::set<std::string> names{"removeMixingVoice",
                                             "getMixingVoiceSumSync",
                                             "requestOverWriteConfig",
                                             "removeContents",
                                             "removeContent",
                                             "getDataFilePath",
                                             "getContentName",
                                             "setContentName",
                                             "openDataFile",
                                             "closeDataFile",
                                             "openData",
                                             "closeData",
                                             "closeDataWithoutSync",
                                             "write",
                                             "read",
                                             "getSize",
                                             "sync",
                                             "setContentFavoriteFlag",
                                             "getContentInformation"};
    Lines list = calls();
    list.erase(std::remove_if(list.begin(), list.end(),
                              [](const std::string& line) { return !names.contains(line.substr(0, line.find('('))); }),
               list.end());
    return list;
  }
  static std::string message(int onPort, const Bytes& bytes) { return std::to_string(onPort) + ": " + textOf(bytes); }

  // Messages of a failure without their locations.
  Lines messages() {
    const Lines texts = trace();
    Lines kept;
    for (std::size_t i = 1; i < texts.size(); i += 2) kept.push_back(texts[i]);
    return kept;
  }
  static std::string blockFailed(const char* result) {
    return std::string("error : setBulkDumpMessage() ! [ BDAErr = 0x") + result + " ] \n";
  }
  static std::string dumpFailed(const char* result) {
    return std::string("error : getBulkDumpMessage() ! [ BDAErr = 0x") + result + " ]\n";
  }

  void hold(std::string_view address, const Bytes& field) {
    ASSERT_EQ(send(address, field), BulkMsg_BulkDump);
    ASSERT_THAT(trace(), IsEmpty());
    forget();
  }
};

// Written -----------------------------------------------------------------------------------------------------------

TEST_F(Files, ADumpIsHeldAndItsTriggerStoresIt) {
  const Bytes field = fieldOf("Piano", pattern(20));
  EXPECT_EQ(send("0C 0A 05", field), BulkMsg_BulkDump);
  EXPECT_EQ(shown(), std::vector<int>{11});
  EXPECT_THAT(sent(), ElementsAre(message(4, dumpMessage("0C 0A 05", field)))) << "the echo";
  EXPECT_THAT(storeCalls(), IsEmpty());
  EXPECT_THAT(work.contents, IsEmpty());

  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_EQ(shown(), (std::vector<int>{12, 1, 2}));
  EXPECT_THAT(sent(), ElementsAre(message(4, dumpMessage(kTrigger))));
  EXPECT_THAT(storeCalls(),
              ElementsAre("getMixingVoiceSumSync", "getDataFilePath(4, 2053)", "openDataFile(4/2053, write)",
                          "openData", "setContentName(4, 2053, Piano, false)", "write(20)", "closeDataWithoutSync",
                          "closeDataFile(0)", "requestOverWriteConfig(4)", "sync"));
  EXPECT_EQ((work.contents[{4, 2053}].name), "Piano");
  EXPECT_EQ((work.contents[{4, 2053}].bytes), pattern(20));
}

TEST_F(Files, ATriggerRunsRaisedAndADumpDoesNot) {
  send("0C 50 05", fieldOf("Song", pattern(20)));
  Lines made = calls();
  EXPECT_EQ(std::count(made.begin(), made.end(), "thread.attach"), 0);
  send(kTrigger);
  made = calls();
  const auto at = [&](const char* call) { return std::find(made.begin(), made.end(), call) - made.begin(); };
  EXPECT_LT(at("thread.attach"), at("suspendOutputMidi"));
  EXPECT_LT(at("suspendOutputMidi"), at("getMixingVoiceSumSync"));
  EXPECT_LT(at("sync"), at("resumeOutputMidi"));
  EXPECT_LT(at("resumeOutputMidi"), at("thread.detach"));
  EXPECT_LT(at("thread.detach"), long(made.size()));
}

TEST_F(Files, AnEmptyTriggerStillSynchronises) {
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_EQ(shown(), (std::vector<int>{1, 2}));
  EXPECT_THAT(storeCalls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(0)", "sync"));
}

TEST_F(Files, TheOtherTriggerRemovesAllMixingVoicesBefore) {
  hold("0C 10 05", fieldOf("Mix", pattern(3)));
  EXPECT_EQ(send(kTriggerAfterRemoval), BulkMsg_BulkDump);
  EXPECT_EQ(shown(), (std::vector<int>{12, 1, 2}));
  const Lines made = storeCalls();
  ASSERT_GT(made.size(), 130u);
  EXPECT_EQ(made[0], "removeMixingVoice(1, 0, 4294967295)");
  EXPECT_EQ(made[127], "removeMixingVoice(1, 127, 4294967295)");
  EXPECT_EQ(made[128], "getMixingVoiceSumSync");
  EXPECT_EQ(made.back(), "sync");
  EXPECT_EQ((work.contents[{4, 0x3F8050}].bytes), pattern(3));
}

TEST_F(Files, FromPort4DumpAndTriggerAreAcknowledgedAndNotEchoed) {
  port = DevicePort_Echo;
  for (const char* address : {"0C 50 05", kTrigger, kTriggerAfterRemoval}) {
    EXPECT_EQ(send(address, kEmptyDump), BulkMsg_BulkDump);
    EXPECT_THAT(sent(), ElementsAre("4: F0 7D 60 02 F7")) << address;
  }
  forget();
}

TEST_F(Files, ADumpOfTheGreatestLengthIsTakenAndOneByteMoreIsNot) {
  EXPECT_EQ(send("0C 50 05", Bytes(0x3FFF)), BulkMsg_BulkDump);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(shown(), std::vector<int>{11});
  EXPECT_EQ(send("0C 50 06", Bytes(0x4000)), BulkMsg_BulkDump);
  EXPECT_THAT(messages(), ElementsAre("File Dump over length !!!!\n", blockFailed("80000000")));
  EXPECT_EQ(shown(), (std::vector<int>{12, 11, 12, 44}));
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_THAT(storeCalls(), Contains("removeContents(1, {5}, false)")) << "what is held stays";
}

TEST_F(Files, ARefusedBankDiscardsWhatIsHeldAndIsShownSo) {
  hold("0C 0A 05", fieldOf("Lost", pattern(5)));
  EXPECT_EQ(send("0C 00 05", fieldOf("Preset", pattern(5))), BulkMsg_BulkDump);
  EXPECT_THAT(messages(), ElementsAre(blockFailed("80000000")));
  EXPECT_EQ(shown(), (std::vector<int>{12, 11, 12, 44}));
  forget();
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_THAT(storeCalls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(0)", "sync"));
}

TEST_F(Files, TooManyMixingVoicesAreShownSo) {
  work.maximumOfMixingVoices = 0;
  hold("0C 10 05", fieldOf("Mix", pattern(3)));
  hold("0C 50 05", fieldOf("Song", pattern(3)));
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_THAT(messages(),
              ElementsAre("error: over num of mixing voices [ num of mixvoice = 1 ] !\n", blockFailed("81000800")));
  EXPECT_EQ(shown(), (std::vector<int>{12, 1, 2, 46}));
  EXPECT_EQ(work.contents.size(), 1u) << "the multi is stored";
}

TEST_F(Files, AFailedPassIsShownAsAnErrorNotAcknowledgedAndLeavesNothingBehind) {
  port = DevicePort_Echo;
  hold("0C 50 05", fieldOf("Song", pattern(3)));
  record.fail("write", 1);
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_THAT(messages(), ElementsAre("error : contentsData->write() ! [ res size = 0 ] \n", blockFailed("80000800")));
  EXPECT_EQ(shown(), (std::vector<int>{12, 1, 2, 44}));
  EXPECT_THAT(sent(), IsEmpty());
  forget();
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_THAT(storeCalls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(0)", "sync"));
}

TEST_F(Files, AStoreThatThrowsIsAFailureAndTheNextPassIsWhole) {
  const auto play = [&] {
    send("0C 10 05", fieldOf("Mix", pattern(3)));
    send("0C 10 06", kEmptyDump);
    send("0C 50 05", fieldOf("Song", pattern(3)));
    send("0C 50 06", kEmptyDump);
    forget();
    EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  };
  play();
  const Lines good = storeCalls();
  for (const char* call :
       {"getMixingVoiceSumSync", "getDataFilePath", "getContentName", "openDataFile", "setContentName", "write",
        "requestOverWriteConfig", "removeContents", "removeContent", "sync"}) {
    forget();
    record.heal();
    record.raise(call, 1);
    play();
    EXPECT_EQ(shown().back(), 44) << call;
    EXPECT_THAT(sent(), ElementsAre(message(4, dumpMessage(kTrigger)))) << call;
    const Lines made = calls();
    EXPECT_EQ(std::count(made.begin(), made.end(), "suspendOutputMidi"), 1);
    EXPECT_EQ(std::count(made.begin(), made.end(), "resumeOutputMidi"), 1);
    EXPECT_EQ(std::count(made.begin(), made.end(), "thread.detach"), 1);
    trace();
    record.heal();
    EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
    EXPECT_THAT(storeCalls(), ElementsAre("getMixingVoiceSumSync", "requestOverWriteConfig(0)", "sync"))
        << call << ": old dumps must not come over what is stored later";
    play();
    EXPECT_EQ(storeCalls(), good) << call;
    EXPECT_EQ(shown(), (std::vector<int>{12, 1, 2})) << call;
    EXPECT_THAT(trace(), IsEmpty()) << call;
  }
}

TEST_F(Files, WhileTheEditorLoadsNothingIsHeldOrWrittenAndWhatIsHeldStays) {
  hold("0C 50 05", fieldOf("Song", pattern(3)));
  record.fail("getLoadSaveFlag");
  for (const char* address : {"0C 50 06", kTrigger}) {
    EXPECT_EQ(send(address, kEmptyDump), BulkMsg_BulkDump);
    EXPECT_THAT(messages(), ElementsAre("error : can't receive bulk while loding/saving file !\n"));
  }
  EXPECT_THAT(storeCalls(), IsEmpty());
  record.heal();
  EXPECT_EQ(send(kTrigger), BulkMsg_BulkDump);
  EXPECT_EQ(work.contents.size(), 1u);
}

TEST_F(Files, TwoAssistantsHoldTheirOwnDumps) {
  OpenAssistant other(&manager, nullptr, nullptr, &tools, &work, false);
  FakeBridge otherBridge(record, &other);
  hold("0C 50 05", fieldOf("Song", pattern(3)));
  const Bytes trigger = dumpMessage(kTrigger);
  other.receiveBulkDump(trigger.data(), lengthOf(trigger), DevicePort_Main);
  EXPECT_THAT(work.contents, IsEmpty());
  send(kTrigger);
  EXPECT_EQ(work.contents.size(), 1u);
}

// Held dumps keep an open unit open; a trigger, a block of the editor or a refusal ends it, and the rest of the unit is
// lost: the sender keeps units apart.
TEST_F(Files, AHeldDumpKeepsAnOpenHeaderOpenAndATriggerClosesIt) {
  openHeader();
  hold("0C 50 05", kEmptyDump);
  EXPECT_TRUE(isHeaderOpen());
  openHeader();
  send(kTrigger);
  EXPECT_FALSE(isHeaderOpen());
  openHeader();
  send("71 0A 00", pattern(128));
  EXPECT_FALSE(isHeaderOpen());
  openHeader();
  send("0C 00 05", kEmptyDump);
  EXPECT_FALSE(isHeaderOpen());
}

// Answered ----------------------------------------------------------------------------------------------------------

TEST_F(Files, ARequestIsAnsweredWithTheWholeContent) {
  work.contents[{4, 2053}] = {"Piano", Bytes(1000, 0xAA)};
  EXPECT_EQ(request("0C 0A 05"), BulkMsg_BulkRequest);
  EXPECT_EQ(shown(), (std::vector<int>{13, 14}));
  EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage("0C 0A 05", fieldOf("Piano", Bytes(1000, 0xAA))))));
}

TEST_F(Files, WhatCameIsSentBack) {
  for (const char* address : {"0C 0A 05", "0C 28 1F", "0C 31 0F", "0C 1F 7F", "0C 50 7F"}) {
    const Bytes field = fieldOf("Name", pattern(77));
    hold(address, field);
    send(kTrigger);
    forget();
    EXPECT_EQ(request(address), BulkMsg_BulkRequest);
    EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage(address, field)))) << address;
    hold(address, kEmptyDump);
    send(kTrigger);
    work.contents.clear();
    forget();
    EXPECT_EQ(request(address), BulkMsg_BulkRequest);
    EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage(address, kEmptyDump)))) << address;
  }
}

TEST_F(Files, BanksThatCannotBeWrittenToAreAnswered) {
  for (const char* address : {"0C 00 05", "0C 09 05", "0C 20 05", "0C 21 00"}) {
    EXPECT_EQ(request(address), BulkMsg_BulkRequest);
    EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage(address, kEmptyDump)))) << address;
  }
}

TEST_F(Files, ATriggerThatIsAskedForIsAMessageWithoutData) {
  EXPECT_EQ(request(kTrigger), BulkMsg_BulkRequest);
  EXPECT_EQ(shown(), (std::vector<int>{13, 14}));
  EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage(kTrigger))));
}

TEST_F(Files, AnAnswerThatCannotBeReadIsNotSent) {
  work.contents[{1, 5}] = {"Song", pattern(5)};
  record.fail("read");
  EXPECT_EQ(request("0C 50 05"), BulkMsg_BulkRequest);
  EXPECT_THAT(messages(), ElementsAre("error : content data read error ! \n", "Read File Dump Error !!!\n",
                                      dumpFailed("80001000")));
  EXPECT_EQ(shown(), (std::vector<int>{13, 14, 44}));
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Files, AContentThatDoesNotFitAMessageIsNotSent) {
  work.contents[{1, 5}] = {"Song", pattern(14'336)};
  EXPECT_EQ(request("0C 50 05"), BulkMsg_BulkRequest);
  EXPECT_THAT(messages(), ElementsAre("error: file dump data is over flow ! [ size = 0x4009, max = 0x3FFF ]\n",
                                      "Read File Dump Error !!!\n", dumpFailed("80001000")));
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_EQ(shown().back(), 44);
}

// Of the editor alone -----------------------------------------------------------------------------------------------

TEST_F(Files, FavoritesGoBothWays) {
  const Bytes flags = pattern(128);
  EXPECT_EQ(send("71 0A 00", flags), BulkMsg_BulkDump);
  EXPECT_EQ(shown(), (std::vector<int>{11, 12}));
  EXPECT_THAT(sent(), ElementsAre(message(4, dumpMessage("71 0A 00", flags))));
  Lines made = storeCalls();
  ASSERT_EQ(made.size(), 128u);
  EXPECT_EQ(made.front(), "setContentFavoriteFlag(4, 2048, 11, false)");
  EXPECT_EQ(made.back(), "setContentFavoriteFlag(4, 2175, 11, true)");

  EXPECT_EQ(request("71 0A 00"), BulkMsg_BulkRequest);
  EXPECT_EQ(shown(), (std::vector<int>{13, 14}));
  EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage("71 0A 00", flags))));
}

TEST_F(Files, EveryBankOfFavoritesAnswersWithOneFlagAVoice) {
  struct Row {
    const char* address;
    std::size_t count;
  };
  for (const Row& row :
       {Row{"71 00 00", 128}, Row{"71 01 00", 128}, Row{"71 02 00", 128}, Row{"71 03 00", 128}, Row{"71 04 00", 128},
        Row{"71 05 00", 128}, Row{"71 06 00", 128}, Row{"71 07 00", 128}, Row{"71 09 00", 128}, Row{"71 0A 00", 128},
        Row{"71 0B 00", 128}, Row{"71 0C 00", 128}, Row{"71 20 00", 64}, Row{"71 28 00", 32}, Row{"71 21 00", 1}}) {
    const Bytes flags = pattern(row.count);
    EXPECT_EQ(send(row.address, flags), BulkMsg_BulkDump);
    EXPECT_THAT(trace(), IsEmpty()) << row.address;
    forget();
    EXPECT_EQ(request(row.address), BulkMsg_BulkRequest);
    EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage(row.address, flags))));
  }
  EXPECT_EQ(work.favourites.size(), 12 * 128u + 64 + 32 + 1) << "no bank shares a flag with another";
}

TEST_F(Files, FlagsThatCannotBeSetAreShownAsAnError) {
  record.fail("setContentFavoriteFlag", 7);
  EXPECT_EQ(send("71 0A 00", pattern(128)), BulkMsg_BulkDump);
  EXPECT_THAT(messages(),
              ElementsAre("error : contWork->setContentFavoriteFlag() ! [ ContSrvResult = 3, contType = 4, contNum = "
                          "0x806 ]\n",
                          blockFailed("80000400")));
  EXPECT_EQ(shown(), (std::vector<int>{11, 12, 44}));
}

TEST_F(Files, NamesAreAnsweredAndRefusedWhenTheyCome) {
  tools.manager = &manager;
  manager.work = &work;
  tools.contentName = "Name";
  work.contents[{1, 127}] = {"Last", {}};
  Bytes names(448);
  for (std::size_t slot = 0; slot < 16; ++slot) std::copy_n("Name", 4, names.begin() + std::ptrdiff_t(slot * 28));
  Bytes multis(2560);
  std::copy_n("Last", 4, multis.end() - 20);
  for (const auto& [address, answer] : {std::pair{"70 20 02", names}, {"70 10 02", names}, {"70 30 00", multis}}) {
    EXPECT_EQ(request(address), BulkMsg_BulkRequest);
    EXPECT_EQ(shown(), (std::vector<int>{13, 14})) << address;
    EXPECT_THAT(sent(), ElementsAre(message(1, dumpMessage(address, answer))));
    EXPECT_EQ(send(address, answer), BulkMsg_BulkDump);
    EXPECT_EQ(shown(), (std::vector<int>{11, 12, 44})) << address;
    EXPECT_THAT(messages(), ElementsAre(::testing::HasSubstr("bulk is request only !"), blockFailed("80000000")));
    forget();
  }
}

TEST_F(Files, TheScreenIsSentInAllItsMessages) {
  tools.screenImage = pattern(10'240);
  EXPECT_EQ(request("51 00 00"), BulkMsg_BulkRequest);
  EXPECT_EQ(shown(), (std::vector<int>{13, 14}));
  const std::vector<FakeBridge::Message> made = bridge->messages;
  ASSERT_EQ(made.size(), 11u);
  Bytes image;
  for (std::size_t i = 1; i < made.size(); ++i) {
    EXPECT_EQ(made[i].port, DevicePort_Main);
    image.insert(image.end(), made[i].bytes.begin() + 12, made[i].bytes.end() - 2);
  }
  EXPECT_EQ(image, pattern(10'240));
}

TEST_F(Files, AnEditorThatHasNoImageToGiveIsAnErrorNotAnEmptyScreen) {
  record.fail("screenImage");
  EXPECT_EQ(request("51 00 00"), BulkMsg_BulkRequest);
  EXPECT_THAT(messages(), ElementsAre(dumpFailed("80000001")));
  EXPECT_EQ(shown(), (std::vector<int>{13, 14, 44}));
  EXPECT_THAT(sent(), IsEmpty());
}

}  // namespace
