#include "host/result/cross_check_json.h"

#include "host/input/mounting_axes.h"
#include "host/text/json_file.h"
#include "host/verdict/cross_check_findings.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

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

Json Optional(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

Json StandardErrorJson(const crosscheck::StandardError& error) {
  return {{"shiftMm", RowByRow(error.shiftMm)}, {"turnDegrees", RowByRow(error.turnDegrees)}};
}

Json OffsetJson(const crosscheck::Offset& offset) {
  return {{"offMm", NumberJson(offset.offMm)},
          {"offDegrees", NumberJson(offset.offDegrees)},
          {"p", NumberJson(offset.p)}};
}

Json OffsetJson(const std::optional<crosscheck::Offset>& offset) {
  return offset ? OffsetJson(*offset) : Json(nullptr);
}

Json NominalMountingJson(const std::optional<crosscheck::NominalMounting>& mounting) {
  if (!mounting) {
    return nullptr;
  }
  Json json = OffsetJson(static_cast<const crosscheck::Offset&>(*mounting));
  json["pScaleFree"] = NumberJson(mounting->pScaleFree);
  json["perhaps"] = Optional(mounting->perhaps);
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

Json OnScreenJson(const std::vector<crosscheck::OnScreen>& onScreen) {
  Json list = Json::array();
  for (const crosscheck::OnScreen& at : onScreen) {
    list.push_back({{"distanceMetres", at.distanceMetres},
                    {"pixels", NumberJson(at.pixels)},
                    {"fromTransform", NumberJson(at.fromTransform)},
                    {"fromLens", NumberJson(at.fromLens)},
                    {"libraryApart", NumberJson(at.libraryApart)}});
  }
  return list;
}

void AddView(Json& json, const crosscheck::View& view) {
  json["tiltDegrees"] = NumberJson(view.tiltDegrees);
  json["tiltDirectionDegrees"] = NumberJson(view.tiltDirectionDegrees);
  json["rollDegrees"] = NumberJson(view.rollDegrees);
  json["distanceMetres"] = NumberJson(view.distanceMetres);
}

std::vector<std::array<double, 2>> NoCorners() {
  return {};
}

Json PerPhotographJson(const crosscheck::CrossCheck& crossCheck,
                       const std::vector<std::string>& photographs, const RunRecord& record) {
  std::vector<const Photograph*> observed;
  for (const Photograph& photograph : record.photographs) {
    if (photograph.raw) {
      observed.push_back(&photograph);
    }
  }
  Json list = Json::array();
  for (std::size_t i = 0; i < crossCheck.perPhotograph.size(); ++i) {
    const crosscheck::PerPhotograph& photograph = crossCheck.perPhotograph[i];
    Json json = {
        {"photograph", photographs.at(i)},
        {"used", photograph.used},
        {"mm", NumberJson(photograph.mm)},
        {"degrees", NumberJson(photograph.degrees)},
        {"predictedPixels", NumberJson(photograph.predictedPixels)},
        {"why", photograph.used ? Json(nullptr) : Json(WhyLeftOut(photograph, photographs))},
        {"transformCamChart", RowByRow(photograph.Transform_Cam_Chart)},
        {"transformTcTr", RowByRow(photograph.Transform_Tc_Tr)},
        {"corners", PointsJson(i < observed.size() ? observed[i]->raw->corners : NoCorners())},
        {"predicted", PointsJson(photograph.predicted)}};
    AddView(json, photograph.view);
    list.push_back(std::move(json));
  }
  return list;
}

Json SuggestedViewsJson(const std::vector<crosscheck::SuggestedView>& views) {
  Json list = Json::array();
  for (const crosscheck::SuggestedView& view : views) {
    Json json = {{"views", view.views}, {"gain", NumberJson(view.gain)}, {"text", TextOf(view)}};
    AddView(json, view);
    list.push_back(std::move(json));
  }
  return list;
}

Json FindingsJson(const std::vector<crosscheck::Finding>& findings) {
  Json list = Json::array();
  for (const crosscheck::Finding& finding : findings) {
    Json json = {{"id", Name(finding.id)}, {"severity", Name(finding.severity)}};
    for (const auto& [name, number] : finding.numbers) {
      json[name] = NumberJson(number);
    }
    if (!finding.detail.empty()) {
      json["detail"] = finding.detail;
    }
    list.push_back(std::move(json));
  }
  return list;
}

}  // namespace

Json MountingJson(const crosscheck::Mounting& mounting) {
  return {{"rotationDegrees", mounting.rotationDegrees},
          {"translationMetres", mounting.translationMetres}};
}

Json CrossCheckJson(const crosscheck::CrossCheck& check,
                    const std::vector<std::string>& photographs, const RunRecord& record) {
  const crosscheck::LensErrors& lens = check.lens;
  Json json = {{"solved", check.solved}, {"photographs", check.photographs}, {"used", check.used}};
  json["transformCamTc"] = RowByRow(check.Transform_Cam_Tc);
  json["transformTrChart"] = RowByRow(check.Transform_Tr_Chart);
  json["covarianceCamTcTwist"] = Rows(check.covarianceCamTcTwist);
  json["covarianceTrChartTwist"] = Rows(check.covarianceTrChartTwist);
  json["standardErrorCamTc"] = StandardErrorJson(check.standardErrorCamTc);
  json["standardErrorTrChart"] = StandardErrorJson(check.standardErrorTrChart);
  json["t95"] = NumberJson(check.t95);
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
  json["nominalMounting"] = NominalMountingJson(check.nominalMounting);
  json["library"] = OffsetJson(check.library);
  json["diversity"] = {{"amplification", NumberJson(check.diversity.amplification)},
                       {"weakestAxisInChart", RowByRow(check.diversity.weakestAxisInChart)}};
  json["square"] = {{"factor", NumberJson(check.square.factor)},
                    {"standardError", NumberJson(check.square.standardError)},
                    {"p", NumberJson(check.square.p)}};
  json["step"] = StepJson(check.step, photographs);
  json["halves"] = OffsetJson(check.halves);
  json["onScreen"] = OnScreenJson(check.onScreen);
  json["perPhotograph"] = PerPhotographJson(check, photographs, record);
  json["suggestedViews"] = SuggestedViewsJson(check.suggestedViews);
  json["photographsToHalve"] =
      check.photographsToHalve ? Json(*check.photographsToHalve) : Json(nullptr);
  json["findings"] = FindingsJson(check.findings);
  return json;
}

}  // namespace trackedcam::host
