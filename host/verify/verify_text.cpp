#include "host/verify/verify_text.h"

#include <cmath>

#include "crosscheck/reported_poses.h"
#include "host/findings/finding.h"
#include "host/findings/finding_text.h"
#include "host/findings/sentences.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using crosscheck::Answer;
using crosscheck::LensCause;
using crosscheck::Verification;

std::string MmAndDegrees(double mm, double degrees, const char* between) {
  return Fixed(mm, 1) + " mm" + between + Fixed(degrees, 2) + " deg";
}

std::string SizeOf(const crosscheck::MountMove& move) {
  return MmAndDegrees(move.mm.norm(), move.degrees.norm(), " and ");
}

std::string WithHalf(const crosscheck::ChangedValue& value, int decimals) {
  return (value.change < 0 ? "" : "+") + Fixed(value.change, decimals) + " ± " +
         Fixed(value.half, decimals);
}

std::string AxesText(const Eigen::Vector3d& values, const Eigen::Vector3d& halves, int decimals) {
  std::string text;
  for (Eigen::Index axis = 0; axis < 3; ++axis) {
    text += (axis > 0 ? ", " : "") + WithHalf({values[axis], halves[axis]}, decimals);
  }
  return text;
}

std::string MoveText(const char* tracker, const crosscheck::MountMove& move) {
  const ReportedMove reported = InReportedAxes(move);
  return std::string("The ") + tracker +
         "'s tracker along its reported x, y, z: " + AxesText(reported.mm, reported.halfMm, 1) +
         " mm; about them: " + AxesText(reported.degrees, reported.halfDegrees, 2) + " deg.";
}

std::string LensText(const crosscheck::LensChange& lens) {
  Names parts;
  if (lens.hasFocal) {
    parts.push_back("focal length " + WithHalf(lens.focalPercent, 2) + " %");
  }
  if (lens.hasCentre) {
    parts.push_back("principal point " + WithHalf(lens.cx, 1) + " px to the right, " +
                    WithHalf(lens.cy, 1) + " px down");
  }
  if (lens.hasDistortion) {
    parts.push_back("k1 " + WithHalf(lens.k1, 4) + ", k2 " + WithHalf(lens.k2, 4));
  }
  std::string text = "The lens:";
  for (std::size_t i = 0; i < parts.size(); ++i) {
    text += (i > 0 ? "; " : " ") + parts[i];
  }
  return text + ".";
}

const char* CauseText(LensCause cause) {
  switch (cause) {
    case LensCause::kZoom:
      return "probably the zoom";
    case LensCause::kFocus:
      return "probably the focus";
    case LensCause::kStabilisation:
      return "probably image stabilisation, or a lens that was taken off";
    case LensCause::kSeveral:
      return "probably another lens, another focus or image stabilisation";
  }
  return "";
}

std::string CandidatesText(const Verification& verification) {
  Names names;
  for (const Answer candidate : verification.candidates) {
    names.emplace_back(candidate == Answer::kCameraTrackerMoved  ? "the camera's tracker"
                       : candidate == Answer::kChartTrackerMoved ? "the chart's tracker"
                       : candidate == Answer::kLensChanged       ? "the lens"
                       : candidate == Answer::kBothTrackersMoved ? "both trackers"
                                                                 : "the lens and a tracker");
  }
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + names[i];
  }
  return text;
}

// The photograph that separates what these do not.
std::string HelpfulPhotograph(const Verification& verification) {
  if (verification.usable > 0 && !verification.candidates.empty() &&
      verification.candidates.front() != Answer::kLensChanged &&
      verification.diversity.amplification > 1.5) {
    const crosscheck::TooLittleRotation rotation = {
        verification.diversity.amplification, verification.diversity.rotationDegrees,
        verification.diversity.axisInChart, verification.diversity.axes};
    return Advice({Severity::kNote, rotation, {}});
  }
  return "Add two photographs: the chart near the camera and tilted by 40 deg, once to the left "
         "and once turned by 90 deg in the image.";
}

const char* LensAdvice(const Verification& verification) {
  switch (verification.lens ? verification.lens->cause : LensCause::kSeveral) {
    case LensCause::kZoom:
      return "Set the zoom as it was, and verify again; otherwise calibrate again.";
    case LensCause::kFocus:
      return "Set the focus as it was, and verify again; otherwise calibrate again.";
    case LensCause::kStabilisation:
      return "Switch image stabilisation off, and calibrate again.";
    case LensCause::kSeveral:
      return "Set the lens as it was, and verify again; otherwise calibrate again.";
  }
  return "";
}

}  // namespace

ReportedMove InReportedAxes(const crosscheck::MountMove& move) {
  const Eigen::Matrix3d fix = crosscheck::AxisFix();
  const Eigen::Matrix3d order = fix.cwiseAbs();
  return {fix * move.mm, fix * move.degrees, order * move.halfMm, order * move.halfDegrees};
}

std::string AnswerText(const Verification& verification) {
  switch (verification.answer) {
    case Answer::kHolds:
      return "The calibration still holds.";
    case Answer::kCameraTrackerMoved:
      return "The tracker on the camera has moved on its mount, by " +
             SizeOf(*verification.camera) + ".";
    case Answer::kChartTrackerMoved:
      return "The tracker on the chart has moved on its mount, by " + SizeOf(*verification.chart) +
             ".";
    case Answer::kBothTrackersMoved:
      return "Both trackers have moved on their mounts: the camera's by " +
             SizeOf(*verification.camera) + ", the chart's by " + SizeOf(*verification.chart) + ".";
    case Answer::kLensChanged:
      return std::string("The lens has changed: ") + CauseText(verification.lens->cause) + ".";
    case Answer::kLensAndTracker:
      return std::string("The lens has changed, and a tracker has moved on its mount: the ") +
             (verification.camera ? "camera's by " + SizeOf(*verification.camera)
                                  : "chart's by " + SizeOf(*verification.chart)) +
             ".";
    case Answer::kUnclear:
      return verification.candidates.empty()
                 ? "Something has changed, more than one tracker or the lens."
                 : "Something has changed, and these photographs cannot say what: " +
                       CandidatesText(verification) + ".";
    case Answer::kUnrelated:
      return "These photographs do not belong to the calibration: other trackers, another chart or "
             "another reading of the rows.";
    case Answer::kTooFew:
      return "Only " + std::to_string(verification.usable) + " of " +
             std::to_string(verification.photographs.size()) +
             " photographs with the board can be used; 3 are needed.";
  }
  return "";
}

std::vector<std::string> Details(const Verification& verification) {
  std::vector<std::string> details;
  const bool isTested =
      verification.answer != Answer::kTooFew && verification.answer != Answer::kUnrelated;
  if (verification.answer == Answer::kHolds) {
    const auto found = [](const char* tracker, const crosscheck::Detectable& detectable) {
      return std::string("A move of the ") + tracker + "'s tracker by " +
             MmAndDegrees(detectable.mm, detectable.degrees, " or ") +
             " would have been found with a probability of 95 %.";
    };
    details.push_back(found("camera", verification.cameraDetectable));
    if (std::isfinite(verification.chartDetectable.mm)) {
      details.push_back(found("chart", verification.chartDetectable));
    }
    if (std::isfinite(verification.focalDetectablePercent)) {
      details.push_back("A change of the focal length by " +
                        Fixed(verification.focalDetectablePercent, 2) +
                        " % would have been found too.");
    }
  } else if (isTested && verification.answer != Answer::kUnclear) {
    if (verification.camera) {
      details.push_back(MoveText("camera", *verification.camera));
    }
    if (verification.chart) {
      details.push_back(MoveText("chart", *verification.chart));
    }
    if (verification.lens) {
      details.push_back(LensText(*verification.lens));
    }
  }
  if (isTested && verification.used < verification.usable) {
    Names names;
    for (const crosscheck::Verified& photograph : verification.photographs) {
      if (!photograph.used && std::isfinite(photograph.oldPixels)) {
        names.push_back(photograph.name);
      }
    }
    details.push_back("Left out, because it contradicts the others: " + List(names, names.size()) +
                      ".");
  }
  if (isTested && verification.noiseFactor > 1) {
    details.push_back("The trackers are " + Fixed(verification.noiseFactor, 1) +
                      " times as noisy as in the calibration.");
  }
  return details;
}

std::string AdviceText(const Verification& verification) {
  switch (verification.answer) {
    case Answer::kHolds:
      return "Go on with the result as it is.";
    case Answer::kCameraTrackerMoved:
    case Answer::kBothTrackersMoved:
      return "Fix the camera's tracker, and calibrate again.";
    case Answer::kChartTrackerMoved:
      return "Lens and transform of the camera still hold. Fix the chart's tracker; from then on "
             "verify with --chart-remounted.";
    case Answer::kLensChanged:
      return LensAdvice(verification);
    case Answer::kLensAndTracker:
      return "Fix the tracker, set the lens, and calibrate again.";
    case Answer::kUnclear:
      return verification.candidates.empty() ? "Calibrate again." : HelpfulPhotograph(verification);
    case Answer::kUnrelated:
      return "Check that the trackers, the chart and the options of the data file are those of the "
             "calibration; otherwise calibrate again.";
    case Answer::kTooFew:
      return "Add photographs in which the whole board is seen, with both trackers tracked and the "
             "chart rotated differently in each.";
  }
  return "";
}

}  // namespace trackedcam::host
