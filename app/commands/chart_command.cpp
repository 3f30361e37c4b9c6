#include "app/commands/chart_command.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "app/chart/chart.h"
#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "host/text/files.h"

namespace trackedcam::app {
namespace {

constexpr const char* kFooter = R"(Examples:
  trackedcam chart --board 9x6 --square 30mm --paper A3 --out chart.pdf
  trackedcam chart --board 6x9 --square 20mm --paper A4 --out chart.svg
  trackedcam chart --board 9x6 --square 30mm --ruler-measured 299.2mm

Print at 100 %, without "fit to page", and measure the ruler on the print: the last line tells which
square to pass then.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

struct ChartOptions {
  PrintedChart chart;
  std::filesystem::path out;
  std::optional<double> rulerMetres;  // as measured on the print
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

// As an option of CLI11 that is required; a value may also come from the configuration file.
void RequireGiven(const char* option, bool isGiven) {
  if (!isGiven) {
    throw CLI::RequiredError(option);
  }
}

void WriteChart(const ChartOptions& options, const std::filesystem::path& configFile) {
  const ChartFormat format = FormatOf(options.out);
  RequireFit(options.chart);
  PrepareOutputFile({"--out", options.out, "a chart of trackedcam", IsChart}, {configFile});
  host::WriteFile(options.out, DrawChart(options.chart, format));
  const auto& board = options.chart.board;
  const std::string ruler = MillimetresText(RulerLength(board, options.chart.square));
  std::cout << "Wrote " << options.out.u8string() << '\n'
            << "Next: print it at 100 % and measure its ruler. If it measures " << ruler
            << " mm, calibrate with\n"
            << "      " << BoardOptions(options.chart) << '\n'
            << "      Else let this tell the square, with what it measures:\n"
            << "      trackedcam chart " << BoardOptions(options.chart) << " --ruler-measured "
            << ruler << "mm\n";
}

// The print is as much too large or small as its ruler is.
void PrintMeasuredSquare(const ChartOptions& options) {
  constexpr double kMillimetresPerMetre = 1000;
  constexpr double kMostOff = 0.1;  // more is another ruler, or another unit
  const double length = RulerLength(options.chart.board, options.chart.square);
  const double measured = *options.rulerMetres * kMillimetresPerMetre;
  if (std::abs(measured / length - 1) > kMostOff) {
    throw CLI::ValidationError("--ruler-measured",
                               MillimetresText(measured) + " mm is not near the " +
                                   MillimetresText(length) +
                                   " mm of this chart's ruler: measure from its first mark to its "
                                   "last, and state --board and --square as the chart was drawn");
  }
  PrintedChart printed = options.chart;
  constexpr double kSteps = 1e7;  // a tenth of a micrometre
  printed.square = std::round(options.chart.square * measured / length * kSteps) / kSteps;
  std::cout << "The ruler of " << MillimetresText(length) << " mm measures "
            << MillimetresText(measured) << " mm, so a square measures "
            << MillimetresText(printed.square * kMillimetresPerMetre) << " mm. Calibrate with\n"
            << "  " << BoardOptions(printed) << '\n';
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
  CLI::Option* paper = AddValue(*command, "--paper", options->chart.paper, ParsePaper, "NAME",
                                "A0 to A4, Letter or Tabloid; turned as it fits best");
  CLI::Option* out =
      AddPath(*command, "--out", options->out, "FILE", "Where to write; .pdf or .svg");
  AddValue(*command, "--ruler-measured", options->rulerMetres, ParseLength, "LENGTH",
           "Instead of drawing: tell the square of a print\nwhose ruler measures this, such as "
           "299.2mm")
      ->excludes(paper)
      ->excludes(out);
  command->callback([options, &program, &status] {
    if (options->rulerMetres) {
      PrintMeasuredSquare(*options);
    } else {
      RequireGiven("--paper", !options->chart.paper.name.empty());
      RequireGiven("--out", !options->out.empty());
      WriteChart(*options, ConfigFile(program));
    }
    status = 0;
  });
}

}  // namespace trackedcam::app
