#include "app/commands/chart_command.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>

#include "app/chart/chart_drawing.h"
#include "app/chart/chart_layout.h"
#include "app/chart/chart_notes.h"
#include "app/options/add_path.h"
#include "app/options/add_value.h"
#include "app/options/option_values.h"
#include "app/options/output_file.h"
#include "host/text/file_text.h"

namespace trackedcam::app {
namespace {

constexpr const char* kFooter = R"(Examples:
  trackedcam chart --board 9x6 --square 30mm --paper A3 --out chart.pdf
  trackedcam chart --board 6x9 --square 20mm --paper A4 --out chart.svg

Print at 100 %, without "fit to page", and check the print with the ruler on it.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

struct ChartOptions {
  PrintedChart chart;
  std::filesystem::path out;
};

ChartFormat FormatOf(const std::filesystem::path& out) {
  const std::string extension = CLI::detail::to_lower(out.extension().u8string());
  if (extension != ".pdf" && extension != ".svg") {
    throw CLI::ValidationError("--out", out.u8string() + " ends neither in .pdf nor in .svg");
  }
  return extension == ".pdf" ? ChartFormat::kPdf : ChartFormat::kSvg;
}

void RequireFit(const PrintedChart& chart) {
  const double largest = LargestSquare(chart.board, chart.paper);
  const double square = chart.square * 1000;
  if (square > largest) {
    const double rounded = std::floor(largest * 10) / 10;
    throw CLI::ValidationError(
        "--square", MillimetresText(square) + " mm is too large: the largest square with which " +
                        std::to_string(chart.board[0]) + 'x' + std::to_string(chart.board[1]) +
                        " inner corners fit on " + std::string(chart.paper.name) + " is " +
                        MillimetresText(rounded) + " mm");
  }
}

void WriteChart(const ChartOptions& options) {
  const ChartFormat format = FormatOf(options.out);
  RequireFit(options.chart);
  PrepareOutputFile("--out", options.out);
  host::WriteFile(options.out, DrawChart(options.chart, format));
  std::cout << "Wrote " << options.out.u8string() << '\n'
            << "Next: print it at 100 %, check its ruler, photograph it, and then\n"
            << "      " << CalibrateCommandFor(options.chart) << " ...\n";
}

}  // namespace

void AddChartCommand(CLI::App& program, int& status) {
  CLI::App* command = program.add_subcommand("chart", "Draw a chart to print");
  command->group("Commands");
  command->fallthrough();
  command->footer(kFooter);
  const auto options = std::make_shared<ChartOptions>();
  AddValue(*command, "--board", options->chart.board, ParseBoard, "COLSxROWS",
           "Inner corners along a row and along a column:\none less than the squares")
      ->required();
  AddValue(*command, "--square", options->chart.square, ParseSquare, "LENGTH",
           "Edge of one square, such as 30mm")
      ->required();
  AddValue(*command, "--paper", options->chart.paper, ParsePaper, "NAME",
           "A0 to A4, Letter or Tabloid; turned as it fits best")
      ->required();
  AddPath(*command, "--out", options->out, "FILE", "Where to write; .pdf or .svg")->required();
  command->callback([options, &status] {
    WriteChart(*options);
    status = 0;
  });
}

}  // namespace trackedcam::app
