#include <string>

#include <gmock/gmock.h>

#include "app/chart/printed_chart.h"
#include "app/options/option_values.h"

namespace trackedcam::app {
namespace {

constexpr double kPaperEdge = 5;  // where printers may not print
constexpr double kRounding = 1e-9;

PrintedChart Chart(int columns, int rows, double squareMm, const std::string& paper) {
  return {{columns, rows}, squareMm / 1000, ParsePaper("--paper", paper)};
}

void ExpectInside(const Box& box, const ChartLayout& layout) {
  EXPECT_GE(box.left, kPaperEdge);
  EXPECT_GE(box.top, kPaperEdge);
  EXPECT_LE(box.left + box.width, layout.pageWidth - kPaperEdge + kRounding);
  EXPECT_LE(box.top + box.height, layout.pageHeight - kPaperEdge + kRounding);
}

void ExpectWhiteSquareAroundBoard(const ChartLayout& layout) {
  const Box& board = layout.board;
  const double least = layout.square - kRounding;
  EXPECT_GE(board.left, least);
  EXPECT_GE(board.top, least);
  EXPECT_GE(layout.pageWidth - board.left - board.width, least);
  EXPECT_GE(layout.ruler.top - board.top - board.height, least);
  EXPECT_GE(layout.notes.top, layout.ruler.top + layout.ruler.height);
}

TEST(ChartLayout, FillsTheLongSideOfThePaper) {
  const ChartLayout layout = LayOut(Chart(9, 6, 30, "A3"));
  EXPECT_EQ(layout.pageWidth, 420);
  EXPECT_EQ(layout.pageHeight, 297);
  EXPECT_NEAR(layout.board.left, 60, kRounding);
  EXPECT_NEAR(layout.board.top, 30, kRounding);
  EXPECT_NEAR(layout.board.width, 300, kRounding);
  EXPECT_NEAR(layout.board.height, 210, kRounding);
  EXPECT_NEAR(layout.ruler.left, 60, kRounding);
  EXPECT_NEAR(layout.ruler.top, 270, kRounding);
  EXPECT_NEAR(layout.ruler.width, 300, kRounding);
}

TEST(ChartLayout, TurnsThePaperForATallBoard) {
  const ChartLayout layout = LayOut(Chart(6, 9, 20, "A4"));
  EXPECT_EQ(layout.pageWidth, 210);
  EXPECT_EQ(layout.pageHeight, 297);
  EXPECT_NEAR(layout.board.left, 35, kRounding);
}

TEST(ChartLayout, RulerHasWholeCentimetresAndAtLeastTen) {
  EXPECT_EQ(LayOut(Chart(9, 6, 25.4, "A3")).ruler.width, 250);
  const ChartLayout small = LayOut(Chart(9, 6, 5, "A4"));
  EXPECT_EQ(small.ruler.width, 100);
  EXPECT_NEAR(small.ruler.left, (297 - 100) / 2.0, kRounding);
}

TEST(ChartLayout, LeavesWhiteAtAnySize) {
  for (const Paper& paper : kPapers) {
    for (const auto& board : {std::array<int, 2>{9, 6}, {6, 9}, {3, 3}, {20, 3}, {40, 30}}) {
      const double largest = LargestSquare(board, paper);
      ASSERT_GT(largest, 1);
      for (const double square : {1.0, largest / 2, largest}) {
        SCOPED_TRACE(std::string(paper.name) + ' ' + std::to_string(board[0]) + 'x' +
                     std::to_string(board[1]) + ", " + std::to_string(square) + " mm");
        const ChartLayout layout = LayOut({board, square / 1000, paper});
        ExpectInside(layout.board, layout);
        ExpectInside(layout.ruler, layout);
        ExpectInside(layout.notes, layout);
        ExpectInside(layout.key, layout);
        EXPECT_LE(layout.notes.left + layout.notes.width, layout.key.left);
        EXPECT_EQ(layout.key.top, layout.notes.top);
        ExpectWhiteSquareAroundBoard(layout);
      }
    }
  }
}

TEST(ChartLayout, LargestSquareLeavesNoRoom) {
  // The height decides, and the notes end where printers do not print.
  const Paper a3 = ParsePaper("--paper", "A3");
  const ChartLayout high = LayOut({{9, 6}, LargestSquare({9, 6}, a3) / 1000, a3});
  EXPECT_NEAR(high.board.top, high.square, kRounding);
  EXPECT_NEAR(high.notes.top + high.notes.height, 297 - kPaperEdge, kRounding);
  // The width decides: 21 squares and two of white on 420 mm.
  EXPECT_NEAR(LargestSquare({20, 3}, a3), 420.0 / 23, kRounding);
}

TEST(ChartNotes, SayHowToPrintAndToCalibrate) {
  EXPECT_THAT(
      ChartNotes(Chart(9, 6, 12.7, "letter")),
      testing::ElementsAre("trackedcam calibrate --board 9x6 --square 0.0127",
                           "Print on Letter at 100 %: the board measures 127 × 88.9 mm.",
                           "The first corner is the inner one at the top left, as on the right."));
}

TEST(ChartNotes, WarnOfABoardThatLooksTheSameUpsideDown) {
  for (const auto& board : {std::array<int, 2>{9, 7}, {8, 6}, {6, 6}}) {
    EXPECT_EQ(ChartNotes(Chart(board[0], board[1], 10, "A4"))[2],
              "The board looks the same upside down: keep this side down.");
  }
}

}  // namespace
}  // namespace trackedcam::app
