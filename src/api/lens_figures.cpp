#include "api/lens_figures.h"

#include <cmath>

#include "core/number_text.h"
#include "core/precision.h"

namespace trackedcam {
namespace {

double FieldOfViewDeg(double normFocal) {
  return 2 * std::atan(1 / (2 * normFocal)) * kRoundedDegreesPerRadian;
}

// Uses the smaller pixel pitch, or the vertical one if they are equal.
double FocalLengthMm(const CalibrationData& data, double sensorWidth, double sensorHeight) {
  const double horizontalPitch = sensorWidth / data.imageSize.width;
  const double verticalPitch = sensorHeight / data.imageSize.height;
  return verticalPitch <= horizontalPitch ? verticalPitch * data.cameraMatrix.at<double>(1, 1)
                                          : horizontalPitch * data.cameraMatrix.at<double>(0, 0);
}

}  // namespace

void HandOutLens(const RunLog& log, const CalibrationData& data, double sensorWidth,
                 double sensorHeight, LensOutputs outputs) {
  const int width = data.imageSize.width;
  const int height = data.imageSize.height;
  const double normFx = data.cameraMatrix.at<double>(0, 0) / width;
  const double normFy = data.cameraMatrix.at<double>(1, 1) / height;
  const double normCx = data.cameraMatrix.at<double>(0, 2) / width;
  const double normCy = data.cameraMatrix.at<double>(1, 2) / height;
  const auto append = [](std::vector<double>& output, std::initializer_list<double> values) {
    output.insert(output.end(), values);
  };
  append(outputs.normFocal, {normFx, normFy});
  append(outputs.normCenter, {normCx, normCy});
  append(outputs.imageSize, {static_cast<double>(width), static_cast<double>(height)});

  std::string distortionText;
  for (int i = 0; i < 5; ++i) {
    const double coefficient = data.distortion.at<double>(i);
    outputs.distortion.push_back(coefficient);
    distortionText += (i == 0 ? "" : ", ") + ToSixDecimals(coefficient);
  }

  WriteRunLogLine(log, "Image Width : " + std::to_string(width) + " pixel.");
  WriteRunLogLine(log, "Image Height : " + std::to_string(height) + " pixel.");
  WriteRunLogLine(log, "Norm F : (" + ToSixDecimals(normFx) + ", " + ToSixDecimals(normFy) + ").");
  WriteRunLogLine(log, "Norm C : (" + ToSixDecimals(normCx) + ", " + ToSixDecimals(normCy) + ").");
  WriteRunLogLine(log, "Distortion (k1, k2, p1, p2, k3) : " + distortionText);

  // From the first elements of the vector, which are the caller's if it was not empty.
  const double horizontal = FieldOfViewDeg(outputs.normFocal[0]);
  const double vertical = FieldOfViewDeg(outputs.normFocal[1]);
  WriteRunLogLine(log, "FoV_H : " + ToSixDecimals(horizontal) + " degree.");
  WriteRunLogLine(log, "FoV_V : " + ToSixDecimals(vertical) + " degree.");
  append(outputs.fieldOfView, {horizontal, vertical});

  outputs.focalLengthMm.push_back(FocalLengthMm(data, sensorWidth, sensorHeight));
  WriteRunLogLine(log, "Focal length (mm) : " + ToSixDecimals(outputs.focalLengthMm[0]) + " mm.");
}

}  // namespace trackedcam
