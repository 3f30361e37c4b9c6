// Everything of the C interface that differs between operating systems.

#pragma once

namespace trackedcam::c {

/// Keeps the library in memory until the process ends, whoever unloads it: its code is what a run
/// in the background executes.
void StayLoaded();

/// Whether threads still run when the library's static objects are destroyed. Where they do, the
/// end of the process must wait for them; where the system has ended them before, it would wait for
/// ever.
extern const bool kThreadsOutliveExit;

}  // namespace trackedcam::c
