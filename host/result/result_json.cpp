#include "host/result/result_json.h"

#include "host/input/mounting_axes.h"
#include "host/result/cross_check_json.h"
#include "host/text/json_file.h"
#include "host/verdict/limits.h"
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

Json Photographs(const RunRecord& record) {
  Json photographs = Json::array();
  for (const Photograph& photograph : record.photographs) {
    photographs.push_back(photograph.path);
  }
  return photographs;
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

Json VerdictJson(const Verdict& verdict) {
  return {{"level", Name(verdict.level)},
          {"words", verdict.words},
          {"advice", verdict.advice},
          {"commands", verdict.commands}};
}

Json FindingsJson(const std::vector<Finding>& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    Json json = {{"id", finding.id},
                 {"severity", Name(finding.severity)},
                 {"text", finding.text},
                 {"advice", finding.advice}};
    for (const auto& [name, number] : finding.numbers) {
      json[name] = NumberJson(number);
    }
    if (!finding.detail.empty()) {
      json["detail"] = finding.detail;
    }
    if (!finding.photographs.empty()) {
      json["photographs"] = finding.photographs;
    }
    list.push_back(std::move(json));
  }
  return list;
}

Json LimitJson(const Limit& limit) {
  return {{"doubt", limit.doubt ? Json(*limit.doubt) : Json(nullptr)}, {"failure", limit.failure}};
}

Json LimitsJson(const CalibrationOutputs& outputs) {
  const Limits limits = LimitsOf(outputs);
  return {
      {"lensErrorPixels", LimitJson(limits.lensErrorPixels)},
      {"reprojectionErrorPixels",
       limits.reprojectionErrorPixels ? LimitJson(*limits.reprojectionErrorPixels) : Json(nullptr)},
      {"translationSpreadMetres", LimitJson(limits.translationSpreadMetres)}};
}

Json InputsJson(const Inputs& inputs) {
  const auto& mounting = inputs.mounting;
  return {
      {"data", inputs.data.u8string()},
      {"workingFolder", inputs.workingFolder.u8string()},
      {"logFolder", inputs.logFolder.u8string()},
      {"sensorMm", inputs.sensorMm},
      {"board", inputs.board},
      {"squareMetres", inputs.squareMetres},
      {"chartRotationDegrees", mounting ? Json(mounting->rotationDegrees) : Json(nullptr)},
      {"chartTranslationMetres", mounting ? Json(mounting->translationMetres) : Json(nullptr)},
      {"mountingReported", mounting ? MountingJson(ToReportedAxes(*mounting)) : Json(nullptr)},
      {"mountingAxes", inputs.hasReportedMountingAxes ? "reported" : "fixed"},
      {"invertTrackerQuaternions", inputs.invertTrackerQuaternions},
      {"expectedRecords", inputs.expectedRecords ? Json(*inputs.expectedRecords) : Json(nullptr)},
  };
}

// What is told of each run, the first of two as well as the last.
Json RunJson(const Report& report) {
  const LibraryRun& run = report.run;
  const CalibrationOutputs& outputs = run.outputs;
  const RunRecord& record = run.record;
  return {
      {"code", run.code ? Json(*run.code) : Json(nullptr)},
      {"message", Message(run)},
      {"verdict", VerdictJson(report.verdict)},
      {"findings", FindingsJson(report.findings)},
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
      {"limits", LimitsJson(outputs)},
      {"photographs", Photographs(record)},
      {"used", UsedPhotographs(record)},
      {"dropped", Dropped(record)},
      {"exports", Exports(report)},
      {"inputs", InputsJson(report.inputs)},
      {"time", record.time},
      {"log", run.log.u8string()},
      {"images", Images(run)},
      {"crossCheck", report.crossCheck
                         ? CrossCheckJson(*report.crossCheck, report.checkedPhotographs, record)
                         : Json(nullptr)},
      {"versions", {{"library", record.libraryVersion}, {"program", TRACKEDCAM_VERSION}}},
  };
}

}  // namespace

Json ResultJson(const Report& report) {
  Json json = RunJson(report);
  json["mountingIsStated"] = report.mountingIsStated;
  json["firstRun"] = report.firstRun ? RunJson(*report.firstRun) : Json(nullptr);
  return json;
}

}  // namespace trackedcam::host
