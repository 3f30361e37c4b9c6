#include "host/verdict/verdict.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace trackedcam::host {
namespace {

constexpr const char* kReport = "This should not happen: keep the log and report it.";

const std::map<int, Verdict> kVerdicts = {
    {kSuccess,
     {"Success: the calibration is good.", "Hand the lens and Transform_Cam_Tc to the host."}},
    {kNewShootRecommended,
     {"Usable, but a new calibration is recommended.",
      "Use it for now and shoot again when you can: camera and chart at rest in each photograph, "
      "the chart at many angles and in all parts of the picture."}},
    {1,
     {"The tracker data file cannot be opened.", "Check --data and the permissions of the file."}},
    {2,
     {"Rows and photographs differ in number.",
      "Check that the data file has one row for each photograph."}},
    {15,
     {"A row of the tracker data file has the wrong form.",
      "Correct the data file: 16 fields in each row, and no blank lines. The log says where it "
      "stopped."}},
    {kTooFewPhotographs,
     {"Fewer than 12 photographs can be used.",
      "Photograph the whole chart, sharp and evenly lit, at least 12 times, and check --board."}},
    {5,
     {"The lens cannot be solved: its reprojection error exceeds 1.5 pixels.",
      "Check --board, keep zoom and focus fixed, use a flat chart and leave out blurred "
      "photographs."}},
    {6,
     {"The single photographs disagree by more than 15 mm about the camera's tracker.",
      "Check that both trackers are rigidly mounted, that --chart-rotation, --chart-translation "
      "and --square are right, and whether --invert-tracker-quaternions is needed."}},
    {7,
     {"No rows of the data file were announced.",
      "Leave out --expected-records, or give the number of rows that were recorded."}},
    {8, {"The lists of poses differ in length.", kReport}},
    {9, {"A rotation axis has the wrong size.", kReport}},
    {10, {"A rotation axis has the wrong size.", kReport}},
    {11, {"The lists differ in length after outliers were removed.", kReport}},
    {12, {"The lists of poses of the chart differ in length.", kReport}},
    {13,
     {"Fewer than two photographs are left when outliers are removed.",
      "Check --chart-rotation, --chart-translation, whether --invert-tracker-quaternions is "
      "needed, "
      "and that the tracker data belongs to these photographs."}},
    {14,
     {"The reprojection error exceeds 18 pixels at 1080 rows.",
      "Check --chart-rotation, --chart-translation, --square and whether "
      "--invert-tracker-quaternions is needed; shoot with camera and chart at rest."}},
    {-1,
     {"A mounting figure is missing.",
      "Give three numbers to --chart-rotation and --chart-translation."}},
};

}  // namespace

Verdict VerdictOf(int code) {
  const auto verdict = kVerdicts.find(code);
  return verdict == kVerdicts.end() ? Verdict{"Unknown result.", kReport} : verdict->second;
}

bool IsUsable(int code) {
  return code == kSuccess || code == kNewShootRecommended;
}

Verdict VerdictOf(const LibraryRun& run) {
  if (!run.code) {
    return {"The library stopped: " + run.exception + '.', kReport};
  }
  return IsUsable(*run.code) && !IsUsable(run)
             ? Verdict{"The transform is not a number.",
                       "Correct the data file: a pose of a tracker is nan, inf or far too large."}
             : VerdictOf(*run.code);
}

bool IsUsable(const LibraryRun& run) {
  const std::vector<double>& transform = run.outputs.transformCamTc;
  return run.code && IsUsable(*run.code) &&
         std::all_of(transform.begin(), transform.end(),
                     [](double number) { return std::isfinite(number); });
}

}  // namespace trackedcam::host
