#include "host/photograph_list.h"

#include <gmock/gmock.h>

namespace trackedcam::host {
namespace {

using testing::ElementsAre;

std::vector<DataRow> Rows() {
  return {{2, "", "a.jpg"}, {3, "", "b.jpg"}, {5, "", "c.jpg"}, {6, "", "a.jpg"}};
}

LibraryRun RunOf(std::vector<Photograph> photographs) {
  LibraryRun run;
  run.record.photographs = std::move(photographs);
  return run;
}

std::vector<std::string> States(const PhotographList& list) {
  std::vector<std::string> states;
  for (const PhotographEntry& entry : list) {
    states.emplace_back(Name(entry.state));
  }
  return states;
}

TEST(PhotographListTest, HasOneEntryForEachRow) {
  const PhotographList list = ListPhotographs(Rows());
  ASSERT_EQ(list.size(), 4U);
  EXPECT_EQ(list[2].row, 5U);
  EXPECT_EQ(list[2].name, "c.jpg");
  EXPECT_EQ(list[2].index, 2U);
  EXPECT_THAT(States(list), ElementsAre("notReached", "notReached", "notReached", "notReached"));
}

TEST(PhotographListTest, HasNoEntryForRowsThatAreNotListed) {
  const PhotographList list = ListPhotographs(Rows(), {0, 2});
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0].row, 3U);
  EXPECT_EQ(list[1].index, 3U);
}

TEST(PhotographListTest, KeepsPlacesIfSomeAreNotRun) {
  PhotographList list = ListPhotographs(Rows());
  list[1].state = PhotographState::kLeftOutByCrossCheck;
  EXPECT_THAT(ToRun(list), ElementsAre(0, 2, 3));
  EnterRun(RunOf({{"a.jpg", std::nullopt, RawData{}},
                  {"c.jpg", DropReason::kBoardNotFound},
                  {"a.jpg", DropReason::kOutlier, RawData{}}}),
           ToRun(list), list);
  EXPECT_THAT(States(list),
              ElementsAre("used", "leftOutByCrossCheck", "boardNotFound", "leftOutByFilter"));
  EXPECT_EQ(list[1].inRun, std::nullopt);
  EXPECT_EQ(list[3].inRun, 2U);
  EXPECT_EQ(list[0].checked, 0U);
  EXPECT_EQ(list[2].checked, std::nullopt);
  EXPECT_EQ(list[3].checked, 1U);
  EXPECT_THAT(CheckedNames(list), ElementsAre("a.jpg", "a.jpg"));
}

TEST(PhotographListTest, SaysWhatARunDidNotReach) {
  PhotographList list = ListPhotographs(Rows());
  EnterRun(RunOf({{"a.jpg", DropReason::kNotLoaded}}), ToRun(list), list);
  EXPECT_THAT(States(list), ElementsAre("notLoaded", "notReached", "notReached", "notReached"));
}

TEST(PhotographListTest, CountsWhatBecameOfEach) {
  PhotographList list = ListPhotographs(Rows());
  list[1].state = PhotographState::kLeftOutByCrossCheck;
  EnterRun(RunOf({{"a.jpg", std::nullopt, RawData{}},
                  {"c.jpg", DropReason::kOutlier, RawData{}},
                  {"a.jpg", DropReason::kOutlier, RawData{}}}),
           ToRun(list), list);
  EXPECT_TRUE(IsCounted(list));
  EXPECT_EQ(CountText(list),
            "1 of 4 used: 1 left out because they contradict the others, 2 left out by the outlier "
            "filter");
  for (PhotographEntry& entry : list) {
    entry.state = PhotographState::kUsed;
  }
  EXPECT_EQ(CountText(list), "4 of 4 used");
}

TEST(PhotographListTest, CountsNothingIfTheLogIsIncomplete) {
  LibraryRun run = RunOf({{"a.jpg", DropReason::kNotLoaded}, {"b.jpg", std::nullopt, RawData{}}});
  run.code = 0;
  PhotographList list = ListPhotographs(Rows());
  EnterRun(run, ToRun(list), list);
  EXPECT_THAT(States(list), ElementsAre("notLoaded", "unknown", "unknown", "unknown"));
  EXPECT_FALSE(IsCounted(list));
  EXPECT_EQ(CountText(list).find("used:"), std::string::npos);
  run.record.isSuccessful = true;
  list = ListPhotographs(Rows());
  EnterRun(run, ToRun(list), list);
  EXPECT_THAT(States(list), ElementsAre("notLoaded", "used", "notReached", "notReached"));
}

TEST(PhotographListTest, HasNoneUsedIfTheFilterLeavesTooFew) {
  LibraryRun run = RunOf({{"a.jpg", std::nullopt, RawData{}}});
  run.record.errorCode = 13;
  PhotographList list = ListPhotographs(run.record);
  EnterRun(run, ToRun(list), list);
  EXPECT_THAT(States(list), ElementsAre("notUsed"));
  EXPECT_EQ(list[0].row, 0U);
}

TEST(PhotographListTest, SaysWhatContradictsTheOthers) {
  PhotographList list = ListPhotographs(Rows());
  EnterRun(RunOf({{"a.jpg", std::nullopt, RawData{}}, {"b.jpg", std::nullopt, RawData{}}}),
           ToRun(list), list);
  crosscheck::CrossCheck check;
  check.perPhotograph.resize(2);
  check.perPhotograph[0].used = true;
  EnterCrossCheck(check, list);
  EXPECT_EQ(list[0].reason, "");
  EXPECT_NE(list[1].reason, "");
  EXPECT_EQ(list[1].state, PhotographState::kUsed);
}

}  // namespace
}  // namespace trackedcam::host
