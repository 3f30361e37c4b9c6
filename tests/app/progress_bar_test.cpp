#include <sstream>

#include <gtest/gtest.h>

#include "app/terminal/output.h"

namespace trackedcam::app {
namespace {

TEST(ProgressBar, ShowsStageAndPhotographs) {
  EXPECT_EQ(ProgressText({"Finding the board", 10, 40}),
            "Finding the board   [##........] 10 of 40");
  EXPECT_EQ(ProgressText({"Finding the board", 40, 40}),
            "Finding the board   [##########] 40 of 40");
}

TEST(ProgressBar, NamesThePhotographInWorkAndTheTimeLeft) {
  EXPECT_EQ(ProgressText({"Finding the board", 10, 40, "photos/img_011.jpg"}, 7.2),
            "Finding the board   [##........] 10 of 40, 8 s left: img_011.jpg");
  EXPECT_EQ(ProgressText({"Finding the board", 10, 40, "C:\\shoot\\a.jpg"}, 130),
            "Finding the board   [##........] 10 of 40, 3 min left: a.jpg");
}

TEST(ProgressBar, FitsIntoALineOfTheTerminal) {
  const std::string longest =
      ProgressText({"Measuring the error", 99999, 99999, std::string(300, 'x') + "_0123.jpg"}, 5e4);
  EXPECT_LE(longest.size(), 79U);
  EXPECT_EQ(longest.substr(longest.size() - 12), "xxx_0123.jpg");
}

// Names of files come from others.
TEST(ProgressBar, ControlsTheTerminalByNoName) {
  EXPECT_EQ(ProgressText({"Finding the board", 0, 2, "\x1B[J\xFF"}),
            "Finding the board   [..........] 0 of 2: \\u001b[J\\xff");
  EXPECT_EQ(ProgressText({"Finding the board", 0, 2, "a\nb"}),
            "Finding the board   [..........] 0 of 2: a b");
}

TEST(ProgressBar, ShowsAStageWithoutPhotographs) {
  EXPECT_EQ(ProgressText({"Solving the lens", 0, 0}),
            "Solving the lens (how long is not known) ...");
}

TEST(ProgressBar, StaysInsideTheBrackets) {
  EXPECT_EQ(ProgressText({"Writing the images", 9, 2}), "Writing the images  [##########] 9 of 2");
}

TEST(ProgressBar, OverwritesItselfAndClears) {
  std::ostringstream terminal;
  {
    ProgressBar bar(terminal);
    bar.Show({"A", 1, 2, "\u00E9\u00E9.jpg"});
    bar.Show({"A", 1, 2, "b.jpg"});
  }
  const std::string line = "A                   [#####.....] 1 of 2: ";
  const std::string blanks(line.size() + 5, ' ');
  EXPECT_EQ(terminal.str(),
            '\r' + line + "\u00E9\u00E9.jpg\r" + line + "b.jpg   \r" + blanks + '\r');
}

TEST(TimeLeftTest, IsTheMeanOfThePhotographsSoFar) {
  TimeLeft left;
  EXPECT_EQ(left.At({"Finding the board", 0, 20}, 100), std::nullopt);
  EXPECT_EQ(left.At({"Finding the board", 4, 20}, 108), std::nullopt);
  EXPECT_DOUBLE_EQ(left.At({"Finding the board", 5, 20}, 110).value(), 30);
  EXPECT_DOUBLE_EQ(left.At({"Finding the board", 10, 20}, 111).value(), 11);
  EXPECT_EQ(left.At({"Finding the board", 20, 20}, 120), std::nullopt);
}

TEST(TimeLeftTest, BeginsAnewWithEachStageAndRun) {
  TimeLeft left;
  left.At({"Writing the images", 0, 20}, 0);
  EXPECT_DOUBLE_EQ(left.At({"Writing the images", 10, 20}, 30).value(), 30);
  EXPECT_EQ(left.At({"Finding the board", 0, 20}, 40), std::nullopt);
  EXPECT_DOUBLE_EQ(left.At({"Finding the board", 10, 20}, 42).value(), 2);
  EXPECT_EQ(left.At({"Finding the board", 0, 20}, 60), std::nullopt);  // the second run
  EXPECT_DOUBLE_EQ(left.At({"Finding the board", 8, 20}, 64).value(), 6);
}

TEST(TimeLeftTest, IsNotGuessedFromAMoment) {
  TimeLeft left;
  left.At({"Finding the board", 0, 20}, 0);
  EXPECT_EQ(left.At({"Finding the board", 6, 20}, 0.9), std::nullopt);
}

TEST(ProgressBar, LeavesNoTraceWhenNothingWasShown) {
  std::ostringstream terminal;
  { const ProgressBar bar(terminal); }
  EXPECT_EQ(terminal.str(), "");
}

}  // namespace
}  // namespace trackedcam::app
