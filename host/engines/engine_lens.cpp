#include "host/engines/engine_lens.h"

namespace trackedcam::host {

std::optional<EngineLens> LensOf(const HandOver& handOver) {
  const CalibrationOutputs& calibration = handOver.calibration;
  if (!handOver.sensorMm || calibration.imageSize.size() < 2 || calibration.normFocal.size() < 2 ||
      calibration.normCenter.size() < 2 || calibration.distortion.size() < 5) {
    return std::nullopt;
  }
  constexpr double kHalfAPixel = 0.5;
  EngineLens lens;
  for (std::size_t i = 0; i < 2; ++i) {
    lens.imageSize[i] = static_cast<int>(calibration.imageSize[i]);
    lens.fxFy[i] = calibration.normFocal[i];
    lens.imageCenter[i] = calibration.normCenter[i] + kHalfAPixel / calibration.imageSize[i];
  }
  lens.focalLengthMm = lens.fxFy[0] * (*handOver.sensorMm)[0];
  lens.filmbackMm = {(*handOver.sensorMm)[0], lens.focalLengthMm / lens.fxFy[1]};
  lens.k1 = calibration.distortion[0];
  lens.k2 = calibration.distortion[1];
  lens.p1 = calibration.distortion[2];
  lens.p2 = calibration.distortion[3];
  lens.k3 = calibration.distortion[4];
  return lens;
}

}  // namespace trackedcam::host
