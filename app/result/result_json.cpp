#include "app/result/result_json.h"

#include "app/engines/engine_json.h"
#include "app/result/verdict.h"
#include "app/text/json_file.h"

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

Json Exports(const CalibrationReport& report) {
  Json exports = Json::object();
  for (const EngineExport& engineExport : report.exports) {
    exports[std::string(engineExport.engine->name)] = EngineJson(engineExport);
  }
  return exports;
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
      {"imageSize", NumbersJson(outputs.imageSize)},
      {"normFocal", NumbersJson(outputs.normFocal)},
      {"normCenter", NumbersJson(outputs.normCenter)},
      {"distortion", NumbersJson(outputs.distortion)},
      {"transformCamTc", NumbersJson(outputs.transformCamTc)},
      {"fieldOfView", NumbersJson(outputs.fieldOfView)},
      {"focalLengthMm", NumbersJson(outputs.focalLengthMm)},
      {"lensErrorPixels", NumberJson(record.lensError)},
      {"reprojectionErrorPixels", NumberJson(record.reprojectionError)},
      {"translationSpreadMetres", NumberJson(record.spread)},
      {"used", UsedPhotographs(record)},
      {"dropped", Dropped(record)},
      {"exports", Exports(report)},
      {"log", report.log.u8string()},
      {"images", Images(report)},
      {"versions", {{"library", record.libraryVersion}, {"program", TRACKEDCAM_VERSION}}},
  };
}

}  // namespace trackedcam::app
