// How often the truth lies in the intervals, and what is said, over many shoots.

#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"

namespace trackedcam::test {

struct Cell {
  std::string name;
  int photographs = 40;
  double trackerNoiseMm = 0.3;
  double trackerNoiseDegrees = 0.05;
  double cornerNoisePixels = 0.05;
  double scaleUncertainty = 0.001;  // of the trackers' lengths: drawn for each shoot
  int outliers = 0;  // photographs for which a tracker slipped by 40 mm and 3 degrees
  double mountingErrorMm = 0;
  double mountingErrorDegrees = 0;
  std::function<void(simulator::ShootOptions&)> options;  // flaws of the simulated shoot
  std::function<void(simulator::Shoot&)> before;          // done to the shoot before it is told
  std::function<void(KnownShoot&)> after;                 // done to what is told
};

/// Transform_Cam_Tc: shift along x, y, z, turn about x, y, z; Transform_Tr_Chart: the same.
constexpr std::size_t kAxes = 12;

/// Shoots in which the true error in the image is within the stated one.
struct OnScreenTally {
  int middlePixels = 0;
  int middleMm = 0;
  int cornerPixels = 0;
  int cornerMm = 0;
};

struct Tally {
  int shoots = 0;
  int solved = 0;
  std::array<int, kAxes> covered = {};  // shoots in which the truth lies in the 95 % interval
  std::array<OnScreenTally, 4> onScreen = {};  // at the distances given unasked, the nearest first
  int loud = 0;  // shoots with a warning or an error but badPhotographs and true uncertainty
  int goodOnesBlamed = 0;  // photographs called bad that are not
  int badOnesTaken = 0;    // photographs that are bad and were used
  double worstMm = 0;      // of Transform_Cam_Tc from the truth
  double worstDegrees = 0;
  std::map<std::string, int> said;  // shoots by finding and severity, "mountingOff error"

  /// Shoots with the finding, of any severity.
  int Said(const std::string& id) const;
};

/// One axis's value after the other: truth within the interval.
std::array<bool, kAxes> Covered(const crosscheck::CrossCheck& check, const KnownShoot& shoot);

/// How far from its true place a thing appears that is seen at this pixel, on a wall at this
/// distance across the optical axis.
crosscheck::PlaceError TrueErrorAt(const Eigen::Vector2d& pixel, double distanceMetres,
                                   const simulator::Lens& trueLens, const KnownShoot& shoot,
                                   const crosscheck::CrossCheck& check);

/// The pixel of the corner of the image that is named.
Eigen::Vector2d CornerPixel(crosscheck::ImagePart corner, const crosscheck::Lens& lens);

/// How far random halves of shoots, each calibrated by itself, are apart: the share of the six axes
/// of Transform_Cam_Tc on which they agree within 1.96 of their standard errors.
double AgreementOfHalves(const Cell& cell, std::uint64_t first, int shoots);

/// How many standard errors the flaw of the cell's options is at best, as the root mean square of
/// shoots.
double StandardErrorsAtBest(const Cell& cell, std::uint64_t first, int shoots);

/// Shoots of the seeds `first` and following. The result to check is that of a calibration which
/// believes the mounting.
Tally RunCell(const Cell& cell, std::uint64_t first, int shoots);

/// The cells for which the intervals must hold.
std::array<Cell, 4> CoverageCells();

}  // namespace trackedcam::test
