#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

namespace trackedcam::app {

/// A sheet, whichever way it is turned.
struct Paper {
  std::string_view name;
  double shortSide;  // millimetres
  double longSide;   // millimetres
};

constexpr std::array<Paper, 7> kPapers = {{{"A0", 841, 1189},
                                           {"A1", 594, 841},
                                           {"A2", 420, 594},
                                           {"A3", 297, 420},
                                           {"A4", 210, 297},
                                           {"Letter", 215.9, 279.4},
                                           {"Tabloid", 279.4, 431.8}}};

// Where everything stands on the page of a printed chart.
//
// The board with white around it, and below it the ruler and the notes, as one block in the middle.
// Lengths are millimetres; x runs right and y down from the page's top left corner.

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

// What a printed chart says about itself.

/// What the calibration is told of the chart: "--board 9x6 --square 0.03".
std::string BoardOptions(const PrintedChart& chart);

/// The command that calibrates with the chart, as far as the chart decides it.
std::string CalibrateCommandFor(const PrintedChart& chart);

/// That command, how to print the chart, and which way up it stands.
std::array<std::string, 3> ChartNotes(const PrintedChart& chart);

/// A length in millimetres as text, without the digits that arithmetic leaves at its end.
std::string MillimetresText(double length);

enum class ChartFormat { kPdf, kSvg };

/// The chart as the content of a file: one page at true scale.
/// @throws std::runtime_error when it cannot be drawn.
std::string DrawChart(const PrintedChart& chart, ChartFormat format);

/// Whether a file is a chart that was drawn here.
bool IsChart(const std::filesystem::path& file);

}  // namespace trackedcam::app
