#include "api/calibration_input.h"

#include "support/stage_test.h"

namespace trackedcam {
namespace {

using CalibrationInputTest = test::StageTest;

TEST_F(CalibrationInputTest, BoardHasItsCornersRowByRow) {
  const BoardTemplate board = MakeBoardTemplate(log, 9, 6, 0.025);
  ASSERT_EQ(board.size(), 54u);
  EXPECT_EQ(board.front(), cv::Point3f(0, 0, 0));
  EXPECT_EQ(board[1], cv::Point3f(0.025F, 0, 0));
  EXPECT_EQ(board[9], cv::Point3f(0, 0.025F, 0));
  EXPECT_EQ(board.back(),
            cv::Point3f(static_cast<float>(8 * 0.025), static_cast<float>(5 * 0.025), 0));
  const std::vector<std::string> lines = LogLines();
  ASSERT_EQ(lines.size(), 56u);
  EXPECT_EQ(lines.front(), "CALIBRATION BOARD INDEX START");
  EXPECT_EQ(lines[1], "0.000000 0.000000 0");
  EXPECT_EQ(lines[54], "0.200000 0.125000 0");
  EXPECT_EQ(lines.back(), "CALIBRATION BOARD INDEX END");
}

TEST_F(CalibrationInputTest, BoardWithoutRowsOrColumnsIsEmpty) {
  EXPECT_TRUE(MakeBoardTemplate(log, 0, 6, 0.025).empty());
  EXPECT_TRUE(MakeBoardTemplate(log, 9, -1, 0.025).empty());
}

TEST_F(CalibrationInputTest, RecordsAndPhotographsMustBeEqualInNumber) {
  EXPECT_EQ(CheckRecords(log, {"a", "b"}, {TrackerRecord(15)}), 2);
  EXPECT_EQ(CheckRecords(log, {"a"}, {TrackerRecord(15), TrackerRecord(15)}), 2);
  EXPECT_EQ(LogLines().back(),
            "Error code 2 : The amount of Tracker data and images do not match.");
  EXPECT_EQ(CheckRecords(log, {"a"}, {TrackerRecord(15)}), 0);
  EXPECT_EQ(LogLines().back(), "Read the csv file successfully.");
}

}  // namespace
}  // namespace trackedcam
