#pragma once

#include <filesystem>
#include <optional>

#include "host/report.h"

namespace trackedcam::host {

/// Calibrates a shoot in a new folder below inputs.logFolder, cross-checks the result, and judges
/// it. Where it is asked for and the cross-check has found another mounting or bad photographs, and
/// always where no mounting was stated, the library runs again in a folder of its own: with the
/// mounting found, without the photographs that contradict the others. The report is then of that
/// run, with the first one's beside it.
/// @param listener Hears how far the library is, on another thread.
/// @throws InputError when the run cannot begin, std::runtime_error when there is no memory for it;
/// what happens afterwards stands in the report.
Report Calibrate(const Inputs& inputs, const ProgressListener& listener);

/// Cross-checks the run that a log tells of, whichever host called the library.
/// @param mounting As it was passed to the library; nothing where that is not known.
/// @throws InputError where the file holds no log of a calibration.
Report CheckLog(const std::filesystem::path& log, const std::optional<Mounting>& mounting);

}  // namespace trackedcam::host
