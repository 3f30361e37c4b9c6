// Where everything stands on the page of a printed chart.
//
// The board with white around it, and below it the ruler and the notes, as one block in the middle.
// Lengths are millimetres; x runs right and y down from the page's top left corner.

#pragma once

#include <array>

#include "app/chart/paper.h"

namespace trackedcam::app {

struct PrintedChart {
  std::array<int, 2> board = {};  // inner corners: columns, rows
  double square = 0;              // metres
  Paper paper = {};
};

struct Box {
  double left;
  double top;
  double width;
  double height;
};

struct ChartLayout {
  double pageWidth;
  double pageHeight;
  double square;
  Box board;  // one square more than inner corners in each direction
  Box ruler;  // as wide as it measures: a multiple of 10
  Box notes;  // three lines of text
  Box key;    // beside them: which corner is the first, and where x and y run from it
};

/// Of the printed ruler, millimetres.
double RulerLength(const std::array<int, 2>& board, double squareMetres);

/// The edge of the largest square with which the board fits, the paper turned the better way.
double LargestSquare(const std::array<int, 2>& board, const Paper& paper);

/// The chart with the paper turned the better way. Around the board at least one square is white.
/// The square must not pass the largest one.
ChartLayout LayOut(const PrintedChart& chart);

}  // namespace trackedcam::app
