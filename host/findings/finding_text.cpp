#include "host/findings/finding_text.h"

#include <algorithm>
#include <cmath>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using crosscheck::MountingMistake;
using crosscheck::RowReading;
using Names = std::vector<std::string>;

constexpr std::size_t kNamed = 3;

// "a", "a and b", "a, b, c and d", "a, b, c and 9 more".
std::string List(const Names& names, std::size_t count) {
  // A fourth is shorter by its name than by "1 more".
  const std::size_t named = count <= kNamed + 1 ? count : kNamed;
  std::string text;
  for (std::size_t i = 0; i < named; ++i) {
    const bool isLast = i + 1 == count;
    text += (i == 0 ? "" : isLast ? " and " : ", ") + names.at(i);
  }
  return named == count ? text : text + " and " + std::to_string(count - named) + " more";
}

// "row 3", "rows 3, 4, 5 and 9 more", "all 40 rows".
std::string Text(const RowNumbers& rows) {
  const std::size_t count = rows.lines.size();
  if (count > 1 && count == rows.all) {
    return "all " + std::to_string(count) + " rows";
  }
  Names lines;
  for (std::size_t i = 0; i < std::min(count, kNamed + 1); ++i) {
    lines.push_back(std::to_string(rows.lines[i]));
  }
  return (count == 1 ? "row " : "rows ") + List(lines, count);
}

// "a.jpg, b.jpg, c.jpg and 9 more", "all 40 photographs".
std::string Text(const Names& photographs, std::size_t count, std::size_t all) {
  return count > 1 && count == all ? "all " + std::to_string(all) + " photographs"
                                   : List(photographs, count);
}

std::string Text(const ImageSize& size) {
  return std::to_string(size[0]) + " x " + std::to_string(size[1]);
}

Names WithSizes(const Names& photographs, const std::vector<ImageSize>& sizes) {
  Names names;
  for (std::size_t i = 0; i < std::min(photographs.size(), sizes.size()); ++i) {
    names.push_back(photographs[i] + " (" + Text(sizes[i]) + ')');
  }
  return names;
}

std::string Offset(double mm, double degrees) {
  return Fixed(mm, 1) + " mm and " + Fixed(degrees, 2) + " deg";
}

// "30.38", of millimetres of a sensor.
std::string Rounded(double number, double scale) {
  return Shortest(std::round(number * scale) / scale);
}

std::string ReasonText(crosscheck::WhyLeftOut why, const std::string& fitsTrackersOf) {
  switch (why) {
    case crosscheck::WhyLeftOut::kFitsTrackersOf:
      return "fits the trackers of " + fitsTrackersOf;
    case crosscheck::WhyLeftOut::kFirstCornerAtOtherEnd:
      return "the board was read from its other end";
    case crosscheck::WhyLeftOut::kNotNumbers:
      return "a pose is not a number";
    case crosscheck::WhyLeftOut::kNoPose:
      return "its corners fit no view of the board";
  }
  return "";
}

// "39 mm, 2.9 deg: the board was read from its other end"
std::string Text(const Disagreement& disagreement) {
  std::string text;
  if (std::isfinite(disagreement.mm)) {
    text = Fixed(disagreement.mm, 0) + " mm, " + Fixed(disagreement.degrees, 1) + " deg";
  }
  if (disagreement.why) {
    text += (text.empty() ? "" : ": ") + ReasonText(*disagreement.why, disagreement.fitsTrackersOf);
  }
  return text;
}

const char* ReadingText(RowReading reading) {
  switch (reading) {
    case RowReading::kQuaternionsInverted:
      return "the quaternions give the inverse rotation";
    case RowReading::kOrderXyzw:
      return "the order of the quaternions is x, y, z, w instead of w, x, y, z";
    case RowReading::kTrackersExchanged:
      return "the chart's tracker comes first and the camera's second";
    case RowReading::kRowsLate:
      return "each row has the trackers of the photograph before";
    case RowReading::kRowsEarly:
      return "each row has the trackers of the photograph after";
    case RowReading::kMillimetres:
      return "the positions are in millimetres";
    case RowReading::kCentimetres:
      return "the positions are in centimetres";
    case RowReading::kLeftHanded:
      return "the poses are left-handed, as engines store them";
    case RowReading::kMirroredX:
      return "the poses are left-handed, with x reversed";
    case RowReading::kMirroredY:
      return "the poses are left-handed, with y reversed";
    case RowReading::kMirroredZ:
      return "the poses are left-handed, with z reversed";
  }
  return "";
}

constexpr const char* kFormats = "Use JPEG, PNG, TIFF, BMP or WebP.";
constexpr const char* kCheckLogFolder =
    "Check the free space and the permissions of the log folder, and calibrate again.";
constexpr const char* kTakeMountingFound = "Calibrate again with the mounting that was found.";

struct Sentences {
  const char* id;
  std::string text;
  std::string advice;
};

/// What is said of each kind.
struct Writer {
  const Names& photographs;

  Sentences operator()(const RowFault& fault) const {
    const std::string rows = Text(fault.rows);
    const auto separator = [&](const char* name) -> Sentences {
      return {"separator",
              std::string(name) + " separate the fields in " + rows +
                  ", but only commas are read, so no field is found.",
              "Save the file with commas between the fields."};
    };
    switch (fault.kind) {
      case RowFault::Kind::kSemicolons:
        return separator("Semicolons");
      case RowFault::Kind::kTabs:
        return separator("Tabs");
      case RowFault::Kind::kBars:
        return separator("Vertical bars");
      case RowFault::Kind::kDecimalCommas:
        return {"decimalComma",
                "Numbers have a decimal comma in " + rows + ", and each comma ends a field.",
                "Save the file with decimal points: 1.25, not 1,25."};
      case RowFault::Kind::kQuotes:
        return {"quotedFields",
                "Fields are in quotes in " + rows +
                    "; a quoted number is read as 0, and a quoted path finds no photograph.",
                "Save the file without quotes."};
      case RowFault::Kind::kExtraColumn:
        return {"extraColumn",
                "There is an extra column before the photograph in " + rows +
                    ", so every number is read from the wrong field.",
                "Remove the column: a row is the time, the photograph, then seven numbers for each "
                "tracker."};
      case RowFault::Kind::kTimeWithT:
        return {"timesBeginWithT",
                "The time begins with T in " + rows + ", and such lines are skipped.",
                "Write times that begin with a digit."};
      case RowFault::Kind::kNotUtf8:
        return {"encoding",
                "Characters are not UTF-8 in " + rows + ", but in no path of a photograph.",
                "Save the file as UTF-8."};
      case RowFault::Kind::kPathNotUtf8:
        return {"pathEncoding",
                "The path of the photograph is not UTF-8 in " + rows + ", so it cannot be opened.",
                "Save the file as UTF-8, or use ASCII letters in the names of the photographs."};
      case RowFault::Kind::kMissingFields:
        return {"missingFields", "Fields are missing or empty in " + rows + "; each is read as 0.",
                "Write 16 fields in each row: time, photograph, then x, y, z, qw, qx, qy, qz of "
                "the camera's tracker and of the chart's."};
      case RowFault::Kind::kLostTracking:
        return {"lostTracking",
                "Tracking was lost in " + rows + ": a tracker is at the origin, without rotation.",
                "Remove these rows from the file, and keep both trackers in view of the tracking "
                "system."};
      case RowFault::Kind::kZeroQuaternion:
        return {"zeroQuaternion",
                "The quaternion of a tracker is zero in " + rows + ", so its rotation is unknown.",
                "Record w, x, y and z of each tracker's quaternion, or remove these rows from the "
                "file."};
      case RowFault::Kind::kRepeatedPoses:
        return {
            "repeatedPoses",
            "Both trackers repeat the poses of an earlier row in " + rows + ", to the last digit.",
            "If something moved between the photographs, the recorder did not update: remove "
            "these rows from the file."};
      case RowFault::Kind::kBlankLine:
        return {"blankLines", "Blank lines count as rows without a photograph: " + rows + '.',
                "Delete the blank lines."};
      case RowFault::Kind::kHeader:
        return {"header",
                "The header in " + rows +
                    " does not begin with \"Time,\", so it counts as a row without a photograph.",
                "Begin the header with \"Time,\"."};
    }
    return {};
  }

  Sentences operator()(const ValueFault& fault) const {
    const std::string row = std::to_string(fault.rows.lines.at(0));
    const std::string where = Text(fault.rows) + " (field " + std::to_string(fault.field) +
                              " of row " + row + (fault.photograph.empty() ? "" : ", ") +
                              fault.photograph + ')';
    constexpr const char* kNoPose = "Remove these rows from the file: the tracker gave no pose.";
    switch (fault.kind) {
      case ValueFault::Kind::kNotFinite:
        return {
            "noNumber",
            "A value is nan or infinite in " + where + "; one such row can spoil the whole result.",
            kNoPose};
      case ValueFault::Kind::kTooLarge:
        return {
            "tooLarge",
            "A value is beyond +/-1e9 in " + where + "; one such row can spoil the whole result.",
            kNoPose};
      case ValueFault::Kind::kText:
        return {"noNumber",
                "A field has text instead of a number in " + where +
                    ", so it is read as 0 or only in part.",
                "Write plain numbers, such as -1.25 or 1.5e-3, or remove these rows from the "
                "file."};
    }
    return {};
  }

  Sentences operator()(const QuaternionLength& fault) const {
    return {"quaternionLength",
            "The quaternion of a tracker does not have length 1 in " + Text(fault.rows) + " (" +
                Rounded(fault.length, 1000) + " in row " + std::to_string(fault.rows.lines.at(0)) +
                ").",
            "Check the order of the fields: position x, y, z, then quaternion w, x, y, z, of the "
            "camera's tracker and then of the chart's."};
  }

  Sentences operator()(const FrozenPose& fault) const {
    return {"frozenPose",
            std::string("The ") + Name(fault.tracker) +
                "'s tracker repeats the pose of the row before in " + Text(fault.rows) +
                ", to the last digit, while the other tracker moves.",
            "If the tracker moved between these photographs, its pose was not updated: remove "
            "these rows from the file."};
  }

  Sentences operator()(const RepeatedRows& fault) const {
    return {"repeatedRows",
            "The photograph of an earlier row is repeated in " + Text(fault.rows) +
                ", and counts each time.",
            "Keep one row for each photograph."};
  }

  Sentences operator()(const LengthUnit& fault) const {
    return {"lengthUnit",
            "The two trackers are " + Fixed(fault.metres, 0) +
                " m apart; positions in millimetres would make it " +
                Fixed(fault.metres / 1000, 2) + " m, in centimetres " +
                Fixed(fault.metres / 100, 2) + " m.",
            "Set the unit of the positions with --tracker-units, or record them in metres."};
  }

  Sentences operator()(const Utf16Text& /*fault*/) const {
    return {"encoding", "The data file is UTF-16 text, so no row can be read.",
            "Save the file as UTF-8, with commas between the fields."};
  }

  Sentences operator()(const PhotographFault& fault) const {
    const std::string names = Text(photographs, fault.count, fault.all);
    switch (fault.kind) {
      case PhotographFault::Kind::kNotAFile:
        return {"notAFile",
                "The data file names a pipe, a device or a folder instead of a photograph, which "
                "is left out: " +
                    names + '.',
                "Name image files in the second field."};
      case PhotographFault::Kind::kUnreadable:
        return {"unreadablePhotographs", "Photographs are empty or cannot be read: " + names + '.',
                "Copy them again."};
      case PhotographFault::Kind::kOtherFormat:
        return {"otherFormat", "Images of an unsupported format are left out: " + names + '.',
                kFormats};
      case PhotographFault::Kind::kUnknownFormat:
        return {"unknownFormat",
                "Files are not images of a known format, so their sizes are not checked: " + names +
                    '.',
                kFormats};
    }
    return {};
  }

  Sentences operator()(const MissingPhotographs& fault) const {
    const std::string& name = fault.nameInFolder;
    return {"missingPhotographs",
            "Photographs cannot be found: " + Text(photographs, fault.count, fault.all) + '.',
            fault.folder.empty()
                ? "Put the photographs where the data file says, or correct its second field."
            : fault.isWorkingFolder
                ? "Set --working-folder " + fault.folder + ": " + name + " is there."
                : name + " is in " + fault.folder +
                      ": correct the paths in the second field, or leave only the names and set "
                      "--working-folder."};
  }

  Sentences operator()(const HugePhotographs& fault) const {
    return {"hugePhotograph",
            "Photographs above 200 megapixels are left out: " +
                Text(WithSizes(photographs, fault.sizes), fault.count, fault.all) + '.',
            "Use the image size of the video."};
  }

  Sentences operator()(const PhotographSizes& fault) const {
    return {"photographSizes",
            "Photographs differ in size from the rest (" + Text(fault.common) +
                " pixels): " + List(WithSizes(photographs, fault.sizes), fault.count) + '.',
            "Remove them from the data file, or take all photographs in one size."};
  }

  Sentences operator()(const OrientationTag& fault) const {
    const std::string names = Text(photographs, fault.count, fault.all);
    return {"orientationTag",
            (fault.isMixed ? "An orientation tag rotates some photographs and not the others, so "
                             "their sizes differ: "
                           : "An orientation tag makes decoders rotate the pixels, so the result "
                             "is for the rotated images, not for the camera: ") +
                names + '.',
            "Remove the tags without rotating the pixels, and switch off automatic rotation in the "
            "camera."};
  }

  Sentences operator()(const Aspect& fault) const {
    const auto [width, height] = fault.sensorMm;
    const double aspect = static_cast<double>(fault.image[0]) / static_cast<double>(fault.image[1]);
    const double usedWidth = std::min(width, height * aspect);
    const auto rounded = [](double mm) { return Rounded(mm, 100); };
    return {"aspect",
            "The photographs (" + Text(fault.image) +
                " pixels) have another aspect ratio than the sensor (" + rounded(width) + " x " +
                rounded(height) + " mm), so the focal length in millimetres is wrong.",
            "Give the part of the sensor that the image uses: --sensor " + rounded(usedWidth) +
                'x' + rounded(usedWidth / aspect) + " if the pixels are square."};
  }

  Sentences operator()(const FewUsed& fault) const {
    return {"fewUsed",
            "The result is from only " + std::to_string(fault.used) + " of the " +
                std::to_string(fault.seen) + " photographs in which the board was found.",
            "Take more photographs, at least 24, with camera and chart at rest."};
  }

  Sentences operator()(const BoardNowhere& fault) const {
    const auto size = [&](int more) {
      return std::to_string(fault.columns + more) + 'x' + std::to_string(fault.rows + more);
    };
    return {"boardNowhere",
            "No board of " + size(0) + " inner corners was found in any photograph.",
            "Count inner corners, not squares: a chart of " + size(0) + " squares has " + size(-1) +
                " inner corners."};
  }

  Sentences operator()(const LogIncomplete& fault) const {
    return {"logIncomplete",
            std::string("The log of the run is incomplete") +
                (fault.isCrossCheckable ? "." : ", so the result cannot be cross-checked."),
            kCheckLogFolder};
  }

  Sentences operator()(const ImagesMissing& fault) const {
    return {"imagesMissing",
            "Reprojected images are missing or incomplete: those of " +
                Text(photographs, fault.count, fault.all) + '.',
            kCheckLogFolder};
  }

  Sentences operator()(const NotRefined& fault) const {
    return {"notRefined",
            "The second run, with the mounting found, could not begin: " + fault.reason + '.',
            "Check the log folder and the disk, and calibrate again."};
  }

  Sentences operator()(const NotCrossChecked& fault) const {
    return {"notCrossChecked", "The cross-check stopped: " + fault.reason + '.',
            "Keep the log and report it."};
  }

  Sentences operator()(const BadPhotographs& fault) const {
    const std::size_t count = photographs.size();
    const std::size_t named = std::min(count, kNamed);
    std::string names;
    for (std::size_t i = 0; i < named; ++i) {
      const std::string more = Text(fault.disagreements.at(i));
      names += (i == 0 ? "" : ", ") + photographs[i] + (more.empty() ? "" : " (" + more + ')');
    }
    if (count > named) {
      names += " and " + std::to_string(count - named) + " more";
    }
    return {Name(crosscheck::BadPhotographs{}),
            (count == 1 ? "One photograph contradicts"
                        : std::to_string(count) + " photographs contradict") +
                " the others: " + names + '.',
            count == 1
                ? "Calibrate again without it, and check what happened when it was taken."
                : "Calibrate again without them, and check what happened when they were taken."};
  }

  Sentences operator()(const crosscheck::NoAgreement& fault) const {
    return {Name(fault),
            "No transform and mounting fit the photographs: trackers and images contradict each "
            "other in most of the " +
                std::to_string(fault.photographs) + " photographs.",
            "Check that each row has the trackers of its own photograph, that both trackers are "
            "rigidly mounted, and that the board is the one in the photographs."};
  }

  Sentences operator()(const crosscheck::MisreadRows& fault) const {
    return {Name(fault),
            "The rows fit " + Fixed(fault.times, 0) +
                " times better if they are read another way: " + ReadingText(fault.reading) + '.',
            fault.reading == RowReading::kQuaternionsInverted
                ? "Calibrate again with inverted tracker quaternions."
                : "Correct the recorder, or convert the data file, and calibrate again."};
  }

  Sentences operator()(const crosscheck::TooLittleRotation& fault) const {
    const auto axis = fault.axisInChart.cwiseAbs();
    const char* direction = axis.z() > axis.x() && axis.z() > axis.y()
                                ? "the axis that points out of the chart"
                            : axis.x() > axis.y() ? "the chart's long rows of corners"
                                                  : "the chart's columns of corners";
    return {Name(fault),
            "The chart was rotated too little to separate the transform from the mounting: errors "
            "grow " +
                Fixed(fault.amplification, 1) + " times.",
            std::string("Shoot again, or add photographs, with the chart rotated more about ") +
                direction + (fault.axes == 2 ? ", and about an axis across it" : "") + ", by " +
                Fixed(fault.rotationDegrees, 0) + " deg to either side."};
  }

  Sentences operator()(const crosscheck::TrackerMoved& fault) const {
    return {Name(fault),
            std::string("The tracker on the ") + Name(fault.tracker) +
                " moved on its mount before " + photographs.at(0) + ", by " +
                Offset(fault.mm, fault.degrees) + ", and stayed there.",
            "Fix the tracker and shoot again, or calibrate only with the photographs before or "
            "after the move."};
  }

  Sentences operator()(const crosscheck::MountingOff& fault) const {
    return {Name(fault),
            "The stated mounting of the chart's tracker is off by " +
                Offset(fault.offMm, fault.offDegrees) + ", so the result is off by " +
                Offset(fault.resultOffMm, fault.resultOffDegrees) +
                (fault.likelyMistake
                     ? std::string("; likely mistake: ") + MistakeText(*fault.likelyMistake) + '.'
                     : "."),
            kTakeMountingFound};
  }

  Sentences operator()(const crosscheck::SquareSizeOff& fault) const {
    return {Name(fault),
            "The squares seem " + Fixed(fault.factor, 3) + " times as large as stated (" +
                Fixed(100 * (fault.factor - 1), 1) + " %, +/- " +
                Fixed(200 * fault.standardError, 1) + " %).",
            "Measure a row of squares on the chart with a steel ruler and correct the square "
            "size."};
  }

  Sentences operator()(const crosscheck::HalvesDiffer& fault) const {
    return {Name(fault),
            "The first and the second half of the shoot differ by " +
                Offset(fault.offMm, fault.offDegrees) + ": something drifted.",
            "Let trackers and base stations warm up, fix what is loose, and shoot again."};
  }

  Sentences operator()(const crosscheck::LensUncertain& fault) const {
    return {
        Name(fault),
        "The lens alone makes the transform uncertain by " + Offset(fault.mm, fault.degrees) +
            (std::isfinite(fault.pixels) ? ", and the image by " + Fixed(fault.pixels, 1) +
                                               " pixels at " + Fixed(fault.distanceMetres, 0) + " m"
                                         : "") +
            " (95 %).",
        "Add photographs with the chart tilted more and in the corners of the image."};
  }

  Sentences operator()(const crosscheck::TrackersNoisy& fault) const {
    return {Name(fault),
            "The trackers are noisy: " + Fixed(fault.mm, 1) + " mm along and " +
                Fixed(fault.degrees, 2) + " deg about each axis.",
            "Hold camera and chart still for each photograph, and keep the trackers in good view "
            "of the tracking system."};
  }

  Sentences operator()(const crosscheck::LibraryApart& fault) const {
    const std::string off = "The result is off by " + Offset(fault.offMm, fault.offDegrees);
    if (fault.mountingUnknown) {
      return {Name(fault),
              off +
                  ": the mounting that the library was given is off, or bad photographs were "
                  "used.",
              kTakeMountingFound};
    }
    return {Name(fault),
            off + ", but not because of the stated mounting: too few or bad photographs were used.",
            "Calibrate again without the photographs that contradict the others, or with more "
            "photographs."};
  }
};

Sentences SentencesOf(const Finding& finding) {
  return std::visit(Writer{finding.photographs}, finding.kind);
}

}  // namespace

const char* Id(const Finding& finding) {
  return SentencesOf(finding).id;
}

std::string Text(const Finding& finding) {
  return SentencesOf(finding).text;
}

std::string Advice(const Finding& finding) {
  return SentencesOf(finding).advice;
}

const char* MistakeText(MountingMistake mistake) {
  switch (mistake) {
    case MountingMistake::kInverse:
      return "the inverse was given, the tracker on the chart instead of the chart on the tracker";
    case MountingMistake::kAngleSigns:
      return "an angle has the wrong sign";
    case MountingMistake::kAngleOrder:
      return "the angles were composed in another order than Rx * Ry * Rz";
    case MountingMistake::kMillimetres:
      return "millimetres were given as metres";
    case MountingMistake::kCentimetres:
      return "centimetres were given as metres";
    case MountingMistake::kReportedAxes:
      return "it was measured in the axes that the tracking system reports";
    case MountingMistake::kBoardTurned:
      return "it was measured to the corner at the other end of the board";
  }
  return "";
}

std::string ReasonText(const crosscheck::PerPhotograph& photograph,
                       const std::vector<std::string>& photographs) {
  if (!photograph.whyLeftOut) {
    return "";
  }
  return ReasonText(*photograph.whyLeftOut,
                    photograph.fitsTrackersOf ? photographs.at(*photograph.fitsTrackersOf) : "");
}

std::string Text(const crosscheck::SuggestedView& view) {
  // Clockwise from the right of the image, as its y axis points down.
  constexpr std::array<const char*, 8> kDirections = {
      "right", "bottom right", "bottom", "bottom left", "left", "top left", "top", "top right"};
  const auto eighth =
      static_cast<std::size_t>(std::lround(view.tiltDirectionDegrees / 45) % 8 + 8) % 8;
  return std::to_string(view.views) + (view.views == 1 ? " photograph" : " photographs") +
         " from " + Fixed(view.distanceMetres, 1) + " m, the chart tilted by " +
         Fixed(view.tiltDegrees, 0) + " deg to face the " + kDirections.at(eighth) +
         " of the image and rotated by " + Fixed(view.rollDegrees, 0) + " deg in it";
}

}  // namespace trackedcam::host
