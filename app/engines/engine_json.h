#pragma once

#include <nlohmann/json.hpp>

#include "app/engines/engine_export.h"

namespace trackedcam::app {

/// The figures for an engine at full precision, with the axes they count along.
nlohmann::ordered_json EngineJson(const EngineExport& engineExport);

}  // namespace trackedcam::app
