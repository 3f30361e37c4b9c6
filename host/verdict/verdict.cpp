#include "host/verdict/verdict.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace trackedcam::host {
namespace {

// The library's own figures, which its interface does not tell; a test compares them with its
// sources.
constexpr double kLensErrorLimit = 1.5;            // pixels
constexpr double kNormErrorWarning = 0.011111111;  // of the reprojection error / image height
constexpr double kNormErrorFailure = 0.016666668;
constexpr double kSpreadWarning = 0.01;  // metres
constexpr double kSpreadFailure = 0.015;

constexpr const char* kReport = "This should not happen: keep the log and report it.";

struct WordsOfCode {
  const char* words;
  const char* advice;
};

const std::map<int, WordsOfCode> kWords = {
    {kSuccess,
     {"Success: the calibration is good", "Hand the lens and Transform_Cam_Tc to the host."}},
    {kNewShootRecommended,
     {"Usable, but a new calibration is recommended.",
      "Use it for now and shoot again when you can: camera and chart at rest in each photograph, "
      "the chart at many angles and in all parts of the picture."}},
    {1,
     {"The tracker data file cannot be opened.",
      "Check the path of the data file and the permissions of the file."}},
    {2,
     {"Rows and photographs differ in number.",
      "Check that the data file has one row for each photograph."}},
    {15,
     {"A row of the tracker data file has the wrong form.",
      "Correct the data file: 16 fields in each row, and no blank lines. The log says where it "
      "stopped."}},
    {kTooFewPhotographs,
     {"Fewer than 12 photographs can be used.",
      "Photograph the whole chart, sharp and evenly lit, at least 12 times, and check the number "
      "of the board's inner corners."}},
    {5,
     {"The lens cannot be solved: its reprojection error exceeds 1.5 pixels.",
      "Check the number of the board's inner corners, keep zoom and focus fixed, use a flat chart "
      "and leave out blurred photographs."}},
    {6,
     {"The single photographs disagree by more than 15 mm about the camera's tracker.",
      "Check that both trackers are rigidly mounted, that the stated mounting and the square are "
      "right, and whether the tracker quaternions must be inverted."}},
    {7,
     {"No rows of the data file were announced.",
      "Leave out the number of expected records, or give that of the rows that were recorded."}},
    {8, {"The lists of poses differ in length.", kReport}},
    {9, {"A rotation axis has the wrong size.", kReport}},
    {10, {"A rotation axis has the wrong size.", kReport}},
    {11, {"The lists differ in length after outliers were removed.", kReport}},
    {12, {"The lists of poses of the chart differ in length.", kReport}},
    {13,
     {"Fewer than two photographs are left when outliers are removed.",
      "Check the stated mounting, whether the tracker quaternions must be inverted, and that the "
      "tracker data belongs to these photographs."}},
    {14,
     {"The reprojection error exceeds 18 pixels at 1080 rows.",
      "Check the stated mounting, the square and whether the tracker quaternions must be inverted; "
      "shoot with camera and chart at rest."}},
    {-1, {"A mounting figure is missing.", "State three angles and three lengths."}},
};

Verdict VerdictOfLibrary(const LibraryRun& run) {
  if (!run.code) {
    const std::string where = run.stoppedAt.empty() ? "" : " at " + run.stoppedAt;
    return {Level::kFailed, "The library stopped" + where + ": " + run.exception + '.', kReport};
  }
  if (IsUsable(*run.code) && !IsUsable(run)) {
    return {Level::kFailed, "The transform is not a number.",
            "Correct the data file: a pose of a tracker is nan, inf or far too large."};
  }
  return VerdictOf(*run.code);
}

// Never without saying from how many.
std::string FromPhotographs(const RunRecord& record) {
  return ", from " + std::to_string(UsedPhotographs(record).size()) + " of " +
         std::to_string(record.photographs.size()) + " photographs.";
}

NextStep NextStepFor(const Finding& finding) {
  const bool canRefine =
      finding.id == "mountingOff" || finding.id == "badPhotographs" || finding.id == "libraryApart";
  return canRefine ? NextStep::kRefineMounting : NextStep::kNone;
}

}  // namespace

Limits LimitsOf(const CalibrationOutputs& outputs) {
  Limits limits = {{std::nullopt, kLensErrorLimit}, std::nullopt, {kSpreadWarning, kSpreadFailure}};
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
  const auto found = kWords.find(code);
  if (found == kWords.end()) {
    return {Level::kFailed, "Unknown result.", kReport};
  }
  const Level level = code == kSuccess               ? Level::kGood
                      : code == kNewShootRecommended ? Level::kDoubtful
                                                     : Level::kFailed;
  return {level, found->second.words, found->second.advice};
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

Verdict VerdictOf(const LibraryRun& run, const std::vector<Finding>& findings) {
  Verdict verdict = VerdictOfLibrary(run);
  if (verdict.level == Level::kGood) {
    verdict.words += FromPhotographs(run.record);
  }
  if (findings.empty() || findings.front().severity == Severity::kNote) {
    return verdict;
  }
  const Finding& worst = findings.front();
  const bool isError = worst.severity == Severity::kError;
  if (verdict.level != Level::kFailed) {
    verdict.level = isError ? Level::kWrong : Level::kDoubtful;
    verdict.words = (isError ? "Calibrated, but the result is wrong" : "Calibrated, with a doubt") +
                    FromPhotographs(run.record) + ' ' + worst.text;
    verdict.advice = worst.advice;
    verdict.nextStep = NextStepFor(worst);
  } else if (isError) {
    verdict.words += ' ' + worst.text;
    verdict.advice = worst.advice;
    verdict.nextStep = NextStepFor(worst);
  }
  return verdict;
}

}  // namespace trackedcam::host
