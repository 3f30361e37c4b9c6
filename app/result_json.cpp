#include "app/result_json.h"

#include <cmath>
#include <optional>

#include "app/verdict.h"

namespace trackedcam::app {
namespace {

using Json = nlohmann::ordered_json;

std::string Message(const CalibrationReport& report) {
  if (report.code == kSuccess) {
    return "No error";
  }
  // A run that stops for wrong use has no error line: its last line says what is wrong.
  const RunRecord& record = report.record;
  return record.errorMessage.empty() ? record.lastMessage : record.errorMessage;
}

Json Number(double number) {
  return std::isfinite(number) ? Json(number) : Json(nullptr);
}

Json Number(const std::optional<double>& number) {
  return number ? Number(*number) : Json(nullptr);
}

Json List(const std::vector<double>& numbers) {
  Json list = Json::array();
  for (const double number : numbers) {
    list.push_back(Number(number));
  }
  return list;
}

Json Dropped(const RunRecord& record) {
  Json dropped = Json::array();
  for (const Photograph& photograph : record.photographs) {
    if (photograph.dropped) {
      dropped.push_back(
          {{"photograph", photograph.path}, {"reason", Describe(*photograph.dropped)}});
    }
  }
  return dropped;
}

Json Images(const CalibrationReport& report) {
  Json images = Json::array();
  for (const auto& image : report.images) {
    images.push_back(image.u8string());
  }
  return images;
}

}  // namespace

Json ResultJson(const CalibrationReport& report) {
  const CalibrationOutputs& outputs = report.outputs;
  const RunRecord& record = report.record;
  return {
      {"code", report.code},
      {"message", Message(report)},
      {"imageSize", List(outputs.imageSize)},
      {"normFocal", List(outputs.normFocal)},
      {"normCenter", List(outputs.normCenter)},
      {"distortion", List(outputs.distortion)},
      {"transformCamTc", List(outputs.transformCamTc)},
      {"fieldOfView", List(outputs.fieldOfView)},
      {"focalLengthMm", List(outputs.focalLengthMm)},
      {"lensErrorPixels", Number(record.lensError)},
      {"reprojectionErrorPixels", Number(record.reprojectionError)},
      {"translationSpreadMetres", Number(record.spread)},
      {"used", UsedPhotographs(record)},
      {"dropped", Dropped(record)},
      {"log", report.log.u8string()},
      {"images", Images(report)},
      {"versions", {{"library", record.libraryVersion}, {"program", TRACKEDCAM_VERSION}}},
  };
}

std::string ResultJsonText(const CalibrationReport& report) {
  return ResultJson(report).dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace trackedcam::app
