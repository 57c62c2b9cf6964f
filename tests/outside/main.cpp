// The smallest editor that libbda can serve: no models but the two settings that every message is checked against, no
// store, no screen. It sees the installed headers and libraries only.

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Export.h"
#include "bda/BulkDumpAssistant.h"
#include "bda/platform/Basekit/Tracer.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/version.h"

namespace {

// Receive-bulk (50) on, device number (51) 1.
struct UtilitySettings : CMA::ParameterGroup {
  bool get(std::uint8_t* value, std::uint16_t index) const override {
    if (index != 50 && index != 51) return false;
    *value = index == 50;
    return true;
  }
  bool get(std::uint16_t*, std::uint16_t) const override { return false; }
  bool set(const std::uint8_t*, std::uint16_t, int) override { return false; }
  bool set(const std::uint16_t*, std::uint16_t, int) override { return false; }
};

struct System : CMA::SystemParameterModel {
  CMA::ParameterGroup* getCommon() override { return nullptr; }
  CMA::ParameterGroup* getTune() override { return nullptr; }
  AdPartNode* getAdPart(std::uint32_t) override { return nullptr; }
  CMA::ParameterGroup* getMasterEq() override { return nullptr; }
  CMA::ParameterGroup* getMasterEffect() override { return nullptr; }
  CMA::ParameterGroup* getMasterEffectSettings() override { return nullptr; }
  QuickSetupNode* getQuickSetup(std::uint32_t) override { return nullptr; }
  CMA::ParameterGroup* getSequencer() override { return nullptr; }
  CMA::ParameterGroup* getRemote() override { return nullptr; }
  CMA::ParameterGroup* getUtility() override { return &utility; }

  UtilitySettings utility;
};

struct Tools : CMA::JobTools {
  CMA::TemporaryCoreModel* createTemporaryModel() override { return nullptr; }
  void destroyTemporaryModel(CMA::TemporaryCoreModel*) override {}
  bool initTemporaryVoiceModel(CMA::TemporaryCoreModel*, std::uint16_t, bool) override { return false; }
  bool initTemporaryMultiModel(CMA::TemporaryCoreModel*, std::uint32_t) override { return false; }
  bool initTemporaryArpeggioModel(CMA::TemporaryCoreModel*, bool, std::uint16_t, bool) override { return false; }
  bool initTemporaryMasterModel(CMA::TemporaryCoreModel*) override { return false; }
  bool initTemporaryRemoteModel(CMA::TemporaryCoreModel*) override { return false; }
  CMA::VoiceParameterModel* getTemporaryVoiceModel(CMA::TemporaryCoreModel*, std::uint16_t) override { return nullptr; }
  CMA::MultiParameterModel* getTemporaryMultiModel(CMA::TemporaryCoreModel*) override { return nullptr; }
  CMA::ArpeggioParameterModel* getTemporaryArpeggioModel(CMA::TemporaryCoreModel*) override { return nullptr; }
  CMA::MasterParameterModel* getTemporaryMasterModel(CMA::TemporaryCoreModel*) override { return nullptr; }
  CMA::RemoteParameterModel* getTemporaryRemoteModel(CMA::TemporaryCoreModel*) override { return nullptr; }
  CMA::VoiceParameterModel* getVoiceModel(std::uint16_t) override { return nullptr; }
  CMA::MultiParameterModel* getMultiModel() override { return nullptr; }
  CMA::ArpeggioParameterModel* getArpeggioModel() override { return nullptr; }
  CMA::MasterParameterModel* getMasterModel() override { return nullptr; }
  CMA::RemoteParameterModel* getRemoteModel() override { return nullptr; }
  CMA::SystemParameterModel* getSystemModel() override { return &system; }
  CMA::AdditionalParameterModel* getAdditionalModel() override { return nullptr; }
  unsigned long loadForReceivedSysExBulk(CMA::TemporaryCoreModel*, std::uint8_t, std::uint8_t) override {
    return CMA::JOB::Result_UnknownError;
  }
  unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel*, std::uint8_t, std::uint8_t) override {
    return CMA::JOB::Result_UnknownError;
  }
  unsigned long checkModeForReceivedSysExBulk(CMA::TemporaryCoreModel*, unsigned char, unsigned char,
                                              unsigned char) override {
    return CMA::JOB::Result_Success;
  }
  std::uint32_t getVoiceContentNumber(std::uint8_t, std::uint8_t) override { return 0; }
  void suspendOutputMidi() override {}
  void resumeOutputMidi() override {}
  unsigned long getWaveformContentName(std::uint32_t, std::uint8_t, std::string&) override {
    return CMA::JOB::Result_UnknownError;
  }
  unsigned long getArpeggioContentName(std::uint32_t, std::uint8_t, std::string&) override {
    return CMA::JOB::Result_UnknownError;
  }
  EvtSrv::EventPortManager* getEventPortManager() override { return nullptr; }

  System system;
};

struct Bridge : BDA::BulkDumpBridge {
  using BDA::BulkDumpBridge::BulkDumpBridge;
  void sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) override {
    sent.assign(message, message + length);
    sentTo = port;
  }

  std::vector<unsigned char> sent;
  std::uint32_t sentTo = 0;
};

struct Log : Basekit::TracerSink {
  void write(const char* text, std::size_t length) noexcept override {
    std::fwrite(text, 1, length, stdout);
    ++lines;
  }
  int lines = 0;
};

EDITOR_INTERNAL int failures = 0;

void expect(bool fact, const char* what) {
  std::printf("%s: %s\n", fact ? "ok" : "FAILED", what);
  if (!fact) ++failures;
}

}  // namespace

int main() {
  expect(std::strcmp(BDA::libraryVersion(), BDA_VERSION_STRING) == 0, "it runs with what it was compiled with");

  Log log;
  Basekit::Tracer::setThreadSink(&log);

  Tools tools;
  std::vector<CMA::JobReceiver*> bulkJobs;
  {
    BDA::BulkDumpAssistant assistant(nullptr, nullptr, &bulkJobs, &tools, nullptr, true);
    Bridge bridge(&assistant);
    expect(bulkJobs.size() == 5, "the assistant brings its five jobs");

    // A dump without data to an address that no block has.
    unsigned char dump[] = {0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x00, 0x7F, 0x7F, 0x7F, 0x00, 0xF7};
    dump[10] = BDA::Utility::calcCheckSum(dump, sizeof dump);
    expect(dump[10] == 3, "the checksum makes the sum 0 modulo 128");
    expect(BDA::Utility::isCorrectCheckSum(dump, sizeof dump), "and is recognised as right");
    expect(log.lines == 0, "nothing was logged so far");

    expect(assistant.receiveBulkDump(dump, sizeof dump, BDA::DevicePort_Main) == BDA::BulkMsg_BulkDump,
           "it is a bulk dump");
    expect(log.lines == 2, "its refusal is logged in two lines");
    expect(bridge.sent == std::vector<unsigned char>(dump, dump + sizeof dump) && bridge.sentTo == BDA::DevicePort_Echo,
           "and it is echoed through the bridge");

    dump[2] = 0x05;
    expect(assistant.receiveBulkDump(dump, sizeof dump, BDA::DevicePort_Main) == BDA::BulkMsg_WrongDeviceNumber,
           "a dump for another device number is recognised");
    expect(assistant.receiveBulkDump(nullptr, 0, BDA::DevicePort_Main) == BDA::BulkMsg_NotSysEx,
           "no message is not System Exclusive");

    std::uint8_t nibble = 0xFF;
    expect(BDA::Utility::getDeviceNumber(tools, &nibble) == 0 && nibble == 0, "the device number is 1");
    assistant.registerBDABridge(nullptr);
    bulkJobs.clear();
  }
  return failures == 0 ? 0 : 1;
}
