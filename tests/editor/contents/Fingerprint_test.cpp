#include "contents/Fingerprint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"

namespace Editor {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr ContentId kVoice{ContSrv::ContType_Voice, 0x3F0805};
constexpr ContentId kRemote{kContentRemote, 3};

std::string hashOf(ContentId id, const ModelSet& models) { return fingerprintOf(id, encodeContent(models)).hash; }

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

TEST(Fingerprint, theHashIsThePublishedOne) {
  EXPECT_EQ(fnv1a({}), 0xCBF29CE484222325u);
  EXPECT_EQ(fnv1a(bytesOf("a")), 0xAF63DC4C8601EC8Cu);
  EXPECT_EQ(fnv1a(bytesOf("foobar")), 0x85944171F73967E8u);
}

// What was written down once has to be found again.
TEST(Fingerprint, theHashOfAContentNeverChanges) {
  ModelSet voice = emptySetFor(kVoice);
  EXPECT_EQ(hashOf(kVoice, voice), "0b65f011784df95d");
  const std::uint16_t value = 64;
  voice.voice->common.set(&value, 3, 1);
  EXPECT_EQ(hashOf(kVoice, voice), "77757633683cd09d");
}

TEST(Fingerprint, namesDoNotCountAndEverythingElseDoes) {
  ModelSet remote = emptySetFor(kRemote);
  const std::string fresh = hashOf(kRemote, remote);
  remote.remote->name1.assign("Mixer");
  remote.remote->name2.assign("Two");
  remote.remote->controller[11].name1.assign("Knob");
  remote.remote->controller[11].name2.assign("Cutoff");
  EXPECT_EQ(hashOf(kRemote, remote), fresh);
  const std::uint8_t one = 1;
  remote.remote->controller[11].params.set(&one, 1, 0);
  EXPECT_NE(hashOf(kRemote, remote), fresh);

  ModelSet voice = emptySetFor(kVoice);
  voice.voice->name.assign("Pad");
  voice.multi->name.assign("Other");
  EXPECT_EQ(hashOf(kVoice, voice), hashOf(kVoice, emptySetFor(kVoice)));
}

TEST(Fingerprint, opaqueBytesAreHashedAsTheyAre) {
  const Bytes bytes = bytesOf("foobar");
  EXPECT_EQ(fingerprintOf(kVoice, bytes), (Fingerprint{true, "85944171f73967e8"}));
  EXPECT_EQ(fingerprintOf({ContSrv::ContType_Single, 0}, bytes), (Fingerprint{true, "85944171f73967e8"}));
  const Bytes drum = encodeContent(emptySetFor(5));
  EXPECT_TRUE(fingerprintOf(kVoice, drum).isOpaque);  // of another kind
  EXPECT_FALSE(fingerprintOf(kVoice, encodeContent(emptySetFor(kVoice))).isOpaque);
}

}  // namespace
}  // namespace Editor
