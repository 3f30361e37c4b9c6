#include "simulator/chart_poses.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "simulator/angle.h"
#include "simulator/random.h"

namespace trackedcam::simulator {
namespace {

// Upright enough for a detector to begin with the chart's first corner.
constexpr double kMostRoll = Radians(35);
constexpr double kLeastTilt = Radians(12);
constexpr double kMostTilt = Radians(38);
// Between the line of sight and the chart's normal; beyond it squares turn into slivers.
constexpr double kMostSlant = Radians(60);
// Share of the picture's width or height that the paper would fill if it faced the camera.
constexpr double kLeastFill = 0.65;
constexpr double kMostFill = 1.05;
constexpr double kMargin = 0.01;
// Successive tilts by the golden angle go to all sides, however many there are.
constexpr double kGoldenAngle = Radians(137.50776405);

class ChartPoses {
 public:
  explicit ChartPoses(const ShootOptions& options)
      : chart_(options.chart),
        lens_(LensOf(options)),
        size_(options.imageWidth, options.imageHeight) {}

  Eigen::Isometry3d DrawSeen(double tiltSide, Random& random) const {
    constexpr int kTries = 10000;
    for (int i = 0; i < kTries; ++i) {
      Eigen::Isometry3d pose = Draw(tiltSide, random);
      if (IsFacing(pose) && Fits(pose)) {
        return pose;
      }
    }
    throw std::invalid_argument(
        "No place is found from which the whole chart is seen well: choose a longer focal length, "
        "or "
        "a principal point nearer to the centre.");
  }

 private:
  Eigen::Isometry3d Draw(double tiltSide, Random& random) const {
    const Eigen::Vector3d tiltAxis(std::cos(tiltSide), std::sin(tiltSide), 0);
    const double roll = random.Uniform(-kMostRoll, kMostRoll);
    const double tilt = random.Uniform(kLeastTilt, kMostTilt);
    const double fill = random.Uniform(kLeastFill, kMostFill);
    const double x = random.Uniform(0, size_.x());
    const double y = random.Uniform(0, size_.y());

    const Eigen::Vector2d focal(lens_.fx, lens_.fy);
    const double distance =
        (focal.array() * chart_.PaperSize().array() / size_.array()).maxCoeff() / fill;
    Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
    pose.linear() =
        (Eigen::AngleAxisd(roll, Eigen::Vector3d::UnitZ()) * Eigen::AngleAxisd(tilt, tiltAxis))
            .toRotationMatrix();
    pose.translation() =
        distance * lens_.Ray({x, y}).homogeneous() - pose.linear() * chart_.Centre();
    return pose;
  }

  bool IsFacing(const Eigen::Isometry3d& pose) const {
    const Eigen::Vector3d sight = (pose * chart_.Centre()).normalized();
    return sight.dot(pose.linear().col(2)) > std::cos(kMostSlant);
  }

  bool Fits(const Eigen::Isometry3d& pose) const {
    const std::vector<Eigen::Vector3d> outline = chart_.PaperOutline();
    return std::all_of(outline.begin(), outline.end(), [&](const Eigen::Vector3d& point) {
      const Eigen::Vector3d seen = pose * point;
      return seen.z() > 0 && IsInPicture(lens_.Project(seen));
    });
  }

  bool IsInPicture(const Eigen::Vector2d& pixel) const {
    const Eigen::Array2d place = (pixel.array() + 0.5) / size_.array();
    return place.minCoeff() >= kMargin && place.maxCoeff() <= 1 - kMargin;
  }

  Chart chart_;
  Lens lens_;
  Eigen::Vector2d size_;  // of the picture, pixels
};

}  // namespace

std::vector<Eigen::Isometry3d> DrawChartPoses(const ShootOptions& options) {
  const ChartPoses poses(options);
  std::vector<Eigen::Isometry3d> drawn;
  for (int i = 0; i < options.photographs; ++i) {
    Random random(options.seed, Draw::kPose, i);
    drawn.push_back(poses.DrawSeen(i * kGoldenAngle, random));
  }
  return drawn;
}

}  // namespace trackedcam::simulator
