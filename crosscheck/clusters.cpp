#include "crosscheck/clusters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

#include <Eigen/Cholesky>

#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::size_t kMostClusters = 12;
constexpr std::size_t kLeastInCluster = 3;

std::size_t CountClusters(const Solution& solution) {
  return std::min(kMostClusters, solution.Used() / kLeastInCluster);
}

// Metres: rotations count as what they do at the chart's distance from the camera.
double Distance(const Loop& a, const Loop& b, double lever) {
  const Eigen::Matrix3d between = a.Transform_Cam_Chart.linear() - b.Transform_Cam_Chart.linear();
  return (a.Transform_Cam_Chart.translation() - b.Transform_Cam_Chart.translation()).norm() +
         lever * between.norm();
}

}  // namespace

Clusters ClustersInTime(const Solution& solution) {
  const std::size_t count = CountClusters(solution);
  Clusters clusters(solution.used.size());
  std::size_t seen = 0;
  for (std::size_t i = 0; i < clusters.size(); ++i) {
    if (solution.used[i]) {
      clusters[i] = seen * count / solution.Used();
      ++seen;
    }
  }
  return clusters;
}

// Around photographs that are as far from each other as can be.
Clusters ClustersInPose(const Loops& loops, const Solution& solution) {
  const double lever = MeanDistance(loops);
  Clusters clusters(loops.size());
  std::vector<double> nearest(loops.size(), std::numeric_limits<double>::infinity());
  std::size_t centre = static_cast<std::size_t>(
      std::find(solution.used.begin(), solution.used.end(), true) - solution.used.begin());
  for (std::size_t cluster = 0; cluster < CountClusters(solution); ++cluster) {
    std::size_t farthest = centre;
    double most = 0;
    for (std::size_t i = 0; i < loops.size(); ++i) {
      if (!solution.used[i]) {
        continue;
      }
      const double distance = Distance(loops[i], loops[centre], lever);
      if (distance < nearest[i]) {
        nearest[i] = distance;
        clusters[i] = cluster;
      }
      if (nearest[i] > most) {
        most = nearest[i];
        farthest = i;
      }
    }
    centre = farthest;
  }
  return clusters;
}

double InflationByClusters(const Loops& loops, const Solution& solution, const Clusters& clusters) {
  const Eigen::MatrixXd& covariance = solution.covariance;
  const Eigen::Index size = covariance.rows();
  const Eigen::MatrixXd normal = covariance.ldlt().solve(Eigen::MatrixXd::Identity(size, size));
  std::size_t count = 0;
  for (const auto& cluster : clusters) {
    count = cluster ? std::max(count, *cluster + 1) : count;
  }
  std::vector<Eigen::MatrixXd> information(count, Eigen::MatrixXd::Zero(size, size));
  std::vector<Eigen::VectorXd> towards(count, Eigen::VectorXd::Zero(size));
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (clusters[i]) {
      const Design design = DesignOf(loops[i], i, solution);
      const Matrix6d weight = Inverse(CovarianceOf(loops[i], solution, solution.noise));
      information[*clusters[i]] += design.transpose() * weight * design;
      towards[*clusters[i]] += design.transpose() * weight * Remaining(loops[i], i, solution);
    }
  }
  // In standard errors of the solution; what noise would do is known as well, and more for a
  // cluster without which little is left.
  double moved = 0;
  double expected = 0;
  for (std::size_t cluster = 0; cluster < count; ++cluster) {
    const Eigen::MatrixXd& own = information[cluster];
    const Eigen::LDLT<Eigen::MatrixXd> rest(normal - own);
    if (!(rest.vectorD().minCoeff() > 0)) {
      continue;  // the others do not determine all unknowns
    }
    const Eigen::VectorXd change = rest.solve(towards[cluster]);
    moved += change.dot(normal * change);
    const Eigen::MatrixXd byNoise = own - own * covariance * own;
    expected += (rest.solve(rest.solve(byNoise).transpose()) * normal).trace();
  }
  return expected > 0 ? moved / expected : 1;
}

double ClusterInflation(const Loops& loops, const Solution& solution) {
  return std::max(InflationByClusters(loops, solution, ClustersInTime(solution)),
                  InflationByClusters(loops, solution, ClustersInPose(loops, solution)));
}

double ChanceOfClusters(const Loops& loops, const Solution& solution, const Clusters& clusters) {
  constexpr int kDraws = 1999;
  std::vector<Twist> residuals;  // of standard errors
  std::vector<std::size_t> of;   // cluster by residual
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (clusters[i]) {
      const Matrix6d weight = Inverse(CovarianceOf(loops[i], solution, solution.noise));
      residuals.push_back(weight.llt().matrixU() * Remaining(loops[i], i, solution));
      of.push_back(*clusters[i]);
    }
  }
  const auto likeness = [&] {
    std::vector<Twist> sums(kMostClusters, Twist::Zero());
    for (std::size_t i = 0; i < residuals.size(); ++i) {
      sums[of[i]] += residuals[i];
    }
    double squares = 0;
    for (const Twist& sum : sums) {
      squares += sum.squaredNorm();
    }
    return squares;
  };
  const double seen = likeness();
  std::mt19937 random(1);  // the same result each time
  int asAlike = 0;
  for (int draw = 0; draw < kDraws; ++draw) {
    for (std::size_t i = of.size(); i-- > 1;) {
      std::swap(of[i], of[random() % (i + 1)]);
    }
    asAlike += likeness() >= seen ? 1 : 0;
  }
  return static_cast<double>(asAlike + 1) / (kDraws + 1);
}

}  // namespace trackedcam::crosscheck
