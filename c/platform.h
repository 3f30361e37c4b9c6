// The parts of the C interface that differ between operating systems.

#pragma once

namespace trackedcam::c {

/// Keeps the library in memory until the process ends, even if the host unloads it: runs in the
/// background execute its code.
void StayLoaded();

/// Whether threads still run while static objects are destroyed at the end of the process. If so,
/// the end must wait for them. If the system has already stopped them, it must not.
extern const bool kThreadsOutliveExit;

}  // namespace trackedcam::c
