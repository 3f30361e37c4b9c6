// Deliberately lower precision than double.
//
// Results and log lines must be the same to the last printed digit everywhere. The precision of
// these values is therefore part of the result: do not raise it.

#pragma once

#include <cmath>

namespace trackedcam {

/// Pi truncated after ten decimals. Used for the angles of the chart tracker's mounting, the
/// tracker's axis fix, the degrees of the outlier filter, and the field of view and first angle for
/// Aximmetry.
constexpr double kShortPi = 3.1415926535;

/// 180 / pi rounded to single precision and used in double precision: fields of view, roll of
/// Unreal Engine.
constexpr double kRoundedDegreesPerRadian = 57.295780181884766;

/// 180 / pi in single precision: the other angles of the exports.
constexpr float kDegreesPerRadianSingle = 57.29578F;

/// A running sum in single precision: it is rounded after each addition.
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
