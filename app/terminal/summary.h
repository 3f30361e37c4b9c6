#pragma once

#include <filesystem>
#include <ostream>

#include "host/report.h"
#include "host/run/calibration_outputs.h"

namespace trackedcam::app {

/// The lens in the figures that people compare, one in a row.
/// @param truth Gets a column of its own; null when it is not known.
void PrintLens(std::ostream& out, const host::CalibrationOutputs& found,
               const host::CalibrationOutputs* truth);

/// What the cross-check found, in a few lines: how well the transform is known, how far the result
/// and the stated mounting are off, which photographs contradict the others.
/// @param truth Compared with as well; null when it is not known.
void PrintCrossCheck(std::ostream& out, const host::Report& report,
                     const host::CalibrationOutputs* truth);

/// The mounting that the run took and the one that the cross-check found, each in the tracker's
/// axes after the axis fix and in the reported ones. Nothing where neither is known.
void PrintMountings(std::ostream& out, const host::Report& report);

/// The mounting found, with its uncertainty and ready to paste, in the axes that the user chose.
/// Nothing where none was found.
void PrintMountingFound(std::ostream& out, const host::Report& report);

/// A line that says what is wrong with a result, or doubtful, and one for each loss; nothing where
/// all is well.
void PrintWarning(std::ostream& out, const host::Report& report);

/// The exit status of a program that came to this.
int ExitStatus(const host::Report& report);

/// What a user wants to know at the end of a run: lens, transform, photographs, errors, and the
/// verdict with what to do next.
/// @param truth Shown beside what was found; null when it is not known.
/// @param page The report page, named first among the files; empty when there is none.
void PrintSummary(std::ostream& out, const host::Report& report,
                  const host::CalibrationOutputs* truth, const std::filesystem::path& page = {});

}  // namespace trackedcam::app
