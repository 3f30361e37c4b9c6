// A host may include all public headers.
#include <stdexcept>
#include <type_traits>

#include "trackedcam/trackedcam.h"
#include "trackedcam/trackedcam.hpp"
#include "trackedcam/trackedcam_c.h"

static_assert(std::is_base_of<std::runtime_error, trackedcam::Error>::value,
              "hosts catch it with their other errors");
