// Where the library deliberately keeps less than double precision.
//
// Results and log lines must repeat to the last printed digit, whoever computes them. So the
// figures below are part of the result and are not to be "corrected" to full precision.

#pragma once

#include <cmath>

namespace trackedcam {

/// Pi cut after ten decimals: angles of the chart tracker's mounting, the tracker's axis fix, and
/// the outlier filter's degrees.
constexpr double kShortPi = 3.1415926535;

/// 180 / pi rounded to single precision and used in double: the fields of view, Unreal Engine's
/// roll.
constexpr double kRoundedDegreesPerRadian = 57.295780181884766;

/// The same in single precision: the engines' other angles.
constexpr float kDegreesPerRadianSingle = 57.29578F;

/// A running sum that is kept in single precision: rounded after each addition.
class FloatSum {
 public:
  void Add(double value) { sum_ = static_cast<float>(sum_ + value); }
  void AddSquare(double value) { Add(std::pow(value, 2.0)); }
  float Value() const { return sum_; }

  /// sqrt(sum / count), in single precision.
  float RootOfMean(std::size_t count) const { return std::sqrt(sum_ / static_cast<float>(count)); }

 private:
  float sum_ = 0.0F;
};

}  // namespace trackedcam
