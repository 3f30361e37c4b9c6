#include "crosscheck/statistics.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/complement.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/non_central_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <cstddef>

namespace trackedcam::crosscheck {

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double ChiSquaredQuantile(double probability, double freedom) {
  return quantile(boost::math::chi_squared(freedom), probability);
}

double StudentHalfWidth95(double freedom) {
  return quantile(boost::math::students_t(freedom), 0.975);
}

// Along a direction, the points of a circular t of variance 1 are beyond r with the probability
// (1 + r² / freedom) to the power of -freedom / 2; the covariance stretches each direction.
double PlaneRadius95(const Eigen::Matrix2d& covariance, double freedom) {
  constexpr int kDirections = 64;  // of a quarter
  constexpr double kQuarter = 1.5707963267948966;
  constexpr double kBeyond = 0.05;
  const double half = 0.5 * covariance.trace();
  const double between = std::hypot(0.5 * (covariance(0, 0) - covariance(1, 1)), covariance(0, 1));
  const double large = half + between;
  const double small = std::max(0.0, half - between);
  if (!std::isfinite(large) || !(freedom > 0)) {
    return std::nan("");
  }
  const auto beyond = [&](double radius) {
    double sum = 0;
    for (int i = 0; i < kDirections; ++i) {
      const double along = std::cos((i + 0.5) * kQuarter / kDirections);
      const double variance = small + (large - small) * along * along;
      sum += std::exp(-0.5 * freedom * std::log1p(radius * radius / (variance * freedom)));
    }
    return sum / kDirections;
  };
  // All points of the larger variance, in both directions, would be farther out.
  double least = 0;
  double most = std::sqrt(large * freedom * std::expm1(-2 / freedom * std::log(kBeyond)));
  while (most - least > 1e-6 * most) {
    const double middle = 0.5 * (least + most);
    (beyond(middle) > kBeyond ? least : most) = middle;
  }
  return most;
}

double StudentTail(double t, double freedom) {
  return std::isnan(t)   ? t
         : std::isinf(t) ? 0
                         : 2 * cdf(complement(boost::math::students_t(freedom), std::abs(t)));
}

double HotellingTail(double tSquared, double elements, double freedom) {
  if (!(tSquared >= 0)) {
    return std::nan("");
  }
  return std::isinf(tSquared)
             ? 0
             : cdf(complement(boost::math::fisher_f(elements, freedom), tSquared / elements));
}

double HotellingQuantile(double probability, double elements, double freedom) {
  return elements * quantile(boost::math::fisher_f(elements, freedom), probability);
}

double HotellingPower95(double level, double elements, double freedom) {
  constexpr double kMissed = 0.05;
  const double limit = HotellingQuantile(1 - level, elements, freedom) / elements;
  double low = 0;
  double high = 1e4;  // far more than any test of a few elements needs
  for (int step = 0; step < 40; ++step) {
    const double middle = 0.5 * (low + high);
    const boost::math::non_central_f distribution(elements, freedom, middle);
    (cdf(distribution, limit) > kMissed ? low : high) = middle;
  }
  return high;
}

}  // namespace trackedcam::crosscheck
