// Compares a whole calibration with the calls of the image library that it must make, on the same
// photographs in the same run. The difference is the library's own part.
//
// Usage: shoot_benchmark [ROWS PHOTOGRAPHS]...   (default: 1080 20 1080 100 2160 20 2160 100)

#include <algorithm>
#include <cfloat>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <opencv2/calib3d.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "calib/corner_detection.h"
#include "simulator/write_shoot.h"
#include "trackedcam/trackedcam.h"

namespace {

namespace fs = std::filesystem;
using namespace trackedcam;

constexpr int kRuns = 5;  // the best time of each stage counts: other work only adds to it

double Seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Seconds in each stage in which the image library works.
struct Stages {
  double decode = 0, search = 0, refine = 0, solve = 0, project = 0, draw = 0, encode = 0;

  double Sum() const { return decode + search + refine + solve + project + draw + encode; }

  void TakeTheBestOf(const Stages& other) {
    for (double Stages::*stage : {&Stages::decode, &Stages::search, &Stages::refine, &Stages::solve,
                                  &Stages::project, &Stages::draw, &Stages::encode}) {
      this->*stage = std::min(this->*stage, other.*stage);
    }
  }
};

class Folder {
 public:
  Folder() : path(fs::temp_directory_path() / "trackedcam_shoot_benchmark") {
    fs::remove_all(path);
    fs::create_directories(path);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const fs::path path;
};

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

simulator::Shoot WriteShoot(int rows, int photographs, const fs::path& folder) {
  simulator::ShootOptions options;
  options.imageHeight = rows;
  options.imageWidth = rows * 16 / 9;
  options.photographs = photographs;
  simulator::Shoot shoot = simulator::SimulateShoot(options);
  simulator::WriteShoot(shoot, folder);
  return shoot;
}

// Writes the same photographs as PNG and changes their names in the data file.
void ConvertToPng(const simulator::Shoot& shoot, const fs::path& folder) {
  std::string data = ReadFile(folder / "tracker_data.csv");
  for (const simulator::Photograph& photograph : shoot.photographs) {
    const std::string name = photograph.path;
    const std::string converted = name.substr(0, name.rfind('.')) + ".png";
    cv::imwrite(folder / converted, cv::imread(folder / name));
    data.replace(data.find(name), name.size(), converted);
  }
  std::ofstream(folder / "tracker_data.csv") << data;
}

double SecondsOfLibrary(const simulator::Shoot& shoot, const fs::path& folder) {
  const simulator::ShootOptions& options = shoot.options;
  const auto list = [](const Eigen::Vector3d& v) {
    return std::vector<double>{v.x(), v.y(), v.z()};
  };
  std::vector<double> imageSize, normFocal, normCenter, distortion, transformCamTc, fieldOfView,
      focalLengthMm;
  fs::remove_all(folder / "log");
  fs::create_directories(folder / "log" / "Reproject_photos");
  int code = 0;
  const double seconds = Seconds([&] {
    code = Calibration("tracker_data.csv", options.sensorWidthMm, options.sensorHeightMm,
                       options.chart.cols, options.chart.rows, options.chart.squareMetres,
                       list(shoot.nominalMounting.anglesDegrees),
                       list(shoot.nominalMounting.translationMetres), imageSize, normFocal,
                       normCenter, distortion, transformCamTc, fieldOfView, focalLengthMm, "log",
                       options.invertedQuaternions, options.photographs);
  });
  if (code != 0) {
    std::fprintf(stderr, "The calibration ended with code %d.\n", code);
    std::exit(1);
  }
  return seconds;
}

// The photographs that passed the outlier filter: those with a reprojected image.
std::set<std::string> Painted(const fs::path& folder) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(folder / "log" / "Reproject_photos")) {
    names.insert("photos/" + entry.path().filename().string());
  }
  return names;
}

class BareCalls {
 public:
  BareCalls(const simulator::ShootOptions& shootOptions, std::vector<std::string> photographs,
            std::set<std::string> painted)
      : options(shootOptions), paths(std::move(photographs)), paintedPaths(std::move(painted)) {}

  Stages Run() {
    stages = {};
    corners.assign(paths.size(), {});
    for (std::size_t i = 0; i < paths.size(); ++i) {
      Find(Decode(paths[i]), corners[i]);
    }
    Solve();
    for (std::size_t i = 0; i < paths.size(); ++i) {
      Project(i);  // the reprojection errors, before and after the filter
      if (paintedPaths.count(paths[i]) > 0) {
        Paint(i);
      }
    }
    return stages;
  }

 private:
  cv::Mat Decode(const std::string& path) {
    cv::Mat image;
    stages.decode += Seconds([&] { image = cv::imread(path); });
    return image;
  }

  void Find(const cv::Mat& image, Corners& found) {
    const cv::Size board(options.chart.cols, options.chart.rows);
    const float reduction = ReductionFactor(image.size());
    cv::Mat grey, searched;
    stages.search += Seconds([&] {
      cv::cvtColor(image, grey, cv::COLOR_BGR2GRAY);
      searched = grey;
      if (reduction != 1) {
        cv::Mat reduced;
        cv::resize(image, reduced, ReducedSize(image.size(), reduction));
        cv::cvtColor(reduced, searched, cv::COLOR_BGR2GRAY);
      }
      cv::findChessboardCorners(
          searched, board, found,
          cv::CALIB_CB_ADAPTIVE_THRESH + cv::CALIB_CB_NORMALIZE_IMAGE + cv::CALIB_CB_FAST_CHECK);
    });
    const auto refine = [&](const cv::Mat& in) {
      cv::cornerSubPix(in, found, RefinementWindow(found, board), {-1, -1},
                       {cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.1});
    };
    stages.refine += Seconds([&] {
      if (reduction != 1) {
        refine(searched);
        for (cv::Point2f& corner : found) {
          corner *= reduction;
        }
      }
      refine(grey);
    });
  }

  void Solve() {
    template_.clear();
    for (int row = 0; row < options.chart.rows; ++row) {
      for (int column = 0; column < options.chart.cols; ++column) {
        template_.emplace_back(static_cast<float>(column * options.chart.squareMetres),
                               static_cast<float>(row * options.chart.squareMetres), 0.0F);
      }
    }
    const std::vector<BoardTemplate> boards(corners.size(), template_);
    cv::Mat deviations, poseDeviations, viewErrors;
    stages.solve += Seconds([&] {
      cv::calibrateCamera(boards, corners, {options.imageWidth, options.imageHeight}, cameraMatrix,
                          distortion, rotations, translations, deviations, poseDeviations,
                          viewErrors, cv::CALIB_ZERO_TANGENT_DIST + cv::CALIB_FIX_K3,
                          {cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, DBL_EPSILON});
    });
  }

  Corners Project(std::size_t i) {
    Corners projected;
    stages.project += Seconds([&] {
      cv::projectPoints(template_, rotations.row(static_cast<int>(i)),
                        translations.row(static_cast<int>(i)), cameraMatrix, distortion, projected);
    });
    return projected;
  }

  void Paint(std::size_t i) {
    cv::Mat image = Decode(paths[i]);
    const Corners projected = Project(i);
    stages.draw += Seconds([&] {
      for (const Corners* list : std::initializer_list<const Corners*>{&corners[i], &projected}) {
        for (const cv::Point2f& point : *list) {
          cv::circle(image, point, 8, {20, 20, 200}, cv::FILLED);
        }
      }
    });
    stages.encode +=
        Seconds([&] { cv::imwrite("bare" + paths[i].substr(paths[i].rfind('.')), image); });
  }

  const simulator::ShootOptions options;
  const std::vector<std::string> paths;
  const std::set<std::string> paintedPaths;
  Stages stages;
  BoardTemplate template_;
  std::vector<Corners> corners;
  cv::Mat cameraMatrix, distortion, rotations, translations;
};

void Measure(const simulator::Shoot& shoot, const std::string& format, const fs::path& folder) {
  fs::current_path(folder);  // the photographs' paths in the data file are relative to it
  double library = SecondsOfLibrary(shoot, folder);
  std::vector<std::string> paths;
  for (const simulator::Photograph& photograph : shoot.photographs) {
    paths.push_back(photograph.path.substr(0, photograph.path.rfind('.')) + "." + format);
  }
  BareCalls bareCalls(shoot.options, paths, Painted(folder));
  Stages bare = bareCalls.Run();
  for (int run = 1; run < kRuns; ++run) {
    library = std::min(library, SecondsOfLibrary(shoot, folder));
    bare.TakeTheBestOf(bareCalls.Run());
  }
  std::printf(
      "| %d | %s | %d | %.2f | %.2f | %.1f %% | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n",
      shoot.options.imageHeight, format == "jpg" ? "JPEG" : "PNG", shoot.options.photographs,
      library, bare.Sum(), 100 * (library / bare.Sum() - 1), bare.decode, bare.search, bare.refine,
      bare.solve, bare.project + bare.draw, bare.encode);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> sizes = {1080, 20, 1080, 100, 2160, 20, 2160, 100};
  if (argc > 1) {
    sizes.clear();
    std::transform(argv + 1, argv + argc, std::back_inserter(sizes),
                   [](char* t) { return std::atoi(t); });
  }
  std::cout.setstate(std::ios::failbit);  // suppresses the log
  std::puts(
      "| rows | format | photographs | library, s | these calls alone, s | difference | decode | "
      "search | refine | solve | project and draw | encode |\n"
      "|---|---|---|---|---|---|---|---|---|---|---|---|");
  for (std::size_t i = 0; i + 1 < sizes.size(); i += 2) {
    const Folder folder;
    const simulator::Shoot shoot = WriteShoot(sizes[i], sizes[i + 1], folder.path);
    Measure(shoot, "jpg", folder.path);
    ConvertToPng(shoot, folder.path);
    Measure(shoot, "png", folder.path);
    fs::current_path(fs::temp_directory_path());
  }
}
