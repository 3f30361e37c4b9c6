#include "host/verdict/exclusion.h"

#include <gmock/gmock.h>

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// photos/0.jpg to photos/19.jpg, all with the board.
PhotographList TwentyUsed() {
  PhotographList list(20);
  for (std::size_t i = 0; i < list.size(); ++i) {
    list[i].name = "photos/" + std::to_string(i) + ".jpg";
    list[i].state = PhotographState::kUsed;
  }
  return list;
}

Finding Bad(const std::vector<std::string>& photographs) {
  return {Severity::kWarning, BadPhotographs{}, photographs};
}

Finding Moved(const std::string& before) {
  return {Severity::kError, crosscheck::TrackerMoved{}, {before}};
}

TEST(PhotographsToExclude, AreThoseOfAllFindings) {
  UnsharpPhotographs unsharp;
  unsharp.count = 1;
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {Bad({"photos/7.jpg", "photos/3.jpg"}),
                                                  {Severity::kWarning, unsharp, {"photos/0.jpg"}}}),
              ElementsAre("0", "3", "7"));
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {}), IsEmpty());
}

TEST(PhotographsToExclude, ArePartOfTheShootIfATrackerMoved) {
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {Moved("photos/17.jpg")}),
              ElementsAre("17", "18", "19"));
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {Moved("photos/2.jpg")}), ElementsAre("0", "1"));
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {Moved("photos/10.jpg")}), IsEmpty());
}

TEST(PhotographsToExclude, StayLeftOut) {
  PhotographList list = TwentyUsed();
  list[5].state = PhotographState::kLeftOutByUser;
  EXPECT_THAT(PhotographsToExclude(list, {Bad({"photos/3.jpg"})}), ElementsAre("3", "5"));
  EXPECT_THAT(PhotographsToExclude(list, {}), IsEmpty());  // nothing else to leave out
}

TEST(PhotographsToExclude, AreNoneIfTooFewWouldBeLeft) {
  PhotographList list = TwentyUsed();
  list.resize(14);
  EXPECT_THAT(PhotographsToExclude(list, {Bad({"photos/3.jpg", "photos/4.jpg"})}),
              ElementsAre("3", "4"));
  list[0].state = PhotographState::kBoardNotFound;
  EXPECT_THAT(PhotographsToExclude(list, {Bad({"photos/3.jpg", "photos/4.jpg"})}), IsEmpty());
}

TEST(PhotographsToExclude, AreNoneIfTheyAreNotKnown) {
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {{Severity::kError, crosscheck::MisreadRows{}, {}},
                                                  Bad({"photos/3.jpg"})}),
              IsEmpty());
  PhotographSizes sizes;
  sizes.count = 2;  // the finding names one of them
  EXPECT_THAT(PhotographsToExclude(TwentyUsed(), {{Severity::kError, sizes, {"photos/3.jpg"}}}),
              IsEmpty());
  EXPECT_THAT(
      PhotographsToExclude(TwentyUsed(), {{Severity::kNote, BadPhotographs{}, {"photos/3.jpg"}}}),
      IsEmpty());
}

}  // namespace
}  // namespace trackedcam::host
