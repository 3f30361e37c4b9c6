#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "crosscheck/observations.h"
#include "host/input/reported_axes.h"

namespace trackedcam::host {

/// What was asked for cannot be done as it was asked; the message says what to change.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a calibration is told.

using crosscheck::Mounting;

constexpr int kLeastInnerCorners = 3;   // along each side of a board
constexpr int kMostInnerCorners = 100;  // a search for thousands takes minutes, their log a disk

/// Paths are absolute.
struct Inputs {
  std::filesystem::path data;           // a row for each photograph
  TrackerFrame trackerFrame;            // in which axes and unit it holds the poses
  std::filesystem::path workingFolder;  // where relative paths of photographs begin
  std::array<double, 2> sensorMm = {};
  std::array<int, 2> board = {};  // inner corners: columns, rows
  double squareMetres = 0;
  std::optional<Mounting> mounting;      // after the axis fix; nothing: to be found from the shoot
  bool hasReportedMountingAxes = false;  // how the user counts it, and wants it told
  bool invertTrackerQuaternions = false;
  std::optional<int> expectedRecords;  // nothing: as many as the file has
  std::filesystem::path logFolder;     // each run gets a folder of its own in it
  bool refineMounting = false;  // calibrate again where the cross-check finds another mounting
};

/// Of figures that no parser has looked at.
/// @throws InputError for the first that cannot be, such as a board of two corners or a square of
///         30 metres; it says what the figure should be.
void RequirePossible(const Inputs& inputs);

}  // namespace trackedcam::host
