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
