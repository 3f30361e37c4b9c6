// What a person reads while a shoot is photographed, in English; UTF-8.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/watch/shoot_watch.h"

namespace trackedcam::host {

/// One line: what became of the photograph, and how far it is from what all others say.
std::string PhotographText(const ShootProgress& progress, std::size_t photograph);

/// What is known so far, how many photographs are still needed, and the next view, in this order.
std::vector<std::string> ProgressText(const ShootProgress& progress, const Accuracy& until);

/// The transform is known accurately enough.
bool IsEnough(const ShootProgress& progress);

}  // namespace trackedcam::host
