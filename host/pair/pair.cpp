#include "host/pair/pair.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "crosscheck/chart_pose.h"
#include "host/input/input_error.h"
#include "host/input/inputs.h"
#include "host/pair/board_search.h"
#include "host/pair/frame_choice.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using crosscheck::Observations;
using crosscheck::Pose;

constexpr double kSearchedPerSecond = 15;  // so that motion is seen from one frame to the next
constexpr std::size_t kLeastWithBoard = 20;
constexpr std::size_t kMostForLens = 60;
constexpr double kApartForDelay = 0.3;  // seconds, so that no sample of a tracker counts twice
constexpr std::size_t kMostForDelay = 150;
constexpr double kLeastCorrelation = 0.5;
constexpr double kClearly = 0.05;        // above the correlation at another delay
constexpr double kMostDelayHalf = 0.01;  // seconds
constexpr double kUsualNoiseMm = 1;      // of trackers; above it, the files may be swapped
constexpr const char* kNod = "nod the camera three times at the beginning";

// One candidate for a photograph in each such time: where camera and chart moved least.
constexpr double kCandidateSeconds = 0.5;
// What a picture averages over, about.
constexpr double kExposure = 0.005;
struct Streams {
  PoseStream camera;
  PoseStream chart;
};

Streams StreamsOf(const PairInputs& inputs) {
  const double origin = inputs.camera.firstStamp;
  return {PoseStream(inputs.camera, origin),
          inputs.chart ? PoseStream(*inputs.chart, origin) : PoseStream(Pose(Pose::Identity()))};
}

StreamQuality QualityOf(const PoseRecording& recording, const PoseStream& stream) {
  StreamQuality quality;
  quality.poses = recording.poses.size();
  quality.left = quality.poses - stream.frozenPoses;
  quality.repeatedStamps = recording.repeatedStamps;
  quality.fallingStamps = recording.fallingStamps;
  quality.unreadable = recording.unreadable;
  quality.gaps = stream.gaps;
  quality.jumps = stream.jumps;
  quality.frozenPoses = stream.frozenPoses;
  return quality;
}

// Of the frames that are searched, their index in the film.
std::vector<std::size_t> ToSearch(const Film& film) {
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < film.frames.size(); ++i) {
    constexpr double kTolerance = 1e-3;
    if (indices.empty() || film.frames[i].seconds - film.frames[indices.back()].seconds >=
                               1 / kSearchedPerSecond - kTolerance) {
      indices.push_back(i);
    }
  }
  return indices;
}

std::filesystem::path FileOf(const Film& film, std::size_t index) {
  return film.folder / std::filesystem::u8path(film.frames[index].name);
}

// A frame with the board, and its index in the film.
struct Found {
  std::size_t index;
  SeenFrame seen;
};

std::array<int, 2> CommonSize(const std::vector<SearchedFrame>& searched) {
  std::map<std::array<int, 2>, std::size_t> counts;
  for (const SearchedFrame& frame : searched) {
    if (!frame.corners.empty()) {
      ++counts[frame.size];
    }
  }
  const auto most =
      std::max_element(counts.begin(), counts.end(),
                       [](const auto& a, const auto& b) { return a.second < b.second; });
  return most == counts.end() ? std::array<int, 2>{} : most->first;
}

// Evenly over all, at most so many.
template <class Value>
std::vector<Value> Some(const std::vector<Value>& all, std::size_t most) {
  const std::size_t step = all.size() / most + (all.size() % most != 0 ? 1 : 0);
  std::vector<Value> some;
  for (std::size_t i = 0; i < all.size(); i += std::max<std::size_t>(step, 1)) {
    some.push_back(all[i]);
  }
  return some;
}

[[noreturn]] void ThrowWithoutBoard(std::size_t with, std::size_t searched) {
  throw InputError("the board was found in " + std::to_string(with) + " of " +
                   std::to_string(searched) +
                   " frames: name its inner corners with --board, and film it so that the whole "
                   "chart is seen, sharp and well lit");
}

// Searching a board that is not there takes longest.
void RequireBoardInSome(const PairInputs& inputs, const std::vector<std::filesystem::path>& files) {
  constexpr std::size_t kTried = 40;
  const std::vector<std::filesystem::path> some = Some(files, kTried);
  const std::vector<SearchedFrame> searched = SearchBoards(some, inputs.board, [](std::size_t) {});
  if (std::all_of(searched.begin(), searched.end(),
                  [](const SearchedFrame& frame) { return frame.corners.empty(); })) {
    ThrowWithoutBoard(0, some.size());
  }
}

std::vector<Found> SearchFilm(const PairInputs& inputs, const PairProgress& progress,
                              PairReport& report) {
  const std::vector<std::size_t> indices = ToSearch(inputs.film);
  std::vector<std::filesystem::path> files;
  files.reserve(indices.size());
  for (const std::size_t index : indices) {
    files.push_back(FileOf(inputs.film, index));
  }
  RequireBoardInSome(inputs, files);
  std::vector<SearchedFrame> searched =
      SearchBoards(files, inputs.board, [&](std::size_t done) { progress(done, indices.size()); });
  report.imageSize = CommonSize(searched);
  std::vector<Found> found;
  for (std::size_t i = 0; i < indices.size(); ++i) {
    FrameState& state = report.frames[indices[i]];
    const bool isReadable = searched[i].size[0] > 0 &&
                            (report.imageSize[0] == 0 || searched[i].size == report.imageSize);
    state = isReadable ? FrameState::kNoBoard : FrameState::kUnreadable;
    if (isReadable && !searched[i].corners.empty()) {
      state = FrameState::kNotChosen;
      found.push_back({indices[i],
                       {inputs.film.frames[indices[i]].seconds, std::move(searched[i].corners),
                        Pose::Identity()}});
    }
  }
  if (found.size() < kLeastWithBoard) {
    ThrowWithoutBoard(found.size(), indices.size());
  }
  return found;
}

// Board and lens; without photographs.
Observations BoardOf(const PairInputs& inputs, const std::vector<BoardCorners>& corners,
                     const std::array<int, 2>& imageSize) {
  const crosscheck::Board board = {inputs.board[0], inputs.board[1], inputs.squareMetres, {}};
  const auto lens = SolveLens(Some(corners, kMostForLens), board, imageSize);
  if (!lens) {
    throw InputError(
        "the frames do not determine the lens: tilt and turn the chart while filming, "
        "near and far");
  }
  Observations observations;
  observations.boardColumns = board.columns;
  observations.boardRows = board.rows;
  observations.square = board.square;
  observations.lens = *lens;
  return observations;
}

// Those whose corners are no image of the board are left out.
void AddChartPoses(const Observations& board, std::vector<Found>& found) {
  const std::vector<Eigen::Vector3d> points =
      crosscheck::Board{board.boardColumns, board.boardRows, board.square, {}}.Points();
  std::vector<Found> posed;
  for (Found& frame : found) {
    if (const auto pose = crosscheck::FindChartPose(board.lens, points, frame.seen.corners)) {
      frame.seen.Transform_Cam_Chart = pose->Transform_Cam_Chart;
      posed.push_back(std::move(frame));
    }
  }
  found = std::move(posed);
}

std::vector<SeenFrame> SeenOf(const std::vector<Found>& found) {
  std::vector<SeenFrame> seen;
  seen.reserve(found.size());
  for (const Found& frame : found) {
    seen.push_back(frame.seen);
  }
  return seen;
}

std::string Span(double first, double last) {
  return Fixed(first, 2) + " to " + Fixed(last, 2) + " s";
}

CoarseDelay FindCoarse(const PairInputs& inputs, const std::vector<Found>& found,
                       const Streams& streams) {
  const auto coarse = FindCoarseDelay(SeenOf(found), streams.camera, streams.chart);
  if (!coarse) {
    const double first = std::max(streams.camera.First(), streams.chart.First());
    const double last = std::min(streams.camera.Last(), streams.chart.Last());
    const double origin = inputs.camera.firstStamp;
    const std::vector<FilmFrame>& frames = inputs.film.frames;
    throw InputError(
        "film and recording do not overlap enough: the frames are from " +
        Span(frames.front().seconds, frames.back().seconds) + ", the poses " +
        (first < last ? "from " + Span(origin + first, origin + last)
                      : "of the camera's tracker from " +
                            Span(origin + streams.camera.First(), origin + streams.camera.Last()) +
                            " and of the chart's from " +
                            Span(origin + streams.chart.First(), origin + streams.chart.Last())) +
        "; record both at the same time");
  }
  if (coarse->correlation < kLeastCorrelation) {
    throw InputError(
        "the delay is not determined: camera and chart do not turn in the recording "
        "as they do in the film; " +
        std::string(kNod) + ", and check that film and recording are of the same time");
  }
  if (coarse->correlation < coarse->nextBest + kClearly) {
    throw InputError("the delay is not determined: the same motion comes again; " +
                     std::string(kNod));
  }
  return *coarse;
}

// So far apart that each counts by itself, with the corners as a calibration finds them.
std::vector<SeenFrame> FramesForDelay(const PairInputs& inputs, const std::vector<Found>& found,
                                      std::vector<Found>& measured) {
  std::vector<Found> apart;
  for (const Found& frame : found) {
    if (apart.empty() || frame.seen.seconds - apart.back().seen.seconds >= kApartForDelay) {
      apart.push_back(frame);
    }
  }
  apart = Some(apart, kMostForDelay);
  std::vector<std::filesystem::path> files;
  files.reserve(apart.size());
  for (const Found& frame : apart) {
    files.push_back(FileOf(inputs.film, frame.index));
  }
  std::vector<BoardCorners> corners = FindBoards(files, inputs.board);
  for (std::size_t i = 0; i < apart.size(); ++i) {
    if (!corners[i].empty()) {
      apart[i].seen.corners = std::move(corners[i]);
      measured.push_back(std::move(apart[i]));
    }
  }
  return SeenOf(measured);
}

void RequireNotSwapped(const std::vector<SeenFrame>& frames, const Streams& streams,
                       const Observations& board, double delay, const std::optional<Clock>& clock) {
  if (clock && clock->trackerNoiseMm < kUsualNoiseMm && clock->delayHalf <= kMostDelayHalf) {
    return;
  }
  const auto swapped = FitClock(frames, streams.chart, streams.camera, board, delay);
  if (swapped && (!clock || swapped->trackerNoiseMm < 0.3 * clock->trackerNoiseMm)) {
    throw InputError(
        "the two recordings are swapped: --camera-poses has the poses of the tracker "
        "on the chart");
  }
}

Clock FindClock(const std::vector<SeenFrame>& frames, const Streams& streams,
                const Observations& board, double delay) {
  const auto clock = FitClock(frames, streams.camera, streams.chart, board, delay);
  RequireNotSwapped(frames, streams, board, delay, clock);
  if (!clock || !(clock->delayHalf <= kMostDelayHalf)) {
    throw InputError("the delay is not determined" +
                     (clock && std::isfinite(clock->delayHalf)
                          ? ", +/- " + Fixed(1e3 * clock->delayHalf, 0) + " ms"
                          : std::string()) +
                     ": too little motion; " + kNod);
  }
  return *clock;
}

// Each tracker that stood still; whether one did.
bool Average(const Streams& streams, double seconds, RelativePose& relative) {
  const auto camera = streams.camera.StillAround(seconds);
  const auto chart = streams.chart.StillAround(seconds);
  if (camera) {
    relative.camera = RecordedPose(*camera);
  }
  if (chart && !streams.chart.IsFixed()) {
    relative.chart = RecordedPose(*chart);
  }
  return camera || (chart && !streams.chart.IsFixed());
}

// A candidate, and where it comes from.
struct Paired {
  const Found* found;
  Candidate candidate;
  bool isAveraged;
};

Paired PairedOf(const Found& found, RelativePose relative, const Streams& streams,
                const Clock& clock) {
  const double late = clock.delayHalf + kExposure;
  const double mm = 1e3 * late * relative.perSecond.tail<3>().norm();
  const double degrees = late * relative.perSecond.head<3>().norm() / crosscheck::kDegree;
  const bool isAveraged = Average(streams, clock.PoseTime(found.seen.seconds), relative);
  return {&found,
          {{"", relative.camera, relative.chart, found.seen.seconds, found.seen.corners},
           std::hypot(clock.trackerNoiseMm, mm),
           std::hypot(clock.trackerNoiseDegrees, degrees)},
          isAveraged};
}

// In each time the one that moved least.
std::vector<Paired> CandidatesOf(const std::vector<Found>& found, const Streams& streams,
                                 const Clock& clock, PairReport& report) {
  std::vector<Paired> candidates;
  double begin = -HUGE_VAL;
  for (const Found& frame : found) {
    const auto relative =
        RelativeAt(streams.camera, streams.chart, clock.PoseTime(frame.seen.seconds));
    if (!relative) {
      report.frames[frame.index] = FrameState::kNoPoses;
      continue;
    }
    const Paired paired = PairedOf(frame, *relative, streams, clock);
    if (frame.seen.seconds - begin >= kCandidateSeconds) {
      begin = frame.seen.seconds;
      candidates.push_back(paired);
    } else if (paired.candidate.errorMm < candidates.back().candidate.errorMm) {
      candidates.back() = paired;
    }
  }
  return candidates;
}

TrackerPose FieldsOf(const crosscheck::TrackerPose& pose) {
  TrackerPose fields;
  std::copy_n(pose.position.data(), 3, fields.begin());
  std::copy_n(pose.quaternionWxyz.data(), 4, fields.begin() + 3);
  return fields;
}

}  // namespace

const char* Name(FrameState state) {
  switch (state) {
    case FrameState::kNotSearched:
      return "notSearched";
    case FrameState::kUnreadable:
      return "unreadable";
    case FrameState::kNoBoard:
      return "boardNotFound";
    case FrameState::kNoPoses:
      return "noPoses";
    case FrameState::kNotChosen:
      return "notChosen";
    case FrameState::kChosen:
      break;
  }
  return "chosen";
}

PairReport Pair(const PairInputs& inputs, const PairProgress& progress) {
  if (std::min(inputs.board[0], inputs.board[1]) < kLeastInnerCorners ||
      std::max(inputs.board[0], inputs.board[1]) > kMostInnerCorners ||
      !(inputs.squareMetres > 0 && inputs.squareMetres < 1)) {
    throw InputError("a board has 3 to 100 inner corners along each side, and squares below 1 m");
  }
  PairReport report;
  report.firstStamp = inputs.camera.firstStamp;
  report.frames.assign(inputs.film.frames.size(), FrameState::kNotSearched);
  const Streams streams = StreamsOf(inputs);
  report.camera = QualityOf(inputs.camera, streams.camera);
  if (inputs.chart) {
    report.chart = QualityOf(*inputs.chart, streams.chart);
  }

  std::vector<Found> found = SearchFilm(inputs, progress, report);
  std::vector<BoardCorners> corners;
  corners.reserve(found.size());
  for (const Found& frame : found) {
    corners.push_back(frame.seen.corners);
  }
  AddChartPoses(BoardOf(inputs, corners, report.imageSize), found);
  const CoarseDelay coarse = FindCoarse(inputs, found, streams);
  report.correlation = coarse.correlation;

  std::vector<Found> measured;
  const std::vector<SeenFrame> forDelay = FramesForDelay(inputs, found, measured);
  corners.clear();
  for (const SeenFrame& frame : forDelay) {
    corners.push_back(frame.corners);
  }
  const Observations board = BoardOf(inputs, corners, report.imageSize);
  report.clock = FindClock(forDelay, streams, board, coarse.seconds);
  report.forDelay = forDelay.size();

  const std::vector<Paired> paired = CandidatesOf(found, streams, report.clock, report);
  std::vector<Candidate> candidates;
  candidates.reserve(paired.size());
  for (const Paired& one : paired) {
    candidates.push_back(one.candidate);
  }
  for (const std::size_t chosen : ChooseFrames(candidates, board, inputs.photographs)) {
    const Paired& one = paired[chosen];
    report.frames[one.found->index] = FrameState::kChosen;
    report.averaged += one.isAveraged ? 1 : 0;
    report.rows.push_back({one.found->seen.seconds, inputs.film.frames[one.found->index].name,
                           FieldsOf(one.candidate.photograph.camera),
                           FieldsOf(one.candidate.photograph.chart)});
  }
  return report;
}

}  // namespace trackedcam::host
