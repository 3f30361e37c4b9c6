// What the log of a run tells.

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

enum class DropReason { kNotLoaded, kBoardNotFound, kOutlier };

/// "missing or not an image" and the like.
const char* Describe(DropReason reason);

/// What was read and found of a photograph in which the board was seen.
struct RawData {
  std::array<double, 15> row = {};             // as the library read it: the time, then Tc and Tr,
                                               // each position (metres) and quaternion w, x, y, z
  std::vector<std::array<double, 2>> corners;  // pixels, row by row of the board
};

struct Photograph {
  std::string path;                   // as the data file has it
  std::optional<DropReason> dropped;  // nothing for one that is in use
  std::optional<RawData> raw;
};

struct BoardRecord {
  int columns = 0;  // of inner corners
  int rows = 0;
  double square = 0;  // metres
};

/// Pixels of the whole photograph; the distortion's k1 and k2.
struct LensRecord {
  double width = 0, height = 0;
  double fx = 0, fy = 0, cx = 0, cy = 0;
  double k1 = 0, k2 = 0;
  double horizontalFieldOfView = 0, verticalFieldOfView = 0;  // degrees
  double focalLengthMm = 0;
};

struct RunRecord {
  std::string time;  // local, of the first line: "2026-11-21 14:05:09"
  std::string libraryVersion;
  bool invertsQuaternions = false;
  std::optional<BoardRecord> board;
  std::vector<Photograph> photographs;      // in the order of the rows
  std::optional<LensRecord> lens;           // when the lens was solved and accepted
  std::optional<double> lensError;          // of the lens solution, pixels
  std::optional<double> reprojectionError;  // mean of the last pass, pixels
  std::optional<double> spread;             // of the single photographs' translations, metres
  /// Of the second solve, 16 numbers row by row; empty when the run did not get there.
  std::vector<double> transformCamTc;
  std::string errorMessage;  // of the last error line, without its code
  std::optional<int> errorCode;
  std::string lastMessage;
  bool isSuccessful = false;  // the log's last line says so
};

/// What the library handed out, as far as the log tells it, which is to six decimals.
CalibrationOutputs OutputsOf(const RunRecord& record);

std::vector<std::string> UsedPhotographs(const RunRecord& record);

/// True when photographs were loaded and the board was found in none of them.
bool IsBoardNowhere(const RunRecord& record);

}  // namespace trackedcam::host
