#include "app/chart/chart_layout.h"

#include <algorithm>
#include <cmath>

namespace trackedcam::app {
namespace {

constexpr double kPaperEdge = 5;      // where printers may not print
constexpr double kLabelOverhang = 4;  // half of the ruler's widest label
constexpr double kSide = kPaperEdge + kLabelOverhang;

constexpr double kShortestRuler = 100;
constexpr double kRulerStep = 10;
constexpr double kRulerHeight = 7;
constexpr double kGap = 2.2;
constexpr double kNotesHeight = 12.6;
constexpr double kKeyWidth = 24;
constexpr double kFooterHeight = kRulerHeight + kGap + kNotesHeight;

struct Page {
  double width;
  double height;
};

double LargestSquareOn(const Page& page, const std::array<int, 2>& board) {
  // Of large squares the white margin reaches the edge of the paper, of small ones the margin of
  // the printer does.
  const double columns = board[0] + 1.0;
  const double rows = board[1] + 1.0;
  const double height = page.height - kFooterHeight - kPaperEdge;
  return std::min({page.width / (columns + 2), (page.width - 2 * kSide) / columns,
                   height / (rows + 2), (height - kPaperEdge) / (rows + 1)});
}

Page BetterTurned(const Paper& paper, const std::array<int, 2>& board) {
  const Page landscape = {paper.longSide, paper.shortSide};
  const Page portrait = {paper.shortSide, paper.longSide};
  return LargestSquareOn(landscape, board) >= LargestSquareOn(portrait, board) ? landscape
                                                                               : portrait;
}

constexpr double kMillimetresPerMetre = 1000;

}  // namespace

double RulerLength(const std::array<int, 2>& board, double squareMetres) {
  constexpr double kRounding = 1e-9;
  const double boardWidth = (board[0] + 1) * squareMetres * kMillimetresPerMetre;
  return std::max(kShortestRuler, std::floor(boardWidth / kRulerStep + kRounding) * kRulerStep);
}

double LargestSquare(const std::array<int, 2>& board, const Paper& paper) {
  return LargestSquareOn(BetterTurned(paper, board), board);
}

ChartLayout LayOut(const PrintedChart& chart) {
  const Page page = BetterTurned(chart.paper, chart.board);
  const double square = chart.square * kMillimetresPerMetre;

  Box board = {};
  board.width = (chart.board[0] + 1) * square;
  board.height = (chart.board[1] + 1) * square;
  board.left = (page.width - board.width) / 2;
  const double blockHeight = board.height + square + kFooterHeight;
  board.top = std::max({square, kPaperEdge, (page.height - blockHeight) / 2});

  const double rulerLength = RulerLength(chart.board, chart.square);
  const double left = std::min(board.left, (page.width - rulerLength) / 2);
  const Box ruler = {left, board.top + board.height + square, rulerLength, kRulerHeight};
  const double notesTop = ruler.top + kRulerHeight + kGap;
  const double keyLeft = page.width - kPaperEdge - kKeyWidth;
  const Box notes = {left, notesTop, keyLeft - kGap - left, kNotesHeight};
  const Box key = {keyLeft, notesTop, kKeyWidth, kNotesHeight};
  return {page.width, page.height, square, board, ruler, notes, key};
}

}  // namespace trackedcam::app
