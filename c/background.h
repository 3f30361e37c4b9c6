#pragma once

#include <functional>

namespace trackedcam::c {

/// Does the work on a thread of its own, which nobody joins.
/// @param work Must let no exception through.
/// @throws std::system_error where the system gives no thread.
void InBackground(std::function<void()> work);

}  // namespace trackedcam::c
