// The median, and the distributions for tests and intervals.

#pragma once

#include <vector>

#include <Eigen/Core>

namespace trackedcam::crosscheck {

/// The upper one of two in the middle. At least one value is required.
double Median(std::vector<double> values);

double ChiSquaredQuantile(double probability, double freedom);

/// The half-width of the two-sided 95 % interval, in standard errors.
double StudentHalfWidth95(double freedom);

/// The radius around zero that holds 95 % of the points of a plane with this covariance, by
/// Student's t. NaN if the covariance is.
double PlaneRadius95(const Eigen::Matrix2d& covariance, double freedom);

/// The probability of a t this large or larger, to either side, by chance.
double StudentTail(double t, double freedom);

/// The probability of dᵀ · covariance⁻¹ · d this large or larger by chance.
/// @param elements Of d.
/// @param freedom Degrees of freedom of the covariance.
double HotellingTail(double tSquared, double elements, double freedom);

/// The value that Hotelling's T² with this many elements exceeds with the rest of the probability.
double HotellingQuantile(double probability, double elements, double freedom);

/// dᵀ · covariance⁻¹ · d of a true d that a test finds with a probability of 95 %.
/// @param level The probability that the test errs if d is zero.
double HotellingPower95(double level, double elements, double freedom);

}  // namespace trackedcam::crosscheck
