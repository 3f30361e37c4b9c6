#include "crosscheck/not_still.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

#include <Eigen/QR>

#include "crosscheck/statistics.h"
#include "crosscheck/tracker_flaws.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::size_t kLeastMeasured = 12;  // photographs
constexpr double kSure = 1e-3;              // of one flawless shoot in a thousand it is said

// What one photograph shows, across the board's rows minus across its columns. What blurs both
// alike, such as a lens out of focus, cancels.
struct Directions {
  double widths = 0;  // squares of the edge widths, pixels²
  double errors = 0;  // squares of the mean distance from corners to prediction, pixels²
  double mmPerPixel = 0;
};

Eigen::Vector2d Across(const Eigen::Vector2d& direction) {
  return Eigen::Vector2d(-direction.y(), direction.x()).normalized();
}

Directions DirectionsOf(const Photograph& photograph, const PerPhotograph& compared,
                        const Eigen::Vector2d& error, const Observations& observations) {
  const auto columns = static_cast<std::size_t>(observations.boardColumns);
  const auto& corners = photograph.corners;
  const double acrossRows = error.dot(Across(corners[columns - 1] - corners.front()));
  const double acrossColumns =
      error.dot(Across(corners[corners.size() - columns] - corners.front()));
  const auto& [ofRows, ofColumns] = *photograph.edgeWidths;
  return {ofRows * ofRows - ofColumns * ofColumns,
          acrossRows * acrossRows - acrossColumns * acrossColumns,
          1e3 * compared.Transform_Cam_Chart(2, 3) / observations.lens.fx};
}

Eigen::Vector2d MeanError(const Photograph& photograph, const PerPhotograph& compared) {
  Eigen::Vector2d sum = Eigen::Vector2d::Zero();
  for (std::size_t i = 0; i < photograph.corners.size(); ++i) {
    sum += photograph.corners[i] - compared.predicted[i];
  }
  return sum / static_cast<double>(photograph.corners.size());
}

// Without what follows the place of the chart: the solution itself may be off.
Eigen::MatrixX2d WithoutPlace(const Eigen::MatrixX2d& errors,
                              const std::vector<const PerPhotograph*>& photographs) {
  Eigen::MatrixX4d place(errors.rows(), 4);
  for (Eigen::Index i = 0; i < errors.rows(); ++i) {
    const Eigen::Vector3d at =
        photographs[static_cast<std::size_t>(i)]->Transform_Cam_Chart.topRightCorner<3, 1>();
    place.row(i) << 1, at.x() / at.z(), at.y() / at.z(), 1 / at.z();
  }
  return errors - place * place.colPivHouseholderQr().solve(errors);
}

std::vector<double> Ranks(const std::vector<Directions>& all, double Directions::*value) {
  std::vector<std::size_t> order(all.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return all[a].*value < all[b].*value; });
  std::vector<double> ranks(all.size());
  for (std::size_t place = 0; place < order.size(); ++place) {
    ranks[order[place]] = static_cast<double>(place);
  }
  return ranks;
}

// Spearman's, which no single photograph decides.
double RankCorrelation(const std::vector<Directions>& all) {
  const std::vector<double> a = Ranks(all, &Directions::widths);
  const std::vector<double> b = Ranks(all, &Directions::errors);
  const auto count = static_cast<double>(all.size());
  double squares = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    squares += (a[i] - b[i]) * (a[i] - b[i]);
  }
  return 1 - 6 * squares / (count * (count * count - 1));
}

}  // namespace

bool AreRowsOfAFilm(const Observations& observations) {
  constexpr double kMostSeconds = 0.5;
  const std::vector<Photograph>& photographs = observations.photographs;
  std::size_t close = 0;
  for (std::size_t i = 1; i < photographs.size(); ++i) {
    const double seconds = photographs[i].seconds - photographs[i - 1].seconds;
    close += seconds > 0 && seconds <= kMostSeconds ? 1 : 0;
  }
  return 2 * close >= photographs.size();
}

std::optional<NotStill> FindNotStill(const Observations& observations,
                                     const std::vector<PerPhotograph>& photographs) {
  std::vector<const Photograph*> taken;
  std::vector<const PerPhotograph*> compared;
  Eigen::MatrixX2d errors(photographs.size(), 2);
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    const Photograph& photograph = observations.photographs[i];
    if (photograph.edgeWidths && photographs[i].predicted.size() == photograph.corners.size()) {
      const Eigen::Vector2d error = MeanError(photograph, photographs[i]);
      if (error.allFinite()) {
        errors.row(static_cast<Eigen::Index>(taken.size())) = error.transpose();
        taken.push_back(&photograph);
        compared.push_back(&photographs[i]);
      }
    }
  }
  if (taken.size() < kLeastMeasured) {
    return std::nullopt;
  }
  const Eigen::MatrixX2d own =
      WithoutPlace(errors.topRows(static_cast<Eigen::Index>(taken.size())), compared);
  std::vector<Directions> all;
  for (std::size_t i = 0; i < taken.size(); ++i) {
    all.push_back(DirectionsOf(*taken[i], *compared[i],
                               own.row(static_cast<Eigen::Index>(i)).transpose(), observations));
  }
  const double correlation = RankCorrelation(all);
  const auto freedom = static_cast<double>(all.size() - 2);
  const double t = correlation * std::sqrt(freedom / std::max(1e-9, 1 - correlation * correlation));
  NotStill found;
  found.p = StudentTail(t, freedom);
  double widths = 0;
  double pixels = 0;
  double mm = 0;
  for (const Directions& one : all) {
    const double along = std::copysign(one.errors, one.errors * one.widths);
    widths += std::abs(one.widths);
    pixels += along;
    mm += along * one.mmPerPixel * one.mmPerPixel;
  }
  if (!(correlation > 0 && found.p < kSure && pixels > 0 && mm > 0)) {
    return std::nullopt;
  }
  const auto count = static_cast<double>(all.size());
  found.widerPixels = std::sqrt(widths / count);
  found.pixels = std::sqrt(pixels / count);
  found.mm = std::sqrt(mm / count);
  return found;
}

}  // namespace trackedcam::crosscheck
