// Which frames of a film become photographs of a shoot.

#pragma once

#include <cstddef>
#include <vector>

#include "crosscheck/observations.h"

namespace trackedcam::host {

/// A frame with the poses of its time, and by how much they may be wrong.
struct Candidate {
  crosscheck::Photograph photograph;
  double errorMm = 0;  // of each tracker along each axis: noise, motion times the delay's error
  double errorDegrees = 0;  // about each axis
};

/// Those that bring the uncertainty of both transforms down most, one after the other.
/// @param board For its lens and size; its photographs are ignored.
/// @return Indices, at most so many, in the order of the candidates; all of them if the transforms
///         are not determined.
std::vector<std::size_t> ChooseFrames(const std::vector<Candidate>& candidates,
                                      const crosscheck::Observations& board, std::size_t count);

}  // namespace trackedcam::host
