#include "host/findings/finding_text.h"

#include <algorithm>
#include <cmath>

#include "host/findings/input_sentences.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using crosscheck::MountingMistake;
using crosscheck::RowReading;

std::string Offset(double mm, double degrees) {
  return Fixed(mm, 1) + " mm and " + Fixed(degrees, 2) + " deg";
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

const char* PartText(crosscheck::ImagePart part) {
  switch (part) {
    case crosscheck::ImagePart::kUpperLeft:
      return "in the upper left";
    case crosscheck::ImagePart::kTop:
      return "at the top";
    case crosscheck::ImagePart::kUpperRight:
      return "in the upper right";
    case crosscheck::ImagePart::kLeft:
      return "at the left edge";
    case crosscheck::ImagePart::kMiddle:
      return "in the middle";
    case crosscheck::ImagePart::kRight:
      return "at the right edge";
    case crosscheck::ImagePart::kLowerLeft:
      return "in the lower left";
    case crosscheck::ImagePart::kBottom:
      return "at the bottom";
    case crosscheck::ImagePart::kLowerRight:
      return "in the lower right";
  }
  return "";
}

// All of them: each is a place to hold the chart.
std::string PartsText(const Names& parts) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
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
      return "the poses are left-handed, as engines store them, in metres";
    case RowReading::kMirroredX:
      return "the poses are left-handed, with x reversed";
    case RowReading::kMirroredY:
      return "the poses are left-handed, with y reversed";
    case RowReading::kMirroredZ:
      return "the poses are left-handed, with z reversed";
    case RowReading::kInches:
      return "the positions are in inches";
    case RowReading::kEngineCentimetres:
      return "the poses are left-handed and in centimetres, as Unreal stores them";
    case RowReading::kCameraInverted:
      return "the quaternions of the camera's tracker, not of the chart's, give the inverse "
             "rotation";
    case RowReading::kChartInverted:
      return "the quaternions of the chart's tracker, not of the camera's, give the inverse "
             "rotation";
    case RowReading::kCameraLate:
      return "each row has the camera's tracker of the photograph before";
    case RowReading::kChartLate:
      return "each row has the chart's tracker of the photograph before";
  }
  return "";
}

// Empty if no option reads the rows in this way.
const char* OptionFor(RowReading reading) {
  switch (reading) {
    case RowReading::kQuaternionsInverted:
      return "--invert-tracker-quaternions";
    case RowReading::kOrderXyzw:
      return "--quaternion-order=xyzw";
    case RowReading::kMillimetres:
      return "--tracker-units=mm";
    case RowReading::kCentimetres:
      return "--tracker-units=cm";
    case RowReading::kInches:
      return "--tracker-units=in";
    case RowReading::kLeftHanded:
      return "--tracker-axes=unity";
    case RowReading::kEngineCentimetres:
      return "--tracker-axes=unreal";
    default:
      return "";
  }
}

std::string ReadingAdvice(RowReading reading) {
  const std::string option = OptionFor(reading);
  if (option.empty()) {
    return "Correct the recorder, or convert the data file, and calibrate again.";
  }
  return "Calibrate again with " + option +
         (reading == RowReading::kQuaternionsInverted ? ", or without it if it is set."
          : reading == RowReading::kLeftHanded
              ? ", or if Unreal recorded the poses in metres, with --tracker-axes=unreal "
                "--tracker-units=m."
              : ".");
}

constexpr const char* kCheckLogFolder =
    "Check the free space and the permissions of the log folder, and calibrate again.";
constexpr const char* kTakeMountingFound = "Calibrate again with the mounting that was found.";

/// What is said of each kind.
struct Writer : InputWriter {
  using InputWriter::operator();

  Sentences operator()(const FewUsed& fault) const {
    return {"fewUsed",
            "The result is from only " + std::to_string(fault.used) + " of the " +
                std::to_string(fault.seen) + " photographs in which the board was found" +
                (fault.agree ? "; by the cross-check, " + std::to_string(*fault.agree) + " agree."
                             : "."),
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
                PhotographNames(photographs, fault.count, fault.all) + '.',
            kCheckLogFolder};
  }

  Sentences operator()(const NotRefined& fault) const {
    return {"notRefined",
            "There is no result of a second run, with the mounting found: " + fault.reason,
            fault.advice};
  }

  Sentences operator()(const TooFewAgree& fault) const {
    return {"tooFewAgree",
            "Only " + std::to_string(fault.agree) + " of the " + std::to_string(fault.all) +
                " photographs agree with each other, too few for a second run without the rest, "
                "which needs " +
                std::to_string(kLeastPhotographs) + '.',
            "Take more photographs, at least 24, with camera and chart at rest, and calibrate "
            "again."};
  }

  Sentences operator()(const NotCrossChecked& fault) const {
    return {"notCrossChecked", "The result is not cross-checked: " + fault.reason,
            "Calibrate again; if that does not help, keep the log and report it."};
  }

  // "a.jpg (39 mm, 2.9 deg), b.jpg and 9 more"
  std::string WithDisagreements(const std::vector<Disagreement>& disagreements) const {
    const std::size_t count = photographs.size();
    const std::size_t named = std::min(count, kNamed);
    std::string names;
    for (std::size_t i = 0; i < named; ++i) {
      const std::string more = Text(disagreements.at(i));
      names += (i == 0 ? "" : ", ") + photographs[i] + (more.empty() ? "" : " (" + more + ')');
    }
    return count > named ? names + " and " + std::to_string(count - named) + " more" : names;
  }

  Sentences operator()(const LeftOutPhotographs& fault) const {
    const bool isOne = photographs.size() == 1;
    return {"leftOutPhotographs",
            "The second run was without " +
                (isOne ? "a photograph that contradicts"
                       : std::to_string(photographs.size()) + " photographs that contradict") +
                " the others: " + WithDisagreements(fault.disagreements) + '.',
            isOne ? "Check what happened when it was taken."
                  : "Check what happened when they were taken."};
  }

  Sentences operator()(const BadPhotographs& fault) const {
    const std::size_t count = photographs.size();
    return {Name(crosscheck::BadPhotographs{}),
            (count == 1 ? "One photograph contradicts"
                        : std::to_string(count) + " photographs contradict") +
                " the others: " + WithDisagreements(fault.disagreements) + '.',
            std::string(!fault.areEnoughLeft ? "Check"
                        : count == 1         ? "Calibrate again without it, and check"
                                             : "Calibrate again without them, and check") +
                (count == 1 ? " what happened when it was taken."
                            : " what happened when they were taken.")};
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
            ReadingAdvice(fault.reading)};
  }

  Sentences operator()(const crosscheck::TooLittleRotation& fault) const {
    const auto axis = fault.axisInChart.cwiseAbs();
    const char* direction = axis.z() > axis.x() && axis.z() > axis.y()
                                ? "the axis that points out of the chart"
                            : axis.x() > axis.y() ? "the chart's long rows of corners"
                                                  : "the chart's columns of corners";
    return {Name(fault),
            std::string("The chart was rotated too little to separate the transform from the "
                        "mounting") +
                (fault.amplification <= crosscheck::kMostAmplification
                     ? ": errors grow " + Fixed(fault.amplification, 1) + " times."
                     : ", so the result cannot be checked."),
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
            "The mounting of the chart's tracker that the library was given is off by " +
                Offset(fault.offMm, fault.offDegrees) + ", so the result is off by " +
                Offset(fault.resultOffMm, fault.resultOffDegrees) +
                (fault.likelyMistake
                     ? std::string("; likely mistake: ") + MistakeText(*fault.likelyMistake) + '.'
                     : "."),
            kTakeMountingFound};
  }

  Sentences operator()(const crosscheck::SquareSizeOff& fault) const {
    return {Name(fault),
            "The squares seem " + Fixed(fault.factor, 4) +
                " times as large as stated, measured by the trackers" +
                (std::isfinite(fault.standardError)
                     ? " (" + Fixed(100 * (fault.factor - 1), 2) + " %, +/- " +
                           Fixed(200 * fault.standardError, 2) + " %)."
                     : "; other findings may explain a part of it."),
            "Measure a row of squares on the chart with a steel ruler, and correct the square "
            "size. If it is right, the tracking system measures lengths wrongly: calibrate it."};
  }

  Sentences operator()(const crosscheck::ChartNotFlat& fault) const {
    return {Name(fault),
            "The chart is bowed: its middle is " + Fixed(std::abs(fault.bowMm), 2) + " mm " +
                (fault.bowMm > 0 ? "behind" : "in front of") +
                " its edges, which moves the result by " +
                Offset(fault.movedMm, fault.movedDegrees) + '.',
            "Glue the chart to glass or another flat plate, and shoot again."};
  }

  Sentences operator()(const crosscheck::ChartStretched& fault) const {
    return {Name(fault),
            "The squares of the chart are " + Fixed(100 * std::abs(fault.widerBy), 2) + " % " +
                (fault.widerBy > 0 ? "wider than high" : "higher than wide") +
                ", which moves the result by " + Offset(fault.movedMm, fault.movedDegrees) + '.',
            "Measure rows and columns of squares with a steel ruler, print the chart without "
            "scaling, and shoot again."};
  }

  Sentences operator()(const crosscheck::LensModel& fault) const {
    const auto part = [](const char* name, double value) {
      return value == 0 ? std::string() : std::string(", ") + name + " = " + Fixed(value, 5);
    };
    return {Name(fault),
            "The lens has a distortion that the calibrated lens leaves out (" +
                (part("p1", fault.p1) + part("p2", fault.p2) + part("k3", fault.k3)).substr(2) +
                "): " + LeftOutDoes(fault),
            "Use this lens and this transform together, and neither with another one."};
  }

  // A verification holds the transform, and knows the photographs only.
  static std::string LeftOutDoes(const crosscheck::LensModel& fault) {
    const std::string pixels = Fixed(fault.pixels, 2) + " pixels";
    return std::isnan(fault.movedMm)
               ? "it moves the corners in the photographs by " + pixels + " (root mean square)."
               : "the transform alone is off by " + Offset(fault.movedMm, fault.movedDegrees) +
                     ", but lens and transform together by " + pixels + " at " +
                     Fixed(fault.distanceMetres, 0) + " m.";
  }

  Sentences operator()(const crosscheck::LensNotSeen& fault) const {
    Names parts;
    for (const crosscheck::ImagePart part : fault.parts) {
      parts.emplace_back(PartText(part));
    }
    const std::string where = PartsText(parts);
    return {Name(fault),
            "No chart was " + where + " of the image: there, in " +
                Fixed(std::max(1.0, 100 * fault.share), 0) +
                " % of it, the photographs do not show whether the lens has a distortion that "
                "moves things by " +
                (std::isnan(fault.pixels) ? std::string("any amount.")
                                          : "up to " + Fixed(fault.pixels, 1) + " pixels (95 %)."),
            "Take more photographs with the chart " + where +
                ", as far into the corners as it is seen whole, and calibrate with all of them."};
  }

  Sentences operator()(const crosscheck::TrackerErrors& fault) const {
    const std::string size = Offset(fault.mm, fault.degrees);
    if (!fault.follow) {
      return {Name(fault),
              "Neighbouring photographs share errors of the trackers, so more photographs of the "
              "same kind do not make the result more accurate.",
              "Check that camera and chart are at rest in each photograph, and that nothing "
              "disturbs the tracking; move both between photographs."};
    }
    switch (*fault.follow) {
      case crosscheck::TrackerFlaw::kSag:
        return {Name(fault),
                "The errors of the trackers follow gravity, by " + size +
                    ": a mount gives way, or the two trackers do not share one origin.",
                "Fix the mounts of both trackers so that they cannot bend, and shoot again."};
      case crosscheck::TrackerFlaw::kBentVolume:
        return {Name(fault),
                "The errors of the trackers follow their position, by " + size +
                    ": the tracking system bends straight lines.",
                "Calibrate the tracking system, and keep both trackers in the middle of its "
                "volume."};
      case crosscheck::TrackerFlaw::kPoseDependent:
        return {
            Name(fault),
            "The errors of the trackers follow the rotation of the chart, by " + size + '.',
            "Check that both trackers are seen well in each rotation, and that the chart does not "
            "bend when it is rotated."};
      case crosscheck::TrackerFlaw::kDelay:
        return {Name(fault),
                "The poses of the trackers are " + Fixed(1e3 * std::abs(fault.delaySeconds), 0) +
                    " ms " + (fault.delaySeconds > 0 ? "later" : "earlier") +
                    " than the photographs, which moves them by " + size + '.',
                "Hold camera and chart still in each photograph, or correct the delay in the "
                "recorder."};
    }
    return {};
  }

  Sentences operator()(const crosscheck::NotStill& fault) const {
    return {Name(fault),
            "Camera or chart moved while photographs were taken: where the edges of the squares "
            "are blurred along one direction, the corners are further off along it too, by " +
                Fixed(fault.mm, 1) + " mm (" + Fixed(fault.pixels, 1) +
                " pixels, root mean square). The poses are of another instant.",
            "Hold camera and chart still in each photograph, with the pose taken at the same "
            "instant."};
  }

  Sentences operator()(const crosscheck::TrackerLoose& fault) const {
    return {Name(fault),
            std::string("The tracker on the ") + Name(fault.tracker) +
                " has two seats on its mount, " + Offset(fault.mm, fault.degrees) +
                " apart; in the second: " + List(photographs, photographs.size()) + '.',
            "Fasten the tracker and shoot again."};
  }

  Sentences operator()(const crosscheck::HalvesDiffer& fault) const {
    return {Name(fault),
            "The first and the second half of the shoot differ by " +
                Offset(fault.offMm, fault.offDegrees) + "; why is not known.",
            "Shoot again, with all views of one half in the other as well. If the halves still "
            "differ, something creeps or warms up; otherwise the trackers' errors depend on the "
            "view."};
  }

  // Both parts, the larger one first.
  static std::string UncertainText(const crosscheck::Uncertain& fault, bool isLens) {
    const std::string lens = Offset(fault.byLens.mm, fault.byLens.degrees);
    const std::string trackers = Offset(fault.byTrackers.mm, fault.byTrackers.degrees);
    return "The transform is known to +/- " + Offset(fault.found.mm, fault.found.degrees) +
           " (95 %), not to " + Shortest(fault.needed.mm) + " mm and " +
           Shortest(fault.needed.degrees) + " deg, mostly because of the " +
           (isLens ? "lens: " + lens + ", and " + trackers + " because of the trackers."
                   : "trackers: " + trackers + ", and " + lens + " because of the lens.");
  }

  static std::string CloserAdvice(double metres) {
    return "Come closer: add photographs from about " + Fixed(metres, 1) +
           " m, where the chart fills the image, tilted to all sides.";
  }

  Sentences operator()(const crosscheck::LensUncertain& fault) const {
    return {Name(fault), UncertainText(fault, true),
            fault.closerMetres
                ? CloserAdvice(*fault.closerMetres)
                : "Add photographs with the chart tilted more and in the corners of the image."};
  }

  Sentences operator()(const crosscheck::TrackersUncertain& fault) const {
    return {Name(fault), UncertainText(fault, false),
            fault.closerMetres
                ? CloserAdvice(*fault.closerMetres)
                : "Add photographs, with camera and chart at rest and both trackers in good view "
                  "of the tracking system."};
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
            off +
                ", but not because of the mounting that the library was given: too few or bad "
                "photographs were used.",
            "Calibrate again without the photographs that contradict the others, or with more "
            "photographs."};
  }
};

Sentences SentencesOf(const Finding& finding) {
  return std::visit(Writer{{finding.photographs}}, finding.kind);
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

std::string OptionFor(const Finding& finding) {
  if (CanRefine(finding)) {
    return "--refine-mounting";
  }
  if (const auto* misread = std::get_if<crosscheck::MisreadRows>(&finding.kind)) {
    return OptionFor(misread->reading);
  }
  if (const auto* length = std::get_if<LengthUnit>(&finding.kind)) {
    return "--tracker-units=" + LikelyUnit(*length);
  }
  return "";
}

const char* MistakeText(MountingMistake mistake) {
  switch (mistake) {
    case MountingMistake::kInverse:
      return "the inverse was given, the tracker on the chart instead of the chart on the tracker";
    case MountingMistake::kAngleSigns:
      return "an angle has the wrong sign";
    case MountingMistake::kAngleOrder:
      return "the three rotations were combined in another order than x, y, z";
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

std::string CertaintyText(double p, bool isGood) {
  switch (crosscheck::CertaintyOf(p)) {
    case crosscheck::Certainty::kIsCertain:
      return isGood ? "certain, but good enough" : "certain";
    case crosscheck::Certainty::kIsLikely:
      return "likely (p = " + Fixed(p, 3) + ')';
    case crosscheck::Certainty::kMayBeChance:
      return "may be chance (p = " + Fixed(p, 2) + ')';
    case crosscheck::Certainty::kIsUnknown:
      return "cannot be checked";
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
         " from " + Fixed(view.distanceMetres, 2) + " m, the chart tilted by " +
         Fixed(view.tiltDegrees, 0) + " deg to face the " + kDirections.at(eighth) +
         " of the image and rotated by " + Fixed(view.rollDegrees, 0) + " deg in it";
}

}  // namespace trackedcam::host
