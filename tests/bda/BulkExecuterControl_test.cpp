#include "BulkExecuterControl.h"

#include "ExecuterFixture.h"

namespace BDA {
namespace {

constexpr std::uint8_t kReceive = 1;
constexpr std::uint8_t kDump = 0;

// Footers are of types 19 to 33, 16 and 17.
constexpr std::uint32_t kEditBufferHeaders[] = {4, 8, 9, 11, 13, 15, 17};
constexpr std::uint32_t kStoredHeaders[] = {1, 2, 3, 5, 6, 7, 10, 12, 14, 16};

class HeaderTest : public ExecuterFixture {
 protected:
  void SetUp() override {
    ExecuterFixture::SetUp();
    header.setLoadSkipped(0x5A);  // so that a test sees who writes it
    header.setCurrentNumber(0x5A);
  }
  BDAErr run(std::uint32_t type, std::string_view address, std::uint8_t isReceive) {
    executer(1, address, type);
    return header.execBulkBlock(nullptr, 0, isReceive);
  }
  static Lines report(const std::string& message) {
    return {"BulkExecuterControl.cpp [BDA::BulkExecuterHeader::execBulkBlock] " + message};
  }

  BulkExecuter& header = *creator.getExecuter(1);
};

// ---- Receiving ----

struct Opened {
  std::uint32_t type;
  const char* address;
  Lines calls;
};

void PrintTo(const Opened& opened, std::ostream* out) { *out << opened.address; }

class ReceivedHeader : public HeaderTest, public testing::WithParamInterface<Opened> {};

TEST_P(ReceivedHeader, OpensItsTemporaryModelsInOrder) {
  EXPECT_EQ(run(GetParam().type, GetParam().address, kReceive), 0u);
  EXPECT_EQ(calls(), GetParam().calls);
  EXPECT_EQ(header.getLoadSkipped(), 0);
  EXPECT_EQ(header.getCurrentNumber(), GetParam().type == 9 ? 5 : 0);
}

TEST_P(ReceivedHeader, IgnoresWhatOpeningAnswers) {
  for (const char* call : {"initVoice", "initMulti", "initArpeggio", "initMaster", "initRemote"}) record.fail(call);
  EXPECT_EQ(run(GetParam().type, GetParam().address, kReceive), 0u);
  Lines expected = GetParam().calls;
  if (GetParam().type == 11) expected.pop_back();  // no temporary model to write the tempo to
  EXPECT_EQ(calls(), expected);
  EXPECT_EQ(header.getLoadSkipped(), 0);
}

const Lines kNormalVoice{"initVoice(0, normal)", "initMulti(0)", "initArpeggio(true, 0, true)"};
const Lines kDrumVoice{"initVoice(0, drum)", "initMulti(0)", "initArpeggio(true, 0, true)"};
const Lines kPerformance{"initMulti(0)", "initArpeggio(false, 0, true)"};

INSTANTIATE_TEST_SUITE_P(
    OfEveryType, ReceivedHeader,
    testing::Values(
        Opened{1, "0E 07 05", kNormalVoice}, Opened{2, "0E 09 05", kNormalVoice}, Opened{3, "0E 0A 05", kNormalVoice},
        Opened{4, "0E 0F 00", kNormalVoice}, Opened{5, "0E 20 05", kDrumVoice}, Opened{6, "0E 28 05", kDrumVoice},
        Opened{7, "0E 21 00", kDrumVoice}, Opened{8, "0E 2F 00", kDrumVoice},
        Opened{9, "0E 30 05", {"initVoice(5, normal)", "initMulti(0)", "initArpeggio(false, 0, true)"}},
        Opened{10, "0E 31 05", kNormalVoice},
        Opened{11,
               "0E 5F 00",
               {"initMulti(0)", "initArpeggio(false, 0, true)", "set16(temporary.arpeggio.tempo, 0, 0, flag 0)"}},
        Opened{12, "0E 40 05", kPerformance}, Opened{13, "0E 4F 00", kPerformance},
        Opened{14, "0E 70 05", {"initMaster"}}, Opened{15, "0E 7F 00", {"initMaster"}},
        Opened{16, "0E 60 05", {"initRemote"}}, Opened{17, "0E 6F 00", {"initRemote"}}),
    [](const auto& test) { return "Type" + std::to_string(test.param.type); });

TEST_F(HeaderTest, OfAPartOpensTheVoiceThatThePartPlays) {
  for (unsigned part = 0; part < 16; ++part) {
    tools.liveVoice(std::uint16_t(part), part % 2 == 0);
    const std::string number = std::to_string(part);
    EXPECT_EQ(run(9, "0E 30 " + Testing::textOf({std::uint8_t(part)}), kReceive), 0u);
    EXPECT_EQ(calls(), (Lines{"initVoice(" + number + (part % 2 == 0 ? ", normal)" : ", drum)"), "initMulti(0)",
                              "initArpeggio(false, 0, true)"}));
    EXPECT_EQ(header.getCurrentNumber(), part);
    EXPECT_EQ(header.getLoadSkipped(), 0);
  }
}

TEST_F(HeaderTest, OfAPartAsksTheLiveVoiceOfThatNumberForItsType) {
  recordReads();
  run(9, "0E 30 05", kReceive);
  EXPECT_EQ(calls(), (Lines{"voice", "voice[5].type", "get(voice[5].type, 0)", "initVoice(5, normal)", "initMulti(0)",
                            "initArpeggio(false, 0, true)"}));
}

TEST_F(HeaderTest, OfAPartOpensNothingForAnUnknownVoiceType) {
  for (const unsigned type : {2U, 3U, 127U, 255U}) {
    tools.liveVoice(5).type[0] = std::uint16_t(type);
    EXPECT_EQ(run(9, "0E 30 05", kReceive), 0x80000000u);
    EXPECT_EQ(reports(), report("Voice Type Error !!!\n"));
    EXPECT_EQ(calls(), Lines{});
    EXPECT_EQ(header.getCurrentNumber(), 5);
    EXPECT_EQ(header.getLoadSkipped(), 0x5A);
  }
}

TEST_F(HeaderTest, OfAPartOpensNothingWithoutALiveVoice) {
  for (const char* missing : {"voice", "voice[5].type"}) {
    record.fail(missing);
    EXPECT_EQ(run(9, "0E 30 05", kReceive), 0x80000000u) << missing;
    EXPECT_EQ(reports(), report("Voice Type Error !!!\n"));
    EXPECT_EQ(calls(), Lines{});
    record.heal();
  }
  EXPECT_EQ(run(9, "0E 30 7F", kReceive), 0x80000000u);  // a part that no multi has
  EXPECT_EQ(reports(), report("Voice Type Error !!!\n"));
  EXPECT_EQ(header.getCurrentNumber(), 0x7F);
}

TEST_F(HeaderTest, OfTheMultiTakesTheLiveTempoOverUnannounced) {
  tools.liveArpeggio().tempo[0] = 0x3B7D;
  recordReads();
  EXPECT_EQ(run(11, "0E 5F 00", kReceive), 0u);
  EXPECT_EQ(calls(), (Lines{"initMulti(0)", "initArpeggio(false, 0, true)", "arpeggio", "temporary.arpeggio",
                            "arpeggio.tempo", "temporary.arpeggio.tempo", "get16(arpeggio.tempo, 0)",
                            "set16(temporary.arpeggio.tempo, 0, 15229, flag 0)"}));
  EXPECT_EQ(tools.temporaryArpeggio->tempo[0], 0x3B7D);
}

TEST_F(HeaderTest, OfTheMultiOpensWithoutATempoToTakeOver) {
  tools.liveArpeggio().tempo[0] = 120;
  for (const char* missing : {"arpeggio", "temporary.arpeggio", "arpeggio.tempo", "temporary.arpeggio.tempo"}) {
    record.fail(missing);
    EXPECT_EQ(run(11, "0E 5F 00", kReceive), 0u) << missing;
    EXPECT_EQ(calls(), (Lines{"initMulti(0)", "initArpeggio(false, 0, true)"})) << missing;
    EXPECT_EQ(header.getLoadSkipped(), 0);
    record.heal();
  }
}

TEST_F(HeaderTest, OfAnUnknownTypeFailsAfterItHasSetTheNumber) {
  for (const std::uint32_t type : {0U, 18U, 19U, 27U, 33U, 125U, 255U, 256U + 9U, 0xFFFFFFFFU}) {
    header.setCurrentNumber(7);
    EXPECT_EQ(run(type, "0E 30 05", kReceive), 0x80000000u) << type;
    EXPECT_EQ(reports(), report("error : model init failure!\n"));
    EXPECT_EQ(calls(), Lines{});
    EXPECT_EQ(header.getCurrentNumber(), 0);
    EXPECT_EQ(header.getLoadSkipped(), 0x5A);
  }
}

TEST_F(HeaderTest, ReceivesThroughTheOperationOfEveryExecuter) {
  executer(1, "0E 70 01", 14);
  EXPECT_EQ(header.setBulkDumpMessage(nullptr, 0), 0u);
  EXPECT_EQ(calls(), Lines{"initMaster"});
}

TEST_F(HeaderTest, DoesNotLookAtData) {
  executer(1, "0E 70 01", 14);
  const Bytes data(7, 1);
  EXPECT_EQ(header.setBulkDumpMessage(data.data(), 7), 0u);
  EXPECT_EQ(calls(), Lines{"initMaster"});
}

// ---- Dumping ----

TEST_F(HeaderTest, OfAnEditBufferLoadsNothing) {
  for (const std::uint32_t type : kEditBufferHeaders) {
    header.setLoadSkipped(0x5A);
    EXPECT_EQ(run(type, "0E 30 05", kDump), 0u);
    EXPECT_EQ(calls(), Lines{}) << type;
    EXPECT_EQ(header.getLoadSkipped(), 1) << type;
    EXPECT_EQ(header.getCurrentNumber(), type == 9 ? 5 : 0) << type;
  }
}

TEST_F(HeaderTest, OfAStoredContentLoadsIt) {
  for (const std::uint32_t type : kStoredHeaders) {
    header.setLoadSkipped(0x5A);
    EXPECT_EQ(run(type, "0E 0A 7F", kDump), 0u);
    EXPECT_EQ(calls(), Lines{"load(0A 7F)"}) << type;
    EXPECT_EQ(header.getLoadSkipped(), 0) << type;
    EXPECT_EQ(header.getCurrentNumber(), 0) << type;
  }
}

TEST_F(HeaderTest, OfAnyOtherTypeLoadsToo) {
  for (const std::uint32_t type : {0U, 18U, 22U, 125U}) {
    EXPECT_EQ(run(type, "0E 0A 7F", kDump), 0u);
    EXPECT_EQ(calls(), Lines{"load(0A 7F)"}) << type;
  }
}

TEST_F(HeaderTest, TellsWhyTheContentCouldNotBeLoaded) {
  for (const int result : {1, 2, 3, 4, 5, 6, 1000}) {
    record.answer("load", result);
    EXPECT_EQ(run(3, "0E 0A 05", kDump), 0x80000000u);
    EXPECT_EQ(reports(),
              report("error : jobTools->loadForReceivedSysExBulk()! [ ret = " + std::to_string(result) + "]\n"));
    EXPECT_EQ(header.getLoadSkipped(), 0x5A);  // as it was
    EXPECT_EQ(header.getCurrentNumber(), 0);
  }
}

TEST_F(HeaderTest, SetsTheNumberInOtherDirectionsAndNoMore) {
  for (const unsigned direction : {2U, 3U, 255U}) {
    EXPECT_EQ(run(9, "0E 30 05", std::uint8_t(direction)), 0u);
    EXPECT_EQ(header.getCurrentNumber(), 5);
    EXPECT_EQ(run(0, "0E 30 05", std::uint8_t(direction)), 0u);
    EXPECT_EQ(header.getCurrentNumber(), 0);
    EXPECT_EQ(header.getLoadSkipped(), 0x5A);
    EXPECT_EQ(calls(), Lines{});
  }
}

TEST_F(HeaderTest, GivesTheLowAddressByteAsItsNumber) {
  executer(1, "0E 30 7D", 9);
  EXPECT_EQ(dynamic_cast<BulkExecuterHeader&>(header).getHeaderNumber(), 0x7D);
}

TEST_F(HeaderTest, DumpsTwelveBytesAfterLoading) {
  setDevice(4);
  executer(1, "0E 0A 05", 3);
  std::vector<Bytes> messages{{1}, {2}};
  EXPECT_EQ(header.getBulkDumpMessage(messages), 0u);
  EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage("0E 0A 05", {}, 4)});
  EXPECT_EQ(calls(), Lines{"load(0A 05)"});
}

TEST_F(HeaderTest, DumpsEveryAddressUnderItsOwnChecksum) {
  record.records = false;
  for (unsigned mid = 0; mid < 128; ++mid)
    for (unsigned lo = 0; lo < 128; ++lo) {
      const std::string address = Testing::textOf({0x0E, std::uint8_t(mid), std::uint8_t(lo)});
      executer(1, address, 4);
      Bytes message{9, 9};
      ASSERT_EQ(header.getBulkDumpMessageImplement(message), 0u);
      ASSERT_EQ(message, Testing::dumpMessage(address));
    }
}

TEST_F(HeaderTest, DumpsNothingWhenItCannotLoad) {
  record.fail("load");
  executer(1, "0E 0A 05", 3);
  std::vector<Bytes> messages;
  EXPECT_EQ(header.getBulkDumpMessage(messages), 0x80000000u);
  EXPECT_EQ(messages, std::vector<Bytes>{Bytes{}});
  EXPECT_EQ(reports(), report("error : jobTools->loadForReceivedSysExBulk()! [ ret = 1]\n"));  // and no other line
}

TEST_F(HeaderTest, StopsSilentlyAfterLoadingWhenTheDeviceIsOff) {
  setDevice(17);
  executer(1, "0E 0A 05", 3);
  std::vector<Bytes> messages;
  EXPECT_EQ(header.getBulkDumpMessage(messages), 0x80000000u);
  EXPECT_EQ(messages, std::vector<Bytes>{bytesOf("F0 7D")});
  EXPECT_EQ(calls(), Lines{"load(0A 05)"});
}

// ---- Footers ----

class FooterTest : public ExecuterFixture {
 protected:
  BDAErr run(std::uint8_t isReceive) {
    executer(2, "0F 0A 05", 21);
    return footer.execBulkBlock(nullptr, 0, isReceive);
  }
  static std::string report(const std::string& message) {
    return "BulkExecuterControl.cpp [BDA::BulkExecuterFooter::execBulkBlock] " + message;
  }

  BulkExecuter& footer = *creator.getExecuter(2);
};

TEST_F(FooterTest, StoresTheTemporaryModelAndAnswers4000) {
  EXPECT_EQ(run(kReceive), 0x4000u);
  EXPECT_EQ(calls(), Lines{"store(0A 05)"});
}

TEST_F(FooterTest, StoresUnderItsOwnAddressWhateverItsType) {
  for (const std::uint32_t type : {0U, 16U, 17U, 19U, 27U, 33U, 125U}) {
    executer(2, "0F 7F 01", type);
    EXPECT_EQ(footer.setBulkDumpMessage(nullptr, 0), 0x4000u);
    EXPECT_EQ(calls(), Lines{"store(7F 01)"});
  }
}

TEST_F(FooterTest, LeavesTheSharedStateAlone) {
  footer.setCurrentNumber(0x5A);
  footer.setLoadSkipped(0x5A);
  run(kReceive);
  EXPECT_EQ(footer.getCurrentNumber(), 0x5A);
  EXPECT_EQ(footer.getLoadSkipped(), 0x5A);
}

TEST_F(FooterTest, TellsWhyTheModelCouldNotBeStored) {
  for (const int result : {1, 2, 3, 4, 5, 6, 1000}) {
    record.answer("store", result);
    EXPECT_EQ(run(kReceive), 0x80000000u);
    EXPECT_EQ(reports(),
              Lines{report("error : jobTools->storeForReceivedSysExBulk()! [ret = " + std::to_string(result) + "]\n")});
  }
}

// By contract. Nothing in the library runs a footer so.
TEST_F(FooterTest, StoresEvenWhenItIsNotReceived) {
  for (const unsigned direction : {0U, 2U, 255U}) {
    EXPECT_EQ(run(std::uint8_t(direction)), 0x80000000u);
    EXPECT_EQ(reports(), Lines{report("error : wrong bulk type!\n")});
    EXPECT_EQ(calls(), Lines{"store(0A 05)"});
  }
}

TEST_F(FooterTest, TellsBothWhenItIsNotReceivedAndCannotStore) {
  record.fail("store");
  EXPECT_EQ(run(kDump), 0x80000000u);
  EXPECT_EQ(reports(), (Lines{report("error : wrong bulk type!\n"),
                              report("error : jobTools->storeForReceivedSysExBulk()! [ret = 1]\n")}));
}

TEST_F(FooterTest, DumpsTwelveBytesWithoutStoring) {
  setDevice(15);
  executer(2, "0F 0A 05", 21);
  std::vector<Bytes> messages{{1}, {2}};
  EXPECT_EQ(footer.getBulkDumpMessage(messages), 0x4000u);
  EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage("0F 0A 05", {}, 15)});
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(FooterTest, StopsSilentlyAfterTwoBytesWhenTheDeviceIsOff) {
  setDevice(17);
  executer(2, "0F 0A 05", 21);
  std::vector<Bytes> messages;
  EXPECT_EQ(footer.getBulkDumpMessage(messages), 0x80004000u);
  EXPECT_EQ(messages, std::vector<Bytes>{bytesOf("F0 7D")});
  EXPECT_EQ(calls(), Lines{});
}

}  // namespace
}  // namespace BDA
