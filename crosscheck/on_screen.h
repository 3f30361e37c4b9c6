// What a solution's uncertainty means in the image, at a distance.

#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/calibration.h"
#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// The cells of the image, row by row, and which of them the photographs show.
ImageCells CellsOf(const Observations& observations, const Evidence& evidence);

/// The middles of the cells, row by row, pixels.
std::vector<Eigen::Vector2d> MiddlesOf(const ImageCells& cells, const Lens& lens);

/// How far another lens with another Transform_Cam_Tc shows things from where the solution does, as
/// the root mean square over the image.
double PixelsApart(double distanceMetres, const Evidence& evidence, const Solution& solution,
                   const Lens& lens, const Pose& Transform_Cam_Tc);

/// For things on a wall across the optical axis that does not move relative to the tracking system.
/// Without cells.
/// @param freedom Degrees of freedom of the covariance.
OnScreen OnScreenAt(double distanceMetres, const Lens& lens, const CameraCovariance& covariance,
                    double freedom);

/// The same of a solution, with cells.
/// @param library Transform_Cam_Tc of the library.
OnScreen OnScreenAt(double distanceMetres, const Evidence& evidence, const Solution& solution,
                    const ImageCells& cells, const std::optional<Pose>& library);

/// The distances asked for, or else the chart's own and three of common walls; the nearest first.
std::vector<double> DistancesOf(const std::vector<double>& askedFor, const Loops& loops);

/// Where no board was, and the lens may be off by more than it matters if it has a distortion that
/// k1 and k2 leave out. Nothing if there is no such place.
std::optional<LensNotSeen> FindLensNotSeen(const Evidence& evidence, const ImageCells& cells);

}  // namespace trackedcam::crosscheck
