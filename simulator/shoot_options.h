// All that a simulated shoot can be asked for.

#pragma once

#include <cstdint>
#include <optional>

#include "simulator/chart.h"
#include "simulator/lens.h"

namespace trackedcam::simulator {

struct ShootOptions {
  std::uint64_t seed = 1;  // decides everything that is drawn

  int photographs = 20;  // rows of the data file; the flawed ones below are a part of them
  int missing = 0;       // photographs that do not exist
  int notAnImage = 0;    // photographs that are text files
  int withoutChart = 0;  // photographs that do not show the chart
  int outliers = 0;      // photographs for which one of the trackers had slipped

  int imageWidth = 1920;          // pixels
  int imageHeight = 1080;         // pixels
  std::optional<Lens> lens;       // unset: DefaultLens for the image size
  double sensorWidthMm = 36;      // stated in the configuration file only
  double sensorHeightMm = 20.25;  // stated in the configuration file only
  Chart chart;

  double blurPixels = 1;         // spread of the optics' blur
  double noiseGreyLevels = 1.5;  // spread of the sensor's noise, of 255
  double unevenLight = 0.2;      // 0: even; 1: one side of the picture is dark
  int jpegQuality = 97;          // 1 to 100

  double trackerNoiseMm = 0;       // spread along each axis
  double trackerNoiseDegrees = 0;  // spread about each axis
  double slipMm = 40;              // of an outlier's tracker
  double slipDegrees = 3;          // of an outlier's tracker

  double mountingErrorMm = 0;       // distance between nominal and true mounting of the chart
  double mountingErrorDegrees = 0;  // angle between nominal and true mounting of the chart

  bool windowsLineEnds = false;
  bool byteOrderMark = false;
  bool invertedQuaternions = false;  // the trackers report the inverse rotation
};

/// @throws std::invalid_argument for a shoot that cannot be made; it says what to change.
void CheckOptions(const ShootOptions& options);

/// The lens of the options, or the default one.
Lens LensOf(const ShootOptions& options);

}  // namespace trackedcam::simulator
