#pragma once

#include <functional>

namespace trackedcam::c {

/// Does the work on a thread of its own, which nobody joins.
/// @param work Must let no exception through.
/// @throws std::system_error where the system gives no thread.
void InBackground(std::function<void()> work);

/// To be called by the work from time to time. The end of a process waits for the work before it
/// destroys what was made before the last of these calls; the libraries underneath make objects
/// that they need when they first need them.
void HoldWhatWasMade();

}  // namespace trackedcam::c
