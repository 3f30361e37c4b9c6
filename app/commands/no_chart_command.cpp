// Instead of chart_command.cpp in a build without cairo.

#include "app/commands/chart_command.h"

namespace trackedcam::app {

void AddChartCommand(CLI::App& /*program*/, int& /*status*/) {}

}  // namespace trackedcam::app
