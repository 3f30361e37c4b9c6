/// @file
/// The C interface for hosts in C++17, with any compiler and standard library.
///
/// Everything is inline and calls trackedcam_c.h, so only the library trackedcam_c is linked. Each
/// member calls the function of its name; trackedcam_c.h says what it does. Structs of numbers and
/// enums are those of that header.
///
/// **Errors.** A call that fails throws Error, with its status and a sentence. A value that a
/// calibration may not have is an empty std::optional.
///
/// **Handles** are freed with their objects, which can be moved and not copied. An object that was
/// moved from may only be destroyed or assigned to.
///
/// **Text** is UTF-8. Paths are std::filesystem::path: on Windows, do not make one from UTF-8 text
/// in a std::string, but with std::filesystem::u8path.

#ifndef TRACKEDCAM_TRACKEDCAM_HPP
#define TRACKEDCAM_TRACKEDCAM_HPP

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "trackedcam_c.h"

namespace trackedcam {

/// A call failed. what() is a sentence for the user.
class Error : public std::runtime_error {
 public:
  Error(trackedcam_status status, const char* sentence)
      : std::runtime_error(sentence), status_(status) {}

  /// One of trackedcam_status_code, such as TRACKEDCAM_BAD_INPUT.
  trackedcam_status Status() const noexcept { return status_; }

 private:
  trackedcam_status status_;
};

/// Not for hosts.
namespace detail {

inline void Check(trackedcam_status status) {
  if (status != TRACKEDCAM_OK) {
    throw Error(status, trackedcam_last_error());
  }
}

/// Whether there is such a value.
inline bool Found(trackedcam_status status) {
  if (status != TRACKEDCAM_NOT_FOUND) {
    Check(status);
  }
  return status == TRACKEDCAM_OK;
}

/// A path has it in the characters of its system; in C++20 u8string has another type.
inline std::string Utf8(const std::filesystem::path& path) {
  const auto text = path.u8string();
  return {text.begin(), text.end()};
}

/// NULL is the default of all texts that may be missing.
inline const char* OrNull(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

inline std::string Joined(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ",") + name;
  }
  return list;
}

struct Free {
  void operator()(trackedcam_shoot* shoot) const { trackedcam_shoot_free(shoot); }
  void operator()(trackedcam_run* run) const { trackedcam_run_free(run); }
  void operator()(trackedcam_report* report) const { trackedcam_report_free(report); }
  void operator()(trackedcam_verification* found) const { trackedcam_verification_free(found); }
  void operator()(trackedcam_pairing* found) const { trackedcam_pairing_free(found); }
  void operator()(trackedcam_comparison* found) const { trackedcam_comparison_free(found); }
};
template <class C>
using Handle = std::unique_ptr<C, Free>;

/// The handle that a function makes.
template <class C, class Function, class... Arguments>
Handle<C> Made(Function function, Arguments... arguments) {
  C* made = nullptr;
  Check(function(arguments..., &made));
  return Handle<C>(made);
}

/// The text that a function returns.
template <class Function, class... Arguments>
std::string TextOf(Function function, Arguments... arguments) {
  const char* text = nullptr;
  Check(function(arguments..., &text));
  return text;
}

}  // namespace detail

/// The version of the library, such as "1.1.0".
inline std::string Version() {
  return trackedcam_c_version();
}

// NOLINTBEGIN(readability-identifier-naming): the members have the names that they have in C
/// How to calibrate: the members of trackedcam_settings with their defaults. Those that are texts
/// or lists in C are hidden by members of C++.
struct Settings : trackedcam_settings {
  Settings() : trackedcam_settings() {
    detail::Check(trackedcam_settings_init(this, sizeof(trackedcam_settings)));
  }

  std::filesystem::path log_folder;      ///< Required; see trackedcam_settings.
  std::filesystem::path working_folder;  ///< Empty: the folder of the data file.
  std::vector<std::string> exclude;      ///< Photographs to leave out.
  std::vector<double> at_m;              ///< Empty: the chart's distance, 2, 4 and 10.
};

/// How to export: the members of trackedcam_export_options with their defaults.
struct ExportOptions : trackedcam_export_options {
  ExportOptions() : trackedcam_export_options() {
    detail::Check(trackedcam_export_options_init(this, sizeof(trackedcam_export_options)));
  }

  std::string parent_axes;             ///< Empty: the format's default.
  std::filesystem::path preview_file;  ///< Empty: no preview.
};

/// How to verify: the members of trackedcam_verify_options with their defaults.
struct VerifyOptions : trackedcam_verify_options {
  VerifyOptions() : trackedcam_verify_options() {
    detail::Check(trackedcam_verify_options_init(this, sizeof(trackedcam_verify_options)));
  }

  std::filesystem::path working_folder;  ///< Empty: the folder of the data file.
  std::vector<double> at_m;              ///< Empty: the chart's distance, 2, 4 and 10.
};

/// What to pair: the members of trackedcam_pair_options with their defaults. A path or a text that
/// is empty is a NULL in C.
struct PairOptions : trackedcam_pair_options {
  PairOptions() : trackedcam_pair_options() {
    detail::Check(trackedcam_pair_options_init(this, sizeof(trackedcam_pair_options)));
  }

  std::filesystem::path camera_poses;  ///< Required.
  std::filesystem::path chart_poses;   ///< Empty: the chart did not move.
  std::filesystem::path frames;        ///< Required.
  std::filesystem::path times;         ///< Empty: frames_per_second says them.
  std::filesystem::path out_folder;    ///< Required.
  std::string pose_format;             ///< Empty: recognised.
  std::string columns;                 ///< Empty: recognised.
  std::string pose_unit;               ///< Empty: the header's, otherwise m.
  std::string time_unit;               ///< Empty: the header's or the format's.
};

// NOLINTEND(readability-identifier-naming)

namespace detail {

/// Options as C takes them; they point to the texts and lists beside them.
struct SettingsInC {
  explicit SettingsInC(const Settings& settings)
      : c(settings),
        logFolder(Utf8(settings.log_folder)),
        workingFolder(Utf8(settings.working_folder)),
        exclude(Joined(settings.exclude)) {
    c.log_folder = OrNull(logFolder);
    c.working_folder = OrNull(workingFolder);
    c.exclude = OrNull(exclude);
    c.at_m = settings.at_m.data();
    c.at_count = static_cast<std::int32_t>(settings.at_m.size());
  }
  SettingsInC(const SettingsInC&) = delete;
  const trackedcam_settings* Get() const { return &c; }

  trackedcam_settings c;
  std::string logFolder, workingFolder, exclude;
};

struct ExportOptionsInC {
  explicit ExportOptionsInC(const ExportOptions& options)
      : c(options), parentAxes(options.parent_axes), previewFile(Utf8(options.preview_file)) {
    c.parent_axes = OrNull(parentAxes);
    c.preview_file = OrNull(previewFile);
  }
  ExportOptionsInC(const ExportOptionsInC&) = delete;
  const trackedcam_export_options* Get() const { return &c; }

  trackedcam_export_options c;
  std::string parentAxes, previewFile;
};

struct VerifyOptionsInC {
  explicit VerifyOptionsInC(const VerifyOptions& options)
      : c(options), workingFolder(Utf8(options.working_folder)) {
    c.working_folder = OrNull(workingFolder);
    c.at_m = options.at_m.data();
    c.at_count = static_cast<std::int32_t>(options.at_m.size());
  }
  VerifyOptionsInC(const VerifyOptionsInC&) = delete;
  const trackedcam_verify_options* Get() const { return &c; }

  trackedcam_verify_options c;
  std::string workingFolder;
};

struct PairOptionsInC {
  explicit PairOptionsInC(const PairOptions& options)
      : c(options), texts{Utf8(options.camera_poses),
                          Utf8(options.chart_poses),
                          Utf8(options.frames),
                          Utf8(options.times),
                          Utf8(options.out_folder),
                          options.pose_format,
                          options.columns,
                          options.pose_unit,
                          options.time_unit} {
    const std::array<const char**, kTexts> members = {
        &c.camera_poses, &c.chart_poses, &c.frames,    &c.times,    &c.out_folder,
        &c.pose_format,  &c.columns,     &c.pose_unit, &c.time_unit};
    for (std::size_t i = 0; i < kTexts; ++i) {
      *members.at(i) = OrNull(texts.at(i));
    }
  }
  PairOptionsInC(const PairOptionsInC&) = delete;
  const trackedcam_pair_options* Get() const { return &c; }

  trackedcam_pair_options c;
  static constexpr std::size_t kTexts = 9;
  std::array<std::string, kTexts> texts;
};

}  // namespace detail

/// Photographs of a chart, with the poses of both trackers.
class Shoot {
 public:
  /// Without rows: add them.
  Shoot() : handle_(detail::Made<trackedcam_shoot>(trackedcam_shoot_create)) {}

  /// From a tracker data file, which is read when a run starts.
  explicit Shoot(const std::filesystem::path& dataFile)
      : handle_(detail::Made<trackedcam_shoot>(trackedcam_shoot_open,
                                               detail::Utf8(dataFile).c_str())) {}

  /// Adds a data file in which the shoot was continued.
  void Continue(const std::filesystem::path& dataFile) {
    detail::Check(trackedcam_shoot_continue(Get(), detail::Utf8(dataFile).c_str()));
  }

  /// Adds a row.
  void Add(double timeS, const std::filesystem::path& photograph, const trackedcam_pose& camera,
           const trackedcam_pose& chart) {
    detail::Check(
        trackedcam_shoot_add(Get(), timeS, detail::Utf8(photograph).c_str(), &camera, &chart));
  }

  /// Writes the rows to a tracker data file.
  void Save(const std::filesystem::path& dataFile) const {
    detail::Check(trackedcam_shoot_save(Get(), detail::Utf8(dataFile).c_str()));
  }

  trackedcam_shoot* Get() const { return handle_.get(); }

 private:
  detail::Handle<trackedcam_shoot> handle_;
};

/// Everything that is known about a calibration that has ended.
class Report {
 public:
  /// Takes a handle and frees it later.
  explicit Report(detail::Handle<trackedcam_report> handle) : handle_(std::move(handle)) {}

  trackedcam_level Level() const {
    std::int32_t level = 0;
    detail::Check(trackedcam_report_level(Get(), &level));
    return static_cast<trackedcam_level>(level);
  }

  /// The library's result code; empty if an exception ended its call.
  std::optional<int> Code() const {
    std::int32_t code = 0;
    if (!detail::Found(trackedcam_report_code(Get(), &code))) {
      return std::nullopt;
    }
    return code;
  }

  /// The verdict, one sentence.
  std::string Message() const { return Verdict().first; }

  /// What to do next; empty if there is nothing to do.
  std::string Advice() const { return Verdict().second; }

  std::optional<trackedcam_lens> Lens() const {
    trackedcam_lens lens = {};
    if (!detail::Found(trackedcam_report_lens(Get(), &lens, sizeof lens))) {
      return std::nullopt;
    }
    return lens;
  }

  /// Row by row, translation in metres. If the level is TRACKEDCAM_FAILED, do not use it.
  std::optional<std::array<double, 16>> TransformCamTc() const {
    std::array<double, 16> transform = {};
    if (!detail::Found(trackedcam_report_transform_cam_tc(Get(), transform.data()))) {
      return std::nullopt;
    }
    return transform;
  }

  /// The result file.
  std::string Json() const { return detail::TextOf(trackedcam_report_json, Get()); }

  /// All numbers at a place of the JSON text, such as "/normFocal"; a null is NaN.
  std::optional<std::vector<double>> Numbers(const std::string& pointer) const {
    std::size_t count = 0;
    const trackedcam_status status =
        trackedcam_report_numbers(Get(), pointer.c_str(), nullptr, 0, &count);
    if (status != TRACKEDCAM_TOO_SMALL && !detail::Found(status)) {
      return std::nullopt;
    }
    std::vector<double> numbers(count);
    detail::Check(trackedcam_report_numbers(Get(), pointer.c_str(), numbers.data(), count, &count));
    return numbers;
  }

  /// The text at a place of the JSON text, such as "/findings/0/text".
  std::optional<std::string> Text(const std::string& pointer) const {
    const char* text = nullptr;
    if (!detail::Found(trackedcam_report_text(Get(), pointer.c_str(), &text))) {
      return std::nullopt;
    }
    return text;
  }

  /// The number of elements of a list of the JSON text, such as "/findings".
  std::optional<std::size_t> Count(const std::string& pointer) const {
    std::size_t count = 0;
    if (!detail::Found(trackedcam_report_count(Get(), pointer.c_str(), &count))) {
      return std::nullopt;
    }
    return count;
  }

  /// Exports to an engine or a file of another program, such as "unreal" or "opencv".
  /// @return JSON text.
  std::string Export(const std::string& format) const {
    return detail::TextOf(trackedcam_report_export, Get(), format.c_str(), nullptr);
  }
  std::string Export(const std::string& format, const ExportOptions& options) const {
    const detail::ExportOptionsInC inC(options);
    return detail::TextOf(trackedcam_report_export_with, Get(), format.c_str(), inC.Get());
  }

  /// Writes the file of an export.
  void ExportFile(const std::string& format, const std::filesystem::path& file,
                  const ExportOptions& options = {}) const {
    const detail::ExportOptionsInC inC(options);
    detail::Check(trackedcam_report_export_file(Get(), format.c_str(), inC.Get(),
                                                detail::Utf8(file).c_str()));
  }

  /// The content of a .ulens file for the Unreal editor, without the pose.
  /// @param parentAxes Empty: the default.
  std::string LensFile(const std::string& name, const std::string& parentAxes = {}) const {
    return detail::TextOf(trackedcam_report_lens_file, Get(), detail::OrNull(parentAxes),
                          name.c_str());
  }

  /// The report page: HTML.
  /// @param folder Folder of the page, for its links; empty: the folder of the run.
  std::string Page(const std::filesystem::path& folder = {}) const {
    return detail::TextOf(trackedcam_report_page, Get(), detail::OrNull(detail::Utf8(folder)));
  }

  /// Writes the result file and the report page, each if its path is not empty.
  void Save(const std::filesystem::path& jsonFile,
            const std::filesystem::path& pageFile = {}) const {
    const std::string json = detail::Utf8(jsonFile), page = detail::Utf8(pageFile);
    detail::Check(trackedcam_report_save(Get(), detail::OrNull(json), detail::OrNull(page)));
  }

  trackedcam_report* Get() const { return handle_.get(); }

 private:
  std::pair<std::string, std::string> Verdict() const {
    const char *message = nullptr, *advice = nullptr;
    detail::Check(trackedcam_report_verdict(Get(), &message, &advice));
    return {message, advice};
  }

  detail::Handle<trackedcam_report> handle_;
};

/// A calibration in the background. When its object is destroyed, it continues to its end.
class Run {
 public:
  /// Starts to calibrate and returns at once.
  Run(const Shoot& shoot, const Settings& settings)
      : handle_(detail::Made<trackedcam_run>(trackedcam_start, shoot.Get(),
                                             detail::SettingsInC(settings).Get())) {}

  bool IsDone() const {
    std::int32_t isDone = 0;
    detail::Check(trackedcam_run_poll(Get(), &isDone, nullptr, 0));
    return isDone != 0;
  }

  /// Where the run is.
  trackedcam_progress Progress() const {
    std::int32_t isDone = 0;
    trackedcam_progress progress = {};
    detail::Check(trackedcam_run_poll(Get(), &isDone, &progress, sizeof progress));
    return progress;
  }

  /// Waits for the end.
  void Wait() const {
    std::int32_t isDone = 0;
    detail::Check(trackedcam_run_wait(Get(), -1, &isDone));
  }

  /// Waits for the end or for a time, at most 24 days.
  /// @return Whether the run has ended.
  bool WaitFor(std::chrono::milliseconds time) const {
    const auto ms =
        std::clamp<std::int64_t>(time.count(), 0, (std::numeric_limits<std::int32_t>::max)());
    std::int32_t isDone = 0;
    detail::Check(trackedcam_run_wait(Get(), static_cast<std::int32_t>(ms), &isDone));
    return isDone != 0;
  }

  /// The report of a run that has ended; before, throws Error with TRACKEDCAM_NOT_DONE.
  trackedcam::Report Report() const {
    return trackedcam::Report(detail::Made<trackedcam_report>(trackedcam_run_report, Get()));
  }

  trackedcam_run* Get() const { return handle_.get(); }

 private:
  detail::Handle<trackedcam_run> handle_;
};

/// Receives the progress of a calibration.
using ProgressListener = std::function<void(const trackedcam_progress&)>;

/// Calibrates a shoot and waits for the end.
/// @param progress Called on this thread. If it throws, it is not called again, and its exception
///   continues here when the calibration has ended. To stop waiting earlier, use Run.
/// @return The report, also of a calibration without a result: see Level.
inline Report Calibrate(const Shoot& shoot, const Settings& settings,
                        const ProgressListener& progress = nullptr) {
  struct Listener {
    const ProgressListener& call;
    std::exception_ptr thrown;
  } listener{progress, nullptr};
  // No exception may cross the C interface.
  const auto tell = [](const trackedcam_progress* now, void* user) {
    Listener& told = *static_cast<Listener*>(user);
    try {
      if (told.call && !told.thrown) {
        told.call(*now);
      }
    } catch (...) {
      told.thrown = std::current_exception();
    }
  };
  trackedcam_report* made = nullptr;
  const trackedcam_status status = trackedcam_calibrate(
      shoot.Get(), detail::SettingsInC(settings).Get(), tell, &listener, &made);
  detail::Handle<trackedcam_report> report(made);
  if (listener.thrown) {
    std::rethrow_exception(listener.thrown);
  }
  detail::Check(status);
  return Report(std::move(report));
}

/// Cross-checks a calibration from the log that the library wrote, in any host.
inline Report CrossCheck(const std::filesystem::path& logFile, const Settings& settings = {}) {
  const std::string log = detail::Utf8(logFile);
  return Report(detail::Made<trackedcam_report>(trackedcam_crosscheck, log.c_str(),
                                                detail::SettingsInC(settings).Get()));
}

/// Whether a calibration still holds, from new photographs.
class Verification {
 public:
  Verification(const std::filesystem::path& resultFile, const std::filesystem::path& dataFile,
               const VerifyOptions& options = {})
      : handle_(detail::Made<trackedcam_verification>(
            trackedcam_verify, detail::Utf8(resultFile).c_str(), detail::Utf8(dataFile).c_str(),
            detail::VerifyOptionsInC(options).Get())) {}

  trackedcam_answer Answer() const {
    std::int32_t answer = 0;
    detail::Check(trackedcam_verification_answer(Get(), &answer));
    return static_cast<trackedcam_answer>(answer);
  }

  /// All values.
  std::string Json() const { return detail::TextOf(trackedcam_verification_json, Get()); }

  trackedcam_verification* Get() const { return handle_.get(); }

 private:
  detail::Handle<trackedcam_verification> handle_;
};

/// A shoot from a film and a continuous recording of both trackers.
class Pairing {
 public:
  /// Writes the shoot.
  explicit Pairing(const PairOptions& options)
      : handle_(detail::Made<trackedcam_pairing>(trackedcam_pair,
                                                 detail::PairOptionsInC(options).Get())) {}

  /// The content of pairing.json.
  std::string Json() const { return detail::TextOf(trackedcam_pairing_json, Get()); }

  trackedcam_pairing* Get() const { return handle_.get(); }

 private:
  detail::Handle<trackedcam_pairing> handle_;
};

/// What two results of one camera differ by, the second minus the first.
class Comparison {
 public:
  Comparison(const std::filesystem::path& firstFile, const std::filesystem::path& secondFile)
      : handle_(detail::Made<trackedcam_comparison>(trackedcam_compare,
                                                    detail::Utf8(firstFile).c_str(),
                                                    detail::Utf8(secondFile).c_str())) {}

  /// All values.
  std::string Json() const { return detail::TextOf(trackedcam_comparison_json, Get()); }

  trackedcam_comparison* Get() const { return handle_.get(); }

 private:
  detail::Handle<trackedcam_comparison> handle_;
};

}  // namespace trackedcam

#endif  // TRACKEDCAM_TRACKEDCAM_HPP
