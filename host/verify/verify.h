// Whether a calibration still holds: its result file and a few new photographs.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/verify.h"
#include "host/findings/finding.h"
#include "host/input/inputs.h"
#include "host/input/shoot_data.h"
#include "host/photograph_list.h"
#include "host/result/stored_calibration.h"

namespace trackedcam::host {

/// What is not stated is as in the calibration. Paths are absolute.
struct VerifyInputs {
  std::filesystem::path result;
  std::filesystem::path data;
  std::filesystem::path workingFolder;  // base of relative photograph paths
  const TrackerAxes* trackerAxes = nullptr;
  const TrackerUnit* trackerUnit = nullptr;
  std::optional<bool> hasQuaternionsXyzw;
  std::optional<bool> invertTrackerQuaternions;
  std::optional<std::array<int, 2>> board;
  std::optional<double> squareMetres;
  bool chartRemounted = false;
  std::vector<double> atMetres;  // distances for errors in the image; empty: the usual ones
};

struct VerifyReport {
  VerifyInputs inputs;
  StoredCalibration stored;
  std::vector<Finding> findings;  // about data file and photographs' files, the worst first
  /// One entry for each row. `checked` is the index in Verification::photographs.
  PhotographList photographs;
  std::vector<std::vector<Eigen::Vector2d>> corners;  // of those that were checked, pixels
  crosscheck::Verification verification;
};

/// The rows are those of inputs.data in the axes of the calibration.
/// @throws InputError for a result file that cannot be verified, for a data file or photographs
///         that cannot be read, and for an image size, a board, squares or axes other than the
///         result's: it names both.
VerifyReport Verify(const VerifyInputs& inputs);

/// The photographs that the data file names, before anything is done.
/// @throws InputError
std::vector<std::filesystem::path> PhotographsOf(const VerifyInputs& inputs);

/// 0 if the calibration holds, 3 if something changed, 1 if that cannot be told.
int StatusOf(crosscheck::Answer answer);

}  // namespace trackedcam::host
