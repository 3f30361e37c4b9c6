// The mean of rigid transforms. Rotations and translations are narrowed to single precision before
// they enter a mean, and the sums are in single precision.

#pragma once

#include <cstddef>
#include <vector>

#include <Eigen/Geometry>

#include "geometry/quaternion.h"
#include "geometry/transform.h"

namespace trackedcam {

/// The mean of the rotations, and translationSum (metres) divided by count. The mean of nothing is
/// NaN.
Transform TransformMean(const std::vector<Eigen::Quaternionf>& rotations,
                        const Eigen::Vector3f& translationSum, std::size_t count);

/// The first singular vector of the mean of all q * q^T, so q and -q count as the same rotation.
/// Its sign is free. NaN if the list is empty or has a NaN.
Quaternion QuaternionMean(const std::vector<Eigen::Quaternionf>& quaternions);

/// Rotation and translation (metres) of a transform in single precision.
Eigen::Quaternionf RotationAsFloats(const RunLog& log, const Transform& transform);
Eigen::Vector3f TranslationAsFloats(const Transform& transform);

}  // namespace trackedcam
