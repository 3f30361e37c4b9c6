#include "simulator/write_shoot.h"

#include <cmath>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "simulator/decimals.h"
#include "simulator/mounting.h"
#include "simulator/rendering.h"
#include "simulator/simulated_files.h"
#include "simulator/tracking.h"

namespace trackedcam::simulator {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr const char* kHeader =
    "Time,Photograph,"
    "Tc x,Tc y,Tc z,Tc qw,Tc qx,Tc qy,Tc qz,"
    "Tr x,Tr y,Tr z,Tr qw,Tr qx,Tr qy,Tr qz";
constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

std::string PoseText(const Eigen::Isometry3d& pose, bool invertedQuaternion) {
  const Eigen::Isometry3d reported = InReportedAxes(pose);
  Eigen::Quaterniond rotation(reported.linear());
  if (invertedQuaternion) {
    rotation = rotation.conjugate();
  }
  const Eigen::Vector3d position = reported.translation();
  std::string text;
  for (const double number : {position.x(), position.y(), position.z(), rotation.w(), rotation.x(),
                              rotation.y(), rotation.z()}) {
    text += ',' + ToFixedText(number, 12);
  }
  return text;
}

std::string Triple(const Eigen::Vector3d& numbers) {
  return ToShortestText(numbers.x()) + ',' + ToShortestText(numbers.y()) + ',' +
         ToShortestText(numbers.z());
}

std::string Line(const std::string& key, const std::string& value) {
  return key + " = " + value + '\n';
}

std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}

Json Numbers(const Eigen::Vector3d& vector) {
  return {vector.x(), vector.y(), vector.z()};
}

Json Numbers(const Eigen::Isometry3d& transform) {
  Json numbers = Json::array();
  for (int row = 0; row < 4; ++row) {
    for (int col = 0; col < 4; ++col) {
      numbers.push_back(transform(row, col));
    }
  }
  return numbers;
}

Json MountingJson(const Mounting& mounting) {
  return {{"rotationDegrees", Numbers(mounting.anglesDegrees)},
          {"translationMetres", Numbers(mounting.translationMetres)},
          {"transformTrChart", Numbers(mounting.Transform())}};
}

// What the calibration's model leaves out; its lens is in "distortion".
Json FlawsJson(const ShootOptions& options) {
  return {{"printStretch", options.chart.stretch},
          {"chartBowMetres", options.chart.bowMetres},
          {"noiseCorrelation", options.noiseCorrelation},
          {"trackerScale", options.trackerScale},
          {"volumeBendMm", options.volumeBendMm},
          {"poseErrorMm", options.poseErrorMm},
          {"poseErrorDegrees", options.poseErrorDegrees},
          {"delayMs", options.delayMs},
          {"exposureMs", options.exposureMs},
          {"tremorMmPerSecond", options.tremorMmPerSecond},
          {"sagMm", options.sagMm},
          {"looseMm", options.looseMm},
          {"frozenRows", options.frozenRows},
          {"heldPoses", options.heldPoses},
          {"repeatedRows", options.repeatedRows},
          {"turntable", options.turntable}};
}

double FieldOfViewDegrees(double pixels, double focal) {
  return Degrees(2 * std::atan(pixels / (2 * focal)));
}

const char* Reason(Flaw flaw) {
  switch (flaw) {
    case Flaw::kMissing:
      return "missing";
    case Flaw::kNotAnImage:
      return "not an image";
    case Flaw::kWithoutChart:
      return "without chart";
    case Flaw::kSlippedTracker:
      return "slipped tracker";
    case Flaw::kNone:
      break;
  }
  return "";
}

void ListPhotographs(const Shoot& shoot, Json& truth) {
  for (const Photograph& photograph : shoot.photographs) {
    truth["photographs"].push_back({{"photograph", photograph.path},
                                    {"transformCamChart", Numbers(photograph.Transform_Cam_Chart)},
                                    {"transformBaseTc", Numbers(photograph.Transform_Base_Tc)},
                                    {"transformBaseTr", Numbers(photograph.Transform_Base_Tr)}});
    if (photograph.isFrozen) {
      truth["frozen"].push_back(photograph.path);
    }
    if (photograph.flaw == Flaw::kSlippedTracker) {
      truth["outliers"].push_back(photograph.path);
    } else if (photograph.flaw != Flaw::kNone) {
      truth["unusable"].push_back(
          {{"photograph", photograph.path}, {"reason", Reason(photograph.flaw)}});
    }
  }
}

void WritePhotograph(const Shoot& shoot, const PhotographRenderer& renderer, int index,
                     SimulatedFiles& files) {
  const Photograph& photograph = shoot.photographs[index];
  switch (photograph.flaw) {
    case Flaw::kMissing:
      files.Remove(photograph.path);
      break;
    case Flaw::kNotAnImage:
      files.Write(photograph.path, "This file has the name of a photograph but is not an image.\n");
      break;
    default:
      files.Write(photograph.path, Jpeg(renderer.Render(index), shoot.options.jpegQuality));
  }
}

}  // namespace

void WriteShoot(const Shoot& shoot, const fs::path& folder,
                const std::function<void(int done, int all)>& progress) {
  fs::create_directories(folder / "photos");
  // First, because the program recognises a simulated shoot by these two files, also an incomplete
  // one.
  SimulatedFiles files(folder);
  files.Write("truth.json", TruthText(shoot));
  files.Write("shoot.toml", ConfigText(shoot));
  files.Write("tracker_data.csv", TrackerDataText(shoot));

  const PhotographRenderer renderer(shoot);
  const int all = static_cast<int>(shoot.photographs.size());
  for (int i = 0; i < all; ++i) {
    WritePhotograph(shoot, renderer, i, files);
    if (progress) {
      progress(i + 1, all);
    }
  }
  files.Finish();
}

std::string TrackerDataText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const std::string lineEnd = options.windowsLineEnds ? "\r\n" : "\n";
  std::string text = (options.byteOrderMark ? kByteOrderMark : "") + (kHeader + lineEnd);
  double seconds = 0;
  for (const Photograph& photograph : shoot.photographs) {
    text += ToFixedText(seconds, 3) + ',' + photograph.path +
            PoseText(photograph.trackedTc, options.invertedQuaternions) +
            PoseText(photograph.trackedTr, options.invertedQuaternions) + lineEnd;
    seconds += kSecondsBetweenPhotographs;
  }
  return text;
}

std::string ConfigText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const Chart& chart = options.chart;
  const Mounting& mounting = shoot.nominalMounting;
  const std::string sensor =
      ToShortestText(options.sensorWidthMm) + 'x' + ToShortestText(options.sensorHeightMm);
  const std::string board = ToShortestText(chart.cols) + 'x' + ToShortestText(chart.rows);
  return "# A simulated shoot. Run it with: trackedcam calibrate --config shoot.toml\n"
         "[calibrate]\n" +
         Line("data", Quoted("tracker_data.csv")) + Line("sensor", Quoted(sensor)) +
         Line("board", Quoted(board)) + Line("square", ToShortestText(chart.squareMetres)) +
         Line("chart-rotation", Quoted(Triple(mounting.anglesDegrees))) +
         Line("chart-translation", Quoted(Triple(mounting.translationMetres))) +
         Line("invert-tracker-quaternions", options.invertedQuaternions ? "true" : "false") +
         Line("log-folder", Quoted("log")) + Line("result", Quoted("result.json")) +
         Line("truth", Quoted("truth.json"));
}

std::string TruthText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const Lens& lens = shoot.lens;
  const double width = options.imageWidth;
  const double height = options.imageHeight;
  Json truth = {
      {"seed", options.seed},
      {"imageSize", {options.imageWidth, options.imageHeight}},
      {"lensPixels", {{"fx", lens.fx}, {"fy", lens.fy}, {"cx", lens.cx}, {"cy", lens.cy}}},
      {"normFocal", {lens.fx / width, lens.fy / height}},
      {"normCenter", {lens.cx / width, lens.cy / height}},
      {"distortion", {lens.k1, lens.k2, lens.p1, lens.p2, lens.k3}},
      {"fieldOfView", {FieldOfViewDegrees(width, lens.fx), FieldOfViewDegrees(height, lens.fy)}},
      {"transformCamTc", Numbers(shoot.Transform_Cam_Tc)},
      {"mounting",
       {{"true", MountingJson(shoot.trueMounting)},
        {"nominal", MountingJson(shoot.nominalMounting)}}},
      {"flaws", FlawsJson(options)},
      {"outliers", Json::array()},
      {"frozen", Json::array()},
      {"unusable", Json::array()},
      {"photographs", Json::array()},
  };
  ListPhotographs(shoot, truth);
  return truth.dump(2) + '\n';
}

}  // namespace trackedcam::simulator
