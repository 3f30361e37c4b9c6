#include "crosscheck/result.h"

#include <cmath>

namespace trackedcam::crosscheck {
namespace {

struct NameOfKind {
  const char* operator()(const NoAgreement&) const { return "noAgreement"; }
  const char* operator()(const MisreadRows&) const { return "reading"; }
  const char* operator()(const TooLittleRotation&) const { return "tooLittleRotation"; }
  const char* operator()(const TrackerMoved&) const { return "trackerMoved"; }
  const char* operator()(const MountingOff&) const { return "mountingOff"; }
  const char* operator()(const BadPhotographs&) const { return "badPhotographs"; }
  const char* operator()(const SquareSizeOff&) const { return "squareSize"; }
  const char* operator()(const HalvesDiffer&) const { return "halvesDiffer"; }
  const char* operator()(const LensUncertain&) const { return "lensUncertain"; }
  const char* operator()(const TrackersUncertain&) const { return "trackersUncertain"; }
  const char* operator()(const TrackersNoisy&) const { return "trackersNoisy"; }
  const char* operator()(const LibraryApart&) const { return "libraryApart"; }
  const char* operator()(const ChartNotFlat&) const { return "chartNotFlat"; }
  const char* operator()(const ChartStretched&) const { return "chartStretched"; }
  const char* operator()(const LensModel&) const { return "lensModel"; }
  const char* operator()(const LensNotSeen&) const { return "lensNotSeen"; }
  const char* operator()(const TrackerErrors& errors) const {
    return errors.follow ? Name(*errors.follow) : "structuredErrors";
  }
  const char* operator()(const NotStill&) const { return "notStill"; }
  const char* operator()(const TrackerLoose&) const { return "trackerLoose"; }
};

}  // namespace

const char* Name(Tracker tracker) {
  return tracker == Tracker::kCamera ? "camera" : "chart";
}

const char* Name(ImagePart part) {
  switch (part) {
    case ImagePart::kUpperLeft:
      return "upperLeft";
    case ImagePart::kTop:
      return "top";
    case ImagePart::kUpperRight:
      return "upperRight";
    case ImagePart::kLeft:
      return "left";
    case ImagePart::kMiddle:
      return "middle";
    case ImagePart::kRight:
      return "right";
    case ImagePart::kLowerLeft:
      return "lowerLeft";
    case ImagePart::kBottom:
      return "bottom";
    case ImagePart::kLowerRight:
      return "lowerRight";
  }
  return "";
}

const char* Name(RowReading reading) {
  switch (reading) {
    case RowReading::kQuaternionsInverted:
      return "quaternionsInverted";
    case RowReading::kOrderXyzw:
      return "orderXyzw";
    case RowReading::kTrackersExchanged:
      return "trackersExchanged";
    case RowReading::kRowsLate:
      return "rowsLate";
    case RowReading::kRowsEarly:
      return "rowsEarly";
    case RowReading::kMillimetres:
      return "millimetres";
    case RowReading::kCentimetres:
      return "centimetres";
    case RowReading::kLeftHanded:
      return "leftHanded";
    case RowReading::kMirroredX:
      return "mirroredX";
    case RowReading::kMirroredY:
      return "mirroredY";
    case RowReading::kMirroredZ:
      return "mirroredZ";
    case RowReading::kInches:
      return "inches";
    case RowReading::kEngineCentimetres:
      return "engineCentimetres";
    case RowReading::kCameraInverted:
      return "cameraInverted";
    case RowReading::kChartInverted:
      return "chartInverted";
    case RowReading::kCameraLate:
      return "cameraLate";
    case RowReading::kChartLate:
      return "chartLate";
  }
  return "";
}

Certainty CertaintyOf(double p) {
  return p < kCertain    ? Certainty::kIsCertain
         : p < kLikely   ? Certainty::kIsLikely
         : std::isnan(p) ? Certainty::kIsUnknown
                         : Certainty::kMayBeChance;
}

const char* Name(Certainty certainty) {
  switch (certainty) {
    case Certainty::kIsCertain:
      return "certain";
    case Certainty::kIsLikely:
      return "likely";
    case Certainty::kMayBeChance:
      return "byChance";
    case Certainty::kIsUnknown:
      return "unknown";
  }
  return "";
}

const char* Name(TrackerFlaw flaw) {
  switch (flaw) {
    case TrackerFlaw::kSag:
      return "mountSags";
    case TrackerFlaw::kBentVolume:
      return "volumeBent";
    case TrackerFlaw::kPoseDependent:
      return "poseDependentErrors";
    case TrackerFlaw::kDelay:
      return "delay";
  }
  return "";
}

const char* Name(MountingMistake mistake) {
  switch (mistake) {
    case MountingMistake::kInverse:
      return "inverse";
    case MountingMistake::kAngleSigns:
      return "angleSigns";
    case MountingMistake::kAngleOrder:
      return "angleOrder";
    case MountingMistake::kMillimetres:
      return "millimetres";
    case MountingMistake::kCentimetres:
      return "centimetres";
    case MountingMistake::kReportedAxes:
      return "reportedAxes";
    case MountingMistake::kBoardTurned:
      return "boardTurned";
  }
  return "";
}

const char* Name(const FindingKind& kind) {
  return std::visit(NameOfKind(), kind);
}

const char* Name(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    case Severity::kNote:
      return "note";
  }
  return "";
}

}  // namespace trackedcam::crosscheck
