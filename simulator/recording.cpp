#include "simulator/recording.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "simulator/decimals.h"
#include "simulator/tracking.h"

namespace trackedcam::simulator {
namespace {

constexpr double kMsPerSecond = 1e3;
constexpr double kPerMillion = 1e-6;
// From the first pose, about time 0, to the first frame, and from the last frame to the last pose.
constexpr double kSecondsAround = 1;
constexpr double kMostSeconds = 36000;
constexpr double kMostPerSecond = 10000;
constexpr double kMostDelayMs = 60000;
constexpr double kMostDriftPpm = 10000;

void RequireFrom(const std::string& name, double value, double least, double most) {
  if (!(value >= least && value <= most)) {
    throw std::invalid_argument(name + " must be from " + ToShortestText(least) + " to " +
                                ToShortestText(most) + ", not " + ToShortestText(value) + ".");
  }
}

void CheckRecording(const RecordingOptions& options) {
  RequireFrom("seconds", options.seconds, 0.1, kMostSeconds);
  RequireFrom("framesPerSecond", options.framesPerSecond, 0.1, kMostPerSecond);
  RequireFrom("posesPerSecond", options.posesPerSecond, 0.1, kMostPerSecond);
  RequireFrom("exposureSeconds", options.exposureSeconds, 0, 1 / options.framesPerSecond);
  RequireFrom("readoutSeconds", options.readoutSeconds, 0, 1 / options.framesPerSecond);
  RequireFrom("delayMs", options.delayMs, -kMostDelayMs, kMostDelayMs);
  RequireFrom("driftPpm", options.driftPpm, -kMostDriftPpm, kMostDriftPpm);
  RequireFrom("firstStamp", options.firstStamp, -1e12, 1e12);
  RequireFrom("droppedFraction", options.droppedFraction, 0, 0.95);
  RequireFrom("stampStepMs", options.stampStepMs, 0, kMsPerSecond);
}

// Without what belongs to single photographs.
ShootOptions Continuous(ShootOptions options) {
  const ShootOptions usual;
  options.missing = usual.missing;
  options.notAnImage = usual.notAnImage;
  options.withoutChart = usual.withoutChart;
  options.outliers = usual.outliers;
  options.heldPoses = usual.heldPoses;
  options.repeatedRows = usual.repeatedRows;
  options.turntable = usual.turntable;
  options.delayMs = usual.delayMs;
  options.looseMm = usual.looseMm;
  options.frozenRows = usual.frozenRows;
  options.exposureMs = usual.exposureMs;
  options.tremorMmPerSecond = usual.tremorMmPerSecond;
  return options;
}

double TrackedSeconds(const RecordingOptions& options) {
  return options.seconds + 2 * kSecondsAround;
}

double RoundedStamp(double stamp, double stepMs) {
  return stepMs > 0 ? std::round(stamp * kMsPerSecond / stepMs) * stepMs / kMsPerSecond : stamp;
}

// What is reported of one tracker.
std::vector<RecordedPose> Stream(const RecordingOptions& options, const Path& path,
                                 Eigen::Isometry3d Moment::*tracker, int number) {
  const ShootOptions shoot = Continuous(options.shoot);
  Random random(shoot.seed, Draw::kStream, number);
  Random dropping(shoot.seed, Draw::kDropped, number);
  Tracking tracking(shoot);
  const double phase = random.Uniform(0, 1);
  std::vector<RecordedPose> stream;
  for (int i = 0; i + phase <= TrackedSeconds(options) * options.posesPerSecond; ++i) {
    const double time = (i + phase) / options.posesPerSecond;
    const Moment moment = path.At(time);
    const bool isCamera = tracker == &Moment::Transform_Base_Tc;
    const TrackerPoses reported =
        tracking.Report({moment.Transform_Base_Tc, moment.Transform_Base_Tr}, random);
    if (dropping.Uniform(0, 1) >= options.droppedFraction) {
      stream.push_back({RoundedStamp(StampAt(options, time), options.stampStepMs),
                        isCamera ? reported.Transform_Base_Tc : reported.Transform_Base_Tr});
    }
  }
  return stream;
}

bool IsChartInside(const Recording& recording, const Eigen::Isometry3d& Transform_Cam_Chart) {
  const ShootOptions& shoot = recording.options.shoot;
  const std::vector<Eigen::Vector3d> outline = shoot.chart.PaperOutline();
  return std::all_of(outline.begin(), outline.end(), [&](const Eigen::Vector3d& point) {
    const Eigen::Vector3d seen = Transform_Cam_Chart * point;
    const Eigen::Vector2d pixel = recording.lens.Project(seen);
    return seen.z() > 0 && pixel.minCoeff() >= -0.5 && pixel.x() <= shoot.imageWidth - 0.5 &&
           pixel.y() <= shoot.imageHeight - 0.5;
  });
}

// When its row is exposed depends on where it is then.
Eigen::Vector2d SeenAt(const Recording& recording, const Path& path, const RecordedFrame& frame,
                       const Eigen::Vector3d& corner) {
  constexpr int kRounds = 3;
  Eigen::Vector2d pixel = recording.lens.Project(frame.Transform_Cam_Chart * corner);
  for (int i = 0; i < kRounds && recording.options.readoutSeconds > 0; ++i) {
    const double time = TimeOfRow(recording.options, frame.time, pixel.y());
    pixel = recording.lens.Project(path.At(time).Transform_Cam_Chart * corner);
  }
  return pixel;
}

void Film(Recording& recording, const Path& path) {
  const RecordingOptions& options = recording.options;
  const std::vector<Eigen::Vector3d> corners = options.shoot.chart.Corners();
  for (int i = 0; i < options.seconds * options.framesPerSecond; ++i) {
    RecordedFrame frame;
    frame.time = kSecondsAround + i / options.framesPerSecond;
    frame.Transform_Cam_Chart = path.At(frame.time).Transform_Cam_Chart;
    frame.isChartInside = IsChartInside(recording, frame.Transform_Cam_Chart);
    for (const Eigen::Vector3d& corner : corners) {
      frame.corners.push_back(SeenAt(recording, path, frame, corner));
    }
    recording.frames.push_back(frame);
  }
}

}  // namespace

double StampAt(const RecordingOptions& options, double time) {
  return options.firstStamp + options.delayMs / kMsPerSecond +
         time * (1 + options.driftPpm * kPerMillion);
}

double TimeOfRow(const RecordingOptions& options, double frameTime, double row) {
  const double height = options.shoot.imageHeight;
  return frameTime + ((row + 0.5) / height - 0.5) * options.readoutSeconds;
}

Path PathOf(const RecordingOptions& options) {
  CheckRecording(options);
  return {Continuous(options.shoot), options.motion, TrackedSeconds(options)};
}

Recording SimulateRecording(const RecordingOptions& options) {
  const Path path = PathOf(options);
  const Shoot& shoot = path.PassedShoot();
  Recording recording;
  recording.options = options;
  recording.lens = shoot.lens;
  recording.Transform_Cam_Tc = shoot.Transform_Cam_Tc;
  recording.trueMounting = shoot.trueMounting;
  recording.nominalMounting = shoot.nominalMounting;
  Film(recording, path);
  recording.camera = Stream(options, path, &Moment::Transform_Base_Tc, 0);
  recording.chart = Stream(options, path, &Moment::Transform_Base_Tr, 1);
  return recording;
}

}  // namespace trackedcam::simulator
