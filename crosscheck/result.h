// The result of a cross-check.
//
// A twist is six numbers, the rotation (radians) before the translation (metres). A left twist d of
// T means Exp(d) · T, a right one T · Exp(d).

#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <variant>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/calibration.h"
#include "crosscheck/observations.h"

namespace trackedcam::crosscheck {

/// A test with a p below this is certain: the difference is not by chance.
constexpr double kCertain = 0.001;

/// From these differences on, or from half of what is good enough, a result does not pass without a
/// finding.
constexpr double kNotableMm = 1;
constexpr double kNotableDegrees = 0.1;
/// From these on, it is an error.
constexpr double kGraveMm = 2;
constexpr double kGraveDegrees = 0.2;
/// Below this it is likely.
constexpr double kLikely = 0.05;

/// What the p of a difference says.
enum class Certainty { kIsCertain, kIsLikely, kMayBeChance, kIsUnknown };
Certainty CertaintyOf(double p);

/// certain, likely, byChance, unknown
const char* Name(Certainty certainty);

/// With more, the shoot does not determine the mounting, and nothing about it is certain.
constexpr double kMostAmplification = 10;

enum class Tracker { kCamera, kChart };

/// camera, chart
const char* Name(Tracker tracker);

/// Another way to read the rows.
enum class RowReading {
  kQuaternionsInverted,
  kOrderXyzw,
  kTrackersExchanged,
  kRowsLate,   // a row holds the trackers of the photograph before it
  kRowsEarly,  // a row holds the trackers of the photograph after it
  kMillimetres,
  kCentimetres,
  kLeftHanded,
  kMirroredX,  // positions only
  kMirroredY,
  kMirroredZ,
  kInches,
  kEngineCentimetres,  // left-handed, in centimetres
  kCameraInverted,     // the quaternions of one tracker only
  kChartInverted,
  kCameraLate,  // of one tracker only: its pose is that of the photograph before
  kChartLate,
};

/// quaternionsInverted, orderXyzw, ...
const char* Name(RowReading reading);

/// What errors of the trackers follow.
enum class TrackerFlaw {
  kSag,            // gravity: a mount gives way
  kBentVolume,     // the position in the tracking volume
  kPoseDependent,  // the rotation of the chart in front of the camera
  kDelay,          // the motion: the poses are not of the time of the photograph
};

/// mountSags, volumeBent, poseDependentErrors, delay
const char* Name(TrackerFlaw flaw);

/// How a mounting is stated wrongly.
enum class MountingMistake {
  kInverse,
  kAngleSigns,
  kAngleOrder,
  kMillimetres,
  kCentimetres,
  kReportedAxes,
  kBoardTurned,
};

/// inverse, angleSigns, ...
const char* Name(MountingMistake mistake);

// What the cross-check solves for, and how accurate it is.

struct StandardError {
  Eigen::Vector3d translationMm = Eigen::Vector3d::Zero();
  Eigen::Vector3d rotationDegrees = Eigen::Vector3d::Zero();  // about the axes of the target frame
};

/// One axis of another transform and of the cross-check's: millimetres along it or degrees about
/// it; NaN if unknown.
struct AxisComparison {
  double other = std::numeric_limits<double>::quiet_NaN();       // NaN for rotations
  double found = std::numeric_limits<double>::quiet_NaN();       // NaN for rotations
  double difference = std::numeric_limits<double>::quiet_NaN();  // of a rotation vector
  double half = std::numeric_limits<double>::quiet_NaN();        // width of the 95 % interval
};

struct TransformComparison {
  std::array<AxisComparison, 3> translation;
  std::array<AxisComparison, 3> rotation;
  bool isCompared = false;  // both transforms are known
};

/// How far two transforms are apart, and how likely that or more would be by chance.
struct Offset {
  double offMm = 0;
  double offDegrees = 0;
  double p = 1;
};

struct NominalMounting : Offset {
  double pScaleFree = 1;  // with the size of the squares free as well
  std::optional<MountingMistake> likelyMistake;
};

struct LensErrors {
  double fx = 0, fy = 0, cx = 0, cy = 0;  // standard errors, pixels
  double k1 = 0, k2 = 0;
};

/// How differently the chart was rotated.
struct Diversity {
  double amplification = 0;  // of the noise by too little rotation; infinite without any
  Eigen::Vector3d weakestAxisInChart = Eigen::Vector3d::Zero();  // seen in one direction throughout
  /// The same number of photographs again, with the chart rotated by this angle to either side
  /// about this axis, and about a second one across it if axes is 2, bring the amplification to 3.
  double rotationDegrees = 0;
  Eigen::Vector3d axisInChart = Eigen::Vector3d::Zero();
  int axes = 1;
};

/// What the scale of the trackers' lengths against the squares does, which one shoot hardly shows.
struct Scale {
  double uncertainty = 0;    // a fraction, from elsewhere; 0 if the photographs themselves show it
  double mmPerPermille = 0;  // of Transform_Cam_Tc
  double degreesPerPermille = 0;
};

struct SquareSize {
  double factor = 1;  // true edge divided by stated edge
  double standardError = 0;
  double p = 1;
};

/// A tracker that moved on its mount and stayed there.
struct Step {
  Tracker tracker = Tracker::kCamera;
  std::size_t before = 0;  // index of the first photograph after it
  double mm = 0;
  double degrees = 0;
  double gain = 0;  // how much better the shoot fits, as chi squared of six
};

/// The ninths of the image, row by row.
enum class ImagePart {
  kUpperLeft,
  kTop,
  kUpperRight,
  kLeft,
  kMiddle,
  kRight,
  kLowerLeft,
  kBottom,
  kLowerRight,
};

/// upperLeft, top, upperRight, ...
const char* Name(ImagePart part);

/// How far from its true place a thing may appear at one place of the image: 95 % appear nearer.
struct PlaceError {
  double pixels = 0;
  double mm = 0;  // on a wall at the distance, across the optical axis
};

/// The image in cells, row by row.
struct ImageCells {
  int columns = 0;
  int rows = 0;
  std::vector<bool> seen;  // within the board of a photograph, or with a corner
};

/// The uncertainty in the image at a distance, of lens and transform together; NaN where the
/// distortion of the lens folds the image.
struct OnScreen {
  double distanceMetres = 0;
  PlaceError middle;  // of the image
  PlaceError corner;  // of the image, the worst of the four
  ImagePart worstCorner = ImagePart::kUpperLeft;
  std::vector<double> cellPixels;      // in the middle of each of the ImageCells
  std::optional<double> libraryApart;  // how far the two solutions differ, pixels
};

/// The pose of the chart in front of the camera.
struct View {
  double tiltDegrees = 0;           // between the chart's normal and the optical axis
  double tiltDirectionDegrees = 0;  // direction of the normal in the image, from x to y
  double rollDegrees = 0;           // about the optical axis, from x to y
  double distanceMetres = 0;        // of the board's centre
};

struct SuggestedView : View {
  int views = 0;    // how many of them
  double gain = 1;  // they divide the uncertainty of Transform_Cam_Tc by this
};

/// Why a photograph is left out.
enum class WhyLeftOut {
  kFitsTrackersOf,         // its row is that of another photograph
  kFirstCornerAtOtherEnd,  // the board was read from its other end
  kNotNumbers,             // its row is not a pose
  kNoPose,                 // its corners are not an image of the board
};

struct PerPhotograph {
  bool used = false;
  std::optional<WhyLeftOut> whyLeftOut;       // if known
  std::optional<std::size_t> fitsTrackersOf;  // index of that photograph
  double mm = 0;       // translation of a tracker that would make it fit, the smaller of the two
  double degrees = 0;  // rotation of a tracker that would make it fit
  double predictedPixels = 0;  // root mean square between corners and prediction
  Eigen::Matrix4d Transform_Cam_Chart = Eigen::Matrix4d::Identity();
  Eigen::Matrix4d Transform_Tc_Tr = Eigen::Matrix4d::Identity();
  std::vector<Eigen::Vector2d> predicted;  // corners by trackers and solution, pixels
  /// The same by the result that is checked, with its lens and the stated mounting; empty and NaN
  /// without one.
  std::vector<Eigen::Vector2d> byResult;
  double resultPixels = std::numeric_limits<double>::quiet_NaN();
  View view;
};

// What the cross-check reports.

/// No pair of transforms fits the photographs.
struct NoAgreement {
  std::size_t photographs = 0;
  std::size_t used = 0;
  double noiseMm = 0;  // of the trackers; NaN without a solution
  double noiseDegrees = 0;
};

/// The rows fit if they are read in another way.
struct MisreadRows {
  RowReading reading = RowReading::kQuaternionsInverted;
  double times = 1;     // how many times better
  double asReadMm = 0;  // median distance of the board's corners
  double fittedMm = 0;
};

/// The chart was rotated too little; the rotation that helps is that of Diversity.
struct TooLittleRotation {
  double amplification = 0;
  double rotationDegrees = 0;
  Eigen::Vector3d axisInChart = Eigen::Vector3d::Zero();
  int axes = 1;
};

struct TrackerMoved {
  Tracker tracker = Tracker::kCamera;
  std::size_t before = 0;  // index of the first photograph after the step
  double mm = 0;
  double degrees = 0;
  double gain = 0;  // how much better the shoot fits with the step, as chi squared of six
};

struct MountingOff {
  double offMm = 0;  // of the stated mounting
  double offDegrees = 0;
  double resultOffMm = 0;  // of the library's result, or of what the stated mounting makes of it
  double resultOffDegrees = 0;
  double p = 1;
  double pScaleFree = 1;  // with the size of the squares free as well
  std::optional<MountingMistake> likelyMistake;
};

/// Photographs that contradict the others.
struct BadPhotographs {
  double share = 0;  // 0 to 1
  double worstMm = 0;
  double worstDegrees = 0;
  std::vector<std::size_t> photographs;  // indices, the worst first
};

struct SquareSizeOff {
  double factor = 1;  // true edge divided by stated edge
  double standardError = 0;
  double p = 1;
};

/// A tracker sits differently on its mount in the second half of the shoot than in the first.
struct HalvesDiffer {
  double offMm = 0;
  double offDegrees = 0;
  double p = 1;
};

/// Transform_Cam_Tc is not known as accurately as it must be. Half-widths of 95 % intervals.
struct Uncertain {
  Accuracy needed;
  Accuracy found;
  Accuracy byLens;      // its part; squares add up
  Accuracy byTrackers;  // the rest
  double pixels = 0;    // in the image, at the chart's distance
  double distanceMetres = 0;
  std::optional<double> closerMetres;  // if photographs from this smaller distance help most
};

/// The larger part is the lens's.
struct LensUncertain : Uncertain {};

/// The larger part is the trackers'.
struct TrackersUncertain : Uncertain {};

struct TrackersNoisy {
  double mm = 0;       // along each axis
  double degrees = 0;  // about each axis
};

/// The library's result is off although the mounting is not refuted, or is unknown.
struct LibraryApart {
  double offMm = 0;
  double offDegrees = 0;
  double p = 1;
  bool mountingUnknown = false;
};

/// The corners show a bowed board; the solution takes it into account.
struct ChartNotFlat {
  double bowMm = 0;    // of the middle behind the ends, along the row, column or diagonal with most
  double movedMm = 0;  // of Transform_Cam_Tc by leaving the bow out
  double movedDegrees = 0;
};

/// The corners show squares that are wider than high; the solution takes it into account.
struct ChartStretched {
  double widerBy = 0;  // fraction of the edge
  double movedMm = 0;  // of Transform_Cam_Tc by leaving it out
  double movedDegrees = 0;
};

/// The corners show a distortion that k1 and k2 do not have; the solution takes it into account.
struct LensModel {
  double p1 = 0, p2 = 0, k3 = 0;
  double movedMm = 0;  // of Transform_Cam_Tc by leaving it out
  double movedDegrees = 0;
  double pixels = 0;  // in the image at the distance, with lens and transform both without it
  double distanceMetres = 0;
};

/// Where no board was, the photographs do not exclude a distortion that k1 and k2 leave out.
struct LensNotSeen {
  double share = 0;   // of the image, 0 to 1
  double pixels = 0;  // 95 %, the worst of it; NaN if not determined
  std::vector<ImagePart> parts;
};

/// Errors of the trackers that are not noise.
struct TrackerErrors {
  std::optional<TrackerFlaw> follow;  // nothing: neighbouring photographs share them
  double p = 1;
  double delaySeconds = 0;  // of the poses behind the photographs, if they follow the motion
  double mm = 0;  // root mean square over the photographs; NaN if they follow nothing known
  double degrees = 0;
  double movedMm = 0;  // of Transform_Cam_Tc by them, to first order
  double movedDegrees = 0;
};

/// Camera or chart moved while photographs were taken: the errors follow the blur.
struct NotStill {
  double p = 1;
  double widerPixels = 0;  // by which the edges are wider along the motion, root mean square
  double pixels = 0;       // by which the errors are larger along it, root mean square
  double mm = 0;           // the same at the chart
};

/// A tracker that has two seats on its mount.
struct TrackerLoose {
  Tracker tracker = Tracker::kCamera;
  double mm = 0;  // between the seats
  double degrees = 0;
  std::vector<std::size_t> photographs;  // indices of those in the seat with fewer
};

using FindingKind =
    std::variant<NoAgreement, MisreadRows, TooLittleRotation, TrackerMoved, MountingOff,
                 BadPhotographs, SquareSizeOff, HalvesDiffer, LensUncertain, TrackersUncertain,
                 TrackersNoisy, LibraryApart, ChartNotFlat, ChartStretched, LensModel, LensNotSeen,
                 TrackerErrors, NotStill, TrackerLoose>;

/// noAgreement, reading, tooLittleRotation, trackerMoved, mountingOff, badPhotographs, squareSize,
/// halvesDiffer, lensUncertain, trackersUncertain, trackersNoisy, libraryApart, chartNotFlat,
/// chartStretched, lensModel, lensNotSeen, notStill, trackerLoose; mountSags, volumeBent,
/// poseDependentErrors, delay or structuredErrors
const char* Name(const FindingKind& kind);

enum class Severity { kError, kWarning, kNote };

/// error, warning, note
const char* Name(Severity severity);

struct Finding {
  Severity severity = Severity::kNote;
  FindingKind kind;
};

/// NaN: could not be determined.
/// Above kMostAmplification, p and standard errors could not be determined either.
struct CrossCheck {
  bool solved = false;  // otherwise only findings, perPhotograph, cornerNoisePixels, lens are known
  std::size_t photographs = 0;
  std::size_t used = 0;
  Eigen::Matrix4d Transform_Cam_Tc = Eigen::Matrix4d::Identity();
  Eigen::Matrix4d Transform_Tr_Chart = Eigen::Matrix4d::Identity();
  Eigen::Matrix<double, 6, 6> covarianceCamTcTwist =
      Eigen::Matrix<double, 6, 6>::Zero();  // of the left twist
  Eigen::Matrix<double, 6, 6> covarianceTrChartTwist =
      Eigen::Matrix<double, 6, 6>::Zero();  // of the right twist
  StandardError standardErrorCamTc;    // the larger of the two below; infinite if the rotations
  StandardError standardErrorTrChart;  // of the chart do not determine the transforms
  StandardError standardErrorCamTcByNoise;     // if all errors are noise
  StandardError standardErrorCamTcByClusters;  // if neighbouring photographs share errors
  double t95 = 0;  // standard errors times this: half the width of the 95 % interval
  TransformComparison comparisonCamTc;    // other: the library's
  TransformComparison comparisonTrChart;  // other: the stated mounting
  double trackerNoiseDegrees = 0;         // about each axis of each tracker
  double trackerNoiseMm = 0;              // along each axis
  bool trackerNoiseApart = false;  // the shoot distinguishes rotation noise from translation noise
  double cornerNoisePixels = 0;    // along each axis
  LensErrors lens;
  std::optional<Mounting> mounting;  // to pass on; nothing if the shoot does not determine it
  std::optional<NominalMounting> nominalMounting;
  std::optional<Offset> library;
  Diversity diversity;
  Scale scale;
  SquareSize square;
  std::optional<Step> step;
  /// How accurately the rows show a delay of the poses, 95 %; nothing above 0.02 s, as if they are
  /// far apart in time, have no times, or nothing moved.
  std::optional<double> delayKnownToSeconds;
  std::optional<Offset> halves;
  ImageCells imageCells;
  std::vector<OnScreen> onScreen;             // the nearest first
  std::vector<PerPhotograph> perPhotograph;   // one for each photograph, in order
  std::vector<SuggestedView> suggestedViews;  // the best first
  /// How many photographs of such views halve the uncertainty of Transform_Cam_Tc; nothing if more
  /// than a hundred.
  std::optional<int> photographsToHalve;
  std::vector<Finding> findings;  // the worst first
  /// What later photographs are tested against; nothing if the shoot does not determine it.
  std::optional<Calibration> calibration;
};

}  // namespace trackedcam::crosscheck
