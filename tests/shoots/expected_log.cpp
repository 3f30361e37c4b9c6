#include "shoots/expected_log.h"

#include <cmath>
#include <cstdio>

namespace trackedcam::test {
namespace {

using simulator::Flaw;
using simulator::Photograph;
using simulator::Shoot;

void Append(ExpectedLog& log, const ExpectedLog& more) {
  log.insert(log.end(), more.begin(), more.end());
}

std::string Text(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%f", number);
  return text;
}

bool IsUsable(const Photograph& photograph) {
  return photograph.flaw == Flaw::kNone || photograph.flaw == Flaw::kSlippedTracker;
}

std::vector<Photograph> UsablePhotographs(const Shoot& shoot) {
  std::vector<Photograph> usable;
  for (const Photograph& photograph : shoot.photographs) {
    if (IsUsable(photograph)) {
      usable.push_back(photograph);
    }
  }
  return usable;
}

ExpectedLine PixelLine(const std::string& label, double value) {
  return {label + " : " + Text(value) + " pixel.", 0.001 * value};
}

ExpectedLog MatrixLines(const std::string& label) {
  return {label, "[[#, #, #, #],", " [#, #, #, #],", " [#, #, #, #],",
          " [0.000000, 0.000000, 0.000000, 1.000000]]"};
}

ExpectedLog ReprojectionLines(std::size_t photographs) {
  ExpectedLog log;
  for (std::size_t i = 0; i < photographs; ++i) {
    log.emplace_back("Image " + std::to_string(i) + " reprojection error : # pixels.");
  }
  log.emplace_back("Average reprojection error : # pixels.");
  return log;
}

ExpectedLog FilterLines(const std::vector<Photograph>& photographs,
                        const std::vector<std::size_t>& removed) {
  ExpectedLog log;
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    log.emplace_back("Diff R in image " + std::to_string(i) + " : # degree.");
  }
  log.emplace_back("STD_R : # degree.");
  log.emplace_back("STD_T : #, #, # meter.");
  log.emplace_back("Remove outlier data number : " + std::to_string(removed.size()));
  log.emplace_back("Size list : (init) " + std::to_string(photographs.size()));
  for (const std::size_t index : removed) {
    log.emplace_back("Remove index : " + std::to_string(index));
    log.emplace_back("Remove name : " + photographs.at(index).path);
  }
  log.emplace_back("Size list : (init) " + std::to_string(photographs.size() - removed.size()));
  return log;
}

}  // namespace

std::vector<std::size_t> RemovedIndices(const std::vector<std::string>& log) {
  const std::string label = "Remove index : ";
  std::vector<std::size_t> indices;
  for (const std::string& line : log) {
    if (line.rfind(label, 0) == 0) {
      indices.push_back(std::stoul(line.substr(label.size())));
    }
  }
  return indices;
}

ExpectedLog OpeningLines(const HostArguments& arguments) {
  ExpectedLog log = {"Version : v" TRACKEDCAM_VERSION,
                     "Flag_ModifyQuat : " + std::to_string(arguments.Flag_ModifyQuat ? 1 : 0),
                     "Num_TrackerData : " + std::to_string(arguments.Num_TrackerData),
                     "Camera Tracker Calibration start.", "CALIBRATION BOARD INDEX START"};
  for (int r = 0; r < arguments.boardRows; ++r) {
    for (int c = 0; c < arguments.boardCols; ++c) {
      log.emplace_back(Text(c * arguments.squareSize) + " " + Text(r * arguments.squareSize) +
                       " 0");
    }
  }
  Append(log, {"CALIBRATION BOARD INDEX END", "Start to read the csv file."});
  return log;
}

ExpectedLog CornerLines(const Shoot& shoot) {
  ExpectedLog log = {"Read the csv file successfully."};
  for (const Photograph& photograph : shoot.photographs) {
    log.emplace_back("Process : " + photograph.path);
    if (photograph.flaw == Flaw::kWithoutChart) {
      log.emplace_back("Read " + photograph.path + " Failed!");
    } else if (!IsUsable(photograph)) {
      log.emplace_back(photograph.path + " Not exist!");
    }
  }
  const std::vector<Photograph> usable = UsablePhotographs(shoot);
  if (usable.size() < 12) {
    Append(log, {"The amount of useful data is too small. (< 12 )",
                 "Error code 4: Amount of valid images < 12."});
    return log;
  }
  Append(log, {"Corner detection successful.", "RAW DATA START"});
  for (const Photograph& photograph : usable) {
    log.emplace_back(photograph.path);
    const Eigen::Vector3d camera = photograph.trackedTc.translation();
    const Eigen::Vector3d chart = photograph.trackedTr.translation();
    log.emplace_back("# " + Text(camera.x()) + " " + Text(camera.y()) + " " + Text(camera.z()) +
                         " # # # # " + Text(chart.x()) + " " + Text(chart.y()) + " " +
                         Text(chart.z()) + " # # # #",
                     1e-6);
    for (const Eigen::Vector2d& corner : photograph.corners) {
      log.emplace_back(Text(corner.x()) + " " + Text(corner.y()), 0.5);
    }
  }
  log.emplace_back("RAW DATA END");
  return log;
}

ExpectedLog LensLines(const Shoot& shoot) {
  const double width = shoot.options.imageWidth;
  const double height = shoot.options.imageHeight;
  const auto& lens = shoot.lens;
  const std::string poses = std::to_string(UsablePhotographs(shoot).size());
  const auto degrees = [](double norm) { return 2 * std::atan(0.5 / norm) * 180 / std::acos(-1); };
  const double focalLengthMm = lens.fy * shoot.options.sensorHeightMm / height;  // square pixels
  return {"Camera calibration start.",
          PixelLine("Fx", lens.fx),
          PixelLine("Fy", lens.fy),
          PixelLine("Cx", lens.cx),
          PixelLine("Cy", lens.cy),
          {"reprojection error : 0.000000", 0.3},
          "size of Rot_Cam_Chart_vec : " + poses,
          "size of Trans_Cam_Chart_vec : " + poses,
          "Camera calibration successful.",
          "Image Width : " + std::to_string(shoot.options.imageWidth) + " pixel.",
          "Image Height : " + std::to_string(shoot.options.imageHeight) + " pixel.",
          {"Norm F : (" + Text(lens.fx / width) + ", " + Text(lens.fy / height) + ").", 0.002},
          {"Norm C : (" + Text(lens.cx / width) + ", " + Text(lens.cy / height) + ").", 0.001},
          {"Distortion (k1, k2, p1, p2, k3) : " + Text(lens.k1) + ", " + Text(lens.k2) +
               ", 0.000000, 0.000000, 0.000000",
           0.02},
          {"FoV_H : " + Text(degrees(lens.fx / width)) + " degree.", 0.06},
          {"FoV_V : " + Text(degrees(lens.fy / height)) + " degree.", 0.06},
          {"Focal length (mm) : " + Text(focalLengthMm) + " mm.", 0.03}};
}

ExpectedLog RunLines(const Shoot& shoot, const HostArguments& arguments,
                     const std::vector<std::size_t>& removed, const ExpectedLog& verdict) {
  const std::vector<Photograph> usable = UsablePhotographs(shoot);
  ExpectedLog log = OpeningLines(arguments);
  Append(log, CornerLines(shoot));
  Append(log, LensLines(shoot));
  Append(log, {"Start OrganizeRT.", "Transform_Chart_Tr successful.", "Finish OrganizeRT.",
               "Start Calculate_Transform_Cam_Tc in first time."});
  Append(log, MatrixLines("Mean_Transform_Cam_Tc : "));
  Append(log, {"Finish Calculate_Transform_Cam_Tc."});
  Append(log, ReprojectionLines(usable.size()));
  Append(log, FilterLines(usable, removed));
  Append(log, MatrixLines("Mean_Transform_Chart_Tr : "));
  Append(log, MatrixLines("Mean_Transform_Cam_Tc : "));
  Append(log, ReprojectionLines(usable.size() - removed.size()));
  Append(log, {"Norm Reprojection error : #", "T_STD : #, #, # meter.", "Max T_STD : # meter."});
  Append(log, verdict);
  return log;
}

}  // namespace trackedcam::test
