#include "app/chart/printed_chart.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

using host::Shortest;

struct Release {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* pen) const { cairo_destroy(pen); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;
using Pen = std::unique_ptr<cairo_t, Release>;

constexpr double kPaperEdge = 5;      // some printers leave it white
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
  // With large squares the white margin reaches the edge of the paper; with small ones the
  // printer's margin is wider than the white margin.
  const double columns = board[0] + 1.0;
  const double rows = board[1] + 1.0;
  const double height = page.height - kFooterHeight - kPaperEdge;
  return std::min({page.width / (columns + 2), (page.width - 2 * kSide) / columns,
                   height / (rows + 2), (height - kPaperEdge) / (rows + 1)});
}

Page PageFor(const Paper& paper, const std::array<int, 2>& board) {
  const Page landscape = {paper.longSide, paper.shortSide};
  const Page portrait = {paper.shortSide, paper.longSide};
  return LargestSquareOn(landscape, board) >= LargestSquareOn(portrait, board) ? landscape
                                                                               : portrait;
}

// If both counts are odd or both even, the board looks the same upside down.
bool IsUnmistakable(const std::array<int, 2>& board) {
  return (board[0] + board[1]) % 2 == 1;
}

constexpr double kPointsPerMillimetre = 72 / 25.4;

// IsChart recognises a chart by it. Cairo writes it into a PDF itself.
constexpr const char* kCreator = "trackedcam chart";
constexpr const char* kSvgMark = "<!-- trackedcam chart -->\n";

cairo_status_t Append(void* content, const unsigned char* bytes, unsigned int size) {
  static_cast<std::string*>(content)->append(bytes, bytes + size);
  return CAIRO_STATUS_SUCCESS;
}

Surface CreateSurface(ChartFormat format, const ChartLayout& layout, std::string& content) {
  const double width = layout.pageWidth * kPointsPerMillimetre;
  const double height = layout.pageHeight * kPointsPerMillimetre;
  if (format == ChartFormat::kPdf) {
    Surface surface(cairo_pdf_surface_create_for_stream(Append, &content, width, height));
    cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATOR, kCreator);
    return surface;
  }
  Surface surface(cairo_svg_surface_create_for_stream(Append, &content, width, height));
  // Not in pixels, whose size depends on the program.
  cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PT);
  return surface;
}

void DrawBoard(cairo_t* pen, const std::array<int, 2>& board, const ChartLayout& layout) {
  for (int row = 0; row <= board[1]; ++row) {
    // Black at the top left: the search finds the first corner there.
    for (int col = row % 2; col <= board[0]; col += 2) {
      cairo_rectangle(pen, layout.board.left + col * layout.square,
                      layout.board.top + row * layout.square, layout.square, layout.square);
    }
  }
  cairo_fill(pen);
}

void SelectFont(cairo_t* pen, const char* family, double size) {
  cairo_select_font_face(pen, family, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(pen, size);
}

double WidthOf(cairo_t* pen, const std::string& text) {
  cairo_text_extents_t extents = {};
  cairo_text_extents(pen, text.c_str(), &extents);
  return extents.x_advance;
}

double TickLength(int millimetre) {
  if (millimetre % 10 == 0) {
    return 3.4;
  }
  return millimetre % 5 == 0 ? 2.6 : 1.7;
}

void DrawRuler(cairo_t* pen, const Box& ruler) {
  constexpr double kLineWidth = 0.15;
  constexpr double kLabelSize = 2.6;
  cairo_set_line_width(pen, kLineWidth);
  SelectFont(pen, "Sans", kLabelSize);
  const int length = static_cast<int>(std::lround(ruler.width));
  for (int millimetre = 0; millimetre <= length; ++millimetre) {
    const double x = ruler.left + millimetre;
    cairo_move_to(pen, x, ruler.top);
    cairo_line_to(pen, x, ruler.top + TickLength(millimetre));
    cairo_stroke(pen);
    if (millimetre % 10 == 0) {
      const std::string label = std::to_string(millimetre);
      cairo_move_to(pen, x - WidthOf(pen, label) / 2, ruler.top + ruler.height - 0.6);
      cairo_show_text(pen, millimetre == 0 ? "0 mm" : label.c_str());
    }
  }
}

void DrawNotes(cairo_t* pen, const PrintedChart& chart, const Box& box) {
  constexpr double kSize = 3;
  constexpr double kBaseline = 0.75;
  const auto notes = ChartNotes(chart);
  const double lineHeight = box.height / static_cast<double>(notes.size());
  for (std::size_t line = 0; line < notes.size(); ++line) {
    SelectFont(pen, line == 0 ? "Monospace" : "Sans", kSize);  // first the command to type
    cairo_move_to(pen, box.left, box.top + (static_cast<double>(line) + kBaseline) * lineHeight);
    cairo_show_text(pen, notes[line].c_str());
  }
}

void DrawArrow(cairo_t* pen, double x, double y, double dx, double dy) {
  constexpr double kHead = 0.9;
  const double length = std::hypot(dx, dy);
  const double alongX = dx / length * kHead;
  const double alongY = dy / length * kHead;
  cairo_move_to(pen, x, y);
  cairo_line_to(pen, x + dx, y + dy);
  cairo_stroke(pen);
  cairo_move_to(pen, x + dx + alongX, y + dy + alongY);
  cairo_line_to(pen, x + dx - alongY / 2, y + dy + alongX / 2);
  cairo_line_to(pen, x + dx + alongY / 2, y + dy - alongX / 2);
  cairo_fill(pen);
}

// Only the outline and the first square: the search could find a small board with all squares
// instead of the large one.
void DrawKey(cairo_t* pen, const std::array<int, 2>& board, const Box& box) {
  constexpr double kLineWidth = 0.2;
  constexpr double kDot = 0.55;
  constexpr double kTextSize = 2.6;
  const double square = std::min(box.width / (board[0] + 1), box.height / (board[1] + 1));
  const double width = square * (board[0] + 1);
  const double height = square * (board[1] + 1);
  const double left = box.left + box.width - width;
  const double x = left + square;
  const double y = box.top + square;
  cairo_set_line_width(pen, kLineWidth);
  cairo_rectangle(pen, left, box.top, width, height);
  cairo_stroke(pen);
  cairo_rectangle(pen, left, box.top, square, square);
  cairo_fill(pen);
  cairo_arc(pen, x, y, kDot, 0, 2 * std::acos(-1.0));
  cairo_fill(pen);
  DrawArrow(pen, x, y, width * 0.5, 0);
  DrawArrow(pen, x, y, 0, height * 0.5);
  SelectFont(pen, "Sans", kTextSize);
  cairo_move_to(pen, x + width * 0.5 + 1.4, y + 0.8);
  cairo_show_text(pen, "x");
  cairo_move_to(pen, x + 0.8, y + height * 0.5 + 1.2);
  cairo_show_text(pen, "y");
}

// If the paper has room outside the white margin: an arrow x in line with the first row of corners,
// and an arrow y in line with the first column.
void DrawGuides(cairo_t* pen, const ChartLayout& layout) {
  constexpr double kLength = 6;
  constexpr double kGuideGap = 2;  // to the white around the board
  constexpr double kLabel = 2.6;   // and its size
  constexpr double kRoom =
      5 + kLabel + kLength + 2 * kGuideGap;  // with the edge that printers leave
  cairo_set_line_width(pen, 0.3);
  SelectFont(pen, "Sans", kLabel);
  const double firstColumn = layout.board.left + layout.square;
  const double firstRow = layout.board.top + layout.square;
  const double left = layout.board.left - layout.square;  // of the white
  const double top = layout.board.top - layout.square;
  if (left >= kRoom) {
    DrawArrow(pen, left - kGuideGap - kLength, firstRow, kLength - 1, 0);
    cairo_move_to(pen, left - kGuideGap - kLength - kLabel, firstRow + 0.8);
    cairo_show_text(pen, "x");
  }
  if (top >= kRoom) {
    DrawArrow(pen, firstColumn, top - kGuideGap - kLength, 0, kLength - 1);
    cairo_move_to(pen, firstColumn - 0.8, top - kGuideGap - kLength - 1);
    cairo_show_text(pen, "y");
  }
}

void Draw(cairo_t* pen, const PrintedChart& chart, const ChartLayout& layout) {
  cairo_set_source_rgb(pen, 1, 1, 1);
  cairo_paint(pen);
  cairo_set_source_rgb(pen, 0, 0, 0);
  cairo_scale(pen, kPointsPerMillimetre, kPointsPerMillimetre);
  DrawBoard(pen, chart.board, layout);
  DrawRuler(pen, layout.ruler);
  DrawNotes(pen, chart, layout.notes);
  DrawKey(pen, chart.board, layout.key);
  DrawGuides(pen, layout);
}

}  // namespace

double RulerLength(const std::array<int, 2>& board, double squareMetres) {
  constexpr double kRounding = 1e-9;
  const double boardWidth = (board[0] + 1) * squareMetres * kMillimetresPerMetre;
  return std::max(kShortestRuler, std::floor(boardWidth / kRulerStep + kRounding) * kRulerStep);
}

double LargestSquare(const std::array<int, 2>& board, const Paper& paper) {
  return LargestSquareOn(PageFor(paper, board), board);
}

ChartLayout LayOut(const PrintedChart& chart) {
  const Page page = PageFor(chart.paper, chart.board);
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

std::string DrawChart(const PrintedChart& chart, ChartFormat format) {
  const ChartLayout layout = LayOut(chart);
  std::string content;
  const Surface surface = CreateSurface(format, layout, content);
  const Pen pen(cairo_create(surface.get()));
  Draw(pen.get(), chart, layout);

  cairo_surface_finish(surface.get());
  for (const cairo_status_t status :
       {cairo_status(pen.get()), cairo_surface_status(surface.get())}) {
    if (status != CAIRO_STATUS_SUCCESS) {
      throw std::runtime_error(std::string("cannot draw the chart: ") +
                               cairo_status_to_string(status));
    }
  }
  if (format == ChartFormat::kSvg) {
    content.insert(content.find("<svg"), kSvgMark);
  }
  return content;
}

bool IsChart(const std::filesystem::path& file) {
  constexpr std::uintmax_t kMostBytes = 16 << 20;
  std::error_code error;
  if (std::filesystem::file_size(file, error) > kMostBytes || error) {
    return false;
  }
  try {
    const std::string content = host::ReadFile(file);
    const bool isPdf = content.rfind("%PDF-", 0) == 0;
    return content.find(isPdf ? std::string("(") + kCreator + ')' : kSvgMark) != std::string::npos;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace trackedcam::app
