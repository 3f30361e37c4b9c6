#pragma once

namespace trackedcam::app {

/// The program, called by the entry that the operating system knows. The arguments are UTF-8.
int Main(int argc, char** argv);

}  // namespace trackedcam::app
