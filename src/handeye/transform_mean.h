// The average of a set of rigid transforms.
//
// What enters a mean is narrowed to single precision first, and the sums are kept in it.

#pragma once

#include <cstddef>
#include <vector>

#include <Eigen/Geometry>

#include "geometry/quaternion.h"
#include "geometry/transform.h"

namespace trackedcam {

/// The mean of the quaternions' rotations, and the sum of the translations divided by their count.
/// A mean of nothing is not a number.
Transform TransformMean(const std::vector<Eigen::Quaternionf>& rotations,
                        const Eigen::Vector3f& translationSum, std::size_t count);

/// The unit quaternion whose outer product is nearest to the average of theirs, so that q and -q
/// count as the same rotation. Its sign is free.
Quaternion QuaternionMean(const std::vector<Eigen::Quaternionf>& quaternions);

/// The rotation of a transform as a single-precision quaternion, and its translation as floats.
Eigen::Quaternionf RotationAsFloats(const RunLog& log, const Transform& transform);
Eigen::Vector3f TranslationAsFloats(const Transform& transform);

}  // namespace trackedcam
