// The options of a simulated shoot.

#pragma once

#include <cstdint>
#include <optional>

#include "simulator/chart.h"
#include "simulator/lens.h"

namespace trackedcam::simulator {

constexpr double kSecondsBetweenPhotographs = 2.5;
constexpr double kMsBetweenPhotographs = 1e3 * kSecondsBetweenPhotographs;

struct ShootOptions {
  std::uint64_t seed = 1;  // of all random numbers

  int photographs = 20;  // rows of the data file, including the flawed ones below
  int missing = 0;       // photographs that do not exist
  int notAnImage = 0;    // photographs that are text files
  int withoutChart = 0;  // photographs that do not show the chart
  int outliers = 0;      // photographs in which one of the trackers had slipped

  int heldPoses = 1;          // photographs in a row for which camera and chart are held
  bool repeatedRows = false;  // all photographs of a held pose have the reported poses of the first
  bool turntable = false;     // the camera stands, and the chart only rotates about one axis

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
  double noiseCorrelation = 0;     // of one photograph's noise with the next one's, 0 to 1
  double trackerScale = 1;         // reported lengths are this many times the true ones
  double volumeBendMm = 0;         // by which lines are bent up, 1 m to either side of their middle
  double poseErrorMm = 0;          // root mean square along each axis; it belongs to the pose
  double poseErrorDegrees = 0;     // root mean square about each axis; it belongs to the pose
  double delayMs = 0;              // of the reported poses, while the hands move
  double exposureMs = 0;           // of a photograph, while the hands move
  double tremorMmPerSecond = 0;    // of each hand along each axis, instead of moving evenly
  double sagMm = 0;                // of the camera's tracker on its mount, downwards
  double looseMm = 0;              // between two seats of the camera's tracker
  int frozenRows = 0;              // in a row, with the poses of the row before them
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
