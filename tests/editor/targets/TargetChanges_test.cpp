#include "targets/TargetChanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using testing::ElementsAre;

class TargetChanges : public testing::Test {
 protected:
  static constexpr ContentId kVoice{4, 0x3F0805};
  static constexpr ContentId kNext{4, 0x3F0806};

  TargetChanges() { library.store(kVoice, encodeContent(emptySetFor(kVoice)), "Piano"); }

  void rename(const std::string& place, const std::string& name) { renameTarget(editor, parseTarget(place), name); }
  static std::string refusalOf(const std::function<void()>& change) {
    try {
      change();
    } catch (const TargetError& error) {
      EXPECT_EQ(error.kind(), TargetError::Kind::refused);
      return error.what();
    }
    return "";
  }

  EmbeddedEditor editor;
  Library& library = editor.library();
};

TEST_F(TargetChanges, aNameIsThatOfTheListAndThatInside) {
  rename("voice:user1:6", "Grand");
  EXPECT_EQ(library.contentName(kVoice), "Grand");
  EXPECT_EQ(nameOf(loadTarget(editor, parseTarget("voice:user1:6"))), "Grand");
  rename("voice:edit", "Edit");
  EXPECT_EQ(nameOf(editor.tools().live(EditBuffer::normalVoice)), "Edit");
}

TEST_F(TargetChanges, aContentOfOtherBytesKeepsThem) {
  library.store(kNext, std::vector<std::uint8_t>{1, 2}, "Opaque");
  rename("voice:user1:7", "Grand");
  EXPECT_EQ(library.content(kNext), (Library::Content{"Grand", {1, 2}}));
}

TEST_F(TargetChanges, aNameThatNoMessageCarriesIsRefused) {
  EXPECT_EQ(refusalOf([&] { rename("voice:user1:8", "x"); }), "voice:user1:8: nothing is stored there");
  EXPECT_EQ(refusalOf([&] { rename("multi:edit", "x"); }), "multi:edit: no message carries a name for it");
  EXPECT_EQ(refusalOf([&] { rename("voice:user1:6", std::string(21, 'x')); }),
            "voice:user1:6: \"" + std::string(21, 'x') + "\" has 21 characters, a name here has at most 20");
  EXPECT_EQ(refusalOf([&] { rename("voice:user1:6", "\xE9"); }),
            "voice:user1:6: \"\xE9\" has a character that cannot be carried: expected printable ASCII");
  EXPECT_EQ(library.contentName(kVoice), "Piano");
}

TEST_F(TargetChanges, whatIsNeitherContentNorEditBufferHasNoName) {
  for (const char* const name : {"voice:user1:6", "voice:edit", "multi:edit"})
    EXPECT_NO_THROW(requireNamed(parseTarget(name))) << name;
  for (const char* const name : {"system", "additional"})
    EXPECT_THROW(requireNamed(parseTarget(name)), TargetError) << name;
}

TEST_F(TargetChanges, aValueThatNoBlockCarriesIsNotApplied) {
  const Target target = parseTarget("master:1");
  ModelSet models = freshTarget(target, false);
  std::vector<std::uint16_t> values = models.master->zone[0].params.values();
  values[12] = 2;
  ASSERT_TRUE(models.master->zone[0].params.assign(values));
  EXPECT_EQ(refusalOf([&] { applyTarget(editor, target, models); }),
            "master:1: master.zone[0].params[12]: 2 cannot be carried, it would arrive as 0");
  values[12] = 1;
  ASSERT_TRUE(models.master->zone[0].params.assign(values));
  EXPECT_EQ(applyTarget(editor, target, models), "");
  EXPECT_EQ(loadTarget(editor, target), models);
}

TEST_F(TargetChanges, whatIsNamedTwiceIsRemovedOnce) {
  Removing removing(library);
  EXPECT_EQ(removing.take(parseContents("voice:user1:6")), 0u);
  EXPECT_EQ(library.contents().size(), 0u);
  EXPECT_EQ(removing.take(parseContents("file:voice:user1:6")), 0u) << "another name of the same place";
  EXPECT_EQ(removing.take(parseContents("voice:user1:5..7")), 2u);
  EXPECT_EQ(refusalOf([&] { removing.take(parseContents("voice:user2")); }),
            "voice:user2: nothing is stored there; nothing is removed");
}

TEST_F(TargetChanges, liveModelsAreRemovedWhereTheyAreDamagedOnly) {
  EXPECT_FALSE(parseRemoval("voice:user1:6").unlessDamaged);
  EXPECT_THROW(parseRemoval("nonsense"), TargetError);
  const Removal removal = parseRemoval("voice:edit");
  ASSERT_TRUE(removal.unlessDamaged);
  EXPECT_EQ(removal.unlessDamaged->kind(), TargetError::Kind::noTarget);
  EXPECT_THROW(requireRemovable(removal, editor.tools()), TargetError);
  library.storeLive("voice", std::vector<std::uint8_t>{1});
  editor.tools().reload();
  requireRemovable(removal, editor.tools());
  EXPECT_EQ(Removing(library).take(removal.places), 0u);
  EXPECT_TRUE(library.liveKeys().empty());
}

TEST_F(TargetChanges, contentsAndFlagsCanBeFavouritesOrNoLonger) {
  library.setFavourite(kNext, 1);  // of an empty place
  EXPECT_EQ(setFavourites(library, parseContents("voice:user1:5..8"), true), 2u);
  EXPECT_EQ(library.favourites().size(), 2u);
  EXPECT_EQ(setFavourites(library, parseContents("voice:user1:6"), false), 0u);
  EXPECT_EQ(library.flag(kVoice), 0);
  EXPECT_EQ(refusalOf([&] { setFavourites(library, parseContents("voice:user2"), true); }),
            "voice:user2: nothing is stored there");
}

TEST_F(TargetChanges, onlyVoicesCanBeFavourites) {
  requireFlags(parseContents("voice:user1"));
  EXPECT_EQ(refusalOf([] { requireFlags(parseContents("file:multi")); }),
            "file:multi:1: only preset, GM and user voices and drum voices can be favourites");
}

}  // namespace
}  // namespace Editor
