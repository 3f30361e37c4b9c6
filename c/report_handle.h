// A report as hosts read it: through its JSON.

#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "c/handles.h"
#include "host/report.h"

namespace trackedcam::c {

class Report {
 public:
  /// @param isCalibration False for the report of a log, which is handed to no engine.
  /// @param isSilent Whether the exports turn standard output away.
  Report(host::Report report, bool isCalibration, bool isSilent);

  host::Level Level() const { return level_; }

  /// At full precision. What is null is not a number.
  /// @throws Refusal where there is no such place or none with numbers.
  std::vector<double> Numbers(const std::string& pointer) const;

  /// @throws Refusal where there is no such place or no text.
  const char* Text(const std::string& pointer);

  /// @throws Refusal where there is no such place or neither list nor object.
  std::size_t Count(const std::string& pointer) const;

  /// The result file.
  const char* WholeText();
  std::string JsonText() const;

  /// Adds the export to the report.
  const char* Export(const std::string& engineName, const std::string& parentAxes);
  const char* LensFile(const std::string& parentAxes, const std::string& name);

  /// @param folder Empty: that of the run.
  const char* Page(const std::filesystem::path& folder);
  std::string PageText(const std::filesystem::path& folder) const;

 private:
  const nlohmann::ordered_json& At(const std::string& pointer) const;
  const char* Keep(const std::string& text);
  host::EngineExport RunExport(const host::Engine& engine, const std::string& parentAxes) const;
  void RequireHandOver() const;

  const host::Level level_;
  const bool isCalibration_;
  const bool isSilent_;
  const host::Report report_;
  mutable std::mutex mutex_;  // of what follows
  nlohmann::ordered_json result_;
  std::set<std::string> texts_;  // that were handed out: each stays where it is
};

Handles<trackedcam_report, Report>& Reports();

}  // namespace trackedcam::c
