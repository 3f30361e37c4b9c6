#include "app/commands/chart_command.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "app/chart/printed_chart.h"
#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "host/text/files.h"

namespace trackedcam::app {
namespace {

constexpr const char* kChartFooter = R"(Examples:
  trackedcam chart --board 9x6 --square 30mm --paper A3 --out chart.pdf
  trackedcam chart --board 6x9 --square 20mm --paper A4 --out chart.svg
  trackedcam chart --board 9x6 --square 30mm --ruler-measured 299.2mm

Print at 100 %, without "fit to page", and measure the printed ruler. With that
length, the third example prints the options for calibrate.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

struct ChartOptions {
  PrintedChart chart;
  std::filesystem::path out;
  std::optional<double> rulerMetres;  // measured on the print
};

ChartFormat FormatOf(const std::filesystem::path& out) {
  if (IsStandardOutput(out)) {
    return ChartFormat::kPdf;
  }
  const std::string extension = CLI::detail::to_lower(out.extension().u8string());
  if (extension != ".pdf" && extension != ".svg") {
    throw CLI::ValidationError("--out", out.u8string() + " does not end in .pdf or .svg");
  }
  return extension == ".pdf" ? ChartFormat::kPdf : ChartFormat::kSvg;
}

void RequireFit(const PrintedChart& chart) {
  const double largest = LargestSquare(chart.board, chart.paper);
  const double square = chart.square * kMillimetresPerMetre;
  if (square > largest) {
    const double rounded = std::floor(largest * 10) / 10;
    throw CLI::ValidationError(
        "--square", MillimetresText(square) + " mm is too large: the largest square with which " +
                        std::to_string(chart.board[0]) + 'x' + std::to_string(chart.board[1]) +
                        " inner corners fit on " + std::string(chart.paper.name) + " is " +
                        MillimetresText(rounded) + " mm");
  }
}

// Like an option of CLI11 that is required. The value may also come from the configuration file.
void RequireGiven(const char* option, bool isGiven) {
  if (!isGiven) {
    throw CLI::RequiredError(option);
  }
}

void WriteChart(const ChartOptions& options, const std::filesystem::path& configFile) {
  const ChartFormat format = FormatOf(options.out);
  RequireFit(options.chart);
  PrepareOutputFile({"--out", options.out, "a chart of trackedcam", IsChart}, {configFile});
  WriteOutput(options.out, DrawChart(options.chart, format));
  const auto& board = options.chart.board;
  const std::string ruler = MillimetresText(RulerLength(board, options.chart.square));
  TextBeside(options.out) << "Wrote " << options.out.u8string() << '\n'
                          << "Next: print it at 100 % and measure its ruler. If it is " << ruler
                          << " mm long, calibrate with\n"
                          << "      " << BoardOptions(options.chart) << '\n'
                          << "      Otherwise get the true square with the measured length:\n"
                          << "      trackedcam chart " << BoardOptions(options.chart)
                          << " --ruler-measured " << ruler << "mm\n";
}

// The squares have the same scale error as the ruler.
void PrintMeasuredSquare(const ChartOptions& options) {
  constexpr double kMostOff = 0.1;  // beyond this it is another ruler, or another unit
  const double length = RulerLength(options.chart.board, options.chart.square);
  const double measured = *options.rulerMetres * kMillimetresPerMetre;
  if (std::abs(measured / length - 1) > kMostOff) {
    throw CLI::ValidationError("--ruler-measured",
                               MillimetresText(measured) + " mm is not near the " +
                                   MillimetresText(length) +
                                   " mm of this chart's ruler: measure from its first mark to its "
                                   "last, and state --board and --square as for the drawing");
  }
  PrintedChart printed = options.chart;
  constexpr double kSteps = 1e7;  // a tenth of a micrometre
  printed.square = std::round(options.chart.square * measured / length * kSteps) / kSteps;
  std::cout << "The ruler of " << MillimetresText(length) << " mm is " << MillimetresText(measured)
            << " mm long, so the edge of a square is "
            << MillimetresText(printed.square * kMillimetresPerMetre) << " mm. Calibrate with\n"
            << "  " << BoardOptions(printed) << '\n';
}

}  // namespace

void AddChartCommand(CLI::App& program, int& status) {
  CLI::App& command = AddCommand(program, "chart", "Draw a chart to print", kChartFooter);
  const auto options = std::make_shared<ChartOptions>();
  AddValue(command, "--board", options->chart.board, ParseBoard, "COLSxROWS",
           "Inner corners along a row and along a column:\none less than the squares")
      ->required();
  AddValue(command, "--square", options->chart.square, ParseSquare, "LENGTH",
           "Edge of one square, such as 30mm")
      ->required();
  CLI::Option* paper =
      AddValue(command, "--paper", options->chart.paper, ParsePaper, "NAME",
               "Paper: A0 to A4, Letter or Tabloid (required\nunless --ruler-measured is given)");
  CLI::Option* out = AddOutput(command, "--out", options->out, "FILE",
                               "File for the chart, .pdf or .svg; - is a PDF\non standard output "
                               "(required unless\n--ruler-measured is given)");
  AddValue(command, "--ruler-measured", options->rulerMetres, ParseLength, "LENGTH",
           "Length of the printed ruler, such as 299.2mm:\nprints the true square, draws nothing")
      ->excludes(paper)
      ->excludes(out);
  command.callback([options, &program, &status] {
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
