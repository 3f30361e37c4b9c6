// Exports the transform of a calibration to an engine. Argument: a folder for the log.

#include <cstdio>
#include <trackedcam/trackedcam.h>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s LOG_FOLDER\n", argv[0]);
    return 2;
  }
  const char* logFolder = argv[1];
  // As Calibration returns it: row by row, metres.
  const std::vector<double> transformCamTc = {0.870297134,
                                              0.484990543,
                                              0.085831651,
                                              0.03392639,  //
                                              0.01101461,
                                              -0.193389349,
                                              0.981060262,
                                              -0.101911835,  //
                                              0.492403877,
                                              -0.852868532,
                                              -0.173648178,
                                              -0.098300447,  //
                                              0,
                                              0,
                                              0,
                                              1};
  std::vector<double> rotationDeg, translationCm;
  const int code = CamAxisToUE4(transformCamTc, rotationDeg, translationCm, logFolder);
  if (code == 0) {  // 3: gimbal lock
    std::printf("location %.2f %.2f %.2f cm\n", translationCm[0], translationCm[1],
                translationCm[2]);
    std::printf("roll %.2f, pitch %.2f, yaw %.2f degrees\n", rotationDeg[0], rotationDeg[1],
                rotationDeg[2]);
  }
  return code;
}
