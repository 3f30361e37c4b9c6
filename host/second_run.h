// What the cross-check found, for another run: whether the library calibrates a second time, with
// what, what stays true of the first, and the mounting for other shoots.

#pragma once

#include <optional>
#include <vector>

#include "host/report.h"

namespace trackedcam::host {

/// Whether the library can calibrate again with what the cross-check found: the rows fit, and
/// enough photographs agree.
bool CanRunAgain(const Report& first);

/// Whether it should: without a stated mounting, or if refining is asked for and would help.
bool NeedsSecondRun(const Report& first);

/// If a second run would help, but would end with too few photographs.
std::optional<TooFewAgree> TooFewForSecondRun(const Report& first);

/// With the mounting found, if the shoot determines it.
Inputs InputsOfSecondRun(const Report& first);

/// What contradicts the others in the first run is left out, and says why.
/// @param list As the first run was given it.
PhotographList PhotographsOfSecondRun(const Report& first, PhotographList list);

/// The photographs that the second run is without, and errors of the shoot, such as a tracker that
/// moved: without the photographs after the move the second run may look right.
std::vector<Finding> FindingsThatStay(const Report& first);

/// The mounting that was found, for other shoots with this plate: that of the second run, or of the
/// cross-check. Nothing if it is not known as accurately as is good enough, or if an error of the
/// shoot makes it doubtful.
std::optional<Mounting> MountingToPassOn(const Report& report);

}  // namespace trackedcam::host
