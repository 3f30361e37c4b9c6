// What is wrong with the shoot, its chart and its trackers. Each is nothing where all is well.

#pragma once

#include <optional>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/findings.h"

namespace trackedcam::crosscheck {

std::optional<Finding> TooLittleTurning(const CrossCheck& check);
std::optional<Finding> TrackerMoved(const CrossCheck& check);
std::optional<Finding> BadPhotographs(const CrossCheck& check, const Evidence& evidence,
                                      const Grounds& grounds);
std::optional<Finding> WrongSquareSize(const CrossCheck& check, const Grounds& grounds);
std::optional<Finding> HalvesDiffer(const CrossCheck& check);
std::optional<Finding> LensUncertain(const CrossCheck& check, const Evidence& evidence,
                                     const Grounds& grounds);
std::optional<Finding> TrackersNoisy(const CrossCheck& check);

}  // namespace trackedcam::crosscheck
