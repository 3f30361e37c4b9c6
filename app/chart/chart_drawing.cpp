#include "app/chart/chart_drawing.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "app/chart/chart_notes.h"
#include "host/text/file_text.h"

namespace trackedcam::app {
namespace {

constexpr double kPointsPerMillimetre = 72 / 25.4;

// By which a chart is known as one that may be replaced. Cairo writes it into a PDF itself.
constexpr const char* kCreator = "trackedcam chart";
constexpr const char* kSvgMark = "<!-- trackedcam chart -->\n";

struct Release {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* pen) const { cairo_destroy(pen); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;
using Pen = std::unique_ptr<cairo_t, Release>;

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
  // Not in pixels, of which each program has its own size.
  cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PT);
  return surface;
}

void DrawBoard(cairo_t* pen, const std::array<int, 2>& board, const ChartLayout& layout) {
  for (int row = 0; row <= board[1]; ++row) {
    // Black at the top left, so that the first corner is found there.
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

// The board as an outline with its first square alone: a small board with all of them could be
// found in a photograph in place of the large one.
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

// Where the paper has room beyond the white: an arrow in line with the first row of corners, along
// which x runs, and one with the first column, along which y runs. They meet in the first corner.
void DrawGuides(cairo_t* pen, const ChartLayout& layout) {
  constexpr double kLength = 6;
  constexpr double kGap = 2;                                 // to the white around the board
  constexpr double kLabel = 2.6;                             // and its size
  constexpr double kRoom = 5 + kLabel + kLength + 2 * kGap;  // with the edge that printers leave
  cairo_set_line_width(pen, 0.3);
  SelectFont(pen, "Sans", kLabel);
  const double firstColumn = layout.board.left + layout.square;
  const double firstRow = layout.board.top + layout.square;
  const double left = layout.board.left - layout.square;  // of the white
  const double top = layout.board.top - layout.square;
  if (left >= kRoom) {
    DrawArrow(pen, left - kGap - kLength, firstRow, kLength - 1, 0);
    cairo_move_to(pen, left - kGap - kLength - kLabel, firstRow + 0.8);
    cairo_show_text(pen, "x");
  }
  if (top >= kRoom) {
    DrawArrow(pen, firstColumn, top - kGap - kLength, 0, kLength - 1);
    cairo_move_to(pen, firstColumn - 0.8, top - kGap - kLength - 1);
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
