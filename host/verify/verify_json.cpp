#include "host/verify/verify_json.h"

#include <nlohmann/json.hpp>

#include "host/findings/finding_json.h"
#include "host/result/result_file.h"
#include "host/result/result_json.h"
#include "host/text/files.h"
#include "host/verify/verify_text.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

Json ListJson(const Eigen::VectorXd& values) {
  Json list = Json::array();
  for (const double value : values) {
    list.push_back(NumberJson(value));
  }
  return list;
}

Json PoseJson(const crosscheck::Pose& pose) {
  Json list = Json::array();
  for (Eigen::Index row = 0; row < 4; ++row) {
    for (Eigen::Index column = 0; column < 4; ++column) {
      list.push_back(NumberJson(pose.matrix()(row, column)));
    }
  }
  return list;
}

Json PixelsJson(const std::vector<Eigen::Vector2d>& pixels) {
  Json list = Json::array();
  for (const Eigen::Vector2d& pixel : pixels) {
    list.push_back({NumberJson(pixel.x()), NumberJson(pixel.y())});
  }
  return list;
}

// In the tracker's reported axes.
Json MoveJson(const std::optional<crosscheck::MountMove>& move) {
  if (!move) {
    return nullptr;
  }
  const ReportedMove reported = InReportedAxes(*move);
  return {{"mm", NumberJson(reported.mm.norm())},
          {"degrees", NumberJson(reported.degrees.norm())},
          {"translationMm", ListJson(reported.mm)},
          {"translationHalfMm", ListJson(reported.halfMm)},
          {"rotationDegrees", ListJson(reported.degrees)},
          {"rotationHalfDegrees", ListJson(reported.halfDegrees)}};
}

Json ValueJson(bool isPart, const crosscheck::ChangedValue& value) {
  return isPart ? Json{{"change", NumberJson(value.change)}, {"half", NumberJson(value.half)}}
                : Json(nullptr);
}

Json LensChangeJson(const std::optional<crosscheck::LensChange>& lens) {
  if (!lens) {
    return nullptr;
  }
  return {{"cause", Name(lens->cause)},
          {"focalPercent", ValueJson(lens->hasFocal, lens->focalPercent)},
          {"cx", ValueJson(lens->hasCentre, lens->cx)},
          {"cy", ValueJson(lens->hasCentre, lens->cy)},
          {"k1", ValueJson(lens->hasDistortion, lens->k1)},
          {"k2", ValueJson(lens->hasDistortion, lens->k2)}};
}

Json DetectableJson(const crosscheck::Detectable& detectable) {
  return {{"mm", NumberJson(detectable.mm)}, {"degrees", NumberJson(detectable.degrees)}};
}

Json LensJson(const crosscheck::Lens& lens) {
  return {{"fx", lens.fx}, {"fy", lens.fy}, {"cx", lens.cx}, {"cy", lens.cy}, {"k1", lens.k1},
          {"k2", lens.k2}, {"p1", lens.p1}, {"p2", lens.p2}, {"k3", lens.k3}};
}

Json StateJson(const crosscheck::Pose& Transform_Cam_Tc, const crosscheck::Pose& Transform_Tr_Chart,
               const crosscheck::Lens& lens) {
  return {{"transformCamTc", PoseJson(Transform_Cam_Tc)},
          {"transformTrChart", PoseJson(Transform_Tr_Chart)},
          {"lens", LensJson(lens)}};
}

Json PhotographJson(const PhotographEntry& entry, const VerifyReport& report) {
  Json json = {
      {"row", entry.row},
      {"name", entry.name},
      {"path", (report.inputs.workingFolder / std::filesystem::u8path(entry.name)).u8string()},
      {"state", Name(entry.state)},
      {"reason", entry.reason.empty() ? Json(nullptr) : Json(entry.reason)},
      {"verified", nullptr}};
  if (entry.checked) {
    const crosscheck::Verified& verified = report.verification.photographs.at(*entry.checked);
    json["verified"] = {{"oldPixels", NumberJson(verified.oldPixels)},
                        {"newPixels", NumberJson(verified.newPixels)},
                        {"oldMm", NumberJson(verified.oldMm)},
                        {"oldDegrees", NumberJson(verified.oldDegrees)},
                        {"corners", PixelsJson(report.corners.at(*entry.checked))},
                        {"oldPredicted", PixelsJson(verified.oldPredicted)},
                        {"newPredicted", PixelsJson(verified.newPredicted)}};
  }
  return json;
}

}  // namespace

Json VerifyJson(const VerifyReport& report) {
  const crosscheck::Verification& found = report.verification;
  const crosscheck::Calibration& old = report.stored.calibration;
  Json candidates = Json::array();
  for (const crosscheck::Answer candidate : found.candidates) {
    candidates.push_back(Name(candidate));
  }
  Json photographs = Json::array();
  for (const PhotographEntry& entry : report.photographs) {
    photographs.push_back(PhotographJson(entry, report));
  }
  return {
      {"answer", Name(found.answer)},
      {"status", StatusOf(found.answer)},
      {"message", AnswerText(found)},
      {"details", Details(found)},
      {"advice", AdviceText(found)},
      {"p", NumberJson(found.p)},
      {"candidates", candidates},
      {"usable", found.usable},
      {"used", found.used},
      {"cameraTracker", MoveJson(found.camera)},
      {"chartTracker", MoveJson(found.chart)},
      {"lensChange", LensChangeJson(found.lens)},
      {"foundAt95",
       {{"cameraTracker", DetectableJson(found.cameraDetectable)},
        {"chartTracker", DetectableJson(found.chartDetectable)},
        {"focalPercent", NumberJson(found.focalDetectablePercent)}}},
      {"onScreen", OnScreenJson(found.onScreen)},
      {"noiseFactor", NumberJson(found.noiseFactor)},
      {"cornerNoisePixels", NumberJson(found.cornerNoisePixels)},
      {"imageSize", {old.lens.width, old.lens.height}},
      {"old", StateJson(old.Transform_Cam_Tc, old.Transform_Tr_Chart, old.lens)},
      {"new", StateJson(found.Transform_Cam_Tc, found.Transform_Tr_Chart, found.newLens)},
      {"findings", FindingsJson(report.findings)},
      {"photographs", photographs},
      {"inputs",
       {{"result", report.inputs.result.u8string()},
        {"data", report.inputs.data.u8string()},
        {"workingFolder", report.inputs.workingFolder.u8string()},
        {"chartRemounted", report.inputs.chartRemounted}}},
      {"calibrated", report.stored.time},
      {"versions", {{"program", TRACKEDCAM_VERSION}}},
  };
}

bool IsVerifyFile(const std::filesystem::path& file) {
  if (BeginningOf(file, 1) != "{") {
    return false;
  }
  try {
    const auto json = ReadJson<nlohmann::json>(file);
    return json.contains("answer") && json.contains("foundAt95") && json.contains("versions");
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace trackedcam::host
