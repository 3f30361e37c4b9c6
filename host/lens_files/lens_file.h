// The formats in which other programs read a lens from a file.

#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// How a file is written, apart from what ExportInput says.
struct LensFileOptions {
  std::optional<double> overscan;  // of the ST maps, as for UndistortedSize
};

struct LensFile {
  std::string suffix;  // of the name, before its ending: empty, or _undistort and _distort
  std::string content;
};

struct LensFileFormat {
  std::string_view name;  // on the command line
  const char* title;
  std::vector<std::string_view> endings;  // of a file's name, the usual one first
  const char* parentAxes;                 // the default; null if the file has no pose
  bool isText;                            // one file of text
  std::vector<LensFile> (*write)(const ExportInput&, const LensFileOptions&);
};

extern const std::array<LensFileFormat, 5> kLensFileFormats;

/// What a caller in memory gets of a file: "text" or, of the ST maps, "undistortedSize" and
/// "overscan"; and the doubt about the result as its "message".
/// @throws InputError and others as the format's functions.
nlohmann::ordered_json LensFileJson(const LensFileFormat& format, const ExportInput& input,
                                    const LensFileOptions& options);

/// The photograph of the input without its distortion, as a PNG file.
/// @throws InputError if the result names none, std::runtime_error if it cannot be read.
std::string PreviewOf(const ExportInput& input, const LensFileOptions& options);

}  // namespace trackedcam::host
