// The options of a simulated shoot.

#pragma once

#include <cstdint>
#include <optional>

#include "simulator/chart.h"
#include "simulator/lens.h"

namespace trackedcam::simulator {

struct ShootOptions {
  std::uint64_t seed = 1;  // of all random numbers

  int photographs = 20;  // rows of the data file, including the flawed ones below
  int missing = 0;       // photographs that do not exist
  int notAnImage = 0;    // photographs that are text files
  int withoutChart = 0;  // photographs that do not show the chart
  int outliers = 0;      // photographs in which one of the trackers had slipped

  int imageWidth = 1920;          // pixels
  int imageHeight = 1080;         // pixels
  std::optional<Lens> lens;       // default: DefaultLens for the image size
  double sensorWidthMm = 36;      // for the configuration file only
  double sensorHeightMm = 20.25;  // for the configuration file only
  Chart chart;

  double blurPixels = 1;         // standard deviation of the optics' blur
  double noiseGreyLevels = 1.5;  // standard deviation of the sensor's noise, of 255 grey levels
  double unevenLight = 0.2;      // 0: even; 1: one corner of the image is black
  int jpegQuality = 97;          // 1 to 100

  double trackerNoiseMm = 0;       // standard deviation along each axis
  double trackerNoiseDegrees = 0;  // standard deviation about each axis
  double slipMm = 40;              // of an outlier's tracker
  double slipDegrees = 3;          // of an outlier's tracker

  double mountingErrorMm = 0;       // distance between nominal and true mounting of the chart
  double mountingErrorDegrees = 0;  // angle between nominal and true mounting of the chart

  bool windowsLineEnds = false;
  bool byteOrderMark = false;
  bool invertedQuaternions = false;  // the trackers report the inverse rotation
};

/// @throws std::invalid_argument if the shoot cannot be simulated; the text says what to change.
void CheckOptions(const ShootOptions& options);

/// The lens of the options, or the default one.
Lens LensOf(const ShootOptions& options);

}  // namespace trackedcam::simulator
