#include "support/AssistantFixture.h"

#include <algorithm>

namespace Testing {
namespace {

// An explicit instantiation may name private members: the one way to a field that the public header keeps private.
template <BDA::BulkTable* BDA::BulkDumpAssistant::*kField>
struct TableField {
  friend BDA::BulkTable* tableOf(BDA::BulkDumpAssistant& assistant) { return assistant.*kField; }
};
BDA::BulkTable* tableOf(BDA::BulkDumpAssistant& assistant);
template struct TableField<&BDA::BulkDumpAssistant::bulkTable_>;

}  // namespace

BDA::BulkTable& AssistantFixture::table() { return *tableOf(*assistant); }

void AssistantFixture::SetUp() {
  construct();
  registerBridge();
  record.heal();
  forget();
}

void AssistantFixture::TearDown() {
  assistant.reset();
  EXPECT_THAT(trace(), ::testing::IsEmpty());
}

void AssistantFixture::construct(bool silent) {
  assistant = std::make_unique<OpenAssistant>(&manager, &executerJobs, &bulkJobs, &tools, &work, silent);
}

void AssistantFixture::registerBridge() { bridge = std::make_unique<FakeBridge>(record, assistant.get()); }

BDA::BulkMsgType AssistantFixture::send(std::string_view address, const Bytes& data) {
  return sendBytes(dumpMessage(address, data));
}

BDA::BulkMsgType AssistantFixture::request(std::string_view address) { return sendBytes(requestMessage(address)); }

BDA::BulkMsgType AssistantFixture::sendBytes(Bytes message) {
  for (const std::size_t at : flips_) message.at(at) = message.at(at) ^ 1;
  flips_.clear();
  const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[message.size()]);
  std::copy(message.begin(), message.end(), exact.get());
  return assistant->receiveBulkDump(exact.get(), lengthOf(message), port);
}

void AssistantFixture::openHeader() {
  ASSERT_EQ(send("0E 5F 00"), BDA::BulkMsg_BulkDump);
  ASSERT_THAT(traceScope.take(), ::testing::IsEmpty());
  forget();
}

bool AssistantFixture::isHeaderOpen() {
  forget();
  send("0F 5F 00");
  const bool isOpen = std::count(record.list().begin(), record.list().end(), "store(5F 00)") == 1;
  traceScope.take();
  forget();
  return isOpen;
}

std::vector<int> AssistantFixture::shown() { return std::exchange(manager.messages.posted, {}); }

std::vector<std::string> AssistantFixture::sent() {
  std::vector<std::string> messages;
  for (const FakeBridge::Message& message : bridge->messages)
    messages.push_back(std::to_string(message.port) + ": " + textOf(message.bytes));
  bridge->messages.clear();
  bridge->pointers.clear();
  return messages;
}

std::vector<std::string> AssistantFixture::callsWithout(const std::vector<std::string>& names) {
  std::vector<std::string> list = record.take();
  list.erase(std::remove_if(list.begin(), list.end(),
                            [&](const std::string& line) {
                              return std::find(names.begin(), names.end(), line.substr(0, line.find('('))) !=
                                     names.end();
                            }),
             list.end());
  return list;
}

void AssistantFixture::forget() {
  record.take();
  manager.messages.posted.clear();
  if (bridge != nullptr) {
    bridge->messages.clear();
    bridge->pointers.clear();
  }
}

}  // namespace Testing
