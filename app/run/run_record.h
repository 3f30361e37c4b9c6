// What the log of a run tells beside the outputs of the call.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace trackedcam::app {

enum class DropReason { kNotLoaded, kBoardNotFound, kOutlier };

/// "missing or not an image" and the like.
const char* Describe(DropReason reason);

struct Photograph {
  std::string path;                   // as the data file has it
  std::optional<DropReason> dropped;  // nothing for one that is in use
};

struct RunRecord {
  std::string libraryVersion;
  std::vector<Photograph> photographs;      // in the order of the rows
  std::optional<double> lensError;          // of the lens solution, pixels
  std::optional<double> reprojectionError;  // mean of the last pass, pixels
  std::optional<double> spread;             // of the single photographs' translations, metres
  std::string errorMessage;                 // of the last error line, without its code
  std::string lastMessage;
};

std::vector<std::string> UsedPhotographs(const RunRecord& record);

/// True when photographs were loaded and the board was found in none of them.
bool IsBoardNowhere(const RunRecord& record);

}  // namespace trackedcam::app
