#include "bda/MessageModelInterfaceWrapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <type_traits>

#include "support/RecordingPlatform.h"

namespace {

using namespace Testing;
using BDA::MessageModelInterfaceWrapper;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<MessageModelInterfaceWrapper>);

class MessageModelInterfaceWrapperTest : public ::testing::Test {
 protected:
  Calls record;
  FakeEventPortManager manager{record};
};

TEST_F(MessageModelInterfaceWrapperTest, OpensThePortOfItsModelAndSendsIdsThere) {
  MessageModelInterfaceWrapper wrapper(&manager, "Model", false, 3);
  wrapper.setId(0);
  wrapper.setId(0xFFFF);
  wrapper.flush();
  EXPECT_THAT(record.take(), ElementsAre("openPort(Model, 3)", "setId(0)", "setId(65535)", "flush(messages)"));
}

TEST_F(MessageModelInterfaceWrapperTest, SilentItOpensNothingAndEveryOperationDoesNothing) {
  MessageModelInterfaceWrapper wrapper(&manager, "Model", true, 0);
  wrapper.setId(11);
  wrapper.flush();
  EXPECT_THAT(record.take(), IsEmpty());
}

TEST_F(MessageModelInterfaceWrapperTest, WithoutManagerOrPortIdsAreDropped) {
  MessageModelInterfaceWrapper withoutManager(nullptr, "Model", false, 0);
  withoutManager.setId(11);
  withoutManager.flush();
  EXPECT_THAT(record.take(), IsEmpty());
  record.fail("openPort");
  MessageModelInterfaceWrapper withoutPort(&manager, "Model", false, 0);
  withoutPort.setId(11);
  withoutPort.flush();
  EXPECT_THAT(record.take(), ElementsAre("openPort(Model, 0)"));
}

TEST_F(MessageModelInterfaceWrapperTest, ACopySharesTheMessageModel) {
  MessageModelInterfaceWrapper wrapper(&manager, "Model", false, 0);
  // Only one of the two may be destroyed.
  alignas(MessageModelInterfaceWrapper) std::byte place[sizeof(MessageModelInterfaceWrapper)];
  auto* const copy = new (place) MessageModelInterfaceWrapper(wrapper);
  copy->setId(44);
  copy->flush();
  EXPECT_THAT(record.take(), ElementsAre("openPort(Model, 0)", "setId(44)", "flush(messages)"));
}

}  // namespace
