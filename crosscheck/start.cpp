#include "crosscheck/start.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <random>

#include "crosscheck/statistics.h"
#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::size_t kSampleSize = 5;
constexpr int kHalfSteps = 6;
constexpr std::uint64_t kSeed = 20;  // fixed: the same shoot always gives the same result

using Indices = std::vector<std::size_t>;

struct Rotations {
  Eigen::Matrix3d Rot_Cam_Tc;
  Eigen::Matrix3d Rot_Tr_Chart;
};

// U · Rot_Cam_Chart = Rot_Tc_Tr · V, with U the transpose of Rot_Cam_Tc and V Rot_Tr_Chart, is
// linear in both. Both sides keep lengths, so the best pair are singular vectors of their product.
std::optional<Rotations> SolveRotations(const Loops& loops, const Indices& indices) {
  Matrix9d product = Matrix9d::Zero();
  for (const std::size_t i : indices) {
    const Eigen::Matrix3d seen = loops[i].Transform_Cam_Chart.linear();
    const Eigen::Matrix3d tracked = loops[i].Transform_Tc_Tr.linear();
    for (Eigen::Index r = 0; r < 3; ++r) {
      for (Eigen::Index c = 0; c < 3; ++c) {
        product.block<3, 3>(3 * r, 3 * c) += seen(r, c) * tracked;
      }
    }
  }
  const std::optional<Matrix9d> eigenvectors = Eigenvectors(product * product.transpose());
  if (!eigenvectors) {
    return std::nullopt;
  }
  const Eigen::Matrix<double, 9, 1> vector = eigenvectors->col(8);
  Eigen::Matrix3d u = Eigen::Map<const Eigen::Matrix3d>(vector.data());
  if (u.determinant() < 0) {
    u = -u;
  }
  u = NearestRotation(u);
  Eigen::Matrix3d v = Eigen::Matrix3d::Zero();
  for (const std::size_t i : indices) {
    v += loops[i].Transform_Tc_Tr.linear().transpose() * u * loops[i].Transform_Cam_Chart.linear();
  }
  return Rotations{u.transpose(), NearestRotation(v)};
}

// With the rotations known, the loops are linear in both translations.
void SolveTranslations(const Loops& loops, const Indices& indices, Start& start) {
  Matrix6d normal = 1e-9 * Matrix6d::Identity();
  Twist right = Twist::Zero();
  const Eigen::Matrix3d camera = start.Transform_Cam_Tc.linear();
  for (const std::size_t i : indices) {
    const Eigen::Matrix3d rotation = camera * loops[i].Transform_Tc_Tr.linear();
    const Eigen::Vector3d gap = loops[i].Transform_Cam_Chart.translation() -
                                camera * loops[i].Transform_Tc_Tr.translation();
    normal.topLeftCorner<3, 3>() += Eigen::Matrix3d::Identity();
    normal.topRightCorner<3, 3>() += rotation;
    normal.bottomLeftCorner<3, 3>() += rotation.transpose();
    normal.bottomRightCorner<3, 3>() += Eigen::Matrix3d::Identity();
    right.head<3>() += gap;
    right.tail<3>() += rotation.transpose() * gap;
  }
  const Twist translations = Ldlt(normal).Solve(right);
  start.Transform_Cam_Tc.translation() = translations.head<3>();
  start.Transform_Tr_Chart.translation() = translations.tail<3>();
}

class Search {
 public:
  Search(const Loops& loops, const BoardDistance& distance)
      : loops_(loops), distance_(distance), random_(kSeed), order_(loops.size()) {
    std::iota(order_.begin(), order_.end(), std::size_t{0});
  }

  Indices DrawSample() {
    const std::size_t size = std::min(kSampleSize, loops_.size());
    for (std::size_t i = 0; i < size; ++i) {
      std::swap(order_[i], order_[i + random_() % (order_.size() - i)]);
    }
    return {order_.begin(), order_.begin() + static_cast<std::ptrdiff_t>(size)};
  }

  void Try(const Indices& indices) {
    const std::optional<Rotations> rotations = SolveRotations(loops_, indices);
    if (!rotations) {
      return;
    }
    Start start;
    start.Transform_Cam_Tc = Pose(rotations->Rot_Cam_Tc);
    start.Transform_Tr_Chart = Pose(rotations->Rot_Tr_Chart);
    SolveTranslations(loops_, indices, start);
    const std::vector<double> distances = Distances(start);
    const double median = Median(distances);
    if (std::isfinite(median) && (!best_ || median < best_->medianMetres * best_->medianMetres)) {
      start.medianMetres = std::sqrt(median);
      best_ = start;
      distances_ = distances;
    }
  }

  Indices Closest() const {
    Indices closest(loops_.size());
    std::iota(closest.begin(), closest.end(), std::size_t{0});
    const std::size_t half = std::min(std::max(loops_.size() / 2 + 1, kSampleSize), loops_.size());
    std::stable_sort(closest.begin(), closest.end(), [this](std::size_t a, std::size_t b) {
      return distances_[a] < distances_[b];
    });
    closest.resize(half);
    return closest;
  }

  const std::optional<Start>& Best() const { return best_; }

 private:
  std::vector<double> Distances(const Start& start) const {
    std::vector<double> distances;
    distances.reserve(loops_.size());
    for (const Loop& loop : loops_) {
      const double squared = distance_.Squared(
          loop.Transform_Cam_Chart,
          start.Transform_Cam_Tc * loop.Transform_Tc_Tr * start.Transform_Tr_Chart);
      distances.push_back(std::isfinite(squared) ? squared : HUGE_VAL);
    }
    return distances;
  }

  const Loops& loops_;
  const BoardDistance& distance_;
  std::mt19937_64 random_;
  Indices order_;
  std::optional<Start> best_;
  std::vector<double> distances_;  // of the best, squared
};

}  // namespace

std::optional<Start> FindStart(const Loops& loops, const BoardDistance& distance, int samples) {
  if (loops.size() < 3) {
    return std::nullopt;
  }
  Search search(loops, distance);
  for (int i = 0; i < samples; ++i) {
    search.Try(search.DrawSample());
  }
  for (int i = 0; i < kHalfSteps && search.Best(); ++i) {
    const double before = search.Best()->medianMetres;
    search.Try(search.Closest());
    if (search.Best()->medianMetres >= before) {
      break;
    }
  }
  std::optional<Start> best = search.Best();
  if (best) {
    best->closest.assign(loops.size(), false);
    for (const std::size_t i : search.Closest()) {
      best->closest[i] = true;
    }
  }
  return best;
}

}  // namespace trackedcam::crosscheck
