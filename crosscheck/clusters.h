// How far a solution moves if neighbouring photographs are left out together. Errors that
// neighbours share, such as those of an arm or of a bent tracking volume, do not average out as
// noise does, and a covariance that takes them for noise is too small.

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// For each loop the cluster that it belongs to, from 0; nothing for loops that are not used.
using Clusters = std::vector<std::optional<std::size_t>>;

/// Successive photographs.
Clusters ClustersInTime(const Solution& solution);

/// Photographs that show the chart in similar poses.
Clusters ClustersInPose(const Loops& loops, const Solution& solution);

/// How much larger the covariance of the unknowns is by leaving out one cluster at a time
/// (jackknife, to first order) than noise alone would make it.
double InflationByClusters(const Loops& loops, const Solution& solution, const Clusters& clusters);

/// The larger one of both kinds of clusters.
double ClusterInflation(const Loops& loops, const Solution& solution);

/// How likely the residuals of a cluster would be as alike by chance: the share of random clusters
/// of the same sizes in which they are.
double ChanceOfClusters(const Loops& loops, const Solution& solution, const Clusters& clusters);

}  // namespace trackedcam::crosscheck
