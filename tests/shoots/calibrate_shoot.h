// Calibrates a simulated shoot as a host does, through the public interface.

#pragma once

#include <string>
#include <vector>

#include "simulator/shoot.h"
#include "support/stage_test.h"

namespace trackedcam::test {

/// Options with just enough photographs, and just large enough, for a calibration.
simulator::ShootOptions SmallShoot(int photographs = 16);

/// The arguments of Calibration that a test may want to change.
struct HostArguments {
  std::string dataPath;
  double sensorWidth;
  double sensorHeight;
  int boardCols;
  int boardRows;
  double squareSize;
  std::vector<double> chartTrackerRotation;
  std::vector<double> chartTrackerTranslation;
  std::string logFolder;
  bool Flag_ModifyQuat;
  int Num_TrackerData;
};

/// The arguments for a shoot whose files are in this folder, which is also the log folder.
HostArguments ArgumentsFor(const simulator::Shoot& shoot, const TemporaryFolder& folder);

struct Calibrated {
  int code = 0;
  std::vector<double> imageSize;
  std::vector<double> normFocal;
  std::vector<double> normCenter;
  std::vector<double> distortion;
  std::vector<double> transformCamTc;
  std::vector<double> fieldOfView;
  std::vector<double> focalLengthMm;
  std::vector<std::string> log;

  Eigen::Matrix4d Transform_Cam_Tc() const;

  /// The code and the values of all outputs, to compare.
  std::vector<double> AllValues() const;
};

/// Calls Calibration without reading the log. `outputs` has the vectors that the host passes.
Calibrated CallCalibration(const HostArguments& arguments, Calibrated outputs = {});

/// Calls Calibration in the folder of the data file, to which the photographs' paths are relative.
Calibrated Calibrate(const HostArguments& arguments, Calibrated outputs = {});

/// Writes a shoot to the folder and calibrates it.
Calibrated CalibrateShoot(const simulator::Shoot& shoot, const TemporaryFolder& folder);

}  // namespace trackedcam::test
