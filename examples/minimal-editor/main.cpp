// A small but whole editor on libbda that sees its installed headers only: models as arrays, contents in memory.
//
//   minimal-editor FILE...   receives each file of messages, tells what was stored and what was refused; requests back
//                            what the file held and tells whether every byte came (exit code 1: not all did)
//
//   c++ -std=c++17 main.cpp -o minimal-editor $(pkg-config --cflags --libs bda)
//
// Read it from the end: main() hands messages to the assistant, Editor gives it models, Store keeps contents, Journal
// hears how each message fared. docs/embedding.md tells in which order they are called. Left out: voices of multi
// parts, a screen, names of waveforms and arpeggios, and contents that come as blocks and leave as file dumps.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bda/BulkDumpObserver.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/CMA/VoiceBanks.h"
#include "bda/platform/ContSrv/ContSrv.h"
#include "bda/platform/EvtSrv/EventPortManager.h"

namespace {

using Byte = std::uint8_t;
using Bytes = std::vector<Byte>;

template <typename... Interfaces>
struct All : Interfaces... {};

// ---- How a message fared -------------------------------------------------------------------------------------------

// What the assistant knows of it, and what the store has done meanwhile.
struct Journal final : BDA::BulkDumpObserver {
  void bulkDumpHandled(const BDA::BulkDumpReport& report) override {
    if (report.outcome == BDA::BulkDumpOutcome::refused)
      std::printf("  refused (%d): %02X %02X %02X\n", int(report.refusal), report.address[0], report.address[1],
                  report.address[2]);
    if (!stored.empty()) std::printf("  stored:%s\n", stored.c_str());
    stored.clear();
  }

  std::string stored;
};

// ---- Models: arrays by the paths that docs/layouts.md names, as "voice.element[3].params" ---------------------------

using Values = std::map<std::string, Bytes>;
using Voice = CMA::VoiceParameterModel;
using Multi = CMA::MultiParameterModel;
using Arpeggio = CMA::ArpeggioParameterModel;
using Master = CMA::MasterParameterModel;
using Remote = CMA::RemoteParameterModel;
using System = CMA::SystemParameterModel;

// A place on such a path: any model, node, name or group of parameters. The assistant knows how long each array is;
// here it is as long as what was asked for. An editor with classes of its own gives each the interface that it needs.
struct Place final
    : All<Voice, Voice::ElementNode, Voice::ElementNode::ExceptionalParam8, Voice::KeyNode, Multi, Multi::PartNode,
          Multi::AdPartNode, Arpeggio, Arpeggio::PartNode, Master, Master::ZoneNode, Remote, Remote::ControllerNode,
          System, System::AdPartNode, System::QuickSetupNode, ModelSrv::ModelPart, CMA::ParameterGroup> {
  Place(Values& allValues, std::string ownPath) : values(allValues), path(std::move(ownPath)) {}

  Place* getName() override { return at("name"); }
  Place* getName1() override { return at("name1"); }
  Place* getName2() override { return at("name2"); }
  Place* getType() override { return at("type"); }
  Place* getCommon() override { return at("common"); }
  Place* getCommonExtra() override { return at("commonExtra"); }
  Place* getArpeggioCommon() override { return at("arpeggioCommon"); }
  Place* getArpeggioTempo() override { return at("arpeggioTempo"); }
  Place* getArpeggioEntry(std::uint32_t) override { return at("arpeggioEntry"); }
  Place* getArpeggioSix() override { return at("arpeggioSix"); }
  Place* getInsertionA() override { return at("insertionA"); }
  Place* getInsertionB() override { return at("insertionB"); }
  Place* getInsertionL() override { return at("insertionL"); }
  Place* getReverb() override { return at("reverb"); }
  Place* getReverbSettings() override { return at("reverbSettings"); }
  Place* getChorus() override { return at("chorus"); }
  Place* getChorusSettings() override { return at("chorusSettings"); }
  Place* getMasterEq() override { return at("masterEq"); }
  Place* getMasterEffect() override { return at("masterEffect"); }
  Place* getMasterEffectSettings() override { return at("masterEffectSettings"); }
  Place* getParams() override { return at("params"); }
  Place* getWave() override { return at("wave"); }
  Place* getBankProgram() override { return at("bankProgram"); }
  Place* getMain() override { return at("main"); }
  Place* getExtra() override { return at("extra"); }
  Place* getTempo() override { return at("tempo"); }
  Place* getSix() override { return at("six"); }
  Place* getTune() override { return at("tune"); }
  Place* getSequencer() override { return at("sequencer"); }
  Place* getRemote() override { return at("remote"); }
  Place* getUtility() override { return at("utility"); }
  Place* getElement(std::uint32_t i) override { return at("element", i); }
  Place* getKey(std::uint32_t i) override { return at("key", i); }
  Place* getPart(std::uint32_t i) override { return at("part", i); }
  Place* getAdPart(std::uint32_t i) override { return at("adPart", i); }
  Place* getZone(std::uint32_t i) override { return at("zone", i); }
  Place* getController(std::uint32_t i) override { return at("controller", i); }
  Place* getQuickSetup(std::uint32_t i) override { return at("quickSetup", i); }

  bool get(std::uint8_t* value, std::uint16_t index) const override { return copy(value, find(index, 1), 1); }
  bool get(std::uint16_t* value, std::uint16_t index) const override { return copy(value, find(index, 2), 2); }
  bool set(const std::uint8_t* value, std::uint16_t index, int) override { return copy(find(index, 1), value, 1); }
  bool set(const std::uint16_t* value, std::uint16_t index, int) override { return copy(find(index, 2), value, 2); }
  void setToServer(const char* text, int) override { values[path].assign(text, text + std::strlen(text)); }
  void getFromServer(char* buffer, std::size_t capacity) const override {
    std::copy_n(values[path].begin(), std::min(capacity, values[path].size()), buffer);
  }

  // Any voice can be selected, no value depends on another, and a voice has one arpeggio entry.
  bool correctBankSelAndProgramNum(std::uint32_t, Byte&, Byte&, Byte&, bool) override { return true; }
  Place* getExceptionalParam() override { return this; }
  void changeCorrectType(bool) override {}
  std::uint32_t getArpeggioEntryIndex() override { return 0; }
  void insertionSwitchAllOff() override {
    const Byte off = 0;
    for (std::uint32_t i = 0; i < 16; ++i) getPart(i)->getMain()->set(&off, 54, 1);
    getAdPart(0)->getParams()->set(&off, 7, 1);
  }

  Place* at(const std::string& name) {
    std::unique_ptr<Place>& place = places[name];
    if (place == nullptr) place = std::make_unique<Place>(values, path + '.' + name);
    return place.get();
  }
  Place* at(const std::string& list, std::uint32_t i) { return at(list + '[' + std::to_string(i) + ']'); }
  // A parameter is asked for in its own width only: that many bytes of the array are its own.
  Byte* find(std::size_t index, std::size_t width) const {
    Bytes& array = values[path];
    array.resize(std::max(array.size(), (index + 1) * width));
    return &array[index * width];
  }
  static bool copy(void* to, const void* from, std::size_t width) { return std::memcpy(to, from, width) != nullptr; }

  Values& values;
  std::string path;
  std::map<std::string, std::unique_ptr<Place>> places;
};

// ---- Contents, by their paths: type and number ----------------------------------------------------------------------

using ContSrv::_ContResult;
using ContSrv::_ContType;
using ContSrv::ContRes_Success;

struct Content {
  std::string name;
  Values values;  // of a content that came as a unit of blocks
  Bytes file;     // of one that came as a file dump
  _ContResult there() const { return values.empty() && file.empty() ? ContSrv::ContRes_EmptyContent : ContRes_Success; }
};

// The store is itself the file that is open in it, and that file's data: the assistant opens one at a time.
struct Store final : All<ContSrv::Work, ContSrv::DataFile, ContSrv::Data, EvtSrv::EventPortManager> {
  static std::string pathOf(_ContType type, unsigned number) {
    return std::to_string(type) + '/' + std::to_string(number);
  }
  // Bank select and program make the number of a voice.
  static std::uint32_t voiceNumber(std::size_t bank, std::uint32_t voice) {
    return (CMA::voiceBankSelTable[bank].msb * 256U + CMA::voiceBankSelTable[bank].lsb) * 256 + voice;
  }
  void put(const std::string& path, Content content) {
    journal.stored += ' ' + path + " \"" + content.name + '"';
    contents[path] = std::move(content);
  }

  unsigned char getLoadSaveFlag() override { return 0; }
  _ContResult removeMixingVoice(_ContType type, unsigned long multi, unsigned long voice) override {
    std::vector<std::uint32_t> numbers;
    for (unsigned long i = 0; i < 16; ++i)
      if (voice == i || voice == ContSrv::ContentNumber_All) numbers.push_back(getMixingVoiceNumber(type, multi, i));
    return removeContents(ContSrv::ContType_Voice, numbers, true);
  }
  _ContResult getMixingVoiceName(_ContType type, unsigned long multi, unsigned long voice, std::string& name) override {
    return getContentName(ContSrv::ContType_Voice, getMixingVoiceNumber(type, multi, voice), name);
  }
  std::uint32_t getMixingVoiceNumber(_ContType, unsigned long multi, unsigned long voice) override {
    return multi == 0 ? voiceNumber(15, std::uint32_t(voice)) : std::uint32_t(0x3F8000 + 16 * multi + voice);
  }
  _ContResult getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) override {
    count = 0;  // there is room for all that can be named: no need to count
    maximum = 2048;
    return ContRes_Success;
  }
  _ContResult requestOverWriteConfig(_ContType) override { return ContRes_Success; }
  _ContResult removeContents(_ContType type, const std::vector<std::uint32_t>& numbers, bool) override {
    _ContResult result = ContSrv::ContRes_DoNothing;
    for (const std::uint32_t number : numbers) result = std::min(result, removeContent(type, number));
    return result;
  }
  _ContResult removeContent(_ContType type, std::uint32_t number) override {
    if (contents[pathOf(type, number)].there() != ContRes_Success) return ContSrv::ContRes_DoNothing;
    contents[pathOf(type, number)] = {};
    journal.stored += " nothing in " + pathOf(type, number);
    return ContRes_Success;
  }
  _ContResult getDataFilePath(_ContType type, std::uint32_t number, std::string& path) override {
    path = pathOf(type, number);
    return ContRes_Success;
  }
  _ContResult getContentName(_ContType type, std::uint32_t number, std::string& name) override {
    name = contents[pathOf(type, number)].name;
    return contents[pathOf(type, number)].there();
  }
  _ContResult setContentName(_ContType, std::uint32_t, const std::string& name, bool) override {
    fileName = name;  // comes while the file is open, before its bytes
    return ContRes_Success;
  }
  DataFile* openDataFile(const std::string& path, ContSrv::_OpenMode mode) override {
    filePath = path;
    fileName = contents[path].name;
    return mode == ContSrv::OpenMode_Write || contents[path].there() == ContRes_Success ? this : nullptr;
  }
  Data* openData() override { return this; }
  std::int64_t getSize() override {
    const Bytes& file = contents[filePath].file;
    return file.empty() ? -1 : std::int64_t(file.size());  // none: the content came as a unit
  }
  std::int64_t read(Byte* bytes, std::int64_t size) override {
    std::copy_n(contents[filePath].file.begin(), std::min(size, getSize()), bytes);
    return std::min(size, getSize());
  }
  std::int64_t write(const Byte* bytes, std::int64_t size) override {
    put(filePath, {fileName, {}, {bytes, bytes + size}});  // all of them come at once
    return size;
  }
  _ContResult closeData(Data*) override { return ContRes_Success; }
  _ContResult closeDataWithoutSync(Data*) override { return ContRes_Success; }
  _ContResult closeDataFile(DataFile*, int) override { return ContRes_Success; }
  _ContResult sync() override { return ContRes_Success; }
  _ContResult setContentFavoriteFlag(_ContType type, std::uint32_t number, Byte flag, bool last) override {
    favourites[pathOf(type, number)] = flag;
    if (last) journal.stored += " favourites";
    return ContRes_Success;
  }
  _ContResult getContentInformation(_ContType type, std::uint32_t number, ContSrv::ContentInformation& slot) override {
    slot.favoriteFlag = favourites[pathOf(type, number)];
    return contents[pathOf(type, number)].there();
  }
  EvtSrv::EventPort* openPort(const char*, unsigned char) override { return nullptr; }  // there is no screen
  ContSrv::Work* getContentsWork() override { return this; }

  Journal journal;
  std::map<std::string, Content> contents;
  std::map<std::string, Byte> favourites;
  std::string filePath, fileName;
};

// ---- The editor -----------------------------------------------------------------------------------------------------

// A model of each kind, over one set of values.
struct Models final : CMA::TemporaryCoreModel {
  Values values;
  Place voice{values, "voice"}, multi{values, "multi"}, arpeggio{values, "arpeggio"};
  Place master{values, "master"}, remote{values, "remote"}, system{values, "system"};
};
using Temporary = CMA::TemporaryCoreModel;
namespace JOB = CMA::JOB;

struct Editor final : CMA::JobTools {
  explicit Editor(Store& contents) : store(contents) {
    const Byte on = 1;
    settings.system.getUtility()->set(&on, 50, 0);  // receive-bulk; the device number, 51, is 0: device 1
  }

  Temporary* createTemporaryModel() override { return &unit; }
  void destroyTemporaryModel(Temporary*) override {}
  // The mode check of its header has emptied the unit: whatever is opened in it is as new.
  bool initTemporaryVoiceModel(Temporary*, std::uint16_t, bool) override { return true; }
  bool initTemporaryMultiModel(Temporary*, std::uint32_t) override { return true; }
  bool initTemporaryArpeggioModel(Temporary*, bool, std::uint16_t, bool) override { return true; }
  bool initTemporaryMasterModel(Temporary*) override { return true; }
  bool initTemporaryRemoteModel(Temporary*) override { return true; }
  Voice* getTemporaryVoiceModel(Temporary*, std::uint16_t) override { return &unit.voice; }
  Multi* getTemporaryMultiModel(Temporary*) override { return &unit.multi; }
  Arpeggio* getTemporaryArpeggioModel(Temporary*) override { return &unit.arpeggio; }
  Master* getTemporaryMasterModel(Temporary*) override { return &unit.master; }
  Remote* getTemporaryRemoteModel(Temporary*) override { return &unit.remote; }

  Voice* getVoiceModel(std::uint16_t) override { return &live.voice; }
  Multi* getMultiModel() override { return &live.multi; }
  Arpeggio* getArpeggioModel() override { return &live.arpeggio; }
  Master* getMasterModel() override { return &live.master; }
  Remote* getRemoteModel() override { return &live.remote; }
  System* getSystemModel() override { return &settings.system; }
  CMA::AdditionalParameterModel* getAdditionalModel() override { return nullptr; }

  // Edit buffers are kept as contents are; the one that a message names is made the live one.
  unsigned long checkModeForReceivedSysExBulk(Temporary*, Byte hi, Byte mid, Byte lo) override {
    if (hi != 0x0E && hi != 0x0F) return JOB::Result_Success;
    if (mid == 0x30) return JOB::Result_CurrentStateError;  // the voice of a multi part
    if ((mid & 0x0F) == 0x0F) live.values = store.contents[pathOf(mid, lo)].values;
    if (hi == 0x0E) unit.values.clear();
    if (hi == 0x0E) header = pathOf(mid, lo);
    return JOB::Result_Success;
  }
  unsigned long loadForReceivedSysExBulk(Temporary*, Byte mid, Byte lo) override {
    header.clear();
    unit.values = store.contents[pathOf(mid, lo)].values;
    return unit.values.empty() ? JOB::Result_UnknownError : JOB::Result_Success;
  }
  unsigned long storeForReceivedSysExBulk(Temporary*, Byte mid, Byte lo) override {
    if (header != pathOf(mid, lo)) return JOB::Result_CurrentStateError;  // no header has begun this unit
    std::string name;
    for (const char* path : {"voice.name", "multi.name", "master.name", "remote.name1"})
      name.append(unit.values[path].begin(), unit.values[path].end());
    store.put(pathOf(mid, lo), {name, unit.values, {}});
    return JOB::Result_Success;
  }

  std::uint32_t getVoiceContentNumber(Byte bank, Byte voice) override { return Store::voiceNumber(bank, voice); }
  void suspendOutputMidi() override {}  // nothing is sent when a parameter changes
  void resumeOutputMidi() override {}
  unsigned long getWaveformContentName(std::uint32_t, Byte, std::string&) override { return JOB::Result_UnknownError; }
  unsigned long getArpeggioContentName(std::uint32_t, Byte, std::string&) override { return JOB::Result_UnknownError; }
  EvtSrv::EventPortManager* getEventPortManager() override { return &store; }

  // Voices lie where file dumps look for them, by bank code; everything else, and the edit buffers, under other types.
  static std::string pathOf(Byte mid, Byte lo) {
    constexpr Byte kMids[] = {0, 1, 2, 3, 4, 5, 6, 7, 0x0A, 0x0B, 0x0C, 0x20, 0x28, 0x09, 0x21, 0x31};
    for (std::size_t bank = 0; bank < std::size(kMids); ++bank)
      if (kMids[bank] == mid) return Store::pathOf(ContSrv::ContType_Voice, Store::voiceNumber(bank, lo));
    return Store::pathOf(100U + mid, lo);
  }

  Store& store;
  Models unit, live, settings;
  std::string header;
};

// ---- The program ----------------------------------------------------------------------------------------------------

struct Cable final : BDA::BulkDumpBridge {
  Cable() : BulkDumpBridge(nullptr) {}
  void sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) override {
    if (port != BDA::DevicePort_Echo) sent.insert(sent.end(), message, message + length);
  }
  Bytes sent;
};

std::vector<Bytes> messagesIn(const Bytes& bytes) {
  std::vector<Bytes> messages;
  for (auto at = bytes.begin();;) {
    const auto first = std::find(at, bytes.end(), 0xF0);
    const auto last = std::find(first, bytes.end(), 0xF7);
    if (last == bytes.end()) return messages;
    messages.emplace_back(first, at = last + 1);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Store store;
  Editor editor(store);
  Cable cable;
  BDA::BulkDumpAssistant assistant(&store, nullptr, nullptr, &editor, &store, true);
  assistant.registerBDABridge(&cable);
  assistant.registerObserver(&store.journal);
  const auto hand = [&](const Bytes& message) {
    const auto length = static_cast<unsigned long>(message.size());
    return assistant.receiveBulkDump(message.data(), length, BDA::DevicePort_Main);
  };

  bool isAllBack = argc > 1;
  for (int i = 1; i < argc; ++i) {
    std::printf("%s\n", argv[i]);
    std::ifstream file(argv[i], std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    std::vector<Bytes> requests;  // a unit comes back by its header, every block outside of units by itself
    bool isInUnit = false;
    for (const Bytes& message : messagesIn(bytes)) {
      if (hand(message) != BDA::BulkMsg_BulkDump) continue;
      const Byte hi = message[7];
      if (!isInUnit && hi != 0x0F) requests.push_back({0xF0, 0x7D, 0x20, 0x7F, 0x14, hi, message[8], message[9], 0xF7});
      isInUnit = hi == 0x0E || (isInUnit && hi != 0x0F);
    }

    cable.sent.clear();
    for (const Bytes& request : requests) hand(request);
    const bool isBack = !bytes.empty() && cable.sent == bytes;
    std::printf("  %zu requested: %s\n", requests.size(), isBack ? "every byte came back" : "NOT every byte came back");
    isAllBack = isAllBack && isBack;
  }
  return isAllBack ? 0 : 1;
}
