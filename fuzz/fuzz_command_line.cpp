// Command lines: understood, or refused with a message. No command runs.

#include <sstream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/commands/calibrate_command.h"
#include "app/commands/config_file.h"
#include "app/commands/simulate_command.h"
#include "fuzz/fuzz.h"

// An argument for each line, since an argument may have blanks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  std::vector<std::string> arguments;
  std::istringstream lines{std::string(fuzz::TextOf(data, size))};
  for (std::string line; std::getline(lines, line);) {
    arguments.insert(arguments.begin(), line);  // the parser takes them from the back
  }
  CLI::App program;
  app::CalibrateOptions calibrate;
  app::AddCalibrateOptions(*program.add_subcommand("calibrate")->fallthrough(), calibrate);
  app::SimulateOptions simulate;
  app::AddSimulateOptions(*program.add_subcommand("simulate")->fallthrough(), simulate);
  app::AddConfigFile(program);
  try {
    program.parse(arguments);
    for (const auto* path : {&calibrate.inputs.data, &calibrate.inputs.logFolder, &calibrate.result,
                             &calibrate.report}) {
      fuzz::Require(path->empty() || path->is_absolute() || *path == "-", "a relative path");
      fuzz::Require(path->u8string().find('\n') == std::string::npos, "a path of two lines");
    }
  } catch (const CLI::Success&) {
  } catch (const CLI::ParseError& error) {
    fuzz::Require(error.what() != std::string(), "an error without a message");
  }
  return 0;
}
