#pragma once

#include <ostream>

#include "host/engines/unity.h"
#include "host/engines/unreal.h"

namespace trackedcam::app {

/// The figures by the names of the fields that take them. Where the lens is not known, its rows are
/// left out.
void PrintUnreal(std::ostream& out, const host::UnrealFigures& figures);
void PrintUnity(std::ostream& out, const host::UnityFigures& figures);

}  // namespace trackedcam::app
