// What a cross-check finds.
//
// Twists are six numbers, turn (radians) before shift (metres). A left twist d of T means
// Exp(d) · T, a right one T · Exp(d).

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/observations.h"

namespace trackedcam::crosscheck {

using Matrix6d = Eigen::Matrix<double, 6, 6>;

enum class Severity { kError, kWarning, kNote };

/// With the numbers of each, in this order, and what else it carries:
enum class FindingId {
  /// photographs, used, mm, degrees: the trackers' noise where there is a solution, else NaN
  kNoAgreement,
  /// times, asReadMm, fittedMm (median distance of board points); detail: a reading's id
  kReading,
  /// amplification, turnDegrees (how far to turn the chart about the axis, to either side), axisX,
  /// axisY, axisZ (unit vector, Chart), axes (2 where it must be turned about one across as well)
  kTooLittleTurning,
  /// before (index), mm, degrees, gain; detail: camera or chart; photographs: the first one after
  kTrackerMoved,
  /// offMm, offDegrees, resultOffMm, resultOffDegrees, p, pScaleFree; detail: the likely slip or ""
  kMountingOff,
  /// share (0 to 1), worstMm, worstDegrees; photographs: all of them, the worst first
  kBadPhotographs,
  /// factor (true edge by stated edge), standardError, p
  kSquareSize,
  /// offMm, offDegrees, p: of a tracker between the first half and the second
  kHalvesDiffer,
  /// mm, degrees (95 % of Transform_Cam_Tc), pixels, distanceMetres (95 % on screen, from the lens)
  kLensUncertain,
  /// mm, degrees
  kTrackersNoisy,
  /// offMm, offDegrees, p; detail: mountingUnknown where none was stated, or ""
  kLibraryApart,
};

/// mountingOff, badPhotographs, ...
const char* Name(FindingId id);
/// error, warning, note
const char* Name(Severity severity);

struct Finding {
  FindingId id = FindingId::kNoAgreement;
  Severity severity = Severity::kNote;
  std::vector<std::pair<std::string, double>> numbers;
  std::vector<std::size_t> photographs;  // indices in Observations::photographs
  std::string detail;                    // a short id, see above

  /// NaN where there is no number of that name.
  double Number(const std::string& name) const;
};

struct StandardError {
  Eigen::Vector3d shiftMm = Eigen::Vector3d::Zero();      // of the translation
  Eigen::Vector3d turnDegrees = Eigen::Vector3d::Zero();  // about the axes of the target frame
};

/// How far two transforms are apart, and how likely that or more would be by chance.
struct Offset {
  double offMm = 0;
  double offDegrees = 0;
  double p = 1;
};

struct NominalMounting : Offset {
  double pScaleFree = 1;  // with the size of the squares free as well
  /// inverse, angleSigns, angleOrder, millimetres, centimetres, reportedAxes, boardTurned or
  /// nothing
  std::optional<std::string> perhaps;
};

struct LensErrors {
  double fx = 0, fy = 0, cx = 0, cy = 0;  // standard errors, pixels
  double k1 = 0, k2 = 0;
};

struct Diversity {
  double amplification = 0;  // of noise by too little turning; infinite without any
  Eigen::Vector3d weakestAxisInChart = Eigen::Vector3d::Zero();  // seen in one direction throughout
  /// As many photographs again, turned by so much to either side about this axis, and about a
  /// second one across where there are two, bring the amplification to 3.
  Eigen::Vector3d turnAboutInChart = Eigen::Vector3d::Zero();
  int axesToTurnAbout = 1;
  double turnDegrees = 0;
};

struct SquareSize {
  double factor = 1;  // true edge by stated edge
  double standardError = 0;
  double p = 1;
};

enum class Tracker { kCamera, kChart };

/// camera, chart
const char* Name(Tracker tracker);

/// A tracker that moved on its mount for good.
struct Step {
  Tracker tracker = Tracker::kCamera;
  std::size_t before = 0;  // index of the first photograph after it
  double mm = 0;
  double degrees = 0;
  double gain = 0;  // how much better the shoot fits, as chi squared of six
};

struct OnScreen {
  double distanceMetres = 0;
  double pixels = 0;                   // 95 %
  double fromTransform = 0;            // 95 %, pixels
  double fromLens = 0;                 // 95 %, pixels
  std::optional<double> libraryApart;  // how far the two solutions differ, pixels
};

/// How the chart stands before the camera.
struct View {
  double tiltDegrees = 0;           // between the chart's normal and the optical axis
  double tiltDirectionDegrees = 0;  // where the normal leans to in the picture, from x to y
  double rollDegrees = 0;           // about the optical axis, from x to y
  double distanceMetres = 0;        // of the board's centre
};

struct PerPhotograph {
  bool used = false;
  double mm = 0;       // by how much a tracker would have to be shifted, whichever needs less
  double degrees = 0;  // and turned
  double predictedPixels = 0;  // root mean square between corners and prediction
  /// Why it is left out: fitsTrackersOf, firstCornerAtOtherEnd, notNumbers, noPose or nothing.
  std::optional<std::string> why;
  std::optional<std::size_t> fitsTrackersOf;  // index
  Eigen::Matrix4d Transform_Cam_Chart = Eigen::Matrix4d::Identity();
  Eigen::Matrix4d Transform_Tc_Tr = Eigen::Matrix4d::Identity();
  std::vector<Eigen::Vector2d> predicted;  // where trackers and solution expect the corners, pixels
  View view;
};

struct SuggestedView : View {
  int views = 0;    // so many of them
  double gain = 1;  // divide the uncertainty of Transform_Cam_Tc by this
};

/// What is not a number could not be found out.
struct CrossCheck {
  bool solved = false;  // else only findings and perPhotograph are filled
  std::size_t photographs = 0;
  std::size_t used = 0;
  Eigen::Matrix4d Transform_Cam_Tc = Eigen::Matrix4d::Identity();
  Eigen::Matrix4d Transform_Tr_Chart = Eigen::Matrix4d::Identity();
  Matrix6d covarianceCamTcTwist = Matrix6d::Zero();    // left twist
  Matrix6d covarianceTrChartTwist = Matrix6d::Zero();  // right twist
  StandardError standardErrorCamTc;
  StandardError standardErrorTrChart;
  double t95 = 0;  // standard errors times this: the half-width of the 95 % interval
  double trackerNoiseDegrees = 0;  // about each axis of each tracker
  double trackerNoiseMm = 0;       // along each axis
  bool trackerNoiseApart = false;  // the shoot tells turning noise from shifting noise
  double cornerNoisePixels = 0;    // along each axis
  LensErrors lens;
  std::optional<Mounting> mounting;  // to pass on; nothing where the shoot cannot tell it
  std::optional<NominalMounting> nominalMounting;
  std::optional<Offset> library;
  Diversity diversity;
  SquareSize square;
  std::optional<Step> step;
  std::optional<Offset> halves;
  std::vector<OnScreen> onScreen;
  std::vector<PerPhotograph> perPhotograph;   // one for each photograph, in order
  std::vector<SuggestedView> suggestedViews;  // the best first
  /// How many photographs of such views halve the uncertainty of Transform_Cam_Tc; nothing where a
  /// hundred do not.
  std::optional<int> photographsToHalve;
  std::vector<Finding> findings;  // the worst first
};

}  // namespace trackedcam::crosscheck
