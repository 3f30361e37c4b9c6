// trackedcam: calibrates a tracked camera from the command line.

#include "app/main.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "app/commands/calibrate_command.h"
#include "app/commands/chart_command.h"
#include "app/commands/compare_command.h"
#include "app/commands/config_file.h"
#include "app/commands/crosscheck_command.h"
#include "app/commands/export_command.h"
#include "app/commands/pair_command.h"
#include "app/commands/report_command.h"
#include "app/commands/simulate_command.h"
#include "app/commands/verify_command.h"
#include "app/licences.h"
#include "app/options/option_values.h"
#include "app/platform.h"
#include "app/terminal/next_commands.h"
#include "app/terminal/output.h"
#include "app/version.h"
#include "host/input/inputs.h"

namespace {

constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;

constexpr const char* kFooter = R"(Examples:
  trackedcam simulate shoot
  trackedcam calibrate --config shoot/shoot.toml
  trackedcam export unreal --result shoot/result.json

'trackedcam COMMAND --help' lists the options of a command.

Exit status: 0 done, 1 failed, 2 wrong usage, 3 certainly wrong, or no longer
right.)";

void PrintLicences() {
  for (const char* const* line = trackedcam::app::kLicences; *line != nullptr; ++line) {
    std::cout << *line;
  }
  throw CLI::Success();
}

int Run(int argc, char** argv) {
  CLI::App program("Calibrates a tracked camera from photographs of a tracked chessboard chart",
                   "trackedcam");
  program.allow_windows_style_options(false);  // a path may begin with a slash
  // Before the commands, which take the help flag from the program.
  program.set_help_flag("-h,--help", "Help of the program or of a command");
  program.set_version_flag("--version", trackedcam::app::kVersion,
                           "Version, commit and libraries of the program");
  program.add_flag_callback("--licenses", PrintLicences,
                            "Licences of the program and of its contents");
  program.formatter(std::make_shared<trackedcam::app::HelpFormatter>());
  program.footer(kFooter);

  int status = 0;
  const std::string commandLine = trackedcam::app::CommandLine(argc, argv);
  trackedcam::app::AddCalibrateCommand(program, commandLine, status);
  trackedcam::app::AddChartCommand(program, status);
  trackedcam::app::AddCompareCommand(program, status);
  trackedcam::app::AddCrosscheckCommand(program, commandLine, status);
  trackedcam::app::AddExportCommand(program, status);
  trackedcam::app::AddPairCommand(program, status);
  trackedcam::app::AddReportCommand(program, status);
  trackedcam::app::AddSimulateCommand(program, status);
  trackedcam::app::AddVerifyCommand(program, status);
  trackedcam::app::AddConfigFile(program);
  try {
    program.parse(argc, argv);
    if (program.get_subcommands().empty()) {
      throw CLI::ValidationError("a command is missing; trackedcam --help lists them");
    }
  } catch (const CLI::Success& success) {
    return program.exit(success);
  } catch (const CLI::ParseError& error) {
    std::cerr << "trackedcam: " << error.what() << '\n';
    return kWrongUsage;
  }
  return status;
}

int RunToTheEnd(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const trackedcam::host::InputError& error) {
    std::cerr << "trackedcam: " << error.what() << '\n';
    return kWrongUsage;
  } catch (const std::exception& error) {
    std::cerr << "trackedcam: " << error.what() << '\n';
    return kFailure;
  }
}

// Standard output is full or closed, such as a file on a full disk.
bool HasOutputError() {
  std::cout.flush();
  return !std::cout || std::fflush(stdout) != 0 || std::ferror(stdout) != 0;
}

}  // namespace

int trackedcam::app::Main(int argc, char** argv) {
  PrepareForWriting();
  HoldBlasToOneThread();
  const EscapedOutput out(std::cout);
  const EscapedOutput errors(std::cerr);
  const int status = RunToTheEnd(argc, argv);
  if (HasOutputError()) {
    std::cerr << "trackedcam: error: standard output could not be written\n";
    return status == 0 ? kFailure : status;
  }
  return status;
}
