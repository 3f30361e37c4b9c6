#include "app/commands/watch_shoot.h"

#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "app/platform.h"
#include "host/silenced_stdout.h"
#include "host/text/files.h"
#include "host/watch/shoot_watch.h"
#include "host/watch/watch_text.h"
#include "report/watch_page.h"

namespace trackedcam::app {
namespace {

constexpr std::chrono::milliseconds kPause(200);

std::vector<std::size_t> Update(host::ShootWatch& watch) {
  const host::SilencedStdout silenced;  // the lines of the library's stages
  return watch.Update();
}

// The page is beside the point if the disk is full: the terminal says the same.
void WritePage(const std::filesystem::path& file, const host::ShootWatch& watch, bool isRunning) {
  const host::ShootProgress& progress = watch.Progress();
  report::WatchView view;
  view.isRunning = isRunning;
  view.isEnough = host::IsEnough(progress);
  view.progress = host::ProgressText(progress, watch.Until());
  for (std::size_t i = 0; i < progress.photographs.size(); ++i) {
    view.photographs.push_back(host::PhotographText(progress, i));
  }
  try {
    host::WriteFile(file, report::WatchPage(view));
  } catch (const std::exception& error) {
    std::cerr << "trackedcam: warning: " << error.what() << '\n';
  }
}

void Print(const host::ShootWatch& watch, const std::vector<std::size_t>& changed) {
  for (const std::size_t photograph : changed) {
    std::cout << host::PhotographText(watch.Progress(), photograph) << '\n';
  }
  for (const std::string& sentence : host::ProgressText(watch.Progress(), watch.Until())) {
    std::cout << "  " << sentence << '\n';
  }
  std::cout.flush();
}

}  // namespace

void WatchShoot(const host::Inputs& inputs, const host::Accuracy& until) {
  const Interrupts interrupts;
  host::ShootWatch watch(inputs, until);
  const std::filesystem::path page = inputs.logFolder / "watch.html";
  WritePage(page, watch, true);
  std::cout << "Waiting for rows in " << inputs.data.u8string()
            << "; end with Ctrl-C.\nPage: " << page.u8string() << std::endl;
  while (!Interrupts::HasCome()) {
    const std::vector<std::size_t> changed = Update(watch);
    if (!changed.empty()) {
      Print(watch, changed);
      WritePage(page, watch, true);
    }
    std::this_thread::sleep_for(kPause);
  }
  WritePage(page, watch, false);
  std::cout << "Calibrating.\n" << std::flush;
}

}  // namespace trackedcam::app
