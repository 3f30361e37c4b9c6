// What the cross-check has to say, as an id and figures. The sentences are made by whoever shows
// it.

#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace trackedcam::crosscheck {

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

}  // namespace trackedcam::crosscheck
