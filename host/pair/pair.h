// A continuous recording of both trackers and a film of the chart, as the photographs and rows of a
// shoot.

#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/input/data_file.h"
#include "host/pair/clock.h"
#include "host/pair/film.h"
#include "host/recording/pose_recording.h"

namespace trackedcam::host {

constexpr int kLeastPairedPhotographs = 12;  // fewer are no calibration

struct PairInputs {
  Film film;
  PoseRecording camera;                // of the tracker on the camera
  std::optional<PoseRecording> chart;  // of the one on the chart; nothing: the chart did not move
  std::array<int, 2> board = {};       // inner corners: columns, rows
  double squareMetres = 0;
  std::size_t photographs = 40;  // at most
};

enum class FrameState {
  kNotSearched,  // close to another one
  kUnreadable,   // no picture, or of another size than the others
  kNoBoard,
  kNoPoses,    // the recording has a gap there, or has not begun or has ended
  kNotChosen,  // others show more, or moved less
  kChosen,
};

/// notSearched, unreadable, ...
const char* Name(FrameState state);

/// How much of a stream could not be used.
struct StreamQuality {
  std::size_t poses = 0;
  std::size_t left = 0;  // of them, after those below
  std::size_t repeatedStamps = 0, fallingStamps = 0, unreadable = 0;
  std::size_t gaps = 0, jumps = 0, frozenPoses = 0;
};

struct PairReport {
  Clock clock;               // the poses' from their first stamp on
  double firstStamp = 0;     // of the camera's tracker
  double correlation = 0;    // of the speeds of rotation
  std::size_t forDelay = 0;  // frames of which the delay was found
  std::array<int, 2> imageSize = {};
  StreamQuality camera;
  std::optional<StreamQuality> chart;
  std::vector<FrameState> frames;  // one for each of the film
  /// In order of time; the names are those of the frames.
  std::vector<RecordedRow> rows;
  std::size_t averaged = 0;  // rows with a pose that is the mean over a time of stillness

  /// What the clock of the poses shows when that of the film shows 0; seconds.
  double DelaySeconds() const { return firstStamp + clock.delay; }
};

/// How far the search is: frames done, of how many.
using PairProgress = std::function<void(std::size_t done, std::size_t all)>;

/// The library's stages write to standard output.
/// @throws InputError if the recording cannot be paired; the message says why and what to record.
PairReport Pair(const PairInputs& inputs, const PairProgress& progress);

}  // namespace trackedcam::host
