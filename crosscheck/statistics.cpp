#include "crosscheck/statistics.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/complement.hpp>
#include <boost/math/distributions/fisher_f.hpp>
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

}  // namespace trackedcam::crosscheck
