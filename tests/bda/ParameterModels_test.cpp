#include "bda/platform/CMA/ParameterModels.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "ExecuterNumbers.h"
#include "InstrumentMap.h"
#include "ModelSizes.h"
#include "TableFixture.h"
#include "support/AssistantFixture.h"

// The sizes in the header are what the module really asks the models for: everything that can be received is,
// everything that can be requested is, and every parameter that is got or set on the way is written down.

namespace BDA {
namespace {

struct Touched {
  std::size_t count = 0;  // the highest index that was got or set, and one
  std::set<int> widths;   // of the operations that did it
};

// Of all models: by path, with "[i]" for the nodes of lists.
struct Touches {
  std::map<std::string, Touched> groups;
  std::map<std::string, std::size_t> names;  // the longest text that was set
  std::map<std::string, std::size_t> lists;  // the highest node, and one

  // A line of the record: "set16(temporary.voice.element[2].wave, 0, 129, flag 1)".
  void note(const std::string& line) {
    const std::size_t open = line.find('(');
    const std::size_t comma = line.find(", ", open);
    if (open == std::string::npos || comma == std::string::npos) return;
    const std::string operation = line.substr(0, open);
    const std::string path = pathInModel(line.substr(open + 1, comma - open - 1));
    const std::string argument = line.substr(comma + 2);
    if (operation == "setName") {
      std::size_t& longest = names[ModelSizes::anyNode(path)];
      longest = std::max(longest, argument.size() - 1);
    } else if (operation == "set" || operation == "get" || operation == "set16" || operation == "get16") {
      Touched& group = groups[ModelSizes::anyNode(path)];
      group.count = std::max(group.count, std::size_t(std::stoul(argument)) + 1);
      group.widths.insert(operation.ends_with("16") ? 16 : 8);
      noteNode(path);
    }
  }

 private:
  // Without "temporary." and the number of a live voice.
  static std::string pathInModel(std::string path) {
    if (path.starts_with("temporary.")) path.erase(0, path.find('.') + 1);
    if (path.starts_with("voice[")) path.erase(path.find('['), path.find(']') - path.find('[') + 1);
    return path;
  }
  void noteNode(const std::string& path) {
    const std::size_t bracket = path.find('[');
    if (bracket == std::string::npos) return;
    std::size_t& count = lists[path.substr(0, bracket)];
    count = std::max(count, std::size_t(std::stoul(path.substr(bracket + 1))) + 1);
  }
};

class ParameterModels : public Testing::AssistantFixture {
 protected:
  void noteCalls() {
    for (const std::string& line : calls()) touches_.note(line);
    bridge->messages.clear();
    trace();
  }
  void receiveBlock(const InstrumentMap::Block& block) {
    send(Testing::textOf({block.hi, block.mid, block.lo}), Bytes(kExecuterDataLength.at(block.executer), 'a'));
    noteCalls();
  }
  // With the blocks of all kinds of units: those that do not fit are refused and change nothing.
  void receiveUnit(const std::string& header) {
    send(header);
    for (const InstrumentMap::List list : {InstrumentMap::normalVoice, InstrumentMap::drumVoice, InstrumentMap::multi,
                                           InstrumentMap::performance, InstrumentMap::master, InstrumentMap::remote})
      for (const InstrumentMap::Block& block : InstrumentMap::lists().at(list)) receiveBlock(block);
    send("0F" + header.substr(2));
    noteCalls();
  }

  // All that the module can be asked to do with a model.
  const Touches& touches() {
    record.recordsReads = true;
    for (const Opening& opening : kOpenings) {
      if (opening.address == nullptr) continue;
      if (opening.type == 9) {
        tools.liveVoice(3, opening.bankType != 2).type[0] = opening.bankType == 2 ? 1 : 0;
        tools.liveMulti().parts[3]->bankProgram[0] = opening.bank.msb;
        tools.liveMulti().parts[3]->bankProgram[1] = opening.bank.lsb;
      }
      receiveUnit(opening.address);
      request(opening.address);
    }
    for (const InstrumentMap::Block& block : InstrumentMap::lists().at(InstrumentMap::system)) {
      receiveBlock(block);
      request(Testing::textOf({block.hi, block.mid, block.lo}));
    }
    for (const InstrumentMap::List list :
         {InstrumentMap::editorName, InstrumentMap::fileDump, InstrumentMap::screenCap, InstrumentMap::favorite}) {
      const InstrumentMap::Block& block = InstrumentMap::lists().at(list).front();
      receiveBlock(block);
      request(Testing::textOf({block.hi, block.mid, block.lo}));
    }
    for (CMA::JobReceiver* job : bulkJobs) job->execEvent(nullptr, nullptr);
    noteCalls();
    return touches_;
  }

 private:
  Touches touches_;
};

TEST_F(ParameterModels, AreAsLargeAsTheModuleUsesThem) {
  const Touches& used = touches();
  std::set<std::string> paths;
  for (const ModelSizes::Group& group : ModelSizes::kGroups) {
    const auto found = used.groups.find(group.path);
    ASSERT_NE(found, used.groups.end()) << group.path << " is never used";
    EXPECT_EQ(group.size.count, found->second.count) << group.path;
    EXPECT_EQ(std::set<int>{group.size.bits}, found->second.widths) << group.path;
    paths.insert(group.path);
  }
  for (const auto& [path, touched] : used.groups) EXPECT_EQ(paths.count(path), 1U) << path << " has no size";
}

TEST_F(ParameterModels, HaveNamesOfTheLengthThatDumpsCarry) {
  std::map<std::string, std::size_t> stated;
  for (const ModelSizes::Count& name : ModelSizes::kNames) stated[name.path] = name.count;
  EXPECT_EQ(stated, touches().names);
}

TEST_F(ParameterModels, HaveTheNodesThatAddressesReach) {
  std::map<std::string, std::size_t> stated;
  for (const ModelSizes::Count& list : ModelSizes::kLists) stated[list.path] = list.count;
  EXPECT_EQ(stated, touches().lists);
}

}  // namespace
}  // namespace BDA
