#include "simulator/shoot_options.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "simulator/decimals.h"

namespace trackedcam::simulator {
namespace {

// Beyond these, pixels have no unique place on the chart.
constexpr double kMostTangential = 0.02;
constexpr double kMostBow = 0.05;  // of the board's shorter side
constexpr double kMostStretch = 0.1;

// The callers compare so that NaN is refused as well.
void Require(bool isMet, const std::string& demand) {
  if (!isMet) {
    throw std::invalid_argument(demand);
  }
}

void RequireAtLeast(const std::string& name, double value, double least) {
  Require(
      std::isfinite(value) && value >= least,
      name + " must be at least " + ToShortestText(least) + ", not " + ToShortestText(value) + ".");
}

void RequireAbove0(const std::string& name, double value) {
  Require(std::isfinite(value) && value > 0,
          name + " must be above 0, not " + ToShortestText(value) + ".");
}

void RequireWithin(const std::string& name, double value, double least, double most) {
  Require(value >= least && value <= most, name + " must be from " + ToShortestText(least) +
                                               " to " + ToShortestText(most) + ", not " +
                                               ToShortestText(value) + ".");
}

void CheckCounts(const ShootOptions& options) {
  RequireAtLeast("photographs", options.photographs, 1);
  RequireAtLeast("missing", options.missing, 0);
  RequireAtLeast("notAnImage", options.notAnImage, 0);
  RequireAtLeast("withoutChart", options.withoutChart, 0);
  RequireAtLeast("outliers", options.outliers, 0);
  RequireAtLeast("heldPoses", options.heldPoses, 1);
  const double flawed =
      0.0 + options.missing + options.notAnImage + options.withoutChart + options.outliers;
  Require(flawed <= options.photographs,
          "missing, notAnImage, withoutChart and outliers add up to " + ToShortestText(flawed) +
              ", more than photographs: reduce them, or raise photographs.");
}

void CheckChart(const Chart& chart) {
  RequireAtLeast("chart.cols", chart.cols, 3);
  RequireAtLeast("chart.rows", chart.rows, 3);
  RequireAbove0("chart.squareMetres", chart.squareMetres);
  Require(chart.cols != chart.rows,
          "chart.cols and chart.rows must differ: a square board looks the same from all sides, so "
          "its first corner is unknown.");
  RequireWithin("chart.stretch", chart.stretch, -kMostStretch, kMostStretch);
  const double mostBow = kMostBow * (std::min(chart.cols, chart.rows) - 1) * chart.squareMetres;
  RequireWithin("chart.bowMetres", chart.bowMetres, -mostBow, mostBow);
}

void CheckLens(const ShootOptions& options) {
  const Lens lens = LensOf(options);
  RequireAbove0("fx", lens.fx);
  RequireAbove0("fy", lens.fy);
  RequireWithin("p1", lens.p1, -kMostTangential, kMostTangential);
  RequireWithin("p2", lens.p2, -kMostTangential, kMostTangential);
  const double right = options.imageWidth;
  const double bottom = options.imageHeight;
  for (const Eigen::Vector2d& corner :
       {Eigen::Vector2d(-1, -1), {right, -1}, {-1, bottom}, {right, bottom}}) {
    Require(lens.Reaches(corner),
            "The lens does not cover the whole image: choose k1, k2 and k3 nearer to 0, a longer "
            "focal length or a principal point nearer to the centre.");
  }
}

}  // namespace

void CheckOptions(const ShootOptions& options) {
  CheckCounts(options);
  RequireAtLeast("imageWidth", options.imageWidth, 64);
  RequireAtLeast("imageHeight", options.imageHeight, 64);
  CheckLens(options);
  RequireAbove0("sensorWidthMm", options.sensorWidthMm);
  RequireAbove0("sensorHeightMm", options.sensorHeightMm);
  CheckChart(options.chart);
  RequireWithin("blurPixels", options.blurPixels, 0, 50);
  RequireAtLeast("noiseGreyLevels", options.noiseGreyLevels, 0);
  RequireWithin("unevenLight", options.unevenLight, 0, 1);
  RequireWithin("jpegQuality", options.jpegQuality, 1, 100);
  RequireAtLeast("trackerNoiseMm", options.trackerNoiseMm, 0);
  RequireAtLeast("trackerNoiseDegrees", options.trackerNoiseDegrees, 0);
  RequireWithin("noiseCorrelation", options.noiseCorrelation, 0, 1);
  RequireAbove0("trackerScale", options.trackerScale);
  RequireWithin("volumeBendMm", options.volumeBendMm, -100, 100);
  RequireAtLeast("poseErrorMm", options.poseErrorMm, 0);
  RequireAtLeast("poseErrorDegrees", options.poseErrorDegrees, 0);
  RequireWithin("delayMs", options.delayMs, 0, kMsBetweenPhotographs);
  RequireWithin("exposureMs", options.exposureMs, 0, kMsBetweenPhotographs);
  RequireAtLeast("tremorMmPerSecond", options.tremorMmPerSecond, 0);
  RequireAtLeast("sagMm", options.sagMm, 0);
  RequireAtLeast("looseMm", options.looseMm, 0);
  RequireWithin("frozenRows", options.frozenRows, 0, options.photographs - 1);
  RequireAtLeast("slipMm", options.slipMm, 0);
  RequireAtLeast("slipDegrees", options.slipDegrees, 0);
  RequireAtLeast("mountingErrorMm", options.mountingErrorMm, 0);
  RequireWithin("mountingErrorDegrees", options.mountingErrorDegrees, 0, 60);
}

Lens LensOf(const ShootOptions& options) {
  return options.lens.value_or(DefaultLens(options.imageWidth, options.imageHeight));
}

}  // namespace trackedcam::simulator
