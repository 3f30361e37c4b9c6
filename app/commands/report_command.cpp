#include "app/commands/report_command.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <iostream>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "host/input/inputs.h"
#include "host/input/photograph_file.h"
#include "host/result/result_file.h"
#include "host/text/files.h"
#include "host/text/text.h"
#include "report/page.h"
#include "report/thumbnails.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostPictures = 5000;  // 60 MB of small ones

constexpr const char* kReportFooter = R"(Example:
  trackedcam report --result shoot/result.json --out report.html

calibrate writes the same page into the folder of each run.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

struct ReportOptions {
  fs::path result;
  fs::path out;
  bool hasFullPhotographs = false;
};

/// Reads the pictures that a result names. The result may be a stranger's, and the page is made to
/// be passed on, so only pictures of the shoot are embedded: those beside or below the result file,
/// the log of the run or the tracker data. It may also name one picture any number of times, so
/// their number is limited.
class PicturesOfShoot {
 public:
  PicturesOfShoot(const fs::path& resultFile, const nlohmann::ordered_json& result) {
    AddFolderOf(resultFile);
    for (const char* name : {"/log", "/inputs/data"}) {
      const nlohmann::ordered_json::json_pointer pointer(name);
      if (result.is_object() && result.contains(pointer) && result[pointer].is_string()) {
        AddFolderOf(fs::u8path(result[pointer].get<std::string>()));
      }
    }
  }

  /// May be called on several threads.
  report::Picture Read(const fs::path& file) {
    std::error_code error;
    const fs::path real = fs::canonical(file, error);
    if (error) {
      return {};
    }
    for (const fs::path& folder : folders_) {
      if (std::mismatch(folder.begin(), folder.end(), real.begin(), real.end()).first ==
          folder.end()) {
        if (++read_ > kMostPictures) {
          return {};
        }
        host::PhotographFile photograph = host::ReadPhotograph(real);
        return {std::move(photograph.bytes), photograph.isLarge};
      }
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    outside_.insert(file);
    return {};
  }

  /// What the user should know about the pictures; empty if all are on the page.
  std::string Warning() const {
    std::string text;
    if (!outside_.empty()) {
      text +=
          "trackedcam: warning: pictures that the page does not show, because they are not below "
          "the folder of the result, of its log or of its tracker data: " +
          std::to_string(outside_.size()) + '\n';
    }
    if (read_ > kMostPictures) {
      text += "trackedcam: warning: the page does not show pictures after the first " +
              std::to_string(kMostPictures) + '\n';
    }
    return text;
  }

 private:
  // Of a file that exists, and not everything below the root.
  void AddFolderOf(const fs::path& file) {
    std::error_code error;
    const fs::path folder = fs::canonical(file, error).parent_path();
    if (!error && folder.has_relative_path() && fs::is_regular_file(file, error)) {
      folders_.push_back(folder);
    }
  }

  std::vector<fs::path> folders_;  // without links
  std::mutex mutex_;
  std::set<fs::path> outside_;
  std::atomic<std::size_t> read_ = 0;
};

void WriteReport(const ReportOptions& options, const fs::path& configFile) {
  PrepareOutputFile({"--out", options.out, "a report page of trackedcam", host::IsReportPage},
                    {options.result, configFile});
  std::string page;
  std::string warning;
  try {
    const auto result = host::ReadJson<nlohmann::ordered_json>(options.result);
    PicturesOfShoot pictures(options.result, result);
    const auto read = [&](const fs::path& file) { return pictures.Read(file); };
    page = report::Page(result, report::MakeThumbnails(result, read, options.hasFullPhotographs),
                        options.out.parent_path(), report::MakeUndistorted(result, read));
    warning = pictures.Warning();
  } catch (const std::exception& error) {
    throw host::InputError(options.result.u8string() +
                           " is not a result file of trackedcam: " + error.what());
  }
  WriteOutput(options.out, page);
  TextBeside(options.out) << "Report: " << options.out.u8string() << ", "
                          << host::Fixed(static_cast<double>(page.size()) / 1e6, 1) << " MB\n";
  std::cerr << warning;
}

}  // namespace

void AddReportCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "report", "Write the report page of a calibration", kReportFooter);
  const auto options = std::make_shared<ReportOptions>();
  AddPath(command, "--result", options->result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddOutput(command, "--out", options->out, "FILE.html",
            "File for the report page; - is standard output")
      ->required();
  AddPagePhotographs(command, options->hasFullPhotographs, "Options");
  command.callback([options, &program, &status] {
    WriteReport(*options, ConfigFile(program));
    status = 0;
  });
}

}  // namespace trackedcam::app
