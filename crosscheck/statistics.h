#pragma once

#include <vector>

namespace trackedcam::crosscheck {

/// The upper one of two in the middle. There must be a value.
double Median(std::vector<double> values);

// The few distributions that tests and intervals need.

double ChiSquaredQuantile(double probability, double freedom);

/// The half-width of the two-sided 95 % interval, in standard errors.
double StudentHalfWidth95(double freedom);

/// How likely a t of this size or larger, to either side, is by chance.
double StudentTail(double t, double freedom);

/// How likely dᵀ · covariance⁻¹ · d of this size or larger is by chance, the covariance of a vector
/// of so many elements being known with so many degrees of freedom.
double HotellingTail(double tSquared, double elements, double freedom);

}  // namespace trackedcam::crosscheck
