#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/input/shoot_data.h"
#include "host/report.h"

namespace trackedcam::host {

/// Calibrates a shoot in a new folder below inputs.logFolder, cross-checks the result, and judges
/// it. If no mounting was stated, or if refining is asked for and the cross-check has found another
/// mounting or bad photographs, the library runs again in a second folder: with the mounting found,
/// without the photographs that contradict the others. The report is then of that run, and holds
/// the first one's.
/// @param shoot What inputs.data holds.
/// @param listener Called on another thread while the library runs.
/// @throws InputError if the run cannot begin, std::runtime_error if there is no memory for it.
/// What happens afterwards is in the report.
Report Calibrate(const Inputs& inputs, const ShootData& shoot, const ProgressListener& listener);

/// Cross-checks a run from its log, whichever host called the library.
/// @param mounting As it was passed to the library; nothing if that is not known.
/// @param exclude Photographs that the cross-check leaves out, by FindExcluded; the result of the
/// log is compared all the same.
/// @throws InputError if the file holds no log of a calibration, or if one of the last three is not
/// possible.
/// @param atMetres Distances for errors in the image; empty: the usual ones.
Report CheckLog(const std::filesystem::path& log, const std::optional<Mounting>& mounting,
                const Accuracy& goodEnough, double scaleUncertainty = Inputs().scaleUncertainty,
                const std::vector<std::string>& exclude = {},
                const std::vector<double>& atMetres = {});

}  // namespace trackedcam::host
