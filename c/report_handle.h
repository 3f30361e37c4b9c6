// A report as hosts read it: through its JSON.

#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "c/handles.h"
#include "host/lens_files/export_format.h"
#include "host/report.h"

namespace trackedcam::c {

/// trackedcam_export_options.
struct ExportRequest {
  std::string parentAxes;
  host::LensFileOptions file = {};
  bool hasNodalOffset = false;
  bool evenIfWrong = false;
  std::filesystem::path preview = {};
};

class Report {
 public:
  /// @param isCalibration False for the report of a log, which cannot be exported.
  Report(host::Report report, bool isCalibration);

  host::Level Level() const { return level_; }

  /// At full precision; null becomes NaN.
  /// @throws Refusal if there is no such place, or if it contains anything but numbers.
  std::vector<double> Numbers(const std::string& pointer) const;

  /// @throws Refusal if there is no such place, or no text.
  const char* Text(const std::string& pointer);

  /// @throws Refusal if there is no such place, or neither list nor object.
  std::size_t Count(const std::string& pointer) const;

  /// The text of the result file.
  const char* WholeText();
  std::string JsonText() const;

  /// Adds the export to the report.
  const char* Export(const std::string& format, const ExportRequest& request);
  void ExportFile(const std::string& format, const ExportRequest& request,
                  const std::filesystem::path& file) const;
  const char* LensFile(const ExportRequest& request, const std::string& name);

  /// @param folder That of the page; empty: that of the run.
  const char* Page(const std::filesystem::path& folder);
  std::string PageText(const std::filesystem::path& folder) const;

 private:
  // To be called with the mutex held.
  const nlohmann::ordered_json& At(const std::string& pointer) const;
  const char* Keep(const std::string& text);

  host::ExportInput InputOf(const ExportRequest& request) const;
  host::EngineExport RunExport(const host::Engine& engine, const host::ExportInput& input) const;
  std::string LensFileText(const host::ExportInput& input, const std::string& name,
                           bool hasNodalOffset) const;
  void RequireExportable(bool evenIfWrong) const;

  const host::Level level_;
  const bool isCalibration_;
  const host::Report report_;
  host::Origin origin_;               // of a calibration
  std::filesystem::path photograph_;  // as host::ExportInput::photograph
  mutable std::mutex mutex_;          // of the members below
  nlohmann::ordered_json result_;
  std::set<std::string> texts_;  // that hosts hold: the address of each stays valid
};

Handles<trackedcam_report, Report>& Reports();

}  // namespace trackedcam::c
