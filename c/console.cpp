// Standard output is that of the host of this library: nothing is printed to it.

#include "core/console.h"

namespace {

[[maybe_unused]] const bool isSilent = [] {
  trackedcam::SilenceConsole();
  return true;
}();

}  // namespace
