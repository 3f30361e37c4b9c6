#include "simulator/path.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "simulator/mounting.h"

namespace trackedcam::simulator {
namespace {

constexpr double kShortestPause = 0.5;   // seconds
constexpr double kLongestPause = 1.0;    // seconds
constexpr double kShortestTravel = 1.0;  // seconds
// Mean speeds of the faster tracker from one pause to the next; the highest are 1.9 times these.
constexpr double kSlowest = 0.1;              // metres per second
constexpr double kFastest = 0.22;             // metres per second
constexpr double kSlowestTurn = Radians(10);  // per second
constexpr double kFastestTurn = Radians(26);  // per second

struct Unsteadiness {
  double metres;            // root mean square along each axis
  double radians;           // root mean square about each axis
  double slowest, fastest;  // hertz
  bool isOnTheWay;          // only there
};
constexpr std::array<Unsteadiness, 3> kUnsteadiness = {{
    {0.0012, Radians(0.12), 0.2, 1, false},   // sway
    {0.00002, Radians(0.006), 6, 10, false},  // tremor
    {0.006, Radians(0.8), 0.5, 1.5, true},    // wander
}};

ShootOptions WithPhotographs(ShootOptions options, double seconds) {
  options.photographs = 2 + static_cast<int>(seconds / (kShortestPause + kShortestTravel));
  return options;
}

// The share of the way after this share of the time: at rest at both ends, with the least jerk.
double SmoothStep(double share) {
  return share * share * share * (10 + share * (6 * share - 15));
}

// 0 at both ends, with no speed, and 1 in the middle.
double Bump(double share) {
  return 16 * share * share * (1 - share) * (1 - share);
}

// The middle of the chart takes the straight line.
Eigen::Isometry3d Between(const Eigen::Isometry3d& from, const Eigen::Isometry3d& to, double share,
                          const Eigen::Vector3d& middle) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  pose.linear() = Eigen::Quaterniond(from.linear())
                      .slerp(share, Eigen::Quaterniond(to.linear()))
                      .toRotationMatrix();
  const Eigen::Vector3d place = (1 - share) * (from * middle) + share * (to * middle);
  pose.translation() = place - pose.linear() * middle;
  return pose;
}

double AngleOf(const Eigen::Isometry3d& motion) {
  return Eigen::AngleAxisd(motion.linear()).angle();
}

}  // namespace

Hand::Hand(std::uint64_t seed, int number) : waves_(6) {
  Random random(seed, Draw::kHands, number);
  for (std::size_t i = 0; i < waves_.size(); ++i) {
    for (const Unsteadiness& kind : kUnsteadiness) {
      AddWaves(waves_[i], i < 3 ? kind.metres : kind.radians, kind.slowest, kind.fastest,
               kind.isOnTheWay, random);
    }
  }
}

void Hand::AddWaves(std::vector<Wave>& waves, double metresOrRadians, double slowest,
                    double fastest, bool isOnTheWay, Random& random) {
  constexpr int kWaves = 5;
  for (int i = 0; i < kWaves; ++i) {
    const double radiansPerSecond = 2 * EIGEN_PI * random.Uniform(slowest, fastest);
    const double phase = random.Uniform(0, 2 * EIGEN_PI);
    waves.push_back(
        {radiansPerSecond, phase, metresOrRadians * std::sqrt(2.0 / kWaves), isOnTheWay});
  }
}

double Hand::Sum(const std::vector<Wave>& waves, double seconds, double onTheWay) {
  double sum = 0;
  for (const Wave& wave : waves) {
    sum += (wave.isOnTheWay ? onTheWay : 1) * wave.amplitude *
           std::sin(wave.radiansPerSecond * seconds + wave.phase);
  }
  return sum;
}

Eigen::Isometry3d Hand::At(double seconds, double onTheWay) const {
  std::array<double, 6> place = {};
  for (std::size_t i = 0; i < place.size(); ++i) {
    place[i] = Sum(waves_[i], seconds, onTheWay);
  }
  const Eigen::Vector3d rotation(place[3], place[4], place[5]);
  return Eigen::Translation3d(place[0], place[1], place[2]) *
         Eigen::AngleAxisd(rotation.norm(), rotation.normalized());
}

Path::Path(const ShootOptions& options, Motion motion, double seconds)
    : motion_(motion),
      shoot_(SimulateShoot(WithPhotographs(options, seconds))),
      cameraHand_(options.seed, 0),
      chartHand_(options.seed, 1) {
  double begin = 0;
  for (std::size_t i = 0; i + 1 < shoot_.photographs.size() && begin < seconds; ++i) {
    Random random(options.seed, Draw::kRoad, static_cast<int>(i));
    const double leave = begin + random.Uniform(kShortestPause, kLongestPause);
    const double arrive = leave + TravelSeconds(i, random);
    stages_.push_back({begin, leave, arrive});
    begin = arrive;
  }
}

double Path::TravelSeconds(std::size_t photograph, Random& random) const {
  constexpr int kSteps = 20;
  double metres = 0;
  double radians = 0;
  for (const auto tracker : {&Moment::Transform_Base_Tc, &Moment::Transform_Base_Tr}) {
    double length = 0;
    double turn = 0;
    for (int i = 0; i < kSteps; ++i) {
      const Eigen::Isometry3d from = Steady(photograph, i / static_cast<double>(kSteps)).*tracker;
      const Eigen::Isometry3d to =
          Steady(photograph, (i + 1) / static_cast<double>(kSteps)).*tracker;
      length += (to.translation() - from.translation()).norm();
      turn += AngleOf(from.inverse() * to);
    }
    metres = std::max(metres, length);
    radians = std::max(radians, turn);
  }
  const double speed = random.Uniform(kSlowest, kFastest);
  const double turnSpeed = random.Uniform(kSlowestTurn, kFastestTurn);
  return std::max({kShortestTravel, metres / speed, radians / turnSpeed});
}

Eigen::Isometry3d Path::BaseOfChart(std::size_t photograph) const {
  return shoot_.photographs[photograph].Transform_Base_Tr * shoot_.trueMounting.Transform();
}

// At this share of the way from a photograph to the next one, with steady hands.
Moment Path::Steady(std::size_t photograph, double share) const {
  const Eigen::Vector3d middle = shoot_.options.chart.Centre();
  Moment moment;
  moment.Transform_Cam_Chart =
      Between(shoot_.photographs[photograph].Transform_Cam_Chart,
              shoot_.photographs[photograph + 1].Transform_Cam_Chart, share, middle);
  Eigen::Isometry3d Transform_Base_Chart;
  if (motion_ == Motion::kTripod) {
    moment.Transform_Base_Tc = shoot_.photographs.front().Transform_Base_Tc;
    Transform_Base_Chart =
        moment.Transform_Base_Tc * shoot_.Transform_Cam_Tc.inverse() * moment.Transform_Cam_Chart;
  } else {
    Transform_Base_Chart =
        Between(BaseOfChart(photograph), BaseOfChart(photograph + 1), share, middle);
    moment.Transform_Base_Tc =
        Transform_Base_Chart * moment.Transform_Cam_Chart.inverse() * shoot_.Transform_Cam_Tc;
  }
  moment.Transform_Base_Tr = Transform_Base_Chart * shoot_.trueMounting.Transform().inverse();
  return moment;
}

Moment Path::At(double seconds) const {
  const auto after =
      std::upper_bound(stages_.begin(), stages_.end(), seconds,
                       [](double time, const Stage& stage) { return time < stage.begin; });
  const auto stage = after == stages_.begin() ? after : after - 1;
  const double time =
      std::clamp((seconds - stage->leave) / (stage->arrive - stage->leave), 0.0, 1.0);
  const auto photograph = static_cast<std::size_t>(stage - stages_.begin());

  Moment moment = Steady(photograph, SmoothStep(time));
  if (motion_ == Motion::kHandheld) {
    moment.Transform_Base_Tc = moment.Transform_Base_Tc * cameraHand_.At(seconds, Bump(time));
  }
  moment.Transform_Base_Tr = moment.Transform_Base_Tr * chartHand_.At(seconds, Bump(time));
  moment.Transform_Cam_Chart = shoot_.Transform_Cam_Tc * moment.Transform_Base_Tc.inverse() *
                               moment.Transform_Base_Tr * shoot_.trueMounting.Transform();
  return moment;
}

}  // namespace trackedcam::simulator
