// Measures how long the lens solve takes with the corners of 30, 60 and 120 photographs. The best
// of three runs counts, because other work on the machine only adds time.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <random>

#include "calib/intrinsic_calibration.h"
#include "simulator/shoot.h"

namespace {

using namespace trackedcam;

struct Views {
  cv::Size imageSize;
  std::vector<BoardTemplate> objectPoints;
  std::vector<Corners> imagePoints;
};

// The corners have noise like detected ones. Exact corners would end the solve early.
Views SimulateViews(int photographs) {
  simulator::ShootOptions options;
  options.photographs = photographs;
  const simulator::Shoot shoot = simulator::SimulateShoot(options);
  std::mt19937 random(1);
  std::normal_distribution<float> pixels(0, 0.1F);

  BoardTemplate board;
  for (int r = 0; r < options.chart.rows; ++r) {
    for (int c = 0; c < options.chart.cols; ++c) {
      board.emplace_back(static_cast<float>(c * options.chart.squareMetres),
                         static_cast<float>(r * options.chart.squareMetres), 0.0F);
    }
  }
  Views views = {{options.imageWidth, options.imageHeight}, {}, {}};
  for (const simulator::Photograph& photograph : shoot.photographs) {
    Corners corners;
    for (const Eigen::Vector2d& corner : photograph.corners) {
      corners.emplace_back(static_cast<float>(corner.x()) + pixels(random),
                           static_cast<float>(corner.y()) + pixels(random));
    }
    views.objectPoints.push_back(board);
    views.imagePoints.push_back(corners);
  }
  return views;
}

double SecondsToSolve(const Views& views) {
  const auto begin = std::chrono::steady_clock::now();
  double rms = 0;
  cv::Mat cameraMatrix, distortion, rotations, translations;
  int rows = static_cast<int>(views.imagePoints.size());
  CalibrateIntrinsics({}, rms, views.imageSize, cameraMatrix, distortion, rotations, translations,
                      views.objectPoints, views.imagePoints, 1.5F, rows);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

int main() {
  std::cout.setstate(std::ios::failbit);  // suppresses the log
  for (const int photographs : {30, 60, 120}) {
    const Views views = SimulateViews(photographs);
    double best = SecondsToSolve(views);
    for (int run = 1; run < 3; ++run) {
      best = std::min(best, SecondsToSolve(views));
    }
    std::printf("%3d photographs: %.2f s\n", photographs, best);
    std::fflush(stdout);
  }
}
