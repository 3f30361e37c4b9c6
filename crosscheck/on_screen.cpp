#include "crosscheck/on_screen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "crosscheck/chart_pose.h"
#include "crosscheck/corner_flaws.h"
#include "crosscheck/corner_model.h"
#include "crosscheck/statistics.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kMmPerMetre = 1e3;
constexpr int kCellsAcross = 16;
constexpr double kMostUnseenPixels = 2;  // the 95 % error of the lens that does not matter
constexpr double kNamedShare = 0.25;     // of a ninth's cells that make it worth naming
constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

// At a sixth, a half and five sixths of the image's width and height.
std::vector<Eigen::Vector3d> PointsAt(double distance, const Lens& lens) {
  std::vector<Eigen::Vector3d> points;
  for (const double x : {1.0, 3.0, 5.0}) {
    for (const double y : {1.0, 3.0, 5.0}) {
      if (const auto ray = Ray(lens, {x / 6 * lens.width, y / 6 * lens.height})) {
        points.emplace_back(distance * ray->homogeneous());
      }
    }
  }
  return points;
}

// The lens moves the image itself and, through the solve, the transform: mostly back. What the
// board's shape and the scale change, they change in the transform.
CameraCovariance CovarianceOf(const Evidence& evidence, const Solution& solution) {
  const std::vector<Eigen::Index>& parameters = evidence.corners.parameters;
  Eigen::MatrixXd byNuisances =
      Eigen::MatrixXd::Zero(kCameraUncertain, evidence.nuisanceCovariance.cols());
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (parameters[i] < kAllLensParameters) {
      byNuisances(parameters[i], static_cast<Eigen::Index>(i)) = 1;
    }
  }
  byNuisances.bottomRows<6>() = solution.byNuisances.topRows<6>();
  CameraCovariance covariance = byNuisances * evidence.nuisanceCovariance * byNuisances.transpose();
  covariance.bottomRightCorner<6, 6>() +=
      solution.inflation * solution.covariance.topLeftCorner<6, 6>();
  return covariance;
}

// Where a distance is seen through a pixel.
PlaceError ErrorAt(const Eigen::Vector2d& pixel, double distanceMetres, const Lens& lens,
                   const CameraCovariance& ofCamera, double freedom) {
  const auto ray = Ray(lens, pixel);
  if (!ray) {
    return {kUnknown, kUnknown};
  }
  const Eigen::Vector3d point = distanceMetres * ray->homogeneous();
  const Projection seen = ProjectWithDerivative(lens, point);
  Eigen::Matrix<double, 2, kCameraUncertain> by;
  by << PixelByLens(lens, point), ByTwist(seen, point);
  const Eigen::Matrix2d covariance = by * ofCamera * by.transpose();
  const Eigen::Matrix2d wallByPixel = seen.byPoint.leftCols<2>().inverse();
  return {PlaneRadius95(covariance, freedom),
          kMmPerMetre * PlaneRadius95(wallByPixel * covariance * wallByPixel.transpose(), freedom)};
}

std::array<std::pair<ImagePart, Eigen::Vector2d>, 4> CornersOf(const Lens& lens) {
  const double right = lens.width - 1;
  const double bottom = lens.height - 1;
  return {{{ImagePart::kUpperLeft, {0, 0}},
           {ImagePart::kUpperRight, {right, 0}},
           {ImagePart::kLowerLeft, {0, bottom}},
           {ImagePart::kLowerRight, {right, bottom}}}};
}

// A board's outline is a convex polygon, whichever way round it was read.
bool IsWithin(const std::array<Eigen::Vector2d, 4>& outline, const Eigen::Vector2d& pixel) {
  int left = 0;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Eigen::Vector2d edge = outline[(i + 1) % outline.size()] - outline[i];
    const Eigen::Vector2d to = pixel - outline[i];
    left += edge.x() * to.y() >= edge.y() * to.x() ? 1 : 0;
  }
  return left == 0 || left == static_cast<int>(outline.size());
}

std::optional<std::size_t> CellOf(const Eigen::Vector2d& pixel, const ImageCells& cells,
                                  const Lens& lens) {
  const double column = std::floor((pixel.x() + 0.5) * cells.columns / lens.width);
  const double row = std::floor((pixel.y() + 0.5) * cells.rows / lens.height);
  if (!(column >= 0 && column < cells.columns && row >= 0 && row < cells.rows)) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(row * cells.columns + column);
}

// How the poses of the chart follow the lens on average, as the transform does.
Eigen::Matrix<double, 6, kAllLensParameters> MeanPoseByLens(const CornerFit& corners) {
  Eigen::Matrix<double, 6, kAllLensParameters> mean;
  mean.setZero();
  double count = 0;
  for (const std::optional<ModelEquations>& equations : corners.equations) {
    if (equations) {
      mean += equations->pose.leftCols<kAllLensParameters>();
      ++count;
    }
  }
  return mean / std::max(count, 1.0);
}

// The ninths of which so many cells are uncertain, or else the one with most.
std::vector<ImagePart> PartsOf(const std::vector<bool>& uncertain, const ImageCells& cells) {
  std::array<double, 9> all = {};
  std::array<double, 9> bad = {};
  for (std::size_t i = 0; i < uncertain.size(); ++i) {
    const int column = static_cast<int>(i) % cells.columns;
    const int row = static_cast<int>(i) / cells.columns;
    const auto part =
        static_cast<std::size_t>(3 * (3 * row / cells.rows) + 3 * column / cells.columns);
    ++all[part];
    bad[part] += uncertain[i] ? 1 : 0;
  }
  std::vector<ImagePart> parts;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (bad[i] >= kNamedShare * all[i] && bad[i] > 0) {
      parts.push_back(static_cast<ImagePart>(i));
    }
  }
  if (parts.empty()) {
    parts.push_back(static_cast<ImagePart>(std::max_element(bad.begin(), bad.end()) - bad.begin()));
  }
  return parts;
}

}  // namespace

ImageCells CellsOf(const Observations& observations, const Evidence& evidence) {
  const Lens& lens = observations.lens;
  ImageCells cells;
  cells.columns = kCellsAcross;
  cells.rows = std::max(1, static_cast<int>(std::lround(static_cast<double>(kCellsAcross) *
                                                        lens.height / lens.width)));
  const auto columns = static_cast<std::size_t>(observations.boardColumns);
  const std::vector<Eigen::Vector2d> middles = MiddlesOf(cells, lens);
  cells.seen.assign(middles.size(), false);
  for (std::size_t i = 0; i < observations.photographs.size(); ++i) {
    if (!evidence.corners.poses[i]) {
      continue;
    }
    const std::vector<Eigen::Vector2d>& corners = observations.photographs[i].corners;
    const std::array<Eigen::Vector2d, 4> outline = {
        corners.front(), corners[columns - 1], corners.back(), corners[corners.size() - columns]};
    for (std::size_t k = 0; k < middles.size(); ++k) {
      cells.seen[k] = cells.seen[k] || IsWithin(outline, middles[k]);
    }
    for (const Eigen::Vector2d& corner : corners) {
      if (const auto cell = CellOf(corner, cells, lens)) {
        cells.seen[*cell] = true;
      }
    }
  }
  return cells;
}

std::vector<Eigen::Vector2d> MiddlesOf(const ImageCells& cells, const Lens& lens) {
  std::vector<Eigen::Vector2d> middles;
  for (int row = 0; row < cells.rows; ++row) {
    for (int column = 0; column < cells.columns; ++column) {
      middles.emplace_back((column + 0.5) * lens.width / cells.columns - 0.5,
                           (row + 0.5) * lens.height / cells.rows - 0.5);
    }
  }
  return middles;
}

double PixelsApart(double distanceMetres, const Evidence& evidence, const Solution& solution,
                   const Lens& lens, const Pose& Transform_Cam_Tc) {
  const std::vector<Eigen::Vector3d> points = PointsAt(distanceMetres, evidence.corners.model.lens);
  double squares = 0;
  for (const Eigen::Vector3d& point : points) {
    const Eigen::Vector3d other = Transform_Cam_Tc * (solution.Transform_Cam_Tc.inverse() * point);
    squares +=
        other.z() > 0
            ? (Project(lens, other) - Project(evidence.corners.model.lens, point)).squaredNorm()
            : HUGE_VAL;
  }
  return std::sqrt(squares / static_cast<double>(points.size()));
}

OnScreen OnScreenAt(double distanceMetres, const Lens& lens, const CameraCovariance& covariance,
                    double freedom) {
  const auto errorAt = [&](const Eigen::Vector2d& pixel) {
    return ErrorAt(pixel, distanceMetres, lens, covariance, freedom);
  };
  OnScreen onScreen;
  onScreen.distanceMetres = distanceMetres;
  onScreen.middle = errorAt({0.5 * (lens.width - 1), 0.5 * (lens.height - 1)});
  for (const auto& [part, corner] : CornersOf(lens)) {
    const PlaceError error = errorAt(corner);
    if (error.pixels > onScreen.corner.pixels || std::isnan(error.pixels)) {
      onScreen.corner = error;
      onScreen.worstCorner = part;
    }
  }
  return onScreen;
}

OnScreen OnScreenAt(double distanceMetres, const Evidence& evidence, const Solution& solution,
                    const ImageCells& cells, const std::optional<Pose>& library) {
  const Lens& lens = evidence.corners.model.lens;
  const CameraCovariance covariance = CovarianceOf(evidence, solution);
  const double freedom = Freedom(solution.Used());
  OnScreen onScreen = OnScreenAt(distanceMetres, lens, covariance, freedom);
  for (const Eigen::Vector2d& middle : MiddlesOf(cells, lens)) {
    onScreen.cellPixels.push_back(
        ErrorAt(middle, distanceMetres, lens, covariance, freedom).pixels);
  }
  if (library) {
    onScreen.libraryApart =
        PixelsApart(distanceMetres, evidence, solution, evidence.libraryLens, *library);
  }
  return onScreen;
}

std::vector<double> DistancesOf(const std::vector<double>& askedFor, const Loops& loops) {
  std::vector<double> distances = askedFor;
  if (distances.empty()) {
    distances = {MeanDistance(loops), 2, 4, 10};
  }
  std::sort(distances.begin(), distances.end());
  distances.erase(std::unique(distances.begin(), distances.end()), distances.end());
  return distances;
}

std::optional<LensNotSeen> FindLensNotSeen(const Evidence& evidence, const ImageCells& cells) {
  const CornerFit& corners = evidence.corners;
  const Lens& lens = corners.model.lens;
  const double distance = MeanDistance(evidence.loops);
  const auto covariance = CovarianceOfAnyLens(corners);
  const auto poseByLens = MeanPoseByLens(corners);
  const Eigen::Matrix<double, kAllLensParameters, 1> leftOut =
      (CornerModel{evidence.libraryLens, corners.model.board}.Parameters() -
       corners.model.Parameters())
          .head<kAllLensParameters>();
  const std::vector<Eigen::Vector2d> middles = MiddlesOf(cells, lens);
  LensNotSeen found;
  std::vector<bool> uncertain(middles.size(), false);
  std::size_t count = 0;
  for (std::size_t i = 0; i < middles.size(); ++i) {
    if (cells.seen[i]) {
      continue;
    }
    double pixels = kUnknown;
    if (const auto ray = Ray(lens, middles[i])) {
      const Eigen::Vector3d point = distance * ray->homogeneous();
      const Eigen::Matrix<double, 2, kAllLensParameters> by =
          ByTwist(ProjectWithDerivative(lens, point), point) * poseByLens +
          PixelByLens(lens, point);
      // The library's lens leaves out what the corners show, too.
      pixels = (by * leftOut).norm() +
               PlaneRadius95(by * covariance * by.transpose(), FreedomOf(corners));
    }
    if (!(pixels <= kMostUnseenPixels)) {
      uncertain[i] = true;
      ++count;
      if (pixels > found.pixels || std::isnan(pixels)) {
        found.pixels = pixels;
      }
    }
  }
  if (count == 0) {
    return std::nullopt;
  }
  found.share = static_cast<double>(count) / static_cast<double>(middles.size());
  found.parts = PartsOf(uncertain, cells);
  return found;
}

}  // namespace trackedcam::crosscheck
