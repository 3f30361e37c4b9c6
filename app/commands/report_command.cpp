#include "app/commands/report_command.h"

#include <filesystem>
#include <iostream>
#include <memory>

#include <nlohmann/json.hpp>

#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "host/input/inputs.h"
#include "host/result/result_file.h"
#include "host/text/files.h"
#include "report/page.h"
#include "report/thumbnails.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kReportFooter = R"(Example:
  trackedcam report --result shoot/result.json --out report.html

calibrate writes the same page into the folder of each run.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

struct ReportOptions {
  fs::path result;
  fs::path out;
};

void WriteReport(const ReportOptions& options, const fs::path& configFile) {
  PrepareOutputFile({"--out", options.out, "a report page of trackedcam", host::IsReportPage},
                    {options.result, configFile});
  std::string page;
  try {
    const auto result = host::ReadJson<nlohmann::ordered_json>(options.result);
    page = report::Page(result, report::MakeThumbnails(result), options.out.parent_path(),
                        report::MakeUndistorted(result));
  } catch (const std::exception& error) {
    throw host::InputError(options.result.u8string() +
                           " is not a result file of trackedcam: " + error.what());
  }
  host::WriteFile(options.out, page);
  std::cout << "Report: " << options.out.u8string() << '\n';
}

}  // namespace

void AddReportCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "report", "Write the report page of a calibration", kReportFooter);
  const auto options = std::make_shared<ReportOptions>();
  AddPath(command, "--result", options->result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(command, "--out", options->out, "FILE.html", "File for the report page")->required();
  command.callback([options, &program, &status] {
    WriteReport(*options, ConfigFile(program));
    status = 0;
  });
}

}  // namespace trackedcam::app
