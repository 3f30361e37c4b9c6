#pragma once

#include <filesystem>
#include <string>

#include "app/chart/chart_layout.h"

namespace trackedcam::app {

enum class ChartFormat { kPdf, kSvg };

/// The chart as the content of a file: one page at true scale.
/// @throws std::runtime_error when it cannot be drawn.
std::string DrawChart(const PrintedChart& chart, ChartFormat format);

/// Whether a file is a chart that was drawn here.
bool IsChart(const std::filesystem::path& file);

}  // namespace trackedcam::app
