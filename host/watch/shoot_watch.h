// A shoot while it is photographed: what each new row adds, and whether it is enough.

#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/result.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/run/library_stages.h"

namespace trackedcam::host {

enum class WatchedState {
  kAwaited,     // not there yet, or not complete
  kBoardFound,  // it counts
  kNoBoard,
  kUnreadable,  // no photograph that a calibration would be given
  kOtherSize,   // than the first one
  kNoPose,      // of one of the trackers in its row
};

/// One row of the data file.
struct WatchedPhotograph {
  std::string name;
  WatchedState state = WatchedState::kAwaited;
  bool isSharp = true;
  std::optional<std::size_t> checked;  // its index in CrossCheck::perPhotograph
};

struct ShootProgress {
  std::vector<WatchedPhotograph> photographs;
  std::size_t withBoard = 0;
  /// Of all photographs so far; nothing while they are too few, and where they contradict each
  /// other without end.
  std::optional<crosscheck::CrossCheck> check;
  std::optional<Accuracy> known;           // 95 %, each the largest of three axes
  std::optional<std::size_t> stillNeeded;  // photographs like these; 0 if it is enough
};

class ShootWatch {
 public:
  /// @param until How accurately the transform must be known, with 95 %.
  /// @throws InputError for impossible inputs.
  ShootWatch(const Inputs& inputs, const Accuracy& until);

  /// Reads the rows that are complete, searches boards in photographs that are new, and solves all
  /// of them together. The library's stages write to standard output.
  /// @return The photographs of which more is known than before, in order; often none.
  /// @throws InputError if the data file cannot be read.
  std::vector<std::size_t> Update();

  const ShootProgress& Progress() const { return progress_; }
  const Accuracy& Until() const { return until_; }

 private:
  // What the file of a photograph says, which is searched once.
  struct Searched {
    WatchedState state = WatchedState::kAwaited;
    bool isSharp = true;
    BoardCorners corners;
  };

  Searched Search(const std::string& photograph);
  void Solve(const std::vector<DataRow>& rows);

  Inputs inputs_;
  Accuracy until_;
  std::string content_;  // of the data file at the last update
  std::map<std::string, Searched> searched_;
  std::optional<std::array<int, 2>> imageSize_;
  ShootProgress progress_;
};

}  // namespace trackedcam::host
