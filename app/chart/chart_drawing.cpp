#include "app/chart/chart_drawing.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cmath>
#include <memory>
#include <stdexcept>

#include "app/chart/chart_notes.h"

namespace trackedcam::app {
namespace {

constexpr double kPointsPerMillimetre = 72 / 25.4;

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
    return Surface(cairo_pdf_surface_create_for_stream(Append, &content, width, height));
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

void Draw(cairo_t* pen, const PrintedChart& chart, const ChartLayout& layout) {
  cairo_set_source_rgb(pen, 1, 1, 1);
  cairo_paint(pen);
  cairo_set_source_rgb(pen, 0, 0, 0);
  cairo_scale(pen, kPointsPerMillimetre, kPointsPerMillimetre);
  DrawBoard(pen, chart.board, layout);
  DrawRuler(pen, layout.ruler);
  DrawNotes(pen, chart, layout.notes);
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
  return content;
}

}  // namespace trackedcam::app
