// All that a result can be exported to: engines, and files of other programs.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/engines/engine.h"
#include "host/lens_files/lens_file.h"

namespace trackedcam::host {

/// One of the two.
struct ExportFormat {
  const Engine* engine = nullptr;
  const LensFileFormat* file = nullptr;
};

std::optional<ExportFormat> FindExportFormat(std::string_view name);

/// ue4, ue5, and so on.
std::string ExportFormatNames();

std::string NameOf(const ExportFormat& format);

bool IsUnreal(const ExportFormat& format);
bool IsStMap(const ExportFormat& format);

/// @param parentAxes As for ParseParentAxes; empty: none are stated.
/// @throws InputError if they are invalid, or if the format has none.
void RequireParentAxes(const ExportFormat& format, const std::string& parentAxes);

/// The name of one of several files: with the suffix before its ending.
std::filesystem::path WithSuffix(const std::filesystem::path& file, const std::string& suffix);

}  // namespace trackedcam::host
