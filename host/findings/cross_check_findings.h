#pragma once

#include <string>
#include <vector>

#include "crosscheck/cross_check.h"
#include "host/findings/finding.h"

namespace trackedcam::host {

/// The findings of the cross-check in words, the worst first.
/// @param photographs The names of those that were checked, in their order.
std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const std::vector<std::string>& photographs);

/// Why a photograph is left out: "fits the trackers of img_004.jpg"; empty where nothing more is
/// known than that it contradicts the others.
std::string WhyLeftOut(const crosscheck::PerPhotograph& photograph,
                       const std::vector<std::string>& photographs);

/// "3 photographs from 0.8 m with the chart tilted 35 deg to the left"
std::string TextOf(const crosscheck::SuggestedView& view);

}  // namespace trackedcam::host
