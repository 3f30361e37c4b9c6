#include "host/result/result_json.h"

#include "host/engines/engine_export.h"
#include "host/text/json_file.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

std::string Message(const LibraryRun& run) {
  if (!run.code) {
    return run.exception;
  }
  if (*run.code == kSuccess) {
    return "No error";
  }
  // A run that stops for wrong use has no error line: its last line says what is wrong.
  const RunRecord& record = run.record;
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

Json Exports(const Report& report) {
  Json exports = Json::object();
  for (const EngineExport& engineExport : report.exports) {
    exports[std::string(engineExport.engine->name)] = EngineJson(engineExport);
  }
  return exports;
}

Json Images(const LibraryRun& run) {
  Json images = Json::array();
  for (const auto& image : run.images) {
    images.push_back(image.u8string());
  }
  return images;
}

}  // namespace

Json ResultJson(const Report& report) {
  const LibraryRun& run = report.run;
  const CalibrationOutputs& outputs = run.outputs;
  const RunRecord& record = run.record;
  return {
      {"code", run.code ? Json(*run.code) : Json(nullptr)},
      {"message", Message(run)},
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
      {"log", run.log.u8string()},
      {"images", Images(run)},
      {"versions", {{"library", record.libraryVersion}, {"program", TRACKEDCAM_VERSION}}},
  };
}

}  // namespace trackedcam::host
