#include <sstream>

#include <gtest/gtest.h>

#include "app/terminal/output.h"

namespace trackedcam::app {
namespace {

TEST(ProgressBar, ShowsStageAndPhotographs) {
  EXPECT_EQ(ProgressText({"Finding the board", 10, 40}),
            "Finding the board     [#######.......................] 10 of 40 photographs");
  EXPECT_EQ(ProgressText({"Finding the board", 40, 40}),
            "Finding the board     [##############################] 40 of 40 photographs");
}

TEST(ProgressBar, ShowsAStageWithoutPhotographs) {
  EXPECT_EQ(ProgressText({"Solving the lens", 0, 0}), "Solving the lens ...");
}

TEST(ProgressBar, StaysInsideTheBrackets) {
  EXPECT_EQ(ProgressText({"Writing the images", 9, 2}),
            "Writing the images    [##############################] 9 of 2 photographs");
}

TEST(ProgressBar, OverwritesItselfAndClears) {
  std::ostringstream terminal;
  {
    ProgressBar bar(terminal);
    bar.Show({"Longer", 0, 0});
    bar.Show({"Long", 0, 0});
  }
  EXPECT_EQ(terminal.str(), "\rLonger ...\rLong ...  \r        \r");
}

TEST(ProgressBar, LeavesNoTraceWhenNothingWasShown) {
  std::ostringstream terminal;
  { const ProgressBar bar(terminal); }
  EXPECT_EQ(terminal.str(), "");
}

}  // namespace
}  // namespace trackedcam::app
