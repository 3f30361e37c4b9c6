#include "simulator/shoot.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "simulator/mounting.h"
#include "simulator/random.h"
#include "simulator/tracking.h"

namespace trackedcam::simulator {
namespace {

// Within this roll, a detector begins with the chart's first corner.
constexpr double kMostRoll = Radians(35);
constexpr double kLeastTilt = Radians(12);
constexpr double kMostTilt = Radians(38);
// Angle between the line of sight and the chart's normal. Beyond it, squares become slivers.
constexpr double kMostSlant = Radians(60);
// Fraction of the image's width or height that the paper would fill if it faced the camera.
constexpr double kLeastFill = 0.65;
constexpr double kMostFill = 1.05;
// Distance of the paper from the edge of the image, as a fraction of width or height.
constexpr double kMargin = 0.01;
// From the first pose on a turntable to the last.
constexpr double kTurntableAngle = Radians(50);
// Successive tilts by the golden angle go to all sides, for any number of photographs.
constexpr double kGoldenAngle = Radians(137.50776405);

// Draws poses until one shows the whole chart.
class ChartPoses {
 public:
  explicit ChartPoses(const ShootOptions& options)
      : chart_(options.chart),
        lens_(LensOf(options)),
        size_(options.imageWidth, options.imageHeight) {}

  /// A pose that shows the whole chart after each of these motions in frame Chart.
  Eigen::Isometry3d DrawSeen(double tiltSide, const std::vector<Eigen::Isometry3d>& motions,
                             Random& random) const {
    constexpr int kTries = 10000;
    for (int i = 0; i < kTries; ++i) {
      Eigen::Isometry3d pose = Draw(tiltSide, random);
      if (std::all_of(motions.begin(), motions.end(), [&](const Eigen::Isometry3d& motion) {
            return IsFacing(pose * motion) && Fits(pose * motion);
          })) {
        return pose;
      }
    }
    throw std::invalid_argument(
        "No camera pose is found that shows the whole chart: choose a longer focal length, or a "
        "principal point nearer to the centre.");
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
  Eigen::Vector2d size_;  // of the image, pixels
};

// The angle stays away from 0 and 180 degrees, where the axis of a rotation is ill-defined.
Eigen::Isometry3d DrawTransform_Cam_Tc(Random& random) {
  const double angle = Radians(random.Uniform(105, 120));
  const Eigen::Vector3d axis = Eigen::Vector3d(1, 0.4, -0.3) + 0.2 * random.Direction();
  return Eigen::Translation3d(Eigen::Vector3d(0.03, -0.11, -0.06) + 0.02 * random.Direction()) *
         Eigen::AngleAxisd(angle, axis.normalized());
}

// Rounded as on a drawing: to hundredths of a degree and tenths of a millimetre.
Mounting DrawMounting(Random& random) {
  const Eigen::Vector3d angles = Eigen::Vector3d(12, -8, 5) + 4 * random.Direction();
  const Eigen::Vector3d metres = Eigen::Vector3d(0.1, -0.05, 0.02) + 0.01 * random.Direction();
  return {(angles * 1e2).array().round() / 1e2, (metres * 1e4).array().round() / 1e4};
}

// A chart held by hand, roughly upright, a few metres from the tracking system's origin.
Eigen::Isometry3d DrawTransform_Base_Chart(Random& random) {
  const Eigen::Isometry3d stand =
      Eigen::Translation3d(kMiddleOfVolume) *
      Eigen::AngleAxisd(Radians(160), Eigen::Vector3d(1, 0.1, 0.2).normalized());
  // Drawn in separate statements: the order in which arguments are evaluated is unspecified.
  const double metres = random.Uniform(0, 0.5);
  const double degrees = random.Uniform(0, 30);
  return stand * random.Displacement(Radians(degrees), metres);
}

// The motions of a chart on a turntable, one for each pose: about the line through its middle along
// its columns.
std::vector<Eigen::Isometry3d> TurntableMotions(const ShootOptions& options) {
  const Eigen::Translation3d middle(options.chart.Centre());
  const int last = (options.photographs - 1) / options.heldPoses;
  std::vector<Eigen::Isometry3d> motions;
  for (int i = 0; i <= last; ++i) {
    const double angle = last == 0 ? 0 : (i / static_cast<double>(last) - 0.5) * kTurntableAngle;
    motions.emplace_back(middle * Eigen::AngleAxisd(angle, Eigen::Vector3d::UnitY()) *
                         middle.inverse());
  }
  return motions;
}

// One flaw for each photograph, in random order.
std::vector<Flaw> DrawFlaws(const ShootOptions& options) {
  std::vector<Flaw> flaws;
  flaws.insert(flaws.end(), options.missing, Flaw::kMissing);
  flaws.insert(flaws.end(), options.notAnImage, Flaw::kNotAnImage);
  flaws.insert(flaws.end(), options.withoutChart, Flaw::kWithoutChart);
  flaws.insert(flaws.end(), options.outliers, Flaw::kSlippedTracker);
  flaws.resize(options.photographs, Flaw::kNone);
  Random random(options.seed, Draw::kFlaws);
  for (std::size_t left = flaws.size(); left > 1; --left) {
    std::swap(flaws[left - 1], flaws[random.Bits() % left]);
  }
  return flaws;
}

std::string PhotographPath(int index) {
  const std::string number = std::to_string(index);
  const std::string zeros(number.size() < 3 ? 3 - number.size() : 0, '0');
  return "photos/img_" + zeros + number + ".jpg";
}

// The camera stays where it was for the first photograph.
Eigen::Isometry3d TurntableTransform_Base_Chart(const Shoot& shoot,
                                                const Eigen::Isometry3d& Transform_Cam_Chart) {
  return shoot.photographs.front().Transform_Base_Tc * shoot.Transform_Cam_Tc.inverse() *
         Transform_Cam_Chart;
}

Photograph PosePhotograph(const Shoot& shoot, const Eigen::Isometry3d& Transform_Cam_Chart,
                          const Eigen::Isometry3d& Transform_Base_Chart) {
  Photograph photograph;
  photograph.Transform_Cam_Chart = Transform_Cam_Chart;
  photograph.Transform_Base_Tc =
      Transform_Base_Chart * Transform_Cam_Chart.inverse() * shoot.Transform_Cam_Tc;
  photograph.Transform_Base_Tr = Transform_Base_Chart * shoot.trueMounting.Transform().inverse();
  for (const Eigen::Vector3d& corner : shoot.options.chart.Corners()) {
    photograph.corners.push_back(shoot.lens.Project(Transform_Cam_Chart * corner));
  }
  return photograph;
}

void Slip(Photograph& photograph, const ShootOptions& options, Random& random) {
  Eigen::Isometry3d& slipped =
      random.Uniform(0, 1) < 0.5 ? photograph.trackedTc : photograph.trackedTr;
  slipped =
      slipped * random.Displacement(Radians(options.slipDegrees), options.slipMm * kMetresPerMm);
}

// The first row that is frozen, if any is. It has a row before it.
int DrawFirstFrozenRow(const ShootOptions& options) {
  Random random(options.seed, Draw::kFrozen);
  return static_cast<int>(random.Uniform(1, options.photographs - options.frozenRows + 1));
}

void TakePhotographs(Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const std::vector<Flaw> flaws = DrawFlaws(options);
  const std::vector<Eigen::Isometry3d> poses = DrawChartPoses(options);
  const int firstFrozenRow = DrawFirstFrozenRow(options);
  Tracking tracking(options);
  TrackerPoses reported;
  for (int i = 0; i < options.photographs; ++i) {
    Random random(options.seed, Draw::kTrackers, i);
    Eigen::Isometry3d Transform_Base_Chart = DrawTransform_Base_Chart(random);
    if (options.turntable && i > 0) {
      Transform_Base_Chart = TurntableTransform_Base_Chart(shoot, poses[i]);
    }
    const bool isHeld = i % options.heldPoses != 0;
    Photograph photograph =
        isHeld ? shoot.photographs.back() : PosePhotograph(shoot, poses[i], Transform_Base_Chart);
    photograph.path = PhotographPath(i);
    photograph.flaw = flaws[i];
    photograph.isFrozen = i >= firstFrozenRow && i < firstFrozenRow + options.frozenRows;

    const TrackerPoses now =
        tracking.Report({photograph.Transform_Base_Tc, photograph.Transform_Base_Tr}, random);
    if (!photograph.isFrozen && !(isHeld && options.repeatedRows)) {
      reported = now;
    }
    photograph.trackedTc = reported.Transform_Base_Tc;
    photograph.trackedTr = reported.Transform_Base_Tr;
    if (photograph.flaw == Flaw::kSlippedTracker) {
      Slip(photograph, options, random);
    }
    shoot.photographs.push_back(photograph);
  }
}

}  // namespace

std::vector<Eigen::Matrix4d> Shoot::Matrices(Eigen::Isometry3d Photograph::*transform) const {
  std::vector<Eigen::Matrix4d> matrices;
  for (const Photograph& photograph : photographs) {
    matrices.push_back((photograph.*transform).matrix());
  }
  return matrices;
}

Eigen::Isometry3d ChartBefore(const Shoot& shoot, std::size_t photograph, double milliseconds) {
  const auto posesAt = [&](std::size_t i) {
    const Photograph& at = shoot.photographs.at(i);
    return TrackerPoses{at.Transform_Base_Tc, at.Transform_Base_Tr};
  };
  const auto previous = photograph == 0 ? std::nullopt : std::optional(posesAt(photograph - 1));
  const TrackerPoses before = PosesBefore(shoot.options, static_cast<int>(photograph),
                                          posesAt(photograph), previous, milliseconds);
  return shoot.Transform_Cam_Tc * before.Transform_Base_Tc.inverse() * before.Transform_Base_Tr *
         shoot.trueMounting.Transform();
}

Shoot SimulateShoot(const ShootOptions& options) {
  CheckOptions(options);
  Random random(options.seed, Draw::kRig);
  Shoot shoot;
  shoot.options = options;
  shoot.lens = LensOf(options);
  shoot.Transform_Cam_Tc = DrawTransform_Cam_Tc(random);
  shoot.nominalMounting = DrawMounting(random);
  const Eigen::Isometry3d error = random.Displacement(Radians(options.mountingErrorDegrees),
                                                      options.mountingErrorMm * kMetresPerMm);
  shoot.trueMounting = MountingOf(shoot.nominalMounting.Transform() * error);

  TakePhotographs(shoot);
  return shoot;
}

std::vector<Eigen::Isometry3d> DrawChartPoses(const ShootOptions& options) {
  const ChartPoses poses(options);
  const std::vector<Eigen::Isometry3d> motions =
      options.turntable ? TurntableMotions(options)
                        : std::vector<Eigen::Isometry3d>{Eigen::Isometry3d::Identity()};
  std::vector<Eigen::Isometry3d> drawn;
  for (int i = 0; i < options.photographs; ++i) {
    const int number = i / options.heldPoses;
    const int place = options.turntable ? 0 : number;
    Random random(options.seed, Draw::kPose, place);
    const Eigen::Isometry3d pose = poses.DrawSeen(place * kGoldenAngle, motions, random);
    drawn.push_back(options.turntable ? pose * motions[number] : pose);
  }
  return drawn;
}

}  // namespace trackedcam::simulator
