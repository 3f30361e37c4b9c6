#include "app/commands/simulate_command.h"

#include <iostream>
#include <memory>
#include <stdexcept>

#include "app/commands/simulate_options.h"
#include "app/options/shoot_folder.h"
#include "app/platform.h"
#include "app/words/escaped_output.h"
#include "app/words/progress_bar.h"
#include "simulator/shoot.h"
#include "simulator/write_shoot.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter = R"(Examples:
  trackedcam simulate shoot
  trackedcam simulate shoot --photographs 30 --missing 1 --outliers 3 --tracker-noise-mm 0.5
  trackedcam calibrate --config shoot/shoot.toml

The folder gets photos/, tracker_data.csv, truth.json and shoot.toml. It may hold an earlier simulated
shoot, which is replaced, and nothing else.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

simulator::Shoot Simulate(const simulator::ShootOptions& options) {
  try {
    return simulator::SimulateShoot(options);
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(error.what());
  }
}

void Write(const simulator::Shoot& shoot, const fs::path& folder) {
  std::ostream terminal(PlainOutput(std::cerr));
  ProgressBar bar(terminal);
  const bool isShown = IsTerminal(stderr);
  simulator::WriteShoot(shoot, folder, [&](int done, int all) {
    if (isShown) {
      bar.Show({"Simulating", static_cast<std::size_t>(done), static_cast<std::size_t>(all)});
    }
  });
}

}  // namespace

void AddSimulateCommand(CLI::App& program, int& status) {
  CLI::App* command = program.add_subcommand("simulate", "Write a simulated shoot and its truth");
  command->group("Commands");
  command->fallthrough();
  command->footer(kFooter);
  const auto options = std::make_shared<SimulateOptions>();
  AddSimulateOptions(*command, *options);
  command->callback([options, &status] {
    const simulator::Shoot shoot = Simulate(options->shoot);
    if (!options->force) {
      RequireShootFolder(options->folder);
    }
    Write(shoot, options->folder);
    std::cout << "Wrote a shoot of " << shoot.photographs.size() << " photographs to "
              << options->folder.u8string() << '\n'
              << "Next: trackedcam calibrate --config "
              << (options->folder / "shoot.toml").u8string() << '\n';
    status = 0;
  });
}

}  // namespace trackedcam::app
