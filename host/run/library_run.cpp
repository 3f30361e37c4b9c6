#include "host/run/library_run.h"

#include "host/run/library_data.h"
#include "host/run/log_follower.h"
#include "host/run/reprojected_images.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::host {
namespace {

int CallLibrary(const Inputs& inputs, const Mounting& mounting, const LibraryData& data,
                const std::filesystem::path& folder, CalibrationOutputs& outputs) {
  const auto list = [](const std::array<double, 3>& values) {
    return std::vector<double>(values.begin(), values.end());
  };
  const int records = inputs.expectedRecords.value_or(static_cast<int>(data.photographs.size()));
  return Calibration(data.file.u8string(), inputs.sensorMm[0], inputs.sensorMm[1], inputs.board[0],
                     inputs.board[1], inputs.squareMetres, list(mounting.rotationDegrees),
                     list(mounting.translationMetres), outputs.imageSize, outputs.normFocal,
                     outputs.normCenter, outputs.distortion, outputs.transformCamTc,
                     outputs.fieldOfView, outputs.focalLengthMm, folder.u8string(),
                     inputs.invertTrackerQuaternions, records);
}

// The library may have been given other names for them.
void NameAsGiven(std::vector<Photograph>& photographs, const std::vector<DataRow>& rows) {
  for (std::size_t i = 0; i < photographs.size() && i < rows.size(); ++i) {
    photographs[i].path = rows[i].photograph;
  }
}

}  // namespace

LibraryRun RunLibrary(const Inputs& inputs, const std::vector<DataRow>& rows,
                      const Mounting& mounting, const std::filesystem::path& folder,
                      const ProgressListener& listener) {
  LibraryRun run;
  run.folder = folder;
  const LibraryData data = PrepareData(inputs.data, rows, inputs.workingFolder, folder);
  CreateReprojectedImageFolders(folder, data.photographs);
  LogFollower follower(folder, data.photographs, listener);
  try {
    run.code = CallLibrary(inputs, mounting, data, folder, run.outputs);
  } catch (const std::exception& exception) {
    run.exception = exception.what();
  }
  run.record = follower.Stop();
  run.log = follower.Log();
  run.images = FindReprojectedImages(folder, data.photographs);
  NameAsGiven(run.record.photographs, rows);
  return run;
}

}  // namespace trackedcam::host
