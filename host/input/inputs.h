// The inputs of a calibration.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/observations.h"
#include "host/input/input_error.h"
#include "host/input/reported_axes.h"

namespace trackedcam::host {

using crosscheck::Accuracy;
using crosscheck::Mounting;

constexpr int kLeastInnerCorners = 3;   // along each side of a board
constexpr int kMostInnerCorners = 100;  // searching for thousands takes minutes and fills a disk

constexpr double kMostScaleUncertainty = 0.1;

/// Paths are absolute.
struct Inputs {
  std::filesystem::path data;                   // one row for each photograph
  std::vector<std::filesystem::path> moreData;  // that continue it, in the order of the shoot
  std::vector<std::string> exclude;     // photographs that the user leaves out, by FindExcluded
  TrackerFrame trackerFrame;            // axes and unit of its poses
  std::filesystem::path workingFolder;  // base of relative photograph paths
  std::array<double, 2> sensorMm = {};  // width, height
  std::array<int, 2> board = {};        // inner corners: columns, rows
  double squareMetres = 0;
  std::optional<Mounting> mounting;      // after the axis fix; nothing: to be found from the shoot
  bool hasReportedMountingAxes = false;  // the user states the mounting in reported axes
  bool invertTrackerQuaternions = false;
  std::optional<int> expectedRecords;  // nothing: as many as the file has
  std::filesystem::path logFolder;     // each run creates a folder in it
  bool refineMounting = false;         // run again if the cross-check finds another mounting
  Accuracy goodEnough;                 // a result that may be farther off is in doubt
  double scaleUncertainty = 0.001;     // of the squares against the trackers' lengths, a fraction
  std::vector<double> atMetres;        // distances for errors in the image; empty: the usual ones
};

/// Checks values that no parser has checked.
/// @throws InputError for the first impossible value, such as a board of two corners or a square of
///         30 metres; it says which values are possible.
void RequirePossible(const Inputs& inputs);
void RequirePossible(const Accuracy& goodEnough, double scaleUncertainty,
                     const std::vector<double>& atMetres);

}  // namespace trackedcam::host
