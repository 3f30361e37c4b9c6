#include "host/lens_files/stmap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/input/inputs.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using Eigen::Vector2d;

// Places in pictures are counted in pixels from the top left corner, half a pixel before the centre
// of the first pixel.
constexpr double kHalfAPixel = 0.5;

Vector2d InPhotograph(const LensModel& lens, const Vector2d& distorted) {
  return lens.focal.cwiseProduct(distorted) + lens.centre + Vector2d::Constant(kHalfAPixel);
}

Vector2d FromPhotograph(const LensModel& lens, const Vector2d& place) {
  return (place - Vector2d::Constant(kHalfAPixel) - lens.centre).cwiseQuotient(lens.focal);
}

// Half of what the undistorted picture is larger than the photograph.
Vector2d Margin(const LensModel& lens, const std::array<int, 2>& size) {
  return Vector2d(size[0] - lens.width, size[1] - lens.height) / 2;
}

// Beyond the fold the radius grows on as fast as without distortion: such a point must not be seen
// a second time.
Vector2d DistortedOutwards(const LensModel& lens, const Vector2d& point) {
  const double radius = point.norm();
  if (radius <= lens.foldRadius) {
    return Distorted(lens, point);
  }
  return Distorted(lens, point * (lens.foldRadius / radius)) +
         point * ((radius - lens.foldRadius) / radius);
}

Vector2d UndistortedOrRefused(const LensModel& lens, const Vector2d& distorted) {
  const std::optional<Vector2d> point = Undistorted(lens, distorted);
  if (!point) {
    throw InputError(
        "the distortion turns back within the photograph, so there is no picture without it: shoot "
        "the chart in the corners of the image too, and calibrate again");
  }
  return *point;
}

// How many times the size of the photograph the undistorted picture must be to hold this place.
double OverscanFor(const LensModel& lens, const Vector2d& place) {
  const Vector2d seen = InPhotograph(lens, UndistortedOrRefused(lens, FromPhotograph(lens, place)));
  const Vector2d half = Vector2d(lens.width, lens.height) / 2;
  return (seen - half).cwiseAbs().cwiseQuotient(half).maxCoeff();
}

double NeededOverscan(const LensModel& lens) {
  double overscan = 1;
  for (int x = 0; x <= lens.width; ++x) {
    overscan = std::max(
        {overscan, OverscanFor(lens, Vector2d(x, 0)), OverscanFor(lens, Vector2d(x, lens.height))});
  }
  for (int y = 0; y <= lens.height; ++y) {
    overscan = std::max(
        {overscan, OverscanFor(lens, Vector2d(0, y)), OverscanFor(lens, Vector2d(lens.width, y))});
  }
  return overscan;
}

// @param placeOf Where in the other picture the centre of a pixel comes from, in pixels.
template <class PlaceOf>
StMap MapOf(const std::array<int, 2>& size, const Vector2d& otherSize, PlaceOf placeOf) {
  StMap map;
  map.width = size[0];
  map.height = size[1];
  const std::size_t pixels = static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]);
  map.s.reserve(pixels);
  map.t.reserve(pixels);
  for (int row = 0; row < map.height; ++row) {
    for (int column = 0; column < map.width; ++column) {
      const Vector2d place = placeOf(Vector2d(column + kHalfAPixel, row + kHalfAPixel));
      map.s.push_back(static_cast<float>(place.x() / otherSize.x()));
      map.t.push_back(static_cast<float>(1 - place.y() / otherSize.y()));
    }
  }
  return map;
}

}  // namespace

std::array<int, 2> UndistortedSize(const LensModel& lens, std::optional<double> overscan) {
  const double factor = overscan ? *overscan : NeededOverscan(lens);
  if (!(factor >= 1 && factor <= kMostOverscan)) {
    throw InputError("an overscan of " + Fixed(factor, 2) + " is not between 1 and " +
                     Shortest(kMostOverscan) +
                     (overscan ? "" : ", but the photograph needs it: state a smaller one"));
  }
  const auto larger = [factor](int size) {
    constexpr double kRounding = 1e-6;  // pixels
    return size + 2 * static_cast<int>(std::ceil(size * (factor - 1) / 2 - kRounding));
  };
  return {larger(lens.width), larger(lens.height)};
}

StMap UndistortMap(const LensModel& lens, const std::array<int, 2>& undistortedSize) {
  const Vector2d margin = Margin(lens, undistortedSize);
  return MapOf(undistortedSize, Vector2d(lens.width, lens.height), [&](const Vector2d& place) {
    return InPhotograph(lens, DistortedOutwards(lens, FromPhotograph(lens, place - margin)));
  });
}

StMap DistortMap(const LensModel& lens, const std::array<int, 2>& undistortedSize) {
  const Vector2d margin = Margin(lens, undistortedSize);
  return MapOf({lens.width, lens.height}, Vector2d(undistortedSize[0], undistortedSize[1]),
               [&](const Vector2d& place) -> Vector2d {
                 const Vector2d point = UndistortedOrRefused(lens, FromPhotograph(lens, place));
                 return InPhotograph(lens, point) + margin;
               });
}

}  // namespace trackedcam::host
