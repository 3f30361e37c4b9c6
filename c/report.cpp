#include "c/report.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "host/platform.h"
#include "host/result/result_json.h"
#include "host/text/json_file.h"
#include "report/thumbnails.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

[[noreturn]] void Miss(const std::string& what) {
  throw Refusal(TRACKEDCAM_NOT_THERE, what);
}

// False where there is anything but numbers and what could not be found out.
bool AddNumbers(const Json& json, std::vector<double>& numbers) {
  if (json.is_array()) {
    return std::all_of(json.begin(), json.end(),
                       [&](const Json& element) { return AddNumbers(element, numbers); });
  }
  if (!json.is_number() && !json.is_null()) {
    return false;
  }
  numbers.push_back(json.is_null() ? std::numeric_limits<double>::quiet_NaN() : json.get<double>());
  return true;
}

const host::Engine& EngineNamed(const std::string& name) {
  std::string names;
  for (const host::Engine& engine : host::kEngines) {
    if (engine.name == name) {
      return engine;
    }
    names += (names.empty() ? "" : ", ") + std::string(engine.name);
  }
  throw host::InputError(name + " is not one of the engines " + names + '.');
}

void RequireAxes(const host::Engine& engine, const std::string& parentAxes) {
  if (!parentAxes.empty() && !engine.takesParentAxes) {
    throw host::InputError("the figures of " + std::string(engine.name) +
                           " have axes of their own; parent axes are for unreal and unity");
  }
}

}  // namespace

Report::Report(host::Report report, bool isCalibration, bool isSilent)
    : level_(report.verdict.level),
      isCalibration_(isCalibration),
      isSilent_(isSilent),
      report_(std::move(report)),
      result_(host::ResultJson(report_)) {}

// Under the lock, and without a copy: the destructor of a copy asks for memory, and would end the
// process where there is none.
const Json& Report::At(const std::string& pointer) const {
  try {
    return result_.at(Json::json_pointer(pointer));
  } catch (const Json::parse_error&) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, pointer + " is no JSON pointer.");
  } catch (const Json::exception&) {
    Miss("The report has no " + pointer + '.');
  }
}

std::vector<double> Report::Numbers(const std::string& pointer) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<double> numbers;
  const Json& place = At(pointer);
  if (place.is_null() || !AddNumbers(place, numbers)) {
    Miss("The report has no numbers at " + pointer + '.');
  }
  return numbers;
}

const char* Report::Text(const std::string& pointer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Json& place = At(pointer);
  if (!place.is_string()) {
    Miss("The report has no text at " + pointer + '.');
  }
  return Keep(place.get_ref<const std::string&>());
}

std::size_t Report::Count(const std::string& pointer) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Json& place = At(pointer);
  if (!place.is_structured()) {
    Miss("The report has no list at " + pointer + '.');
  }
  return place.size();
}

const char* Report::WholeText() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return Keep(host::JsonText(result_));
}

std::string Report::JsonText() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return host::JsonText(result_);
}

// Under the lock.
const char* Report::Keep(const std::string& text) {
  return texts_.insert(text).first->c_str();
}

void Report::RequireHandOver() const {
  if (!isCalibration_) {
    Miss("What a log tells is too coarse for an engine: hand over the result of the calibration.");
  }
  if (level_ == host::Level::kFailed) {
    Miss("The calibration failed: there is nothing to hand to an engine.");
  }
}

host::EngineExport Report::RunExport(const host::Engine& engine,
                                     const std::string& parentAxes) const {
  RequireHandOver();
  std::optional<host::SilencedStdout> silenced;
  if (isSilent_ && !engine.takesParentAxes) {
    silenced.emplace();
  }
  return host::ExportToEngine(engine, {report_.run.outputs, report_.inputs.sensorMm, parentAxes},
                              report_.run.folder / engine.name);
}

const char* Report::Export(const std::string& engineName, const std::string& parentAxes) {
  const host::Engine& engine = EngineNamed(engineName);
  RequireAxes(engine, parentAxes);
  const std::lock_guard<std::mutex> lock(mutex_);
  Json& exports = result_["exports"];
  // The library writes one log for an engine, and would give the same figures again.
  if (engine.takesParentAxes || !exports.contains(engineName)) {
    exports[engineName] = host::EngineJson(RunExport(engine, parentAxes));
  }
  return Keep(host::JsonText(exports[engineName]));
}

const char* Report::LensFile(const std::string& parentAxes, const std::string& name) {
  const auto engineExport = RunExport(EngineNamed("unreal"), parentAxes);
  if (!engineExport.figures.unreal) {
    Miss(host::ProblemOf(engineExport));
  }
  const std::string text = host::LensFileText(*engineExport.figures.unreal, name);
  const std::lock_guard<std::mutex> lock(mutex_);
  return Keep(text);
}

const char* Report::Page(const fs::path& folder) {
  const std::string text = PageText(folder);
  const std::lock_guard<std::mutex> lock(mutex_);
  return Keep(text);
}

std::string Report::PageText(const fs::path& folder) const {
  const std::string text = JsonText();
  return report::Page(text, report::MakeThumbnails(text),
                      folder.empty() ? report_.run.folder : folder);
}

Handles<trackedcam_report, Report>& Reports() {
  static auto* const reports = new Handles<trackedcam_report, Report>("report");
  return *reports;
}

}  // namespace trackedcam::c
