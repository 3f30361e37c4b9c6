// In place of chart_command.cpp where there is no library to draw with.

#include "app/commands/chart_command.h"

namespace trackedcam::app {

void AddChartCommand(CLI::App& /*program*/, int& /*status*/) {}

}  // namespace trackedcam::app
