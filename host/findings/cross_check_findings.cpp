#include "host/findings/cross_check_findings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using crosscheck::FindingId;

constexpr std::size_t kNamedPhotographs = 3;

struct Words {
  std::string text;
  std::string advice;
};

std::string Millimetres(double mm) {
  return Fixed(mm, 1) + " mm";
}

std::string Degrees(double degrees) {
  return Fixed(degrees, 2) + " deg";
}

std::string Offset(double mm, double degrees) {
  return Millimetres(mm) + " and " + Degrees(degrees);
}

const std::map<std::string, const char*> kSlips = {
    {"inverse", "the inverse was given: the tracker on the chart instead of the chart on it"},
    {"angleSigns", "an angle has the wrong sign"},
    {"angleOrder", "the angles were composed in another order than Rx * Ry * Rz"},
    {"millimetres", "millimetres were given for metres"},
    {"centimetres", "centimetres were given for metres"},
    {"reportedAxes", "it was measured in the axes that the tracking system reports"},
    {"boardTurned", "it was measured to the corner at the other end of the board"},
};

const std::map<std::string, const char*> kReadings = {
    {"quaternionsInverted", "the quaternions give the inverse rotation"},
    {"orderXyzw", "the quaternions stand in the order x, y, z, w instead of w, x, y, z"},
    {"trackersExchanged", "the chart's tracker stands first and the camera's second"},
    {"rowsLate", "each row holds the trackers of the photograph before"},
    {"rowsEarly", "each row holds the trackers of the photograph after"},
    {"millimetres", "the positions are in millimetres"},
    {"centimetres", "the positions are in centimetres"},
    {"leftHanded", "the poses are left-handed, as an engine holds them"},
    {"mirroredX", "the poses are left-handed, with x the other way"},
    {"mirroredY", "the poses are left-handed, with y the other way"},
    {"mirroredZ", "the poses are left-handed, with z the other way"},
};

// "img_003.jpg (39 mm, 2.9 deg: the board was read from its other end)"
std::string DescribeBad(const crosscheck::PerPhotograph& photograph, std::size_t index,
                        const std::vector<std::string>& photographs) {
  const std::string why = WhyLeftOut(photograph, photographs);
  const std::string off = std::isfinite(photograph.mm) ? Fixed(photograph.mm, 0) + " mm, " +
                                                             Fixed(photograph.degrees, 1) + " deg"
                                                       : "";
  const std::string all = off + (off.empty() || why.empty() ? "" : ": ") + why;
  return photographs.at(index) + (all.empty() ? "" : " (" + all + ')');
}

std::string WordsOf(const std::map<std::string, const char*>& words, const std::string& id) {
  const auto found = words.find(id);
  return found == words.end() ? "" : found->second;
}

Words NoAgreement(const crosscheck::Finding& finding) {
  return {
      "No camera and no mounting fit the photographs together: trackers and pictures "
      "contradict each other in most of " +
          Fixed(finding.Number("photographs"), 0) + " photographs.",
      "Check that each row holds the trackers of its own photograph, that both trackers are "
      "rigidly mounted, and that the board is the one in the pictures."};
}

Words Reading(const crosscheck::Finding& finding) {
  return {"The rows fit " + Fixed(finding.Number("times"), 0) +
              " times better when read so: " + WordsOf(kReadings, finding.detail) + '.',
          finding.detail == "quaternionsInverted"
              ? "Calibrate again with inverted tracker quaternions."
              : "Correct the recorder, or convert the data file, and calibrate again."};
}

Words TooLittleTurning(const crosscheck::Finding& finding) {
  const auto axis = [&](const char* name) { return std::abs(finding.Number(name)); };
  const char* direction = axis("axisZ") > axis("axisX") && axis("axisZ") > axis("axisY")
                              ? "the axis that points out of the chart"
                          : axis("axisX") > axis("axisY") ? "the chart's long rows of corners"
                                                          : "the chart's columns of corners";
  return {"The chart was turned too little to tell the transform from the mounting: errors grow " +
              Fixed(finding.Number("amplification"), 1) + " times.",
          std::string("Shoot again, or add photographs, with the chart turned more about ") +
              direction + (finding.Number("axes") == 2 ? ", and about one across it" : "") +
              ", by " + Fixed(finding.Number("turnDegrees"), 0) + " degrees to either side."};
}

Words TrackerMoved(const crosscheck::Finding& finding, const std::string& photograph) {
  return {"The tracker on the " + finding.detail + " moved on its mount before " + photograph +
              ", by " + Offset(finding.Number("mm"), finding.Number("degrees")) +
              ", and stayed there.",
          "Fix the tracker and shoot again, or calibrate with the photographs of one side only."};
}

Words MountingOff(const crosscheck::Finding& finding) {
  const std::string slip = WordsOf(kSlips, finding.detail);
  return {"The stated mounting of the chart's tracker is off by " +
              Offset(finding.Number("offMm"), finding.Number("offDegrees")) +
              ", so the result is off by " +
              Offset(finding.Number("resultOffMm"), finding.Number("resultOffDegrees")) + '.' +
              (slip.empty() ? "" : " Perhaps " + slip + '.'),
          "Calibrate again with the mounting that was found."};
}

Words BadPhotographs(const crosscheck::Finding& finding, const std::string& names) {
  const std::size_t count = finding.photographs.size();
  return {(count == 1 ? "One photograph contradicts"
                      : std::to_string(count) + " photographs contradict") +
              " the others: " + names + '.',
          "Calibrate again without them; whoever shot them may know what happened."};
}

Words SquareSize(const crosscheck::Finding& finding) {
  return {"The squares seem " + Fixed(finding.Number("factor"), 3) + " times as large as stated (" +
              Fixed(100 * (finding.Number("factor") - 1), 1) + " %, give or take " +
              Fixed(200 * finding.Number("standardError"), 1) + " %).",
          "Measure a row of squares on the chart with a steel ruler and correct the square."};
}

Words HalvesDiffer(const crosscheck::Finding& finding) {
  return {"The first and the second half of the shoot differ by " +
              Offset(finding.Number("offMm"), finding.Number("offDegrees")) +
              ": something drifted.",
          "Let trackers and base stations warm up, fix what is loose, and shoot again."};
}

Words LensUncertain(const crosscheck::Finding& finding) {
  return {"The lens alone leaves " + Offset(finding.Number("mm"), finding.Number("degrees")) +
              " open, and " + Fixed(finding.Number("pixels"), 1) + " pixels at " +
              Fixed(finding.Number("distanceMetres"), 0) + " m.",
          "Add photographs with the chart tilted more and in the corners of the picture."};
}

Words TrackersNoisy(const crosscheck::Finding& finding) {
  return {"The trackers are noisy: " + Offset(finding.Number("mm"), finding.Number("degrees")) +
              " in each photograph.",
          "Hold camera and chart still for each photograph and keep the trackers in good view of "
          "the tracking system."};
}

Words LibraryApart(const crosscheck::Finding& finding) {
  if (finding.detail == "mountingUnknown") {
    return {"The result is off by " +
                Offset(finding.Number("offMm"), finding.Number("offDegrees")) +
                ": the mounting that the library was given is off, or bad photographs were used.",
            "Calibrate again with the mounting that was found."};
  }
  return {"The result is off by " + Offset(finding.Number("offMm"), finding.Number("offDegrees")) +
              " although the stated mounting is right: too few or bad photographs were used.",
          "Calibrate again without the photographs that contradict the others, or with more."};
}

// The worst few by name, the rest by number.
std::string NamesOf(const crosscheck::Finding& finding, const crosscheck::CrossCheck& crossCheck,
                    const std::vector<std::string>& photographs) {
  std::string names;
  for (std::size_t i = 0; i < finding.photographs.size() && i < kNamedPhotographs; ++i) {
    const std::size_t index = finding.photographs[i];
    names +=
        (i == 0 ? "" : ", ") + DescribeBad(crossCheck.perPhotograph.at(index), index, photographs);
  }
  const std::size_t named = std::min(kNamedPhotographs, finding.photographs.size());
  const std::size_t more = finding.photographs.size() - named;
  return more == 0 ? names : names + " and " + std::to_string(more) + " more";
}

Words WordsOf(const crosscheck::Finding& finding, const crosscheck::CrossCheck& crossCheck,
              const std::vector<std::string>& photographs) {
  switch (finding.id) {
    case FindingId::kNoAgreement:
      return NoAgreement(finding);
    case FindingId::kReading:
      return Reading(finding);
    case FindingId::kTooLittleTurning:
      return TooLittleTurning(finding);
    case FindingId::kTrackerMoved:
      return TrackerMoved(finding, photographs.at(finding.photographs.at(0)));
    case FindingId::kMountingOff:
      return MountingOff(finding);
    case FindingId::kBadPhotographs:
      return BadPhotographs(finding, NamesOf(finding, crossCheck, photographs));
    case FindingId::kSquareSize:
      return SquareSize(finding);
    case FindingId::kHalvesDiffer:
      return HalvesDiffer(finding);
    case FindingId::kLensUncertain:
      return LensUncertain(finding);
    case FindingId::kTrackersNoisy:
      return TrackersNoisy(finding);
    case FindingId::kLibraryApart:
      return LibraryApart(finding);
  }
  return {};
}

}  // namespace

std::string WhyLeftOut(const crosscheck::PerPhotograph& photograph,
                       const std::vector<std::string>& photographs) {
  if (photograph.fitsTrackersOf) {
    return "fits the trackers of " + photographs.at(*photograph.fitsTrackersOf);
  }
  if (photograph.why == "firstCornerAtOtherEnd") {
    return "the board was read from its other end";
  }
  if (photograph.why == "notNumbers") {
    return "a pose is not a number";
  }
  if (photograph.why == "noPose") {
    return "its corners fit no view of the board";
  }
  return "";
}

std::string TextOf(const crosscheck::SuggestedView& view) {
  // Clockwise from the right of the picture, as its y axis points down.
  constexpr std::array<const char*, 8> kDirections = {
      "right", "bottom right", "bottom", "bottom left", "left", "top left", "top", "top right"};
  const auto eighth =
      static_cast<std::size_t>(std::lround(view.tiltDirectionDegrees / 45) % 8 + 8) % 8;
  return std::to_string(view.views) + (view.views == 1 ? " photograph" : " photographs") +
         " from " + Fixed(view.distanceMetres, 1) + " m, the chart tilted by " +
         Fixed(view.tiltDegrees, 0) + " deg to face the " + kDirections.at(eighth) +
         " of the picture and turned by " + Fixed(view.rollDegrees, 0) + " deg in it";
}

std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const std::vector<std::string>& photographs) {
  std::vector<Finding> findings;
  for (const crosscheck::Finding& found : crossCheck.findings) {
    Words words = WordsOf(found, crossCheck, photographs);
    Finding finding = {Name(found.id), found.severity, words.text, words.advice, found.numbers, {},
                       found.detail};
    for (const std::size_t index : found.photographs) {
      finding.photographs.push_back(photographs.at(index));
    }
    findings.push_back(std::move(finding));
  }
  return findings;
}

}  // namespace trackedcam::host
