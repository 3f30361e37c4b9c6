#include "app/words/progress_bar.h"

#include <algorithm>

namespace trackedcam::app {
namespace {

constexpr std::size_t kStageWidth = 22;
constexpr std::size_t kCells = 30;

}  // namespace

std::string ProgressText(const host::Progress& progress) {
  std::string text = progress.stage;
  if (progress.all == 0) {
    return text + " ...";
  }
  text.resize(std::max(text.size(), kStageWidth), ' ');
  const std::size_t filled = kCells * std::min(progress.done, progress.all) / progress.all;
  return text + '[' + std::string(filled, '#') + std::string(kCells - filled, '.') + "] " +
         std::to_string(progress.done) + " of " + std::to_string(progress.all) + " photographs";
}

ProgressBar::~ProgressBar() {
  if (width_ > 0) {
    Draw("");
  }
}

void ProgressBar::Draw(const std::string& text) {
  // Blanks wipe out what a longer text left behind.
  const std::size_t wiped = width_ - std::min(width_, text.size());
  terminal_ << '\r' << text << std::string(wiped, ' ') << (text.empty() ? "\r" : "") << std::flush;
  width_ = text.size();
}

}  // namespace trackedcam::app
