#pragma once

namespace trackedcam::app {

/// The program, called by main or wmain. The arguments are UTF-8.
int Main(int argc, char** argv);

}  // namespace trackedcam::app
