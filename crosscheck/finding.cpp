#include "crosscheck/finding.h"

#include <limits>

#include "crosscheck/cross_check.h"

namespace trackedcam::crosscheck {

const char* Name(FindingId id) {
  switch (id) {
    case FindingId::kNoAgreement:
      return "noAgreement";
    case FindingId::kReading:
      return "reading";
    case FindingId::kTooLittleTurning:
      return "tooLittleTurning";
    case FindingId::kTrackerMoved:
      return "trackerMoved";
    case FindingId::kMountingOff:
      return "mountingOff";
    case FindingId::kBadPhotographs:
      return "badPhotographs";
    case FindingId::kSquareSize:
      return "squareSize";
    case FindingId::kHalvesDiffer:
      return "halvesDiffer";
    case FindingId::kLensUncertain:
      return "lensUncertain";
    case FindingId::kTrackersNoisy:
      return "trackersNoisy";
    case FindingId::kLibraryApart:
      return "libraryApart";
  }
  return "";
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

const char* Name(Tracker tracker) {
  return tracker == Tracker::kCamera ? "camera" : "chart";
}

double Finding::Number(const std::string& name) const {
  for (const auto& [key, value] : numbers) {
    if (key == name) {
      return value;
    }
  }
  return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace trackedcam::crosscheck
