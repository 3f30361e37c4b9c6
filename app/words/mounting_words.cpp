#include "app/words/mounting_words.h"

#include <string>
#include <vector>

#include "app/words/table_row.h"
#include "host/input/mounting_axes.h"
#include "host/text/number_text.h"

namespace trackedcam::app {
namespace {

using crosscheck::CrossCheck;
using host::Fixed;
using host::Mounting;

constexpr double kMillimetresPerMetre = 1000;

std::vector<std::string> Texts(const std::array<double, 3>& numbers, int decimals, double scale) {
  std::vector<std::string> texts;
  texts.reserve(numbers.size());
  for (const double number : numbers) {
    texts.push_back(Fixed(number * scale, decimals));
  }
  return texts;
}

void PrintInAxes(std::ostream& out, const std::string& label, const Mounting& mounting) {
  PrintRow(out, label + ", deg", Texts(mounting.rotationDegrees, 4, 1));
  PrintRow(out, label + ", mm", Texts(mounting.translationMetres, 2, kMillimetresPerMetre));
}

void PrintMounting(std::ostream& out, const std::string& name, const Mounting& mounting) {
  PrintInAxes(out, name + ", after axis fix", mounting);
  PrintInAxes(out, name + ", reported axes", host::ToReportedAxes(mounting));
}

std::string Triple(const std::array<double, 3>& numbers, int decimals) {
  return Fixed(numbers[0], decimals) + ',' + Fixed(numbers[1], decimals) + ',' +
         Fixed(numbers[2], decimals);
}

}  // namespace

void PrintMountings(std::ostream& out, const host::Report& report) {
  const auto& taken = report.inputs.mounting;
  const auto found = report.crossCheck ? report.crossCheck->mounting : std::nullopt;
  if (!taken && !found) {
    return;
  }
  out << "\nMounting of the chart's tracker, turned by Rx * Ry * Rz\n";
  PrintRow(out, "", {"X", "Y", "Z"});
  if (taken) {
    PrintMounting(out, report.firstRun ? "taken" : "stated", *taken);
  }
  if (found) {
    PrintMounting(out, "found", *found);
  }
}

void PrintMountingFound(std::ostream& out, const host::Report& report) {
  const CrossCheck& check = *report.crossCheck;
  // A second run took what the first one's cross-check found, and stands for it.
  const std::optional<Mounting>& found = report.firstRun ? report.inputs.mounting : check.mounting;
  if (!found) {
    return;
  }
  const bool isReported = report.inputs.hasReportedMountingAxes;
  const Mounting mounting = isReported ? host::ToReportedAxes(*found) : *found;
  out << "\nMounting found from the shoot, to pass on\n"
      << "  --chart-rotation=" << Triple(mounting.rotationDegrees, 4)
      << " --chart-translation=" << Triple(mounting.translationMetres, 6)
      << (isReported ? " --mounting-axes=reported" : "") << '\n';
  if (check.solved) {
    const auto& error = check.standardErrorTrChart;
    PrintRow(out, "it is known to",
             {Fixed(check.t95 * error.shiftMm.maxCoeff(), 1) + " mm",
              Fixed(check.t95 * error.turnDegrees.maxCoeff(), 2) + " deg", "(95 %)"});
  }
}

}  // namespace trackedcam::app
