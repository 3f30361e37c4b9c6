#include "simulator/truth_text.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "simulator/angle.h"

namespace trackedcam::simulator {
namespace {

using Json = nlohmann::ordered_json;

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

Json Figures(const Mounting& mounting) {
  return {{"rotationDegrees", Numbers(mounting.anglesDegrees)},
          {"translationMetres", Numbers(mounting.translationMetres)},
          {"transformTrChart", Numbers(mounting.Transform())}};
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
    if (photograph.flaw == Flaw::kSlippedTracker) {
      truth["outliers"].push_back(photograph.path);
    } else if (photograph.flaw != Flaw::kNone) {
      truth["unusable"].push_back(
          {{"photograph", photograph.path}, {"reason", Reason(photograph.flaw)}});
    }
  }
}

}  // namespace

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
      {"distortion", {lens.k1, lens.k2, 0, 0, 0}},
      {"fieldOfView", {FieldOfViewDegrees(width, lens.fx), FieldOfViewDegrees(height, lens.fy)}},
      {"transformCamTc", Numbers(shoot.Transform_Cam_Tc)},
      {"mounting",
       {{"true", Figures(shoot.trueMounting)}, {"nominal", Figures(shoot.nominalMounting)}}},
      {"outliers", Json::array()},
      {"unusable", Json::array()},
      {"photographs", Json::array()},
  };
  ListPhotographs(shoot, truth);
  return truth.dump(2) + '\n';
}

}  // namespace trackedcam::simulator
