#include "wire/FetchJson.h"

#include <gtest/gtest.h>

#include "models/ModelJson.h"

namespace Editor {
namespace {

Fetched voice() {
  Fetched fetched;
  fetched.address = {0x0E, 0x0A, 0x05};
  fetched.tries = 2;
  return fetched;
}

TEST(FetchJson, aUnitThatIsLostHasWhatIsMissing) {
  Fetched fetched = voice();
  fetched.missing = {{0x41, 0x02, 0x00}};
  fetched.reason = "incomplete";
  EXPECT_EQ(jsonLine(toJson(fetched, FetchedAs::lost, false)),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"lost","tries":2,"missing":["41 02 00"],)"
            R"("reason":"incomplete"})");
}

TEST(FetchJson, aPlaceThatIsEmptyThereMayBeRemovedHere) {
  EXPECT_EQ(jsonLine(toJson(voice(), FetchedAs::stored, false)),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"stored","tries":2,"missing":[],"reason":""})");
  EXPECT_EQ(jsonLine(toJson(voice(), FetchedAs::empty, true)),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"empty","tries":2,"missing":[],"reason":"",)"
            R"("removed":true})");
  Fetched silent = voice();
  silent.isEmptyBySilence = true;
  EXPECT_EQ(jsonLine(toJson(silent, FetchedAs::empty, false)),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"empty","tries":2,"missing":[],"reason":"",)"
            R"("silent":true})");
  EXPECT_STREQ(wordOf(FetchedAs::kept), "kept");
}

TEST(FetchJson, whatIsStoredWithItAreChanges) {
  const std::vector<PlaceChange> with{{"multi:edit", What::stored, "Old", "New"}};
  EXPECT_EQ(jsonLine(toJson(voice(), FetchedAs::stored, false, with)),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"stored","tries":2,"missing":[],"reason":"",)"
            R"("with":[{"content":"multi:edit","what":"stored","before":"Old","after":"New"}]})");
}

}  // namespace
}  // namespace Editor
