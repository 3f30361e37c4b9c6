// The end of a run on the terminal: the summary on standard output, warnings and errors on standard
// error, the exit status.

#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <vector>

#include "host/report.h"
#include "host/run/calibration_outputs.h"

namespace trackedcam::app {

/// Lens, transform, errors, photographs, cross-check, mounting, findings, the verdict with what to
/// do next, and the files. Of the first of two runs only what differs. A finding's text is in the
/// list of findings only; the advice of the verdict is after "Next:" only.
/// @param truth Printed next to the values that were found; null if unknown.
/// @param page The report page; empty if there is none.
void PrintSummary(std::ostream& out, const host::Report& report,
                  const host::CalibrationOutputs* truth, const std::filesystem::path& page = {});

/// The error in the image and on a wall at each distance; nothing if there are none.
void PrintOnScreen(std::ostream& out, const std::vector<crosscheck::OnScreen>& onScreen);

/// How long library, cross-check and page took, in one line.
void PrintSeconds(std::ostream& out, const host::PartSeconds& seconds,
                  const std::optional<double>& page);

/// One line of error or warning, unless the verdict is good: the text of the finding that decides
/// it, or the verdict itself. And one for each output of the library that could not be written.
void PrintWarning(std::ostream& out, const host::Report& report);

/// The exit status of the program.
int ExitStatus(const host::Report& report);

}  // namespace trackedcam::app
