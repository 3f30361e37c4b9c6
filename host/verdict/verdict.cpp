#include "host/verdict/verdict.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "host/findings/finding_text.h"

namespace trackedcam::host {
namespace {

// The library's own limits, which its interface does not give; a test compares them with its
// sources.
constexpr double kLensErrorLimit = 1.5;            // pixels
constexpr double kNormErrorWarning = 0.011111111;  // of the reprojection error / image height
constexpr double kNormErrorFailure = 0.016666668;
constexpr double kSpreadWarning = 0.01;  // metres
constexpr double kSpreadFailure = 0.015;
constexpr double kRotationLimitDeg = 0.5;  // of the axis of one photograph

constexpr const char* kReport = "This should not happen: keep the log and report it.";

struct CodeText {
  const char* message;
  const char* advice;
};

const std::map<int, CodeText> kCodes = {
    {kSuccess,
     {"Success: the calibration is good", "Export the lens and Transform_Cam_Tc to your engine."}},
    {kNewShootRecommended,
     {"Usable, but a new calibration is recommended.",
      "Use it for now and shoot again when you can: camera and chart at rest in each photograph, "
      "the chart at many angles and in all parts of the image."}},
    {1,
     {"The tracker data file cannot be opened.",
      "Check the path of the data file and the permissions of the file."}},
    {2,
     {"The numbers of rows and photographs differ.",
      "Check that the data file has one row for each photograph."}},
    {15,
     {"A row of the tracker data file has the wrong format.",
      "Correct the data file: 16 fields in each row, and no blank lines; the log shows where "
      "reading stopped."}},
    {kTooFewPhotographs,
     {"Fewer than 12 photographs can be used.",
      "Photograph the whole chart, sharp and evenly lit, at least 12 times, and check the number "
      "of the board's inner corners."}},
    {5,
     {"The lens cannot be solved: its reprojection error exceeds 1.5 pixels.",
      "Check the number of the board's inner corners, keep zoom and focus fixed, use a flat chart "
      "and leave out blurred photographs."}},
    {6,
     {"The photographs disagree by more than 15 mm about the position of the camera's tracker.",
      "Check that both trackers are rigidly mounted, that the stated mounting and the square size "
      "are right, and whether the tracker quaternions must be inverted."}},
    {7,
     {"The number of expected records is 0, so no row was used.",
      "Leave out the number of expected records, or give the number of recorded rows."}},
    {8, {"The lists of poses differ in length.", kReport}},
    {9, {"A rotation axis has the wrong size.", kReport}},
    {10, {"A rotation axis has the wrong size.", kReport}},
    {11, {"The lists differ in length after outliers were removed.", kReport}},
    {12, {"The lists of poses of the chart differ in length.", kReport}},
    {13,
     {"Fewer than two photographs are left after outliers were removed.",
      "Check the stated mounting, whether the tracker quaternions must be inverted, and that the "
      "tracker data belongs to these photographs."}},
    {14,
     {"The reprojection error exceeds 18 pixels at 1080 rows.",
      "Check the stated mounting, the square size and whether the tracker quaternions must be "
      "inverted; shoot with camera and chart at rest."}},
    {-1, {"A value of the mounting is missing.", "State three angles and three lengths."}},
};

Verdict VerdictWith(Level level, const std::string& message, const std::string& advice) {
  return {level, message, message, advice};
}

Verdict VerdictOfLibrary(const LibraryRun& run) {
  if (!run.code) {
    const std::string where = run.stoppedAt.empty() ? "" : " at " + run.stoppedAt;
    return VerdictWith(Level::kFailed, "The library stopped" + where + ": " + run.exception + '.',
                       kReport);
  }
  if (IsUsable(*run.code) && !IsUsable(run)) {
    return VerdictWith(Level::kFailed, "The transform is not a number.",
                       "Correct the data file: a pose of a tracker is nan, inf or far too large.");
  }
  return VerdictOf(*run.code);
}

// The number of photographs belongs to every result.
std::string FromPhotographs(const PhotographList& list) {
  if (!IsCounted(list)) {
    return ".";
  }
  return ", from " + std::to_string(CountInState(list, PhotographState::kUsed)) + " of " +
         std::to_string(list.size()) + " photographs.";
}

void AddFinding(Verdict& verdict, const Finding& finding) {
  verdict.message = verdict.summary + ' ' + Text(finding);
  verdict.advice = Advice(finding);
}

// Instead of a second run that would end with too few.
void AdviseMorePhotographs(Verdict& verdict, const std::vector<Finding>& findings) {
  for (const Finding& finding : findings) {
    if (std::holds_alternative<TooFewAgree>(finding.kind)) {
      verdict.advice = Advice(finding);
      verdict.option.clear();
    }
  }
}

}  // namespace

Limits LimitsOf(const CalibrationOutputs& outputs) {
  Limits limits = {{std::nullopt, kLensErrorLimit},
                   std::nullopt,
                   {kSpreadWarning, kSpreadFailure},
                   kRotationLimitDeg};
  if (outputs.imageSize.size() == 2) {
    const double height = outputs.imageSize[1];
    limits.reprojectionErrorPixels = Limit{kNormErrorWarning * height, kNormErrorFailure * height};
  }
  return limits;
}

const char* Name(Level level) {
  switch (level) {
    case Level::kGood:
      return "good";
    case Level::kDoubtful:
      return "doubt";
    case Level::kWrong:
      return "wrong";
    case Level::kFailed:
      return "failed";
  }
  return "";
}

Verdict VerdictOf(int code) {
  const auto found = kCodes.find(code);
  if (found == kCodes.end()) {
    return VerdictWith(Level::kFailed, "Unknown result code.", kReport);
  }
  const Level level = code == kSuccess               ? Level::kGood
                      : code == kNewShootRecommended ? Level::kDoubtful
                                                     : Level::kFailed;
  return VerdictWith(level, found->second.message, found->second.advice);
}

bool IsUsable(int code) {
  return code == kSuccess || code == kNewShootRecommended;
}

bool IsUsable(const LibraryRun& run) {
  const std::vector<double>& transform = run.outputs.transformCamTc;
  return run.code && IsUsable(*run.code) &&
         std::all_of(transform.begin(), transform.end(),
                     [](double number) { return std::isfinite(number); });
}

Verdict VerdictOf(const LibraryRun& run, const PhotographList& photographs,
                  const std::vector<Finding>& findings) {
  Verdict verdict = VerdictOfLibrary(run);
  if (verdict.level == Level::kGood) {
    verdict.summary += FromPhotographs(photographs);
    verdict.message = verdict.summary;
  }
  if (findings.empty() || findings.front().severity == Severity::kNote) {
    return verdict;
  }
  const Finding& worst = findings.front();
  const bool isError = worst.severity == Severity::kError;
  if (verdict.level == Level::kFailed && !isError) {
    return verdict;
  }
  if (verdict.level != Level::kFailed) {
    verdict.level = isError ? Level::kWrong : Level::kDoubtful;
    const bool isUnchecked = std::any_of(findings.begin(), findings.end(), IsUnchecked);
    verdict.summary = std::string("Calibrated, but the result ") +
                      (isError       ? "is wrong"
                       : isUnchecked ? "cannot be checked"
                                     : "is doubtful") +
                      FromPhotographs(photographs);
  }
  AddFinding(verdict, worst);
  verdict.option = OptionFor(worst);
  AdviseMorePhotographs(verdict, findings);
  return verdict;
}

Verdict VerdictWithoutMounting(const LibraryRun& run, const std::vector<Finding>& findings) {
  // The zeros lead to a result or to one of the last three codes.
  const std::set<int> codes = {kSuccess, kNewShootRecommended, 6, 13, 14};
  Verdict verdict = VerdictWith(
      Level::kFailed,
      "The mounting of the chart's tracker was not stated, and cannot be found from this shoot.",
      "State the mounting, or shoot more photographs.");
  if (!findings.empty() && findings.front().severity != Severity::kNote) {
    AddFinding(verdict, findings.front());
    verdict.option = CanRefine(findings.front()) ? "" : OptionFor(findings.front());
    AdviseMorePhotographs(verdict, findings);
  } else if (!run.code || codes.count(*run.code) == 0) {
    const Verdict ofRun = VerdictOfLibrary(run);  // such as too few photographs
    verdict.summary += ' ' + ofRun.message;
    verdict.message = verdict.summary;
    verdict.advice = ofRun.advice;
  }
  return verdict;
}

}  // namespace trackedcam::host
