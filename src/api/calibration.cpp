#include "api/calibration_input.h"
#include "api/camera_tracker_run.h"
#include "api/input_length.h"
#include "api/lens_figures.h"
#include "calib/calibrate_camera.h"
#include "core/float_environment.h"
#include "core/version.h"
#include "io/tracker_data.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam {
namespace {

constexpr float kLensErrorLimit = 1.5F;  // pixels
constexpr std::size_t kPhotographsReserved = 3000;

}  // namespace
}  // namespace trackedcam

int Calibration(std::string dataPath, double sensorWidth, double sensorHeight, int boardCols,
                int boardRows, double squareSize, std::vector<double> chartTrackerRotation,
                std::vector<double> chartTrackerTranslation, std::vector<double>& imageSize,
                std::vector<double>& normFocal, std::vector<double>& normCenter,
                std::vector<double>& distortion, std::vector<double>& transformCamTc,
                std::vector<double>& fieldOfView, std::vector<double>& focalLengthMm,
                std::string logFolder, bool Flag_ModifyQuat, int Num_TrackerData) noexcept(false) {
  using namespace trackedcam;

  const DefaultFloatEnvironment environment;
  RunLog log;
  OpenRunLog(log, logFolder);
  WriteRunLogLine(log, "Version : " + LibraryVersion);
  WriteRunLogLine(log, "Flag_ModifyQuat : " + std::to_string(Flag_ModifyQuat ? 1 : 0));
  WriteRunLogLine(log, "Num_TrackerData : " + std::to_string(Num_TrackerData));
  WriteRunLogLine(log, "Camera Tracker Calibration start.");
  if (const ResultCode code = CheckLength(log, "chartTrackerRotation", chartTrackerRotation, 3)) {
    return code;
  }
  if (const ResultCode code =
          CheckLength(log, "chartTrackerTranslation", chartTrackerTranslation, 3)) {
    return code;
  }

  CalibrationData data;
  data.imagePoints.reserve(kPhotographsReserved);
  data.objectPoints.reserve(kPhotographsReserved);
  data.boardTemplate = MakeBoardTemplate(log, boardCols, boardRows, squareSize);

  WriteRunLogLine(log, "Start to read the csv file.");
  if (const ResultCode code = ReadTrackerData(log, dataPath, data.imagePaths, data.records)) {
    return code;
  }
  if (const ResultCode code = CheckRecords(log, data.imagePaths, data.records)) {
    return code;
  }

  constexpr int kSpareInteger = 11;
  constexpr int kSpareFlag = 1;
  if (const ResultCode code = Calibrate_Camera(
          log, data.rms, data.imageSize, data.cameraMatrix, data.distortion, data.Rot_Cam_Chart_vec,
          data.Trans_Cam_Chart_vec, data.imagePaths, data.records, data.objectPoints,
          data.boardTemplate, data.imagePoints, boardCols, boardRows, kSpareInteger, kSpareInteger,
          kLensErrorLimit, kSpareFlag, Num_TrackerData)) {
    return code;
  }
  HandOutLens(log, data, sensorWidth, sensorHeight,
              {imageSize, normFocal, normCenter, distortion, fieldOfView, focalLengthMm});

  return RunCameraTracker(log, data, chartTrackerRotation, chartTrackerTranslation, transformCamTc,
                          logFolder, Flag_ModifyQuat);
}
