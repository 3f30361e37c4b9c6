#include "app/run/run_progress.h"

#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace trackedcam::app {
namespace {

using testing::ElementsAre;

class RunProgressTest : public testing::Test {
 protected:
  // One line of the log for each message.
  void Log(const std::vector<std::string>& messages) {
    for (const std::string& message : messages) {
      progress.Consume("2026-11-21 01:02:03\t" + message + '\n');
    }
  }

  std::vector<std::string> shown;
  RunProgress progress{
      3, [this](const Progress& now) {
        shown.push_back(now.stage + ' ' + std::to_string(now.done) + '/' + std::to_string(now.all));
      }};
  const RunRecord& record = progress.Record();
};

TEST_F(RunProgressTest, ReadsTheVersion) {
  Log({"Version : v1.1.0"});
  EXPECT_EQ(record.libraryVersion, "v1.1.0");
}

TEST_F(RunProgressTest, RecordsWhyPhotographsWereDropped) {
  Log({"Process : a.jpg", "Process : b.jpg"});
  // The library writes the path of a missing photograph to the console without a line end.
  progress.Consume("b.jpg2026-11-21 01:02:03\tb.jpg Not exist!\n");
  Log({"Process : c.jpg", "Read c.jpg Failed!", "Process : d.jpg", "Process : e.jpg"});
  Log({"Remove outlier data number : 1", "Size list : (init) 3", "Remove index : 1",
       "Remove name : d.jpg", "Size list : (init) 2"});

  ASSERT_EQ(record.photographs.size(), 5U);
  EXPECT_EQ(record.photographs[0].dropped, std::nullopt);
  EXPECT_EQ(record.photographs[1].dropped, DropReason::kNotLoaded);
  EXPECT_EQ(record.photographs[2].dropped, DropReason::kBoardNotFound);
  EXPECT_EQ(record.photographs[3].dropped, DropReason::kOutlier);
  EXPECT_THAT(UsedPhotographs(record), ElementsAre("a.jpg", "e.jpg"));
}

TEST_F(RunProgressTest, RemovesOutliersFromTheLastToTheFirst) {
  Log({"Process : a.jpg", "Process : a.jpg", "Process : c.jpg"});
  Log({"Remove index : 2", "Remove name : c.jpg", "Remove index : 0", "Remove name : a.jpg"});
  EXPECT_EQ(record.photographs[0].dropped, DropReason::kOutlier);
  EXPECT_EQ(record.photographs[1].dropped, std::nullopt);
  EXPECT_EQ(record.photographs[2].dropped, DropReason::kOutlier);
}

TEST_F(RunProgressTest, PassesOverRawData) {
  Log({"Process : Error code 9: x", "RAW DATA START", "Error code 9: x", "1.0 2.0",
       "RAW DATA END"});
  EXPECT_EQ(record.errorMessage, "");
  EXPECT_EQ(record.lastMessage, "RAW DATA END");
}

TEST_F(RunProgressTest, ReadsTheFigures) {
  Log({"reprojection error : 0.250000", "Image 0 reprojection error : 9.000000 pixels.",
       "Average reprojection error : 2.500000 pixels.",
       "Average reprojection error : 1.250000 pixels.", "Norm Reprojection error : 0.001000",
       "T_STD : 0.001000, 0.002000, 0.003000 meter.", "Max T_STD : 0.003000 meter."});
  EXPECT_EQ(record.lensError, 0.25);
  EXPECT_EQ(record.reprojectionError, 1.25);
  EXPECT_EQ(record.spread, 0.003);
}

TEST_F(RunProgressTest, ReadsFiguresThatAreNoNumbers) {
  Log({"reprojection error : inf", "Average reprojection error : -nan pixels.",
       "Max T_STD : nan meter."});
  EXPECT_TRUE(std::isinf(record.lensError.value()));
  EXPECT_TRUE(std::isnan(record.reprojectionError.value()));
  EXPECT_TRUE(std::isnan(record.spread.value()));
}

TEST_F(RunProgressTest, ReadsBothFormsOfTheErrorLine) {
  Log({"Error code 4: Amount of valid images < 12."});
  EXPECT_EQ(record.errorMessage, "Amount of valid images < 12.");
  Log({"Error code 15 : Tracker data format error in csv file."});
  EXPECT_EQ(record.errorMessage, "Tracker data format error in csv file.");
}

TEST_F(RunProgressTest, KeepsTheLastMessage) {
  Log({"Version : v1.1.0", "chartTrackerRotation has 2 elements, needs 3."});
  progress.Consume("console only\n");
  EXPECT_EQ(record.lastMessage, "chartTrackerRotation has 2 elements, needs 3.");
}

TEST_F(RunProgressTest, ReadsPiecesOfAnyLength) {
  const std::string output =
      "str_line:Time\n2026-11-21 01:02:03\tProcess : a.jpg\n2026-11-21 01:02:03\tend";
  for (const char character : output) {
    progress.Consume({&character, 1});
  }
  EXPECT_EQ(record.lastMessage, "Process : a.jpg");
  progress.Consume("\n");
  EXPECT_EQ(record.lastMessage, "end");
}

TEST_F(RunProgressTest, ShowsStagesAndPhotographs) {
  Log({"Read the csv file successfully.", "Process : a", "Process : b", "Read b Failed!",
       "Process : c", "Camera calibration start.", "Start OrganizeRT.",
       "Finish Calculate_Transform_Cam_Tc.", "Image 0 reprojection error : 1.000000 pixels.",
       "Remove index : 1",
       "Mean_Transform_Chart_Tr : ", "Image 0 reprojection error : 1.000000 pixels."});
  EXPECT_THAT(shown, ElementsAre("Finding the board 0/3", "Finding the board 0/3",
                                 "Finding the board 1/3", "Finding the board 2/3",
                                 "Solving the lens 0/0", "Solving the transform 0/0",
                                 "Measuring the error 0/2", "Measuring the error 1/2",
                                 "Writing the images 0/1", "Writing the images 1/1"));
}

TEST_F(RunProgressTest, KnowsWhenTheBoardIsNowhere) {
  Log({"Process : a", "a Not exist!"});
  EXPECT_FALSE(IsBoardNowhere(record));
  Log({"Process : b", "Read b Failed!"});
  EXPECT_TRUE(IsBoardNowhere(record));
  Log({"Process : c"});
  EXPECT_FALSE(IsBoardNowhere(record));
}

}  // namespace
}  // namespace trackedcam::app
