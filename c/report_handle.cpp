#include "c/report_handle.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "host/calibrate.h"
#include "host/input/photograph_file.h"
#include "host/result/earlier_runs.h"
#include "host/result/result_file.h"
#include "host/result/result_json.h"
#include "host/text/files.h"
#include "report/page.h"
#include "report/thumbnails.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

static_assert(TRACKEDCAM_GOOD == static_cast<int>(host::Level::kGood) &&
              TRACKEDCAM_DOUBT == static_cast<int>(host::Level::kDoubtful) &&
              TRACKEDCAM_WRONG == static_cast<int>(host::Level::kWrong) &&
              TRACKEDCAM_FAILED == static_cast<int>(host::Level::kFailed));

[[noreturn]] void ThrowNotFound(const std::string& message) {
  throw Refusal(TRACKEDCAM_NOT_FOUND, message);
}

// False if there is anything but numbers and null.
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

// The library leaves a list empty if the run ended before it. Why is the verdict's message.
std::vector<double> ListOf(Report& report, const char* pointer, std::size_t count) {
  std::vector<double> numbers = report.Numbers(pointer);
  if (numbers.size() != count) {
    ThrowNotFound(std::string("There is no ") + (pointer + 1) + ": " +
                  report.Text("/verdict/message") + ' ' + report.Text("/verdict/advice"));
  }
  return numbers;
}

host::ExportFormat FormatNamed(const std::string& name) {
  const auto format = host::FindExportFormat(name);
  if (!format) {
    throw host::InputError(name + " is not one of " + host::ExportFormatNames() + '.');
  }
  return *format;
}

// Options of other formats are refused: they would have no effect.
void RequireFit(const host::ExportFormat& format, const ExportRequest& request, bool isFile) {
  const std::string name = host::NameOf(format);
  RequireParentAxes(format, request.parentAxes);
  if (!IsStMap(format) && (request.file.overscan || !request.preview.empty())) {
    throw host::InputError("overscan and preview_file are for stmap, not for " + name);
  }
  if (request.hasNodalOffset && !(IsUnreal(format) && isFile)) {
    throw host::InputError("nodal_offset is for the Lens File of unreal");
  }
  if (!request.preview.empty() && !isFile) {
    throw host::InputError("preview_file is for trackedcam_report_export_file");
  }
  if (isFile && format.engine != nullptr && !IsUnreal(format)) {
    throw host::InputError(name + " has no file: use trackedcam_report_export");
  }
}

fs::path PathOf(const char* text, const char* name) {
  return fs::absolute(fs::u8path(RequireText(text, name)));
}

// Empty for NULL.
fs::path OptionalPath(const char* text, const char* name) {
  return text == nullptr ? fs::path() : PathOf(text, name);
}

}  // namespace

Handles<trackedcam_report, Report>& Reports() {
  static auto* const reports = new Handles<trackedcam_report, Report>("report");
  return *reports;
}

Report::Report(host::Report report, bool isCalibration)
    : level_(report.verdict.level),
      isCalibration_(isCalibration),
      report_(std::move(report)),
      result_(host::ResultJson(report_)) {
  if (isCalibration_ && level_ != host::Level::kFailed) {
    const nlohmann::json result = result_;
    origin_ = host::OriginOf(result);
    photograph_ = host::PhotographToShow(result);
  }
}

std::vector<double> Report::Numbers(const std::string& pointer) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<double> numbers;
  const Json& place = At(pointer);
  if (place.is_null() || !AddNumbers(place, numbers)) {
    ThrowNotFound("The report has no numbers at " + pointer + '.');
  }
  return numbers;
}

const char* Report::Text(const std::string& pointer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Json& place = At(pointer);
  if (!place.is_string()) {
    ThrowNotFound("The report has no text at " + pointer + '.');
  }
  return Keep(place.get_ref<const std::string&>());
}

std::size_t Report::Count(const std::string& pointer) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Json& place = At(pointer);
  if (!place.is_structured()) {
    ThrowNotFound("The report has no list at " + pointer + '.');
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

const char* Report::Export(const std::string& formatName, const ExportRequest& request) {
  const host::ExportFormat format = FormatNamed(formatName);
  RequireFit(format, request, false);
  const host::ExportInput input = InputOf(request);
  const std::lock_guard<std::mutex> lock(mutex_);
  Json& exports = result_["exports"];
  if (format.file != nullptr) {
    exports[formatName] = host::LensFileJson(*format.file, input, request.file);
  } else if (format.engine->takesParentAxes || !exports.contains(formatName)) {
    // The library writes one log for an engine. A second export would give the same values.
    exports[formatName] = host::EngineJson(RunExport(*format.engine, input));
  }
  return Keep(host::JsonText(exports[formatName]));
}

void Report::ExportFile(const std::string& formatName, const ExportRequest& request,
                        const fs::path& file) const {
  const host::ExportFormat format = FormatNamed(formatName);
  RequireFit(format, request, true);
  const host::ExportInput input = InputOf(request);
  if (format.file == nullptr) {
    host::WriteFile(file, LensFileText(input, file.stem().u8string(), request.hasNodalOffset));
    return;
  }
  for (const host::LensFile& part : format.file->write(input, request.file)) {
    host::WriteFile(host::WithSuffix(file, part.suffix), part.content);
  }
  if (!request.preview.empty()) {
    host::WriteFile(request.preview, host::PreviewOf(input, request.file));
  }
}

const char* Report::LensFile(const ExportRequest& request, const std::string& name) {
  const std::string text = LensFileText(InputOf(request), name, false);
  const std::lock_guard<std::mutex> lock(mutex_);
  return Keep(text);
}

const char* Report::Page(const fs::path& folder) {
  const std::string text = PageText(folder);
  const std::lock_guard<std::mutex> lock(mutex_);
  return Keep(text);
}

std::string Report::PageText(const fs::path& folder) const {
  const Json result = [this] {
    const std::lock_guard<std::mutex> lock(mutex_);
    return result_;
  }();
  const auto read = [](const fs::path& file) -> report::Picture {
    host::PhotographFile photograph = host::ReadPhotograph(file);
    return {std::move(photograph.bytes), photograph.isLarge};
  };
  return report::Page(
      result, report::MakeThumbnails(result, read), folder.empty() ? report_.run.folder : folder,
      report::MakeUndistorted(result, read), host::RunsBeside(report_.run.folder, result));
}

// Returns no copy: the destructor of a copy needs memory, and would end the process without it.
const Json& Report::At(const std::string& pointer) const {
  try {
    return result_.at(Json::json_pointer(pointer));
  } catch (const Json::parse_error&) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, pointer + " is not a JSON pointer.");
  } catch (const Json::exception&) {
    ThrowNotFound("The report has no " + pointer + '.');
  }
}

const char* Report::Keep(const std::string& text) {
  return texts_.insert(text).first->c_str();
}

host::ExportInput Report::InputOf(const ExportRequest& request) const {
  RequireExportable(request.evenIfWrong);
  return {report_.run.outputs, report_.inputs.sensorMm, request.parentAxes, origin_, photograph_};
}

host::EngineExport Report::RunExport(const host::Engine& engine,
                                     const host::ExportInput& input) const {
  return host::ExportToEngine(engine, input, report_.run.folder / engine.name);
}

std::string Report::LensFileText(const host::ExportInput& input, const std::string& name,
                                 bool hasNodalOffset) const {
  const auto engineExport = RunExport(*FormatNamed("unreal").engine, input);
  if (!engineExport.values.unreal) {
    ThrowNotFound(host::ProblemOf(engineExport));
  }
  return host::LensFileText(*engineExport.values.unreal, name, hasNodalOffset);
}

void Report::RequireExportable(bool evenIfWrong) const {
  if (!isCalibration_) {
    ThrowNotFound(
        "The report of a log cannot be exported, because a log has too few decimals. Export the "
        "report of the calibration.");
  }
  if (level_ == host::Level::kFailed) {
    ThrowNotFound("The calibration failed: there is nothing to export.");
  }
  const std::string refusal = RefusalOf(origin_, "even_if_wrong");
  if (!refusal.empty() && !evenIfWrong) {
    throw Refusal(TRACKEDCAM_WRONG_RESULT, refusal);
  }
}

}  // namespace trackedcam::c

using namespace trackedcam::c;
namespace host = trackedcam::host;

trackedcam_status trackedcam_report_level(trackedcam_report* report, int32_t* level) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(level, "level");
    *level = static_cast<int32_t>(read->Level());
  });
}

trackedcam_status trackedcam_report_code(trackedcam_report* report, int32_t* code) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(code, "code");
    *code = static_cast<int32_t>(read->Numbers("/code").at(0));
  });
}

trackedcam_status trackedcam_report_verdict(trackedcam_report* report, const char** message,
                                            const char** advice) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(message, "message");
    RequirePointer(advice, "advice");
    const char* const readMessage = read->Text("/verdict/message");
    *advice = read->Text("/verdict/advice");
    *message = readMessage;
  });
}

trackedcam_status trackedcam_report_lens(trackedcam_report* report, trackedcam_lens* lens,
                                         size_t lens_size) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(lens, "lens");
    RequireSize(lens_size, sizeof(trackedcam_lens), "lens");
    const std::vector<double> size = ListOf(*read, "/imageSize", 2);
    const std::vector<double> focal = ListOf(*read, "/normFocal", 2);
    const std::vector<double> centre = ListOf(*read, "/normCenter", 2);
    const std::vector<double> k = ListOf(*read, "/distortion", 5);
    const std::vector<double> fov = ListOf(*read, "/fieldOfView", 2);
    const std::vector<double> focalMm = ListOf(*read, "/focalLengthMm", 1);
    *lens = {size[0],
             size[1],
             focal[0] * size[0],
             focal[1] * size[1],
             centre[0] * size[0],
             centre[1] * size[1],
             k[0],
             k[1],
             k[2],
             k[3],
             k[4],
             fov[0],
             fov[1],
             focalMm[0]};
  });
}

trackedcam_status trackedcam_report_transform_cam_tc(trackedcam_report* report,
                                                     double transform_cam_tc[16]) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(transform_cam_tc, "transform_cam_tc");
    const std::vector<double> transform = ListOf(*read, "/transformCamTc", 16);
    std::copy(transform.begin(), transform.end(), transform_cam_tc);
  });
}

trackedcam_status trackedcam_report_json(trackedcam_report* report, const char** json) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(json, "json");
    *json = read->WholeText();
  });
}

trackedcam_status trackedcam_report_numbers(trackedcam_report* report, const char* pointer,
                                            double* values, size_t capacity, size_t* count) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string place = RequireText(pointer, "pointer");
    RequirePointer(count, "count");
    if (capacity > 0) {
      RequirePointer(values, "values");
    }
    const std::vector<double> numbers = read->Numbers(place);
    *count = numbers.size();
    if (capacity < numbers.size()) {
      throw Refusal(TRACKEDCAM_TOO_SMALL, place + " has " + std::to_string(numbers.size()) +
                                              " numbers, more than capacity.");
    }
    std::copy(numbers.begin(), numbers.end(), values);
  });
}

trackedcam_status trackedcam_report_text(trackedcam_report* report, const char* pointer,
                                         const char** text) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string place = RequireText(pointer, "pointer");
    RequirePointer(text, "text");
    *text = read->Text(place);
  });
}

trackedcam_status trackedcam_report_count(trackedcam_report* report, const char* pointer,
                                          size_t* count) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string place = RequireText(pointer, "pointer");
    RequirePointer(count, "count");
    *count = read->Count(place);
  });
}

trackedcam_status trackedcam_export_options_init(trackedcam_export_options* options,
                                                 size_t struct_size) {
  return Guarded([&] {
    RequirePointer(options, "options");
    RequireSize(struct_size, sizeof(trackedcam_export_options), "options");
    *options = {};
    options->struct_size = sizeof(trackedcam_export_options);
  });
}

namespace {

void ExportTo(trackedcam_report* report, const char* format, const ExportRequest& request,
              const char** json) {
  const auto read = Reports().Get(report);
  const char* const text = read->Export(RequireText(format, "format"), request);
  if (json != nullptr) {
    *json = text;
  }
}

ExportRequest RequestOf(const trackedcam_export_options& options) {
  RequireSize(options.struct_size, sizeof(options), "options");
  const auto isSet = [](std::int32_t flag, const char* name) {
    if (flag != 0 && flag != 1) {
      throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is neither 0 nor 1.");
    }
    return flag == 1;
  };
  if (options.reserved != 0) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "reserved is not 0.");
  }
  ExportRequest request = {OptionalText(options.parent_axes, "parent_axes")};
  request.evenIfWrong = isSet(options.even_if_wrong, "even_if_wrong");
  request.hasNodalOffset = isSet(options.nodal_offset, "nodal_offset");
  request.preview = OptionalPath(options.preview_file, "preview_file");
  if (options.overscan != 0) {
    request.file.overscan = options.overscan;
  }
  return request;
}

}  // namespace

trackedcam_status trackedcam_report_export(trackedcam_report* report, const char* format,
                                           const char* parent_axes, const char** json) {
  return Guarded(
      [&] { ExportTo(report, format, {OptionalText(parent_axes, "parent_axes")}, json); });
}

trackedcam_status trackedcam_report_export_with(trackedcam_report* report, const char* format,
                                                const trackedcam_export_options* options,
                                                const char** json) {
  return Guarded([&] {
    RequirePointer(options, "options");
    ExportTo(report, format, RequestOf(*options), json);
  });
}

trackedcam_status trackedcam_report_export_file(trackedcam_report* report, const char* format,
                                                const trackedcam_export_options* options,
                                                const char* file) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const ExportRequest request = options == nullptr ? ExportRequest() : RequestOf(*options);
    read->ExportFile(RequireText(format, "format"), request, PathOf(file, "file"));
  });
}

trackedcam_status trackedcam_report_lens_file(trackedcam_report* report, const char* parent_axes,
                                              const char* name, const char** text) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string lens = RequireText(name, "name");
    RequirePointer(text, "text");
    *text = read->LensFile({OptionalText(parent_axes, "parent_axes")}, lens);
  });
}

trackedcam_status trackedcam_report_page(trackedcam_report* report, const char* page_folder,
                                         const char** html) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(html, "html");
    *html = read->Page(OptionalPath(page_folder, "page_folder"));
  });
}

trackedcam_status trackedcam_report_save(trackedcam_report* report, const char* json_file,
                                         const char* page_file) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    // Both paths are checked before a file is written.
    const std::filesystem::path json = OptionalPath(json_file, "json_file");
    const std::filesystem::path page = OptionalPath(page_file, "page_file");
    if (!json.empty()) {
      host::WriteFile(json, read->JsonText());
    }
    if (!page.empty()) {
      host::WriteFile(page, read->PageText(page.parent_path()));
    }
  });
}

trackedcam_status trackedcam_report_free(trackedcam_report* report) {
  return Guarded([&] { Reports().Free(report); });
}
