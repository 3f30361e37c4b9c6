// Calibrates a shoot. Arguments: the tracker data file, and a folder for the log. The chart has 9x6
// inner corners and squares of 30 mm; the sensor is 36 x 20.25 mm.

#include <cstdio>
#include <string>
#include <trackedcam/trackedcam.h>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s TRACKER_DATA.csv LOG_FOLDER\n", argv[0]);
    return 2;
  }
  const std::string data = argv[1];
  const std::string logFolder = argv[2];
  // README.md begin
  std::vector<double> imageSize, normFocal, normCenter, distortion;
  std::vector<double> transformCamTc, fieldOfView, focalLengthMm;
  const int code = Calibration(data,                // tracker data file, one row per photograph
                               36, 20.25,           // sensor, millimetres
                               9, 6, 0.03,          // inner corners, square in metres
                               {12, -8, 5},         // the chart's mounting on its tracker: degrees
                               {0.1, -0.05, 0.02},  // and metres
                               imageSize, normFocal, normCenter, distortion, transformCamTc,
                               fieldOfView, focalLengthMm, logFolder,
                               false,     // quaternions as they are
                               1000000);  // use every row
  if (code == 0 || code == 99) {          // 99: usable, but shoot again when you can
    std::printf("%.1f mm, camera tracker at %.4f %.4f %.4f m\n", focalLengthMm[0],
                transformCamTc[3], transformCamTc[7], transformCamTc[11]);
  }
  // README.md end
  return code;
}
