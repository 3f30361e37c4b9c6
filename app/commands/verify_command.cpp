#include "app/commands/verify_command.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "app/terminal/output.h"
#include "app/terminal/summary.h"
#include "host/findings/finding_text.h"
#include "host/result/result_file.h"
#include "host/silenced_stdout.h"
#include "host/text/files.h"
#include "host/text/text.h"
#include "host/verify/verify.h"
#include "host/verify/verify_json.h"
#include "host/verify/verify_text.h"
#include "report/verify_page.h"

namespace trackedcam::app {
namespace {

constexpr const char* kVerifyFooter = R"(Examples:
  trackedcam verify --result result.json --data morning.csv
  The chart was taken off its tracker, or is another one:
    trackedcam verify --result result.json --data morning.csv \
        --chart-remounted --board 7x5 --square 40mm

Three photographs are enough, five are better, with the chart rotated
differently in each. Axes, unit and order of the data file are those of the
calibration's.

Exit status:
  0  the calibration still holds
  1  that cannot be told, or a file could not be written
  2  wrong usage
  3  something has changed)";

struct VerifyOptions {
  host::VerifyInputs inputs;
  bool invertTrackerQuaternions = false;
  std::filesystem::path out;     // empty: none
  std::filesystem::path report;  // empty: none
  bool json = false;
};

void PrintPhotographs(std::ostream& out, const host::VerifyReport& report) {
  out << "\nPhotographs, root mean square between corners and prediction\n";
  PrintRow(out, "", {"old, px", "new, px", "old, mm", "old, deg"});
  for (const host::PhotographEntry& entry : report.photographs) {
    std::vector<std::string> values = {host::Name(entry.state)};
    if (entry.checked) {
      const auto& verified = report.verification.photographs.at(*entry.checked);
      const auto number = [](double value, int decimals) {
        return std::isfinite(value) ? host::Fixed(value, decimals) : std::string("unknown");
      };
      values = {number(verified.oldPixels, 2), number(verified.newPixels, 2),
                number(verified.oldMm, 2), number(verified.oldDegrees, 3)};
    }
    PrintRow(out, entry.name, values);
    if (!entry.reason.empty()) {
      out << "    " << entry.reason << '\n';
    }
  }
}

void PrintVerification(std::ostream& out, const host::VerifyReport& report) {
  PrintPhotographs(out, report);
  if (!report.findings.empty()) {
    out << "\nFindings\n";
    for (const host::Finding& finding : report.findings) {
      out << "  " << Name(finding.severity) << ": " << host::Text(finding) << ' '
          << host::Advice(finding) << '\n';
    }
  }
  out << '\n' << host::AnswerText(report.verification) << '\n';
  for (const std::string& detail : host::Details(report.verification)) {
    out << "  " << detail << '\n';
  }
  PrintOnScreen(out, report.verification.onScreen);
  out << "Next: " << host::AdviceText(report.verification) << '\n';
}

host::VerifyReport RunSilenced(const host::VerifyInputs& inputs) {
  const host::SilencedStdout silenced;  // the lines of the library's stage
  return host::Verify(inputs);
}

void PrepareOutputs(const VerifyOptions& options, const std::filesystem::path& configFile) {
  if (options.out.empty() && options.report.empty()) {
    return;
  }
  std::vector<std::filesystem::path> files = host::PhotographsOf(options.inputs);
  files.insert(files.end(), {options.inputs.result, options.inputs.data, configFile});
  if (!options.out.empty()) {
    PrepareOutputFile({"--out", options.out, "a file of trackedcam verify", host::IsVerifyFile},
                      files);
    files.push_back(options.out);
  }
  if (!options.report.empty()) {
    PrepareOutputFile(
        {"--report", options.report, "a report page of trackedcam", host::IsReportPage}, files);
  }
}

// False if it could not be written.
bool Write(const std::filesystem::path& file, const std::string& content, const char* name,
           bool isNamed) {
  if (file.empty()) {
    return true;
  }
  try {
    host::WriteFile(file, content);
    if (isNamed) {
      std::cout << name << file.u8string() << '\n';
    }
    return true;
  } catch (const std::exception& error) {
    std::cerr << "trackedcam: error: " << error.what() << '\n';
    return false;
  }
}

int Verify(VerifyOptions options, const std::filesystem::path& configFile) {
  host::VerifyInputs& inputs = options.inputs;
  if (options.invertTrackerQuaternions) {
    inputs.invertTrackerQuaternions = true;
  }
  if (inputs.workingFolder.empty()) {
    inputs.workingFolder = inputs.data.parent_path();
  }
  PrepareOutputs(options, configFile);
  const host::VerifyReport report = RunSilenced(inputs);
  const nlohmann::ordered_json values = host::VerifyJson(report);
  const std::string json = host::JsonText(values);
  if (options.json) {
    std::cout << json;
  } else {
    PrintVerification(std::cout, report);
  }
  int status = host::StatusOf(report.verification.answer);
  const bool isResultWritten = Write(options.out, json, "Result: ", !options.json);
  const bool isPageWritten =
      options.report.empty() ||
      Write(options.report, report::VerifyPage(values), "Report: ", !options.json);
  if (status == 0 && !(isResultWritten && isPageWritten)) {
    status = 1;
  }
  std::cout.flush();
  if (status != 0) {
    std::cerr << "trackedcam: warning: " << host::AnswerText(report.verification) << '\n';
  }
  return status;
}

}  // namespace

void AddVerifyCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "verify", "Check whether a calibration still holds", kVerifyFooter);
  const auto options = std::make_shared<VerifyOptions>();
  host::VerifyInputs& inputs = options->inputs;
  AddPath(command, "--result", inputs.result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(command, "--data", inputs.data, "FILE",
          "Tracker data file of the new photographs, from\nthree on")
      ->required()
      ->check(RequireFile);
  AddPath(command, "--working-folder", inputs.workingFolder, "FOLDER",
          "Folder at which relative paths of photographs\nbegin (default: the data file's folder)");
  command.add_flag("--chart-remounted", inputs.chartRemounted,
                   "The chart was mounted anew, or is another one:\nits mounting is unknown");
  AddValue(command, "--board", inputs.board, ParseBoard, "COLSxROWS",
           "Inner corners of another chart, with\n--chart-remounted (default: the result's)");
  AddValue(command, "--square", inputs.squareMetres, ParseSquare, "METRES",
           "Edge of its squares (default: the result's)");
  AddValue(command, "--tracker-axes", inputs.trackerAxes, ParseTrackerAxes, "AXES",
           "As in calibrate; must be the result's\n(default: the result's)");
  AddValue(command, "--tracker-units", inputs.trackerUnit, ParseTrackerUnit, "UNIT", "The same");
  AddValue(command, "--quaternion-order", inputs.hasQuaternionsXyzw, ParseQuaternionOrder, "ORDER",
           "The same");
  command.add_flag("--invert-tracker-quaternions", options->invertTrackerQuaternions, "The same");
  AddDistances(command, inputs.atMetres);
  AddPath(command, "--out", options->out, "FILE.json", "File with all values as JSON");
  AddPath(command, "--report", options->report, "FILE.html", "Page with the answer and pictures");
  command.add_flag("--json", options->json, "All values as JSON on standard output");
  command.callback(
      [options, &program, &status] { status = Verify(*options, ConfigFile(program)); });
}

}  // namespace trackedcam::app
