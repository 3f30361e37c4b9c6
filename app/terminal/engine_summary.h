#pragma once

#include <ostream>

#include "host/engines/engine.h"
#include "host/engines/unity.h"
#include "host/engines/unreal.h"

namespace trackedcam::app {

/// The figures by the names of the fields that take them. Where the lens is not known, its rows are
/// left out.
void PrintUnreal(std::ostream& out, const host::UnrealFigures& figures);
void PrintUnity(std::ostream& out, const host::UnityFigures& figures);

/// The figures in words and units that can be typed into the engine, below the axes they count
/// along.
void PrintEngineExport(std::ostream& out, const host::EngineExport& engineExport);

/// A line of error or warning; nothing when all is well.
void PrintProblem(std::ostream& out, const host::EngineExport& engineExport);

}  // namespace trackedcam::app
