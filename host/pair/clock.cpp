#include "host/pair/clock.h"

#include <algorithm>
#include <cmath>

#include "crosscheck/delay.h"
#include "crosscheck/reported_poses.h"

namespace trackedcam::host {
namespace {

using crosscheck::Pose;
using crosscheck::Twist;

constexpr double kMostPairSeconds = 0.25;  // between two frames that show a speed
constexpr double kStep = 0.01;             // seconds
constexpr double kLeastShare = 0.5;        // of the frames within the recording
constexpr double kOtherPlace = 0.5;        // seconds from the best delay

struct Speed {
  double seconds = 0;
  double radiansPerSecond = 0;
};

std::vector<Speed> SpeedsIn(const std::vector<SeenFrame>& frames) {
  std::vector<Speed> speeds;
  for (std::size_t i = 1; i < frames.size(); ++i) {
    const double seconds = frames[i].seconds - frames[i - 1].seconds;
    if (seconds > 0 && seconds <= kMostPairSeconds) {
      const Pose turned =
          frames[i - 1].Transform_Cam_Chart.inverse() * frames[i].Transform_Cam_Chart;
      speeds.push_back({0.5 * (frames[i].seconds + frames[i - 1].seconds),
                        crosscheck::RotationDegrees(turned) * crosscheck::kDegree / seconds});
    }
  }
  return speeds;
}

// Of the trackers, every kStep seconds from `first` on; NaN where a stream has nothing.
std::vector<double> SpeedsOf(const PoseStream& camera, const PoseStream& chart, double first,
                             double last) {
  const auto steps = static_cast<std::size_t>((last - first) / kStep);
  std::vector<double> speeds;
  speeds.reserve(steps + 1);
  for (std::size_t step = 0; step <= steps; ++step) {
    const auto relative = RelativeAt(camera, chart, first + kStep * static_cast<double>(step));
    speeds.push_back(relative ? relative->perSecond.head<3>().norm() : std::nan(""));
  }
  return speeds;
}

// Of the speeds of the film with those of the trackers from `shift` steps on; NaN if too few of
// them meet.
double Correlation(const std::vector<Speed>& film, const std::vector<std::ptrdiff_t>& places,
                   const std::vector<double>& trackers, std::ptrdiff_t shift) {
  double n = 0, x = 0, y = 0, xx = 0, yy = 0, xy = 0;
  for (std::size_t i = 0; i < film.size(); ++i) {
    const std::ptrdiff_t at = places[i] + shift;
    if (at < 0 || at >= static_cast<std::ptrdiff_t>(trackers.size())) {
      continue;
    }
    const double other = trackers[static_cast<std::size_t>(at)];
    if (std::isnan(other)) {
      continue;
    }
    const double own = film[i].radiansPerSecond;
    ++n;
    x += own;
    y += other;
    xx += own * own;
    yy += other * other;
    xy += own * other;
  }
  if (n < kLeastShare * static_cast<double>(film.size())) {
    return std::nan("");
  }
  const double spread = std::sqrt((xx - x * x / n) * (yy - y * y / n));
  return spread > 0 ? (xy - x * y / n) / spread : std::nan("");
}

// One step of the fit, with the poses at the clock so far.
std::optional<crosscheck::Delay> Step(const std::vector<SeenFrame>& frames,
                                      const PoseStream& camera, const PoseStream& chart,
                                      crosscheck::Observations observations, const Clock& clock,
                                      bool withDrift) {
  observations.photographs.clear();
  std::vector<Twist> perSecond;
  for (const SeenFrame& frame : frames) {
    if (const auto relative = RelativeAt(camera, chart, clock.PoseTime(frame.seconds))) {
      observations.photographs.push_back(
          {"", relative->camera, relative->chart, frame.seconds, frame.corners});
      perSecond.push_back(relative->perSecond);
    }
  }
  return crosscheck::FitDelay(observations, perSecond, withDrift);
}

}  // namespace

crosscheck::TrackerPose RecordedPose(const Pose& pose) {
  const Eigen::Quaterniond q(pose.linear());
  return {pose.translation(), {q.w(), q.x(), q.y(), q.z()}};
}

std::optional<RelativePose> RelativeAt(const PoseStream& camera, const PoseStream& chart,
                                       double seconds) {
  const auto ofCamera = camera.At(seconds);
  const auto ofChart = chart.At(seconds);
  if (!ofCamera || !ofChart) {
    return std::nullopt;
  }
  Pose model = Pose::Identity();
  model.linear() = crosscheck::AxisFix();
  const Pose Transform_Tc_Tr = ofCamera->pose.inverse() * ofChart->pose;
  return RelativePose{
      RecordedPose(ofCamera->pose), RecordedPose(ofChart->pose),
      crosscheck::Adjoint(model.inverse()) *
          (crosscheck::Adjoint(Transform_Tc_Tr) * ofChart->perSecond - ofCamera->perSecond)};
}

std::optional<CoarseDelay> FindCoarseDelay(const std::vector<SeenFrame>& frames,
                                           const PoseStream& camera, const PoseStream& chart) {
  const std::vector<Speed> film = SpeedsIn(frames);
  const double first = std::max(camera.First(), chart.First());
  const double last = std::min(camera.Last(), chart.Last());
  if (film.empty() || !(first < last) || !std::isfinite(first + last)) {
    return std::nullopt;
  }
  const std::vector<double> trackers = SpeedsOf(camera, chart, first, last);
  std::vector<std::ptrdiff_t> places;  // of the film's speeds, with the first at 0
  places.reserve(film.size());
  for (const Speed& speed : film) {
    places.push_back(std::lround((speed.seconds - film.front().seconds) / kStep));
  }
  std::vector<double> correlations;  // by the shift, from the least on
  for (std::ptrdiff_t shift = -places.back(); shift < static_cast<std::ptrdiff_t>(trackers.size());
       ++shift) {
    correlations.push_back(Correlation(film, places, trackers, shift));
  }
  const auto isLess = [](double a, double b) { return std::isnan(a) || (!std::isnan(b) && a < b); };
  const auto best = std::max_element(correlations.begin(), correlations.end(), isLess);
  if (best == correlations.end() || std::isnan(*best)) {
    return std::nullopt;
  }
  CoarseDelay coarse;
  coarse.correlation = *best;
  const auto shift = (best - correlations.begin()) - places.back();
  coarse.seconds = first + static_cast<double>(shift) * kStep - film.front().seconds;
  for (auto other = correlations.begin(); other != correlations.end(); ++other) {
    if (std::abs(static_cast<double>(other - best)) * kStep > kOtherPlace &&
        *other > coarse.nextBest) {
      coarse.nextBest = *other;
    }
  }
  return coarse;
}

std::optional<Clock> FitClock(const std::vector<SeenFrame>& frames, const PoseStream& camera,
                              const PoseStream& chart, const crosscheck::Observations& board,
                              double delay) {
  constexpr int kMostSteps = 20;
  constexpr double kConverged = 1e-6;  // seconds
  constexpr double kLongestStep = 0.05;
  constexpr double kSure = 3;  // standard errors of a drift
  Clock clock;
  clock.delay = delay;
  bool withDrift = false;
  for (int i = 0; i < kMostSteps; ++i) {
    const auto step = Step(frames, camera, chart, board, clock, withDrift);
    if (!step) {
      return std::nullopt;
    }
    clock.delay = clock.PoseTime(step->meanSeconds) - step->meanSeconds +
                  std::clamp(step->seconds, -kLongestStep, kLongestStep);
    clock.meanSeconds = step->meanSeconds;
    clock.drift += step->drift;
    clock.delayHalf = step->t95 * step->error;
    clock.driftHalf = step->t95 * step->driftError;
    clock.trackerNoiseMm = step->trackerNoiseMm;
    clock.trackerNoiseDegrees = step->trackerNoiseDegrees;
    const double change = std::abs(step->seconds) +
                          std::abs(step->drift) * (frames.back().seconds - frames.front().seconds);
    if (change > kConverged && change > 1e-2 * step->error) {
      continue;
    }
    if (withDrift) {
      return clock;
    }
    const auto drifted = Step(frames, camera, chart, board, clock, true);
    if (!drifted || !(std::abs(drifted->drift) > kSure * drifted->driftError)) {
      clock.driftHalf = drifted ? drifted->t95 * drifted->driftError : std::nan("");
      return clock;
    }
    withDrift = true;
  }
  return std::nullopt;
}

}  // namespace trackedcam::host
