// The parts of the C interface that differ between operating systems.

#pragma once

namespace trackedcam::c {

/// Keeps the library in memory until the process ends, even if the host unloads it: runs in the
/// background execute its code.
void StayLoaded();

/// Whether threads still run while static objects are destroyed at the end of the process. If so,
/// the end must wait for them. If the system has already stopped them, it must not.
extern const bool kThreadsOutliveExit;

/// Has functions called around each fork of this process, where the system forks processes: on the
/// thread that forks, before it, then in each of the two processes.
void AroundForks(void (*before)(), void (*inParent)(), void (*inChild)());

}  // namespace trackedcam::c
