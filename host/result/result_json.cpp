#include "host/result/result_json.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "host/findings/finding_json.h"
#include "host/findings/finding_text.h"
#include "host/input/reported_axes.h"
#include "host/result/stored_calibration.h"
#include "host/second_run.h"
#include "host/text/files.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

Json MountingJson(const crosscheck::Mounting& mounting) {
  return {{"rotationDegrees", mounting.rotationDegrees},
          {"translationMetres", mounting.translationMetres}};
}

template <class Derived>
Json RowByRow(const Eigen::MatrixBase<Derived>& matrix) {
  Json list = Json::array();
  for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
    for (Eigen::Index column = 0; column < matrix.cols(); ++column) {
      list.push_back(NumberJson(matrix(row, column)));
    }
  }
  return list;
}

template <class Derived>
Json Rows(const Eigen::MatrixBase<Derived>& matrix) {
  Json rows = Json::array();
  for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
    rows.push_back(RowByRow(matrix.row(row)));
  }
  return rows;
}

template <class Points>
Json PointsJson(const Points& points) {
  Json list = Json::array();
  for (const auto& point : points) {
    list.push_back({NumberJson(point[0]), NumberJson(point[1])});
  }
  return list;
}

Json StandardErrorJson(const crosscheck::StandardError& error) {
  return {{"translationMm", RowByRow(error.translationMm)},
          {"rotationDegrees", RowByRow(error.rotationDegrees)}};
}

Json OffsetJson(const crosscheck::Offset& offset, bool isGood) {
  const crosscheck::Certainty certainty = crosscheck::CertaintyOf(offset.p);
  return {{"offMm", NumberJson(offset.offMm)},
          {"offDegrees", NumberJson(offset.offDegrees)},
          {"p", NumberJson(offset.p)},
          {"isCertain", certainty == crosscheck::Certainty::kIsCertain},
          {"certainty", Name(certainty)},
          {"certaintyText", CertaintyText(offset.p, isGood)}};
}

Json OffsetJson(const std::optional<crosscheck::Offset>& offset, bool isGood) {
  return offset ? OffsetJson(*offset, isGood) : Json(nullptr);
}

Json NominalMountingJson(const std::optional<crosscheck::NominalMounting>& mounting, bool isGood) {
  if (!mounting) {
    return nullptr;
  }
  Json json = OffsetJson(static_cast<const crosscheck::Offset&>(*mounting), isGood);
  json["pScaleFree"] = NumberJson(mounting->pScaleFree);
  json["likelyMistake"] =
      mounting->likelyMistake ? Json(Name(*mounting->likelyMistake)) : Json(nullptr);
  json["likelyMistakeText"] =
      mounting->likelyMistake ? Json(MistakeText(*mounting->likelyMistake)) : Json(nullptr);
  return json;
}

Json StepJson(const std::optional<crosscheck::Step>& step,
              const std::vector<std::string>& photographs) {
  if (!step) {
    return nullptr;
  }
  return {{"tracker", Name(step->tracker)},
          {"before", step->before},
          {"photograph", photographs.at(step->before)},
          {"mm", NumberJson(step->mm)},
          {"degrees", NumberJson(step->degrees)},
          {"gain", NumberJson(step->gain)}};
}

Json AxesJson(const std::array<crosscheck::AxisComparison, 3>& axes) {
  constexpr std::array<const char*, 3> kNames = {"x", "y", "z"};
  Json list = Json::array();
  for (std::size_t i = 0; i < axes.size(); ++i) {
    list.push_back({{"axis", kNames.at(i)},
                    {"other", NumberJson(axes.at(i).other)},
                    {"found", NumberJson(axes.at(i).found)},
                    {"difference", NumberJson(axes.at(i).difference)},
                    {"half", NumberJson(axes.at(i).half)}});
  }
  return list;
}

Json ComparisonJson(const crosscheck::TransformComparison& comparison) {
  return {{"translation", AxesJson(comparison.translation)},
          {"rotation", AxesJson(comparison.rotation)},
          {"isCompared", comparison.isCompared}};
}

Json PlaceErrorJson(const crosscheck::PlaceError& error) {
  return {{"pixels", NumberJson(error.pixels)}, {"mm", NumberJson(error.mm)}};
}

Json ImageCellsJson(const crosscheck::ImageCells& cells) {
  return {{"columns", cells.columns}, {"rows", cells.rows}, {"seen", cells.seen}};
}

void AddView(Json& json, const crosscheck::View& view) {
  json["tiltDegrees"] = NumberJson(view.tiltDegrees);
  json["tiltDirectionDegrees"] = NumberJson(view.tiltDirectionDegrees);
  json["rollDegrees"] = NumberJson(view.rollDegrees);
  json["distanceMetres"] = NumberJson(view.distanceMetres);
}

Json SuggestedViewsJson(const std::vector<crosscheck::SuggestedView>& views) {
  Json list = Json::array();
  for (const crosscheck::SuggestedView& view : views) {
    Json json = {{"views", view.views}, {"gain", NumberJson(view.gain)}, {"text", Text(view)}};
    AddView(json, view);
    list.push_back(std::move(json));
  }
  return list;
}

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

Json CheckedJson(const crosscheck::PerPhotograph& photograph,
                 const std::vector<std::array<double, 2>>& corners) {
  Json json = {{"used", photograph.used},
               {"mm", NumberJson(photograph.mm)},
               {"degrees", NumberJson(photograph.degrees)},
               {"predictedPixels", NumberJson(photograph.predictedPixels)},
               {"resultPixels", NumberJson(photograph.resultPixels)},
               {"transformCamChart", RowByRow(photograph.Transform_Cam_Chart)},
               {"transformTcTr", RowByRow(photograph.Transform_Tc_Tr)},
               {"corners", PointsJson(corners)},
               {"predicted", PointsJson(photograph.predicted)},
               {"byResult", PointsJson(photograph.byResult)}};
  AddView(json, photograph.view);
  return json;
}

Json TextOrNull(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

// Empty for a name that is no path on this system.
std::string PathText(const std::string& name, const Report& report) {
  try {
    return (report.inputs.workingFolder / std::filesystem::u8path(name))
        .lexically_normal()
        .u8string();
  } catch (const std::exception&) {
    return {};
  }
}

Json PhotographJson(const PhotographEntry& entry, const Report& report) {
  Json json = {{"row", entry.row == 0 ? Json(nullptr) : Json(entry.row)},
               {"name", entry.name},
               {"path", entry.row == 0 ? Json(nullptr) : TextOrNull(PathText(entry.name, report))},
               {"state", Name(entry.state)},
               {"reason", TextOrNull(entry.reason)},
               {"libraryErrorPixels", nullptr},
               {"reprojectedImage", nullptr},
               {"crossCheck", nullptr}};
  if (!entry.inRun) {
    return json;
  }
  const LibraryRun& run = report.run;
  const Photograph& photograph = run.record.photographs.at(*entry.inRun);
  json["libraryErrorPixels"] = NumberJson(photograph.errorPixels);
  if (*entry.inRun < run.images.size()) {  // a log alone has none
    json["reprojectedImage"] = TextOrNull(run.images[*entry.inRun].u8string());
  }
  if (entry.checked && report.crossCheck) {
    json["crossCheck"] =
        CheckedJson(report.crossCheck->perPhotograph.at(*entry.checked), photograph.raw->corners);
  }
  return json;
}

Json PhotographsJson(const Report& report) {
  Json photographs = Json::array();
  for (const PhotographEntry& entry : report.photographs) {
    photographs.push_back(PhotographJson(entry, report));
  }
  return photographs;
}

Json CountsJson(const PhotographList& list) {
  return {
      {"all", list.size()},
      {"used", IsCounted(list) ? Json(CountInState(list, PhotographState::kUsed)) : Json(nullptr)},
      {"text", CountText(list)},
      {"others", OthersText(list)}};
}

Json Exports(const Report& report) {
  Json exports = Json::object();
  for (const EngineExport& engineExport : report.exports) {
    exports[std::string(engineExport.engine->name)] = EngineJson(engineExport);
  }
  return exports;
}

Json VerdictJson(const Verdict& verdict) {
  return {{"level", Name(verdict.level)},
          {"message", verdict.message},
          {"advice", verdict.advice},
          {"commands", verdict.commands}};
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
      {"translationSpreadMetres", LimitJson(limits.translationSpreadMetres)},
      {"photographAngleDegrees", limits.photographAngleDegrees}};
}

Json PathsJson(const std::vector<std::filesystem::path>& paths) {
  Json list = Json::array();
  for (const std::filesystem::path& path : paths) {
    list.push_back(path.u8string());
  }
  return list;
}

Json InputsJson(const Inputs& inputs) {
  const auto& mounting = inputs.mounting;
  return {
      {"data", inputs.data.u8string()},
      {"moreData", PathsJson(inputs.moreData)},
      {"exclude", inputs.exclude},
      {"workingFolder", inputs.workingFolder.u8string()},
      {"logFolder", inputs.logFolder.u8string()},
      {"sensorMm", inputs.sensorMm},
      {"board", inputs.board},
      {"squareMetres", inputs.squareMetres},
      {"chartRotationDegrees", mounting ? Json(mounting->rotationDegrees) : Json(nullptr)},
      {"chartTranslationMetres", mounting ? Json(mounting->translationMetres) : Json(nullptr)},
      {"mountingReported", mounting ? MountingJson(ToReportedAxes(*mounting)) : Json(nullptr)},
      {"mountingAxes", inputs.hasReportedMountingAxes ? "reported" : "fixed"},
      {"trackerAxes", AxesOf(inputs.trackerFrame).name},
      {"trackerUnits", UnitOf(inputs.trackerFrame).name},
      {"quaternionOrder", inputs.trackerFrame.hasQuaternionsXyzw ? "xyzw" : "wxyz"},
      {"invertTrackerQuaternions", inputs.invertTrackerQuaternions},
      {"goodEnough", {{"mm", inputs.goodEnough.mm}, {"degrees", inputs.goodEnough.degrees}}},
      {"scaleUncertainty", inputs.scaleUncertainty},
      {"atMetres", NumbersJson(inputs.atMetres)},
      {"expectedRecords", inputs.expectedRecords ? Json(*inputs.expectedRecords) : Json(nullptr)},
  };
}

Json CrossCheckJson(const Report& report) {
  const crosscheck::CrossCheck& check = *report.crossCheck;
  const std::vector<std::string> photographs = CheckedNames(report.photographs);
  const bool isGood = report.verdict.level == Level::kGood;
  const crosscheck::LensErrors& lens = check.lens;
  Json json = {{"solved", check.solved}, {"photographs", check.photographs}, {"used", check.used}};
  json["transformCamTc"] = RowByRow(check.Transform_Cam_Tc);
  json["transformTrChart"] = RowByRow(check.Transform_Tr_Chart);
  json["covarianceCamTcTwist"] = Rows(check.covarianceCamTcTwist);
  json["covarianceTrChartTwist"] = Rows(check.covarianceTrChartTwist);
  json["standardErrorCamTc"] = StandardErrorJson(check.standardErrorCamTc);
  json["standardErrorTrChart"] = StandardErrorJson(check.standardErrorTrChart);
  json["standardErrorCamTcByNoise"] = StandardErrorJson(check.standardErrorCamTcByNoise);
  json["standardErrorCamTcByClusters"] = StandardErrorJson(check.standardErrorCamTcByClusters);
  json["t95"] = NumberJson(check.t95);
  json["comparison"] = {{"camTc", ComparisonJson(check.comparisonCamTc)},
                        {"trChart", ComparisonJson(check.comparisonTrChart)}};
  json["trackerNoise"] = {{"degrees", NumberJson(check.trackerNoiseDegrees)},
                          {"mm", NumberJson(check.trackerNoiseMm)}};
  json["trackerNoiseApart"] = check.trackerNoiseApart;
  json["cornerNoisePixels"] = NumberJson(check.cornerNoisePixels);
  json["lens"] = {{"fx", NumberJson(lens.fx)}, {"fy", NumberJson(lens.fy)},
                  {"cx", NumberJson(lens.cx)}, {"cy", NumberJson(lens.cy)},
                  {"k1", NumberJson(lens.k1)}, {"k2", NumberJson(lens.k2)}};
  json["mounting"] = check.mounting ? MountingJson(*check.mounting) : Json(nullptr);
  json["mountingReported"] =
      check.mounting ? MountingJson(ToReportedAxes(*check.mounting)) : Json(nullptr);
  json["isMountingToPassOn"] = MountingToPassOn(report).has_value();
  json["nominalMounting"] = NominalMountingJson(check.nominalMounting, isGood);
  json["library"] = OffsetJson(check.library, isGood);
  json["diversity"] = {{"amplification", NumberJson(check.diversity.amplification)},
                       {"weakestAxisInChart", RowByRow(check.diversity.weakestAxisInChart)}};
  json["scale"] = {{"uncertainty", NumberJson(check.scale.uncertainty)},
                   {"mmPerPermille", NumberJson(check.scale.mmPerPermille)},
                   {"degreesPerPermille", NumberJson(check.scale.degreesPerPermille)}};
  json["square"] = {{"factor", NumberJson(check.square.factor)},
                    {"standardError", NumberJson(check.square.standardError)},
                    {"p", NumberJson(check.square.p)}};
  json["step"] = StepJson(check.step, photographs);
  json["halves"] = OffsetJson(check.halves, isGood);
  json["imageCells"] = ImageCellsJson(check.imageCells);
  json["onScreen"] = OnScreenJson(check.onScreen);
  json["suggestedViews"] = SuggestedViewsJson(check.suggestedViews);
  json["delayKnownToMs"] =
      check.delayKnownToSeconds ? NumberJson(1e3 * *check.delayKnownToSeconds) : Json(nullptr);
  json["photographsToHalve"] =
      check.photographsToHalve ? Json(*check.photographsToHalve) : Json(nullptr);
  json["calibration"] =
      check.calibration ? CalibrationJson(*check.calibration, report.inputs) : Json(nullptr);
  return json;
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
      {"photographs", PhotographsJson(report)},
      {"photographCounts", CountsJson(report.photographs)},
      {"exports", Exports(report)},
      {"inputs", InputsJson(report.inputs)},
      {"time", record.time},
      {"log", run.log.u8string()},
      {"crossCheck", report.crossCheck ? CrossCheckJson(report) : Json(nullptr)},
      {"versions", {{"library", record.libraryVersion}, {"program", TRACKEDCAM_VERSION}}},
  };
}

// To the millisecond.
Json SecondsJson(const std::optional<double>& seconds) {
  return seconds ? Json(std::round(1000 * *seconds) / 1000) : Json(nullptr);
}

}  // namespace

nlohmann::ordered_json OnScreenJson(const std::vector<crosscheck::OnScreen>& onScreen) {
  Json list = Json::array();
  for (const crosscheck::OnScreen& at : onScreen) {
    Json corner = PlaceErrorJson(at.corner);
    corner["part"] = Name(at.worstCorner);
    list.push_back({{"distanceMetres", at.distanceMetres},
                    {"middle", PlaceErrorJson(at.middle)},
                    {"corner", std::move(corner)},
                    {"cellPixels", NumbersJson(at.cellPixels)},
                    {"libraryApart", NumberJson(at.libraryApart)}});
  }
  return list;
}

Json ResultJson(const Report& report, const std::optional<double>& pageSeconds) {
  Json json = RunJson(report);
  json["mountingIsStated"] = report.mountingIsStated;
  json["seconds"] = {{"library", SecondsJson(report.seconds.library)},
                     {"crossCheck", SecondsJson(report.seconds.crossCheck)},
                     {"page", SecondsJson(pageSeconds)}};
  json["firstRun"] = report.firstRun ? RunJson(*report.firstRun) : Json(nullptr);
  return json;
}

}  // namespace trackedcam::host
