#include "core/version.h"

namespace trackedcam {

const std::string LibraryVersion = "v" TRACKEDCAM_VERSION;

}  // namespace trackedcam
