#include "core/console.h"

#include <atomic>
#include <iostream>

namespace trackedcam {
namespace {

std::atomic<bool> isSilent = false;

}  // namespace

void Print(const std::string& text) {
  if (!isSilent) {
    std::cout << text;
  }
}

void PrintLine(const std::string& text) {
  if (!isSilent) {
    std::cout << text << std::endl;
  }
}

void SilenceConsole() noexcept {
  isSilent = true;
}

}  // namespace trackedcam
