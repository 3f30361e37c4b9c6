#include "shoots/calibrate_shoot.h"

#include "simulator/write_shoot.h"
#include "support/log_lines.h"
#include "support/working_folder.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::test {
namespace {

namespace fs = std::filesystem;

std::vector<double> Numbers(const Eigen::Vector3d& vector) {
  return {vector.x(), vector.y(), vector.z()};
}

}  // namespace

simulator::ShootOptions SmallShoot(int photographs) {
  simulator::ShootOptions options;
  options.photographs = photographs;
  options.imageWidth = 960;
  options.imageHeight = 540;
  return options;
}

HostArguments ArgumentsFor(const simulator::Shoot& shoot, const TemporaryFolder& folder) {
  const simulator::ShootOptions& options = shoot.options;
  return {folder.File("tracker_data.csv"),
          options.sensorWidthMm,
          options.sensorHeightMm,
          options.chart.cols,
          options.chart.rows,
          options.chart.squareMetres,
          Numbers(shoot.nominalMounting.anglesDegrees),
          Numbers(shoot.nominalMounting.translationMetres),
          folder.Path().u8string(),
          options.invertedQuaternions,
          options.photographs};
}

Calibrated CallCalibration(const HostArguments& arguments, Calibrated result) {
  result.code = Calibration(
      arguments.dataPath, arguments.sensorWidth, arguments.sensorHeight, arguments.boardCols,
      arguments.boardRows, arguments.squareSize, arguments.chartTrackerRotation,
      arguments.chartTrackerTranslation, result.imageSize, result.normFocal, result.normCenter,
      result.distortion, result.transformCamTc, result.fieldOfView, result.focalLengthMm,
      arguments.logFolder, arguments.Flag_ModifyQuat, arguments.Num_TrackerData);
  return result;
}

Calibrated Calibrate(const HostArguments& arguments, Calibrated outputs) {
  // Only the folder must be UTF-8: a test passes an invalid file name.
  const fs::path dataFolder =
      fs::u8path(arguments.dataPath.substr(0, arguments.dataPath.find_last_of("/\\")));
  const WorkingFolder workingFolder(fs::is_directory(dataFolder) ? dataFolder
                                                                 : fs::temp_directory_path());
  Calibrated result = CallCalibration(arguments, std::move(outputs));
  result.log = ReadLogLines(OnlyLogIn(arguments.logFolder));
  return result;
}

Calibrated CalibrateShoot(const simulator::Shoot& shoot, const TemporaryFolder& folder) {
  simulator::WriteShoot(shoot, folder.Path());
  return Calibrate(ArgumentsFor(shoot, folder));
}

Eigen::Matrix4d Calibrated::Transform_Cam_Tc() const {
  if (transformCamTc.size() != 16) {
    return Eigen::Matrix4d::Constant(std::nan(""));
  }
  return Eigen::Matrix<double, 4, 4, Eigen::RowMajor>(transformCamTc.data());
}

std::vector<double> Calibrated::AllValues() const {
  std::vector<double> all = {static_cast<double>(code)};
  for (const auto* values : {&imageSize, &normFocal, &normCenter, &distortion, &transformCamTc,
                             &fieldOfView, &focalLengthMm}) {
    all.insert(all.end(), values->begin(), values->end());
  }
  return all;
}

}  // namespace trackedcam::test
