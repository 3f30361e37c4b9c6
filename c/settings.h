// The settings of a host as inputs of a calibration.

#pragma once

#include <optional>

#include "c/shoot.h"
#include "host/input/inputs.h"

namespace trackedcam::c {

/// @throws Refusal for settings that trackedcam_settings_init did not fill, and for numbers that
///         stand for nothing.
void RequireSettings(const trackedcam_settings* settings);

/// As the settings state it; nothing where they do not.
std::optional<host::Mounting> MountingOf(const trackedcam_settings& settings);

/// All paths absolute. The data file of a shoot in memory is written.
/// @throws Refusal, host::InputError
host::Inputs InputsOf(const Shoot& shoot, const trackedcam_settings& settings);

}  // namespace trackedcam::c
