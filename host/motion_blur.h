// How the edges of the chart are blurred in the photographs of a run, for the cross-check.

#pragma once

#include "crosscheck/observations.h"
#include "host/report.h"

namespace trackedcam::host {

/// Measures the edges in each photograph in which the board was found, on all processors. Nothing
/// for a run that is known by its log only: its photographs may be elsewhere.
/// @param observations Those of the run.
void MeasureMotionBlur(const Report& report, crosscheck::Observations& observations);

}  // namespace trackedcam::host
