#include "app/terminal/summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "app/terminal/output.h"
#include "host/findings/finding_text.h"
#include "host/input/reported_axes.h"
#include "host/result/result_file.h"
#include "host/run/library_run.h"
#include "host/second_run.h"
#include "host/text/text.h"
#include "host/verdict/verdict.h"

namespace trackedcam::app {
namespace {

using crosscheck::CrossCheck;
using host::CalibrationOutputs;
using host::Fixed;
using host::Level;
using host::LibraryRun;
using host::Mounting;
using host::PhotographState;
using host::Report;
using host::RunRecord;

constexpr double kMmPerMetre = 1000;

// The lens.

struct LensRow {
  const char* label;
  std::vector<double> CalibrationOutputs::*list;
  std::size_t index;
  int decimals;
  bool isShareOfSize;  // of the image's width or height; printed in pixels
};

constexpr std::array<LensRow, 11> kLensRows = {{
    {"image width, px", &CalibrationOutputs::imageSize, 0, 0, false},
    {"image height, px", &CalibrationOutputs::imageSize, 1, 0, false},
    {"focal length by height, mm", &CalibrationOutputs::focalLengthMm, 0, 3, false},
    {"focal length fx, px", &CalibrationOutputs::normFocal, 0, 2, true},
    {"focal length fy, px", &CalibrationOutputs::normFocal, 1, 2, true},
    {"principal point cx, px", &CalibrationOutputs::normCenter, 0, 2, true},
    {"principal point cy, px", &CalibrationOutputs::normCenter, 1, 2, true},
    {"distortion k1", &CalibrationOutputs::distortion, 0, 5, false},
    {"distortion k2", &CalibrationOutputs::distortion, 1, 5, false},
    {"horizontal field of view, deg", &CalibrationOutputs::fieldOfView, 0, 3, false},
    {"vertical field of view, deg", &CalibrationOutputs::fieldOfView, 1, 3, false},
}};

std::string TextOf(const LensRow& row, const CalibrationOutputs& outputs) {
  const double scale = row.isShareOfSize ? outputs.imageSize.at(row.index) : 1;
  return Fixed((outputs.*row.list).at(row.index) * scale, row.decimals);
}

void PrintLens(std::ostream& out, const CalibrationOutputs& found,
               const CalibrationOutputs* truth) {
  out << "Lens\n";
  if (truth != nullptr) {
    PrintRow(out, "", {"found", "truth"});
  }
  for (const LensRow& row : kLensRows) {
    std::vector<std::string> values = {TextOf(row, found)};
    if (truth != nullptr) {
      values.push_back(TextOf(row, *truth));
    }
    PrintRow(out, row.label, values);
  }
}

// The transform.

std::vector<std::string> Difference(double mm, double degrees, int decimals) {
  return {Fixed(mm, decimals) + " mm", Fixed(degrees, decimals + 1) + " deg"};
}

void PrintTruthDifference(std::ostream& out, const char* label,
                          const std::vector<double>& transform, const CalibrationOutputs& truth) {
  const auto difference = host::Difference(transform, truth.transformCamTc);
  PrintRow(out, label, Difference(difference.millimetres, difference.degrees, 2));
}

void PrintTransform(std::ostream& out, const std::vector<double>& transform,
                    const CalibrationOutputs* truth) {
  out << "\nTransform_Cam_Tc, from the camera's tracker to the camera\n";
  for (auto row = transform.begin(); row != transform.end(); row += 4) {
    PrintRow(out, row == transform.begin() ? "matrix, metres" : "", {row, row + 4}, 6);
  }
  PrintRow(out, "translation, mm",
           {transform.at(3) * kMmPerMetre, transform.at(7) * kMmPerMetre,
            transform.at(11) * kMmPerMetre},
           2);
  if (truth != nullptr) {
    PrintTruthDifference(out, "differs from the truth by", transform, *truth);
  }
}

// The library's errors, with the limits for an image of this height.

void PrintError(std::ostream& out, const char* label, std::optional<double> error,
                const std::optional<host::Limit>& limit, double scale) {
  if (!error) {
    return;
  }
  std::vector<std::string> values = {Fixed(*error * scale, 2)};
  if (limit) {
    values.push_back(limit->doubt ? Fixed(*limit->doubt * scale, 2) : "");
    values.push_back(Fixed(limit->failure * scale, 2));
  }
  PrintRow(out, label, values);
}

void PrintErrors(std::ostream& out, const LibraryRun& run) {
  const RunRecord& record = run.record;
  const host::Limits limits = host::LimitsOf(run.outputs);
  out << "\nErrors\n";
  PrintRow(out, "", {"found", "doubt above", "fails above"});
  PrintError(out, "lens, px", record.lensError, limits.lensErrorPixels, 1);
  PrintError(out, "mean reprojection, px", record.reprojectionError, limits.reprojectionErrorPixels,
             1);
  PrintError(out, "spread of translations, mm", record.spread, limits.translationSpreadMetres,
             kMmPerMetre);
}

// The photographs.

bool IsHalfByFilter(const host::PhotographList& list) {
  const auto used = static_cast<double>(CountInState(list, PhotographState::kUsed));
  const auto left = static_cast<double>(CountInState(list, PhotographState::kLeftOutByFilter));
  return left > 0.35 * (used + left) && left < 0.65 * (used + left);
}

// Photographs that the filter left out are not named: they are not bad. The cross-check finds bad
// ones.
void PrintPhotographs(std::ostream& out, const host::PhotographList& list) {
  out << "\nPhotographs: " << CountText(list)
      << (IsHalfByFilter(list) ? " (about half is normal)\n" : "\n");
  for (const host::PhotographEntry& entry : list) {
    if (entry.state != PhotographState::kUsed && entry.state != PhotographState::kUnknown &&
        entry.state != PhotographState::kLeftOutByFilter) {
      out << "  not used: " << entry.name << " (" << entry.reason << ")\n";
    }
  }
}

// The cross-check.

void PrintOffset(std::ostream& out, const char* label, const crosscheck::Offset& offset,
                 const Report& report) {
  std::vector<std::string> values;
  if (!std::isnan(offset.p)) {
    values = Difference(offset.offMm, offset.offDegrees, 1);
  }
  values.push_back("  " + host::CertaintyText(offset.p, report.verdict.level == Level::kGood));
  PrintRow(out, label, values);
}

// The largest of the three axes, as the half-width of the 95 % interval.
void PrintUncertainty(std::ostream& out, const char* label, const crosscheck::StandardError& error,
                      double t95) {
  if (!error.translationMm.allFinite() || !error.rotationDegrees.allFinite()) {
    PrintRow(out, label, std::vector<std::string>{"not determined"});
    return;
  }
  auto values =
      Difference(t95 * error.translationMm.maxCoeff(), t95 * error.rotationDegrees.maxCoeff(), 1);
  values.emplace_back("(95 %)");
  PrintRow(out, label, values);
}

std::vector<double> RowByRow(const Eigen::Matrix4d& transform) {
  const Eigen::Matrix<double, 4, 4, Eigen::RowMajor> rows = transform;
  return {rows.data(), rows.data() + rows.size()};
}

void PrintCrossCheck(std::ostream& out, const Report& report, const CalibrationOutputs* truth) {
  const CrossCheck& check = *report.crossCheck;
  out << "\nCross-check: transform and mounting solved together, " << check.used << " of "
      << check.photographs << " photographs\n";
  if (!check.solved) {
    out << "  no solution\n";
    return;
  }
  PrintUncertainty(out, "uncertainty of its transform", check.standardErrorCamTc, check.t95);
  auto scale = Difference(check.scale.mmPerPermille, check.scale.degreesPerPermille, 1);
  scale.push_back("  (" + host::Shortest(100 * check.scale.uncertainty) + " % assumed)");
  PrintRow(out, "each 0.1 % of length adds", scale);
  PrintOnScreen(out, check.onScreen);
  if (truth != nullptr && check.diversity.amplification <= crosscheck::kMostAmplification) {
    PrintTruthDifference(out, "the truth differs by", RowByRow(check.Transform_Cam_Tc), *truth);
  }
  if (check.library) {
    PrintOffset(out, "the result differs by", *check.library, report);
  }
  if (check.nominalMounting) {
    PrintOffset(out,
                report.firstRun ? "the mounting used differs by" : "the stated mounting differs by",
                *check.nominalMounting, report);
  }
}

// The mounting.

// In the axes in which the user states it.
Mounting InAxesOfUser(const Mounting& mounting, const Report& report) {
  return report.inputs.hasReportedMountingAxes ? host::ToReportedAxes(mounting) : mounting;
}

void PrintMounting(std::ostream& out, const std::string& name, const Mounting& mounting) {
  const auto& [x, y, z] = mounting.translationMetres;
  PrintRow(out, name + ", deg", {mounting.rotationDegrees.begin(), mounting.rotationDegrees.end()},
           4);
  PrintRow(out, name + ", mm", {x * kMmPerMetre, y * kMmPerMetre, z * kMmPerMetre}, 2);
}

void PrintMountings(std::ostream& out, const Report& report) {
  out << "\nMounting of the chart's tracker, Rx * Ry * Rz, "
      << (report.inputs.hasReportedMountingAxes ? "in reported axes\n" : "after the axis fix\n");
  PrintRow(out, "", {"X", "Y", "Z"});
  PrintMounting(out, "stated", InAxesOfUser(*report.inputs.mounting, report));
  if (report.crossCheck->mounting) {
    PrintMounting(out, "found", InAxesOfUser(*report.crossCheck->mounting, report));
  }
}

std::string Triple(const std::array<double, 3>& numbers, int decimals) {
  return Fixed(numbers[0], decimals) + ',' + Fixed(numbers[1], decimals) + ',' +
         Fixed(numbers[2], decimals);
}

void PrintMountingOptions(std::ostream& out, const Report& report) {
  const CrossCheck& check = *report.crossCheck;
  if (!check.mounting) {
    return;
  }
  if (const std::optional<Mounting> found = host::MountingToPassOn(report)) {
    const Mounting mounting = InAxesOfUser(*found, report);
    out << "\nMounting found from the shoot, as options for the next run\n"
        << "  --chart-rotation=" << Triple(mounting.rotationDegrees, 4)
        << " --chart-translation=" << Triple(mounting.translationMetres, 6)
        << (report.inputs.hasReportedMountingAxes ? " --mounting-axes=reported" : "") << '\n';
  } else {
    out << "\nMounting found from the shoot: not certain enough to pass on\n";
  }
  PrintUncertainty(out, "uncertainty of the mounting", check.standardErrorTrChart, check.t95);
}

// Findings and verdict.

void PrintFindings(std::ostream& out, const Report& report) {
  if (report.findings.empty()) {
    return;
  }
  out << "\nFindings\n";
  for (const host::Finding& finding : report.findings) {
    out << "  " << Name(finding.severity) << ": " << Text(finding) << '\n';
    if (Advice(finding) != report.verdict.advice) {
      out << "    " << Advice(finding) << '\n';
    }
  }
}

// The text of the worst finding, or the verdict if no finding decides it.
std::string ReasonText(const Report& report) {
  const host::Verdict& verdict = report.verdict;
  return verdict.message == verdict.summary ? verdict.message : Text(report.findings.front());
}

void PrintVerdict(std::ostream& out, const Report& report) {
  const LibraryRun& run = report.run;
  out << '\n';
  if (run.code && !host::IsUsable(run)) {
    out << "Failed, code " << *run.code << ": ";
  }
  out << report.verdict.summary << "\nNext: " << report.verdict.advice << '\n';
  for (const std::string& command : report.verdict.commands) {
    out << "      " << command << '\n';
  }
}

void PrintFiles(std::ostream& out, const Report& report, const std::filesystem::path& page) {
  const LibraryRun& run = report.run;
  if (!page.empty()) {
    out << "Report: " << page.u8string() << '\n';
  }
  if (host::IsConverted(report.inputs.trackerFrame)) {
    out << "Tracker data: poses in " << host::Describe(report.inputs.trackerFrame)
        << ", converted for the library\n";
  }
  if (!run.log.empty()) {
    out << "Log: " << run.log.u8string() << '\n';
  }
  const auto isWritten = [](const std::filesystem::path& image) { return !image.empty(); };
  const auto first = std::find_if(run.images.begin(), run.images.end(), isWritten);
  if (first != run.images.end()) {
    out << "Reprojected images: " << std::count_if(first, run.images.end(), isWritten)
        << ", such as " << first->u8string() << '\n';
  }
}

// One run, and the first of two.

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
    if (report.inputs.mounting && !report.firstRun) {
      PrintMountings(out, report);
    }
  }
  PrintFindings(out, report);
}

void PrintFirstRun(std::ostream& out, const Report& first, const CalibrationOutputs* truth) {
  out << "First run, "
      << (first.mountingIsStated ? "with the stated mounting" : "without a mounting") << '\n';
  if (first.mountingIsStated && !first.run.outputs.transformCamTc.empty()) {
    PrintRun(out, first, truth);
  } else if (first.crossCheck) {
    PrintCrossCheck(out, first, truth);
  }
  out << "\nSecond run, with the mounting found\n\n";
}

}  // namespace

void PrintOnScreen(std::ostream& out, const std::vector<crosscheck::OnScreen>& onScreen) {
  if (onScreen.empty()) {
    return;
  }
  PrintRow(out, "error in the image (95 %)",
           std::vector<std::string>{"middle", "", "worst corner", ""});
  for (const crosscheck::OnScreen& at : onScreen) {
    std::vector<std::string> values;
    for (const crosscheck::PlaceError& error : {at.middle, at.corner}) {
      values.push_back(Fixed(error.pixels, 1) + " px");
      values.push_back(Fixed(error.mm, 1) + " mm");
    }
    PrintRow(out, "  at " + Fixed(at.distanceMetres, 2) + " m", values);
  }
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
  const bool isFromLog = report.inputs.data.empty();  // crosscheck: there is no second run
  if (report.crossCheck && (report.firstRun || isFromLog)) {
    PrintMountingOptions(out, report);
  }
  PrintVerdict(out, report);
  PrintFiles(out, report, page);
}

void PrintSeconds(std::ostream& out, const host::PartSeconds& seconds,
                  const std::optional<double>& page) {
  std::string text;
  for (const auto& [part, time] :
       {std::pair("library", seconds.library), std::pair("cross-check", seconds.crossCheck),
        std::pair("page", page)}) {
    if (time) {
      text += (text.empty() ? "" : ", ") + std::string(part) + ' ' + host::Fixed(*time, 1) + " s";
    }
  }
  out << "Time: " << text << '\n';
}

void PrintWarning(std::ostream& out, const Report& report) {
  const Level level = report.verdict.level;
  const std::string reason = level == Level::kGood ? "" : ReasonText(report);
  for (const host::Finding& finding : report.findings) {
    if (IsOutputError(finding) && Text(finding) != reason) {
      out << "trackedcam: warning: " << Text(finding) << '\n';
    }
  }
  if (level == Level::kGood) {
    return;
  }
  const auto& code = report.run.code;
  const bool hasCode = level == Level::kFailed && code && *code != host::kSuccess;
  out << "trackedcam: " << (level == Level::kDoubtful ? "warning" : "error")
      << (hasCode ? ' ' + std::to_string(*code) : "") << ": " << reason << '\n';
}

int ExitStatus(const Report& report) {
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

}  // namespace trackedcam::app
