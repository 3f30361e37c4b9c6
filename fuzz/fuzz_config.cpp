// The configuration file: it gives options, or an error with a message.

#include <CLI/CLI.hpp>

#include "app/commands/calibrate_command.h"
#include "app/commands/config_file.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  const auto file = fuzz::FileWith(fuzz::TextOf(data, size), "shoot.toml");
  CLI::App program;
  CLI::App* command = program.add_subcommand("calibrate");
  command->fallthrough();
  app::CalibrateOptions options;
  app::AddCalibrateOptions(*command, options);
  app::AddConfigFile(program);
  const std::string path = file.string();
  const char* const arguments[] = {"trackedcam", "calibrate", "--config", path.c_str()};
  try {
    program.parse(4, const_cast<char**>(arguments));
  } catch (const CLI::ParseError& error) {
    fuzz::Require(error.what() != std::string(), "an error without a message");
  }
  return 0;
}
