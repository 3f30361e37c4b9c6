// The printed chart: its layout on the page, its notes, and its file.

#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

namespace trackedcam::app {

constexpr double kMillimetresPerMetre = 1000;

/// A sheet, portrait or landscape.
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

struct PrintedChart {
  std::array<int, 2> board = {};  // inner corners: columns, rows
  double square = 0;              // metres
  Paper paper = {};
};

// The layout.
//
// The board with a white margin, and below it the ruler and the notes, as one block in the middle
// of the page. Lengths are in millimetres; x is to the right and y down from the page's top left
// corner.

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
  Box ruler;  // its width is its length, a multiple of 10
  Box notes;  // three lines of text
  Box key;    // a drawing of the first corner and its axes x and y
};

/// Length of the printed ruler in millimetres.
double RulerLength(const std::array<int, 2>& board, double squareMetres);

/// Edge in millimetres of the largest square with which the board fits on the paper, portrait or
/// landscape.
double LargestSquare(const std::array<int, 2>& board, const Paper& paper);

/// The layout on the paper, portrait or landscape, whichever suits the board. The white margin is
/// at least one square. The square must not be larger than LargestSquare.
ChartLayout LayOut(const PrintedChart& chart);

// The notes.

/// The options for the calibration: "--board 9x6 --square 0.03".
std::string BoardOptions(const PrintedChart& chart);

/// The command that calibrates with the chart, with these options.
std::string CalibrateCommandFor(const PrintedChart& chart);

/// That command, how to print the chart, and which side is up.
std::array<std::string, 3> ChartNotes(const PrintedChart& chart);

/// A length in millimetres as text, rounded to micrometres.
std::string MillimetresText(double length);

// The file.

enum class ChartFormat { kPdf, kSvg };

/// The content of the file: one page at true scale.
/// @throws std::runtime_error if it cannot be drawn.
std::string DrawChart(const PrintedChart& chart, ChartFormat format);

/// Whether a file is a chart by DrawChart.
bool IsChart(const std::filesystem::path& file);

}  // namespace trackedcam::app
