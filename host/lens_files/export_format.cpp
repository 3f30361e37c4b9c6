#include "host/lens_files/export_format.h"

#include "host/input/inputs.h"

namespace trackedcam::host {
namespace {

// The axes that z-forward means; null if the format has no parent.
const char* ZForwardOf(const ExportFormat& format) {
  if (format.file != nullptr) {
    return format.file->parentAxes;
  }
  const char* const axes = IsUnreal(format) ? kUnrealParentAxes : kUnityParentAxes;
  return format.engine->takesParentAxes ? axes : nullptr;
}

}  // namespace

std::optional<ExportFormat> FindExportFormat(std::string_view name) {
  for (const Engine& engine : kEngines) {
    if (engine.name == name) {
      return ExportFormat{&engine, nullptr};
    }
  }
  for (const LensFileFormat& file : kLensFileFormats) {
    if (file.name == name) {
      return ExportFormat{nullptr, &file};
    }
  }
  return std::nullopt;
}

std::string ExportFormatNames() {
  std::string names;
  for (const Engine& engine : kEngines) {
    names += std::string(engine.name) + ", ";
  }
  for (const LensFileFormat& file : kLensFileFormats) {
    names += std::string(file.name) + (&file == &kLensFileFormats.back() ? "" : ", ");
  }
  return names;
}

std::string NameOf(const ExportFormat& format) {
  return std::string(format.engine != nullptr ? format.engine->name : format.file->name);
}

bool IsUnreal(const ExportFormat& format) {
  return format.engine != nullptr && format.engine->name == "unreal";
}

bool IsStMap(const ExportFormat& format) {
  return format.file != nullptr && !format.file->isText;
}

void RequireParentAxes(const ExportFormat& format, const std::string& parentAxes) {
  if (parentAxes.empty()) {
    return;
  }
  const char* const zForward = ZForwardOf(format);
  if (zForward == nullptr) {
    throw InputError("parent axes are for unreal, unity and opentrackio, not for " +
                     NameOf(format));
  }
  ParseParentAxes(parentAxes, zForward);
}

std::filesystem::path WithSuffix(const std::filesystem::path& file, const std::string& suffix) {
  std::filesystem::path name = file.stem();
  name += std::filesystem::u8path(suffix);
  name += file.extension();
  return file.parent_path() / name;
}

}  // namespace trackedcam::host
