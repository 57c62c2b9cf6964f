// What an editor is asked for, in which order: the listings in docs/embedding.md are what the module really does on a
// recording platform. They stand in blocks of text, each after a line "# title".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "AddressRows.h"
#include "ExecuterNumbers.h"
#include "bda/BulkDumpAssistant.h"
#include "support/AssistantFixture.h"
#include "support/PlainFileDumpCodec.h"

namespace {

using namespace BDA;
using namespace Testing;

using Calls = std::vector<std::string>;

bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }
std::string verbOf(const std::string& call) { return call.substr(0, call.find('(')); }

// ---- One call, by the name that the platform gives it ---------------------------------------------------------------

struct Renaming {
  const char* recorded;  // how the call begins in the record
  const char* listed;    // and in a listing
  bool isWhole = false;  // the rest is not listed
};
constexpr std::array kRenamings{
    Renaming{"initVoice", "initTemporaryVoiceModel"},
    Renaming{"initMulti", "initTemporaryMultiModel"},
    Renaming{"initArpeggio", "initTemporaryArpeggioModel"},
    Renaming{"initMaster", "initTemporaryMasterModel"},
    Renaming{"initRemote", "initTemporaryRemoteModel"},
    Renaming{"checkMode", "checkModeForReceivedSysExBulk"},
    Renaming{"load(", "loadForReceivedSysExBulk("},
    Renaming{"store(", "storeForReceivedSysExBulk("},
    Renaming{"voiceContentNumber", "getVoiceContentNumber"},
    Renaming{"waveformName", "getWaveformContentName"},
    Renaming{"arpeggioName", "getArpeggioContentName"},
    Renaming{"eventPortManager", "getEventPortManager"},
    Renaming{"screenImage", "getScreenImage"},
    Renaming{"setId", "post"},
    Renaming{"flush(messages)", "flush"},
    Renaming{"flush(additional)", "additional.eventPort.flush"},
    Renaming{"correctBankSelAndProgramNum", "correctBankSelAndProgramNum", true},
    Renaming{"thread.change(2, 1", "Thread::change(2, 1"},
    Renaming{"thread.change", "Thread::change(back)", true},
    Renaming{"thread.", "Thread::"},
    Renaming{"send x", "sendSysEx x"},
};

std::string listed(const std::string& call) {
  for (const Renaming& renaming : kRenamings) {
    if (!startsWith(call, renaming.recorded)) continue;
    if (renaming.isWhole) return renaming.listed;
    std::string name = renaming.listed + call.substr(std::string_view(renaming.recorded).size());
    name = std::regex_replace(name, std::regex(", normal\\)"), ", true)");
    return std::regex_replace(name, std::regex(", drum\\)"), ", false)");
  }
  return call;
}

// The address of the dump that "send(4, F0 7D 00 7F 14 00 00 0E 0A 05 63 F7)" sends, or that it is a notice.
std::string sentBy(const std::string& call) {
  const std::string bytes = call.substr(call.find(' ') + 1);
  return bytes.size() < std::string_view("F0 7D 00 7F 14 00 00").size() ? "notice" : bytes.substr(21, 8);
}

// ---- The calls of one message, on as few lines as tell them all -----------------------------------------------------

// What counts as the same when calls are counted: all that set parameters, all that get them, any one other operation.
std::string kindOf(const std::string& call) {
  const std::string verb = verbOf(call);
  if (verb == "set" || verb == "set16" || verb == "setName") return "set";
  if (verb == "get" || verb == "get16" || verb == "getName") return "get";
  return verb;
}

// "set x 45, set16": how often each operation occurs.
Calls counts(const Calls& run) {
  std::vector<std::pair<std::string, int>> found;
  for (const std::string& call : run) {
    const std::string verb = verbOf(call);
    const auto known = std::find_if(found.begin(), found.end(), [&](const auto& one) { return one.first == verb; });
    if (known == found.end())
      found.emplace_back(verb, 1);
    else
      ++known->second;
  }
  Calls result;
  for (const auto& [verb, count] : found) result.push_back(count == 1 ? verb : verb + " x " + std::to_string(count));
  return result;
}

// Runs of calls are counted: of those on parameters two and more, of others three and more.
Calls counted(const Calls& calls) {
  Calls result;
  for (auto first = calls.begin(); first != calls.end();) {
    const std::string kind = kindOf(*first);
    const auto last = std::find_if(first, calls.end(), [&](const auto& call) { return kindOf(call) != kind; });
    const bool isCall = first->find('(') != std::string::npos;
    const bool isCounted = isCall && last - first >= (kind == "set" || kind == "get" ? 2 : 3);
    const Calls run(first, last);
    const Calls told = isCounted ? counts(run) : run;
    result.insert(result.end(), told.begin(), told.end());
    first = last;
  }
  return result;
}

// A getter whose result is asked at once is told of by what it is asked for: "voice.name" tells of "voice".
Calls withoutOwners(const Calls& calls) {
  Calls result;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const std::string next = i + 1 < calls.size() ? calls[i + 1] : "";
    const bool isOwner = startsWith(next, calls[i] + '.') || startsWith(next, calls[i] + '[') ||
                         startsWith(next, "get(" + calls[i] + ',');
    if (!isOwner) result.push_back(calls[i]);
  }
  return result;
}

const std::regex kIndex("\\[(\\d+)(-\\d+)?\\]");
std::string anyIndex(const std::string& call) { return std::regex_replace(call, kIndex, "[i]"); }

// "multi.part[0-15].main" for the same of one node after the other.
Calls joinedIndices(const Calls& calls) {
  Calls result;
  for (const std::string& call : calls) {
    std::smatch index;
    std::smatch before;
    if (!result.empty() && std::regex_search(call, index, kIndex) && std::regex_search(result.back(), before, kIndex) &&
        anyIndex(call) == anyIndex(result.back()))
      result.back() = std::regex_replace(result.back(), kIndex, "[" + before[1].str() + "-" + index[1].str() + "]");
    else
      result.push_back(call);
  }
  return result;
}

// The same call three times or more is told once.
Calls joinedRepeats(const Calls& calls) {
  Calls result;
  for (auto first = calls.begin(); first != calls.end();) {
    const auto last = std::find_if(first, calls.end(), [&](const auto& call) { return call != *first; });
    if (last - first < 3)
      result.insert(result.end(), first, last);
    else
      result.push_back(*first + " x " + std::to_string(last - first));
    first = last;
  }
  return result;
}

// What is told of, and the calls that it leads to.
struct Row {
  std::string first;
  std::string last;  // of several in a row with the same calls
  Calls calls;
};

Row rowOf(const std::string& what, const Calls& record) {
  Calls calls;
  for (const std::string& call : joinedRepeats(joinedIndices(withoutOwners(counted(record)))))
    calls.push_back(startsWith(call, "send(") ? "sendSysEx(" + sentBy(call) + ", port " + call.substr(5, 1) + ")"
                                              : listed(call));
  if (calls.empty()) calls.emplace_back("nothing");
  return {what, what, calls};
}

bool areSame(const Calls& one, const Calls& other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](const auto& a, const auto& b) { return anyIndex(a) == anyIndex(b); });
}

// One row for several that tell the same of one node after the other.
std::vector<Row> joinedRows(const std::vector<Row>& rows) {
  std::vector<Row> result;
  for (const Row& row : rows) {
    const bool speaksOfNodes =
        std::any_of(row.calls.begin(), row.calls.end(), [](const auto& call) { return call != anyIndex(call); });
    if (result.empty() || !speaksOfNodes || !areSame(row.calls, result.back().calls)) {
      result.push_back(row);
      continue;
    }
    result.back().last = row.last;
    for (std::string& call : result.back().calls) call = anyIndex(call);
  }
  return result;
}

std::string printed(const Row& row) {
  constexpr std::size_t kIndent = 22;
  constexpr std::size_t kWidth = 118;
  std::string text;
  std::string line = row.first == row.last ? row.first : row.first + " to " + row.last;
  line.resize(std::max(kIndent, line.size() + 2), ' ');
  for (std::size_t i = 0; i < row.calls.size(); ++i) {
    const std::string call = row.calls[i] + (i + 1 < row.calls.size() ? "," : "");
    if (line.size() + call.size() > kWidth) {
      text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
      line.assign(kIndent, ' ');
    }
    line += call + ' ';
  }
  return text + line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
}

// ---- What is played -------------------------------------------------------------------------------------------------

std::string text(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo) { return textOf(Bytes{hi, mid, lo}); }

// The data field of a file dump; without bytes it says that there is no such content.
Bytes fileDump(std::string_view name, const Bytes& bytes) {
  Bytes field;
  for (const Bytes& packed : {Plain::encode(Bytes(name.begin(), name.end())), Plain::encode(bytes)}) {
    field.push_back(std::uint8_t(packed.size() / 128));
    field.push_back(std::uint8_t(packed.size() % 128));
    field.insert(field.end(), packed.begin(), packed.end());
  }
  return field;
}

class CallListing : public AssistantFixture {
 protected:
  void SetUp() override {
    AssistantFixture::SetUp();
    record.recordsReads = true;
    manager.work = &work;
    tools.manager = &manager;
    tools.screenImage = pattern(160 * 64);
    forget();
  }

  // Everything that a message leads to.
  void whole(const std::string& address, const Bytes& data = {}) {
    forget();
    send(address, data);
    rows_.push_back(rowOf(address, calls()));
  }
  // What is done with a block, between suspendOutputMidi and resumeOutputMidi.
  Calls callsOfBlock(const std::string& address, const Bytes& data) {
    forget();
    send(address, data);
    const Calls all = calls();
    const auto first = std::find(all.begin(), all.end(), "suspendOutputMidi");
    const auto last = std::find(first, all.end(), "resumeOutputMidi");
    EXPECT_NE(last, all.end()) << address;
    return last == all.end() ? Calls() : Calls(first + 1, last);
  }
  void block(const std::string& address, const Bytes& data = {}) {
    rows_.push_back(rowOf(address, callsOfBlock(address, data)));
  }
  // A header, all blocks that stand behind it, and its footer. A block that does what one of an earlier unit did is
  // told of by that one.
  void unit(std::uint8_t mid, std::uint8_t lo, unsigned headerType) {
    block(text(0x0E, mid, lo));
    std::vector<Row> header = std::exchange(rows_, {});
    forEachAddress(kParameterRows, [&](const AddressRow& row, std::uint8_t blockMid, std::uint8_t blockLo) {
      if (listOf(row.hi) == listBetween(headerType))
        block(text(row.hi, blockMid, blockLo), pattern(kExecuterDataLength[row.executer]));
    });
    const std::vector<Row> blocks = std::exchange(rows_, std::move(header));
    Row known{"the other blocks", "the other blocks", {}};
    for (const Row& row : blocks) {
      const auto same =
          std::find_if(known_.begin(), known_.end(), [&](const Row& one) { return one.calls == row.calls; });
      if (same == known_.end())
        rows_.push_back(row);
      else
        known.calls.push_back(row.first + " as " + same->first);
    }
    if (!known.calls.empty()) rows_.push_back(known);
    known_.insert(known_.end(), blocks.begin(), blocks.end());
    block(text(0x0F, mid, lo));
  }
  // Each message that is sent, with the calls that lead to it; `end` names those after the last.
  void answers(const std::string& end) {
    Calls before;
    for (const std::string& call : calls())
      if (startsWith(call, "send(")) {
        rows_.push_back(rowOf(sentBy(call), before));
        before.clear();
      } else {
        before.push_back(call);
      }
    rows_.push_back(rowOf(end, before));
  }
  void ask(const std::string& address) {
    forget();
    request(address);
    rows_.push_back(rowOf(address, answerOnly(calls())));
  }
  // Without what every request begins and ends with.
  static Calls answerOnly(const Calls& all) {
    const auto first = std::find(all.begin(), all.end(), "flush(messages)");
    return first == all.end() ? all : Calls(first + 1, all.end() - 1);
  }

  // Which headers open what: one row for all middle bytes that do the same.
  void opened() {
    std::vector<Row> kinds;
    for (const AddressRow& row : kHeaderRows) {
      std::string mids = textOf({row.mid.first});
      if (row.mid.size() > 1) mids += "-" + textOf({row.mid.last});
      const Row kind = rowOf(mids, callsOfBlock(text(row.hi, row.mid.first, row.lo.last), {}));
      const auto known =
          std::find_if(kinds.begin(), kinds.end(), [&](const Row& one) { return one.calls == kind.calls; });
      if (known == kinds.end())
        kinds.push_back(kind);
      else
        known->first = known->last += " " + mids;
    }
    rows_ = kinds;
  }

  std::string listing(const std::string& title) {
    std::string text = "# " + title + "\n";
    for (const Row& row : joinedRows(std::exchange(rows_, {}))) text += printed(row);
    return text;
  }

  std::string life();
  std::string units();
  std::string contents();
  std::string requests();

 private:
  std::vector<Row> rows_;   // of the listing that is being made
  std::vector<Row> known_;  // the blocks of all units so far
};

std::string CallListing::life() {
  const auto note = [this](const char* what) { rows_.push_back(rowOf(what, calls())); };
  bridge.reset();
  assistant.reset();
  bulkJobs.clear();
  forget();
  construct();
  note("construction");
  registerBridge();
  note("its bridge");
  assistant.reset();
  note("destruction");
  construct();
  registerBridge();
  const std::string life = listing("the life of an assistant");

  whole("0E 0A 05");
  whole("0F 0A 05");
  return life + '\n' + listing("the header and the footer of a user voice on port 1, from end to end");
}

std::string CallListing::units() {
  opened();
  std::string all = listing("what a header 0E opens, by its middle byte");
  const auto add = [&](const char* title) { all += '\n' + listing(title); };
  unit(0x0A, 5, 3);
  add("a user voice");
  unit(0x28, 3, 6);
  add("a user drum voice");
  unit(0x5F, 0, 11);
  add("the edit buffer of the multi");
  unit(0x40, 0x11, 12);
  add("a performance");
  unit(0x70, 3, 14);
  add("a master");
  unit(0x60, 0, 16);
  add("a remote setting");
  block("0E 30 02");
  block("40 03 00", pattern(36));
  block("0F 30 02");
  add("the voice of part 2 of the multi");
  return all;
}

std::string CallListing::contents() {
  const Bytes nothing = fileDump("", {});
  block("0C 0A 05", fileDump("Voice", pattern(100)));
  block("0C 28 03", nothing);
  block("0C 12 07", fileDump("Mixing voice", pattern(100)));
  block("0C 13 07", nothing);
  block("0C 50 04", fileDump("Multi", pattern(100)));
  block("11 00 00");
  block("11 01 00");
  std::string all =
      listing("file dumps of a voice, an empty drum voice, two mixing voices of multi 7 and a multi; the passes");

  block("71 28 00", pattern(32));
  block("00 05 00", pattern(22));
  all += '\n' + listing("blocks outside of units: favourites, settings of the sequencer");

  whole("0E 31 42");
  EXPECT_EQ(trace(), failure("Receiver", 116, "BDA::BulkDumpReceiver::receiveBulkDump",
                             "error : not found block [ 0e, 31, 42 ]\n"));
  whole("0F 31 42");
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  forget();
  request("0E 31 02");
  rows_.push_back(rowOf("request 0E 31 02", calls()));
  record.heal();
  return all + '\n' + listing("mixing voice 2 is empty: what says so, and a request for it");
}

std::string CallListing::requests() {
  forget();
  request("0E 70 03");
  answers("then");
  std::string all = listing("a request for a stored master: what leads to each message that is sent");

  forget();
  bulkJobs.back()->execEvent(nullptr, nullptr);
  answers("then");
  all += '\n' + listing("the job that sends the edit buffer of the master, likewise");

  for (const char* address : {"0C 0A 05", "0C 0B 05", "70 20 01", "70 10 01", "70 30 00", "71 28 00", "51 00 00"})
    ask(address);
  return all + '\n' + listing("requests outside of units, between post(13) and post(14)");
}

// ---- The page -------------------------------------------------------------------------------------------------------

using Listings = std::map<std::string, std::string>;

Listings byTitle(const std::string& listings) {
  Listings all;
  std::string title;
  std::istringstream lines(listings);
  for (std::string line; std::getline(lines, line);) {
    if (startsWith(line, "# "))
      title = line;
    else if (!line.empty())
      all[title] += line + '\n';
  }
  return all;
}

// The page with these listings under their titles, each of which takes its own out of `listings`.
std::string withListings(const std::string& page, Listings& listings) {
  std::string text;
  bool isInBlock = false;
  bool isInListing = false;
  std::istringstream lines(page);
  for (std::string line; std::getline(lines, line);) {
    if (startsWith(line, "```")) isInBlock = line == "```text";
    const bool isTitle = isInBlock && startsWith(line, "# ");
    isInListing = isTitle || (isInListing && isInBlock && !line.empty());
    if (!isInListing || isTitle) text += line + '\n';
    if (!isTitle) continue;
    EXPECT_EQ(listings.count(line), 1U) << "nothing like this is listed: " << line;
    text += listings[line];
    listings.erase(line);
  }
  return text;
}

TEST_F(CallListing, ThePageInDocsTellsWhatTheModuleCalls) {
  Listings listings;
  for (const std::string& part : {life(), units(), contents(), requests()}) listings.merge(byTitle(part));

  const std::string path = BDA_SOURCE_DIR "/docs/embedding.md";
  std::stringstream page;
  page << std::ifstream(path, std::ios::binary).rdbuf();
  const std::string expected = withListings(page.str(), listings);
  for (const auto& [title, listing] : listings) ADD_FAILURE() << "the page lacks\n" << title << '\n' << listing;
  if (std::getenv("BDA_UPDATE_DOCS") != nullptr) std::ofstream(path, std::ios::binary) << expected;
  EXPECT_EQ(page.str(), expected) << "run this test with BDA_UPDATE_DOCS=1 and read what changed";
}

}  // namespace
