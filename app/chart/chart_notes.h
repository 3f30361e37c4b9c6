// What a printed chart says about itself.

#pragma once

#include <array>
#include <string>

#include "app/chart/chart_layout.h"

namespace trackedcam::app {

/// What the calibration is told of the chart: "--board 9x6 --square 0.03".
std::string BoardOptions(const PrintedChart& chart);

/// The command that calibrates with the chart, as far as the chart decides it.
std::string CalibrateCommandFor(const PrintedChart& chart);

/// That command, how to print the chart, and which way up it stands.
std::array<std::string, 3> ChartNotes(const PrintedChart& chart);

/// A length in millimetres as text, without the digits that arithmetic leaves at its end.
std::string MillimetresText(double length);

}  // namespace trackedcam::app
