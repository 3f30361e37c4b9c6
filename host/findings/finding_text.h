// Every sentence about a finding, in plain English and with units. What a program needs is in the
// finding itself.

#pragma once

#include <string>
#include <vector>

#include "crosscheck/result.h"
#include "host/findings/finding.h"

namespace trackedcam::host {

/// For programs: "mountingOff".
const char* Id(const Finding& finding);

/// One sentence of fact, which names rows or photographs.
std::string Text(const Finding& finding);

/// One sentence on what to do.
std::string Advice(const Finding& finding);

/// The option of the program with which the next call mends the cause: "--refine-mounting",
/// "--tracker-units=mm"; empty if there is none.
std::string OptionFor(const Finding& finding);

/// "an angle has the wrong sign"
const char* MistakeText(crosscheck::MountingMistake mistake);

/// What the p of a difference says, for terminal, page and result file: "certain",
/// "likely (p = 0.010)", "may be chance (p = 0.30)", "cannot be checked".
/// @param isGood The verdict is good: what is certain is small.
std::string CertaintyText(double p, bool isGood);

/// Why the cross-check leaves a photograph out: "fits the trackers of img_004.jpg"; empty if
/// nothing is known except that it contradicts the others.
/// @param photographs The names of those that were checked, in their order.
std::string ReasonText(const crosscheck::PerPhotograph& photograph,
                       const std::vector<std::string>& photographs);

/// "3 photographs from 0.8 m, the chart tilted by 35 deg to face the left of the image ..."
std::string Text(const crosscheck::SuggestedView& view);

}  // namespace trackedcam::host
