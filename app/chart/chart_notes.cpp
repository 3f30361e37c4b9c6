#include "app/chart/chart_notes.h"

#include <cmath>

#include "host/text/number_text.h"

namespace trackedcam::app {
namespace {

using host::Shortest;

// With two odd or two even counts the board looks the same when it is turned by half a turn.
bool IsUnmistakable(const std::array<int, 2>& board) {
  return (board[0] + board[1]) % 2 == 1;
}

}  // namespace

std::string BoardOptions(const PrintedChart& chart) {
  return "--board " + std::to_string(chart.board[0]) + 'x' + std::to_string(chart.board[1]) +
         " --square " + Shortest(chart.square);
}

std::string CalibrateCommandFor(const PrintedChart& chart) {
  return "trackedcam calibrate " + BoardOptions(chart);
}

std::array<std::string, 3> ChartNotes(const PrintedChart& chart) {
  const Box board = LayOut(chart).board;
  return {CalibrateCommandFor(chart),
          "Print on " + std::string(chart.paper.name) + " at 100 %: the board measures " +
              MillimetresText(board.width) + " × " + MillimetresText(board.height) + " mm.",
          IsUnmistakable(chart.board)
              ? "The first corner is the inner one at the top left, as on the right."
              : "The board looks the same upside down: keep this side down."};
}

std::string MillimetresText(double length) {
  constexpr double kSteps = 1000;
  return Shortest(std::round(length * kSteps) / kSteps);
}

}  // namespace trackedcam::app
