#include "app/terminal/summary.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "app/terminal/output.h"
#include "host/findings/finding_text.h"
#include "host/input/reported_axes.h"
#include "host/result/result_file.h"
#include "host/run/library_run.h"
#include "host/text/text.h"
#include "host/verdict/verdict.h"

namespace trackedcam::app {
namespace {

using host::CalibrationOutputs;
using host::Fixed;
using List = std::vector<double> CalibrationOutputs::*;
using crosscheck::CrossCheck;
using host::Level;
using host::LibraryRun;
using host::Mounting;
using host::PhotographState;
using host::Report;
using host::RunRecord;

struct Row {
  const char* label;
  List list;
  std::size_t index;
  int decimals;
  bool isShareOfSize;  // of the image's width or height, shown in pixels
};

constexpr std::array<Row, 11> kRows = {{
    {"image width, px", &CalibrationOutputs::imageSize, 0, 0, false},
    {"image height, px", &CalibrationOutputs::imageSize, 1, 0, false},
    {"focal length, mm", &CalibrationOutputs::focalLengthMm, 0, 3, false},
    {"focal length fx, px", &CalibrationOutputs::normFocal, 0, 2, true},
    {"focal length fy, px", &CalibrationOutputs::normFocal, 1, 2, true},
    {"principal point cx, px", &CalibrationOutputs::normCenter, 0, 2, true},
    {"principal point cy, px", &CalibrationOutputs::normCenter, 1, 2, true},
    {"distortion k1", &CalibrationOutputs::distortion, 0, 5, false},
    {"distortion k2", &CalibrationOutputs::distortion, 1, 5, false},
    {"horizontal field of view, deg", &CalibrationOutputs::fieldOfView, 0, 3, false},
    {"vertical field of view, deg", &CalibrationOutputs::fieldOfView, 1, 3, false},
}};

std::string TextOf(const Row& row, const CalibrationOutputs& outputs) {
  const double scale = row.isShareOfSize ? outputs.imageSize.at(row.index) : 1;
  return Fixed((outputs.*row.list).at(row.index) * scale, row.decimals);
}

constexpr double kMillimetresPerMetre = 1000;
constexpr double kCertain = 0.001;
constexpr double kPossible = 0.05;

std::vector<std::string> Off(double mm, double degrees) {
  return {Fixed(mm, 1) + " mm", Fixed(degrees, 2) + " deg"};
}

// How likely such a distance is by chance, in a word.
const char* Surety(double p) {
  return p < kCertain ? "certain" : p < kPossible ? "likely" : "by chance";
}

void PrintOffset(std::ostream& out, const char* label, const crosscheck::Offset& offset) {
  auto figures = Off(offset.offMm, offset.offDegrees);
  figures.emplace_back(Surety(offset.p));
  PrintRow(out, label, figures);
}

// The largest of the three axes, as a half-width of 95 %.
std::vector<std::string> Known(const crosscheck::StandardError& error, double t95) {
  return Off(t95 * error.translationMm.maxCoeff(), t95 * error.rotationDegrees.maxCoeff());
}

void PrintBad(std::ostream& out, const host::Report& report) {
  for (const host::Finding& finding : report.findings) {
    if (std::holds_alternative<host::BadPhotographs>(finding.kind)) {
      out << "  " << Text(finding) << '\n';
    }
  }
}

std::vector<double> RowByRow(const Eigen::Matrix4d& transform) {
  const Eigen::Matrix<double, 4, 4, Eigen::RowMajor> rows = transform;
  return {rows.data(), rows.data() + rows.size()};
}

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

void PrintTransform(std::ostream& out, const std::vector<double>& transform,
                    const CalibrationOutputs* truth) {
  out << "\nTransform_Cam_Tc, from the camera's tracker to the camera\n";
  for (std::size_t row = 0; row < transform.size(); row += 4) {
    std::vector<std::string> figures;
    for (std::size_t i = row; i < row + 4; ++i) {
      figures.push_back(Fixed(transform.at(i), 6));
    }
    PrintRow(out, row == 0 ? "matrix, metres" : "", figures);
  }
  const auto millimetres = [&](std::size_t i) {
    return Fixed(transform.at(i) * kMillimetresPerMetre, 2);
  };
  PrintRow(out, "translation, mm", {millimetres(3), millimetres(7), millimetres(11)});
  if (truth != nullptr) {
    const auto difference = host::Difference(transform, truth->transformCamTc);
    PrintRow(out, "off the truth",
             {Fixed(difference.millimetres, 2) + " mm", Fixed(difference.degrees, 3) + " deg"});
  }
}

// Each with the limits that hold for an image of this height.
void PrintErrors(std::ostream& out, const LibraryRun& run) {
  const auto print = [&](const char* label, std::optional<double> figure,
                         const std::optional<host::Limit>& limit, double scale) {
    if (!figure) {
      return;
    }
    std::vector<std::string> figures = {Fixed(*figure * scale, 2)};
    if (limit) {
      figures.push_back(limit->doubt ? Fixed(*limit->doubt * scale, 2) : "");
      figures.push_back(Fixed(limit->failure * scale, 2));
    }
    PrintRow(out, label, figures);
  };
  const RunRecord& record = run.record;
  const host::Limits limits = host::LimitsOf(run.outputs);
  out << "\nErrors\n";
  PrintRow(out, "", {"found", "doubt above", "fails above"});
  print("of the lens alone, px", record.lensError, limits.lensErrorPixels, 1);
  print("reprojection, mean, px", record.reprojectionError, limits.reprojectionErrorPixels, 1);
  print("spread of the translation, mm", record.spread, limits.translationSpreadMetres,
        kMillimetresPerMetre);
}

// Which photographs are bad the cross-check says, not the filter.
void PrintPhotographs(std::ostream& out, const host::PhotographList& list) {
  out << "\nPhotographs: " << CountInState(list, PhotographState::kUsed) << " of " << list.size()
      << " used";
  if (const std::size_t count = CountInState(list, PhotographState::kLeftOutByFilter)) {
    out << "; " << count << " left out by the filter (about half is normal)";
  }
  out << '\n';
  for (const host::PhotographEntry& entry : list) {
    const bool isNamed =
        entry.state != PhotographState::kUsed && entry.state != PhotographState::kLeftOutByFilter;
    if (isNamed) {
      out << "  not used: " << entry.name << " (" << entry.reason << ")\n";
    }
  }
}

void PrintFindings(std::ostream& out, const std::vector<host::Finding>& findings) {
  if (findings.empty()) {
    return;
  }
  out << "\nFindings\n";
  for (const host::Finding& finding : findings) {
    out << "  " << Name(finding.severity) << ": " << Text(finding) << '\n';
    out << "    " << Advice(finding) << '\n';
  }
}

void PrintVerdict(std::ostream& out, const Report& report) {
  const LibraryRun& run = report.run;
  const host::Verdict& verdict = report.verdict;
  out << '\n'
      << (host::IsUsable(run) || !run.code ? ""
                                           : "Failed, code " + std::to_string(*run.code) + ": ")
      << verdict.message << "\nNext: " << verdict.advice << '\n';
  for (const std::string& command : verdict.commands) {
    out << "      " << command << '\n';
  }
}

void PrintFiles(std::ostream& out, const Report& report, const std::filesystem::path& page) {
  const LibraryRun& run = report.run;
  if (!page.empty()) {
    out << "Report: " << page.u8string() << '\n';
  }
  if (host::IsConverted(report.inputs.trackerFrame)) {
    out << "Tracker data: converted from poses in " << host::Describe(report.inputs.trackerFrame)
        << '\n';
  }
  if (!run.log.empty()) {
    out << "Log: " << run.log.u8string() << '\n';
  }
  const auto isWritten = [](const std::filesystem::path& image) { return !image.empty(); };
  const auto image = std::find_if(run.images.begin(), run.images.end(), isWritten);
  if (image != run.images.end()) {
    out << "Images: " << std::count_if(image, run.images.end(), isWritten) << ", such as "
        << image->u8string() << '\n';
  }
}

void PrintRun(std::ostream& out, const Report& report, const CalibrationOutputs* truth) {
  const LibraryRun& run = report.run;
  if (!run.outputs.transformCamTc.empty()) {
    PrintTransform(out, run.outputs.transformCamTc, truth);
  }
  if (run.record.lensError) {
    PrintErrors(out, run);
  }
  if (!report.photographs.empty()) {
    PrintPhotographs(out, report.photographs);
  }
  if (report.crossCheck) {
    PrintCrossCheck(out, report, truth);
    PrintMountings(out, report);
  }
  PrintFindings(out, report.findings);
}

// In short: the figures that the second run replaces.
void PrintFirstRun(std::ostream& out, const Report& first, const CalibrationOutputs* truth) {
  out << "First run, "
      << (first.mountingIsStated ? "with the mounting stated" : "without a mounting") << '\n';
  if (first.mountingIsStated && !first.run.outputs.transformCamTc.empty()) {
    PrintRun(out, first, truth);
  } else if (first.crossCheck) {
    PrintCrossCheck(out, first, truth);
  }
  out << "\nSecond run, with the mounting found\n\n";
}

}  // namespace

void PrintLens(std::ostream& out, const CalibrationOutputs& found,
               const CalibrationOutputs* truth) {
  out << "Lens\n";
  if (truth != nullptr) {
    PrintRow(out, "", {"found", "truth"});
  }
  for (const Row& row : kRows) {
    std::vector<std::string> figures = {TextOf(row, found)};
    if (truth != nullptr) {
      figures.push_back(TextOf(row, *truth));
    }
    PrintRow(out, row.label, figures);
  }
}

void PrintCrossCheck(std::ostream& out, const host::Report& report,
                     const host::CalibrationOutputs* truth) {
  const CrossCheck& check = *report.crossCheck;
  out << "\nCross-check: mounting and transform solved together, " << check.used << " of "
      << check.photographs << " photographs\n";
  if (!check.solved) {
    out << "  no solution\n";
    return;
  }
  auto known = Known(check.standardErrorCamTc, check.t95);
  known.emplace_back("(95 %)");
  PrintRow(out, "the transform is known to", known);
  if (check.library) {
    PrintOffset(out, "the result above is off by", *check.library);
  }
  if (check.nominalMounting) {
    PrintOffset(out, "the mounting used is off by", *check.nominalMounting);
  }
  if (truth != nullptr) {
    const auto off = host::Difference(RowByRow(check.Transform_Cam_Tc), truth->transformCamTc);
    PrintRow(out, "its own transform, off the truth",
             {Fixed(off.millimetres, 2) + " mm", Fixed(off.degrees, 3) + " deg"});
  }
  PrintBad(out, report);
}

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
             {Fixed(check.t95 * error.translationMm.maxCoeff(), 1) + " mm",
              Fixed(check.t95 * error.rotationDegrees.maxCoeff(), 2) + " deg", "(95 %)"});
  }
}

void PrintWarning(std::ostream& out, const host::Report& report) {
  const host::Verdict& verdict = report.verdict;
  for (const host::Finding& finding : report.findings) {
    if (IsOutputError(finding) && verdict.message.find(Text(finding)) == std::string::npos) {
      out << "trackedcam: warning: " << Text(finding) << '\n';
    }
  }
  if (verdict.level == Level::kGood) {
    return;
  }
  const auto& code = report.run.code;
  const bool hasCode = verdict.level == Level::kFailed && code && *code != host::kSuccess;
  out << "trackedcam: " << (verdict.level == Level::kDoubtful ? "warning" : "error")
      << (hasCode ? ' ' + std::to_string(*code) : "") << ": " << verdict.message << '\n';
}

int ExitStatus(const host::Report& report) {
  switch (report.verdict.level) {
    case Level::kGood:
    case Level::kDoubtful:
      return 0;
    case Level::kWrong:
      return 3;
    case Level::kFailed:
      return 1;
  }
  return 1;
}

void PrintSummary(std::ostream& out, const Report& report, const CalibrationOutputs* truth,
                  const std::filesystem::path& page) {
  if (report.firstRun) {
    PrintFirstRun(out, *report.firstRun, truth);
  }
  if (!report.run.outputs.focalLengthMm.empty()) {
    PrintLens(out, report.run.outputs, truth);
  }
  PrintRun(out, report, truth);
  const bool isOfALog = report.inputs.data.empty();  // there is no second run then
  if (report.crossCheck && (report.firstRun || isOfALog)) {
    PrintMountingFound(out, report);
  }
  PrintVerdict(out, report);
  PrintFiles(out, report, page);
}

}  // namespace trackedcam::app
