// Where camera and chart are at each time of a recording.

#pragma once

#include <cstdint>
#include <vector>

#include <Eigen/Geometry>

#include "simulator/random.h"
#include "simulator/shoot.h"

namespace trackedcam::simulator {

enum class Motion {
  kHandheld,  // camera and chart are in hands
  kTripod     // the camera stands, and the chart is carried
};

/// At one time; the trackers as they are, not as they are reported.
struct Moment {
  Eigen::Isometry3d Transform_Cam_Chart;
  Eigen::Isometry3d Transform_Base_Tc;
  Eigen::Isometry3d Transform_Base_Tr;
};

/// The unsteadiness of a hand: slow sway and a fine tremor, which never end, and a wander on the
/// way from one place to the next.
class Hand {
 public:
  Hand(std::uint64_t seed, int number);

  /// How far the hand is from where it should be.
  /// @param onTheWay 0 where it holds still, up to 1 between such places.
  Eigen::Isometry3d At(double seconds, double onTheWay) const;

 private:
  struct Wave {
    double radiansPerSecond;
    double phase;
    double amplitude;  // metres, or radians
    bool isOnTheWay;   // only there
  };

  void AddWaves(std::vector<Wave>& waves, double metresOrRadians, double slowest, double fastest,
                bool isOnTheWay, Random& random);
  static double Sum(const std::vector<Wave>& waves, double seconds, double onTheWay);

  std::vector<std::vector<Wave>> waves_;  // of x, y, z and of the rotation about them
};

/// Takes the poses of a simulated shoot one after the other: a pause at each, then a smooth motion
/// to the next.
class Path {
 public:
  /// @throws std::invalid_argument if the shoot cannot be simulated.
  Path(const ShootOptions& options, Motion motion, double seconds);

  Moment At(double seconds) const;

  /// The shoot that is passed through: its lens, mountings and poses.
  const Shoot& PassedShoot() const { return shoot_; }

 private:
  struct Stage {
    double begin;   // of the pause at a photograph, seconds
    double leave;   // its end
    double arrive;  // at the next photograph
  };

  Moment Steady(std::size_t photograph, double share) const;
  double TravelSeconds(std::size_t photograph, Random& random) const;
  Eigen::Isometry3d BaseOfChart(std::size_t photograph) const;

  Motion motion_;
  Shoot shoot_;
  Hand cameraHand_;
  Hand chartHand_;
  std::vector<Stage> stages_;
};

}  // namespace trackedcam::simulator
