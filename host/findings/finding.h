// What a user must know about a shoot or its result, as named values. finding_text.h makes the
// sentences, finding_json.h the form for other programs.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "crosscheck/result.h"

namespace trackedcam::host {

using crosscheck::Severity;

// From the rows of the data file.

/// Rows by their line in the file, counted from 1.
struct RowNumbers {
  std::vector<std::size_t> lines;  // ascending, at least one
  std::size_t all = 0;             // rows of the file; 0 if the lines are not all of them rows
};

struct RowFault {
  enum class Kind {
    kSemicolons,
    kTabs,
    kBars,
    kDecimalCommas,
    kQuotes,
    kExtraColumn,
    kPathFirst,
    kTimeWithT,
    kNotUtf8,  // outside the paths
    kPathNotUtf8,
    kMissingFields,
    kLostTracking,
    kZeroQuaternion,
    kRepeatedPoses,
    kBlankLine,
    kHeader,
  };
  Kind kind = Kind::kSemicolons;
  RowNumbers rows;
};

/// A field that is not a number that a pose can have.
struct ValueFault {
  enum class Kind { kNotFinite, kTooLarge, kText };
  Kind kind = Kind::kNotFinite;
  RowNumbers rows;
  std::size_t field = 0;   // in the first of the rows, counted from 1
  std::string photograph;  // of that row; may be empty
};

struct QuaternionLength {
  RowNumbers rows;
  double length = 0;  // in the first of the rows
};

/// A tracker that repeats its pose while the other one moves.
struct FrozenPose {
  crosscheck::Tracker tracker = crosscheck::Tracker::kCamera;
  RowNumbers rows;
  bool isLeftOut = true;  // these rows; not if they are so many that it may have stood still
};

/// Rows whose photograph an earlier row has.
struct RepeatedRows {
  RowNumbers rows;
  std::size_t different = 0;  // photographs of the file
};

struct LengthUnit {
  double metres = 0;  // between the trackers, median
};

/// The data file is UTF-16 text.
struct Utf16Text {};

// From the photographs' files. Finding::photographs has their names.

using ImageSize = std::array<std::uint64_t, 2>;  // width, height

struct PhotographFault {
  enum class Kind { kNotAFile, kUnreadable, kCostly, kOtherFormat, kCutShort };
  Kind kind = Kind::kNotAFile;
  std::size_t count = 0;
  std::size_t all = 0;  // photographs of the shoot
};

struct MissingPhotographs {
  enum class Cause { kUnknown, kSpaces, kBackslashes };  // around the path; in it
  std::size_t count = 0;
  std::size_t all = 0;
  std::string folder;            // with the first of them; empty: not found
  std::string nameInFolder;      // its path in the data file, or the last part of it
  bool isWorkingFolder = false;  // the paths of the data file begin in that folder
  Cause cause = Cause::kUnknown;
  std::string rightPath = {};  // of the first of them, if the cause is known
};

struct HugePhotographs {
  std::vector<ImageSize> sizes;  // in the order of Finding::photographs
  std::size_t count = 0;
  std::size_t all = 0;
};

struct PhotographSizes {
  ImageSize common = {};         // that most photographs have
  std::vector<ImageSize> sizes;  // of the others, in the order of Finding::photographs
  std::size_t count = 0;
};

struct OrientationTag {
  bool isMixed = false;  // only some photographs are rotated, so sizes differ
  std::size_t count = 0;
  std::size_t all = 0;
};

/// The photographs' aspect ratio is not the sensor's.
struct Aspect {
  ImageSize image = {};
  std::array<double, 2> sensorMm = {};
};

/// Photographs that are blurred or out of focus.
struct UnsharpPhotographs {
  std::vector<double> edgeWidths;  // pixels, in the order of Finding::photographs, the worst first
  std::size_t count = 0;
  std::size_t all = 0;
};

// From the run.

struct FewUsed {
  std::size_t used = 0;
  std::size_t seen = 0;              // photographs in which the board was found
  std::optional<std::size_t> agree;  // with each other, by the cross-check
};

struct BoardNowhere {
  int columns = 0;  // inner corners
  int rows = 0;
};

struct LogIncomplete {
  bool isCrossCheckable = true;
};

struct ImagesMissing {
  std::size_t count = 0;
  std::size_t all = 0;
};

/// Without the photographs that contradict the others, too few are left for a second run.
struct TooFewAgree {
  std::size_t agree = 0;
  std::size_t all = 0;  // photographs that were cross-checked
};

/// There is no result of a second run.
struct NotRefined {
  std::string reason;  // a sentence
  std::string advice;
};

struct NotCrossChecked {
  std::string reason;  // a sentence
};

// From the cross-check.

struct Disagreement {
  double mm = 0;
  double degrees = 0;
  std::optional<crosscheck::WhyLeftOut> why;
  std::string fitsTrackersOf;  // a photograph, for that reason
};

/// Photographs that contradicted the others in the first run, so the second was without them.
struct LeftOutPhotographs {
  std::vector<Disagreement> disagreements;  // in the order of Finding::photographs
};

struct BadPhotographs {
  double share = 0;                         // of all, 0 to 1
  std::vector<Disagreement> disagreements;  // in the order of Finding::photographs, the worst first
  bool areEnoughLeft = true;                // to calibrate without them
};

using FindingKind =
    std::variant<RowFault, ValueFault, QuaternionLength, FrozenPose, RepeatedRows, LengthUnit,
                 Utf16Text, PhotographFault, MissingPhotographs, HugePhotographs, PhotographSizes,
                 OrientationTag, Aspect, UnsharpPhotographs, FewUsed, BoardNowhere, LogIncomplete,
                 ImagesMissing, TooFewAgree, NotRefined, NotCrossChecked, LeftOutPhotographs,
                 BadPhotographs, crosscheck::NoAgreement, crosscheck::MisreadRows,
                 crosscheck::TooLittleRotation, crosscheck::TrackerMoved, crosscheck::MountingOff,
                 crosscheck::SquareSizeOff, crosscheck::HalvesDiffer, crosscheck::LensUncertain,
                 crosscheck::TrackersUncertain, crosscheck::TrackersNoisy, crosscheck::LibraryApart,
                 crosscheck::ChartNotFlat, crosscheck::ChartStretched, crosscheck::LensModel,
                 crosscheck::LensNotSeen, crosscheck::TrackerErrors, crosscheck::NotStill,
                 crosscheck::TrackerLoose>;

struct Finding {
  Severity severity = Severity::kNote;
  FindingKind kind;
  std::vector<std::string> photographs;  // by name; of many rows or files the first hundred
};

constexpr std::size_t kMostNamedPhotographs = 100;

/// With fewer the library fails.
constexpr std::size_t kLeastPhotographs = 12;

/// An error if a fault concerns more than 30 % of all rows, so that the result cannot be right;
/// otherwise a warning: a few rows drop out or are outvoted.
Severity SeverityOf(std::size_t some, std::size_t all);

/// Of rows or photographs that are left out before they can do harm: a note, a warning above 30 %,
/// an error if they are why fewer than 12 are left.
Severity SeverityOfLeftOut(std::size_t some, std::size_t all);

/// The worst first; equally severe ones stay in order.
void SortFindings(std::vector<Finding>& findings);

/// A second run with the mounting found, without the bad photographs, can give a better result.
bool CanRefine(const Finding& finding);

/// About the mounting or the result of a run, which a second run mends, and not about the shoot.
bool IsAboutRun(const Finding& finding);

/// The rows do not fit the photographs: a second run with them can find nothing.
bool NothingFits(const Finding& finding);

/// The result could not be compared with a cross-check, or the comparison says nothing.
bool IsUnchecked(const Finding& finding);

/// mm or cm, whichever brings the trackers to a distance for a chart.
std::string LikelyUnit(const LengthUnit& length);

/// Something that was computed could not be written. It says nothing about the result.
bool IsOutputError(const Finding& finding);

}  // namespace trackedcam::host
