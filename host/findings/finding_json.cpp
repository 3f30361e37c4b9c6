#include "host/findings/finding_json.h"

#include <nlohmann/json.hpp>

#include "host/findings/finding_text.h"
#include "host/text/files.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

Json ValuesOf(const RowNumbers& rows) {
  return {{"rows", rows.lines.size()}, {"firstRow", rows.lines.at(0)}};
}

Json With(Json values, const char* name, Json value) {
  values[name] = std::move(value);
  return values;
}

Json OffsetJson(double mm, double degrees, double p) {
  return {{"offMm", NumberJson(mm)}, {"offDegrees", NumberJson(degrees)}, {"p", NumberJson(p)}};
}

// The values of each kind.

Json ValuesOf(const RowFault& fault) {
  return ValuesOf(fault.rows);
}

Json ValuesOf(const ValueFault& fault) {
  return With(ValuesOf(fault.rows), "field", fault.field);
}

Json ValuesOf(const QuaternionLength& fault) {
  return With(ValuesOf(fault.rows), "length", NumberJson(fault.length));
}

Json ValuesOf(const FrozenPose& fault) {
  return With(ValuesOf(fault.rows), "tracker", Name(fault.tracker));
}

Json ValuesOf(const RepeatedRows& fault) {
  return With(ValuesOf(fault.rows), "different", fault.different);
}

Json ValuesOf(const LengthUnit& fault) {
  return {{"metres", NumberJson(fault.metres)}};
}

Json ValuesOf(const Utf16Text& /*fault*/) {
  return Json::object();
}

// Those about the photographs' files.
template <class Fault>
auto ValuesOf(const Fault& fault) -> decltype(fault.count, Json()) {
  return {{"photographCount", fault.count}};
}

Json ValuesOf(const UnsharpPhotographs& fault) {
  return {{"photographCount", fault.count},
          {"widestEdgePixels", NumberJson(fault.edgeWidths.at(0))}};
}

Json ValuesOf(const Aspect& fault) {
  const auto ratio = [](const auto& size) {
    return NumberJson(static_cast<double>(size[0]) / static_cast<double>(size[1]));
  };
  return {{"pictureAspect", ratio(fault.image)}, {"sensorAspect", ratio(fault.sensorMm)}};
}

Json ValuesOf(const FewUsed& fault) {
  return {{"used", fault.used},
          {"seen", fault.seen},
          {"agree", fault.agree ? Json(*fault.agree) : Json(nullptr)}};
}

Json ValuesOf(const BoardNowhere& fault) {
  return {{"columns", fault.columns}, {"rows", fault.rows}};
}

Json ValuesOf(const LogIncomplete& /*fault*/) {
  return Json::object();
}

Json ValuesOf(const ImagesMissing& fault) {
  return {{"images", fault.count}};
}

Json ValuesOf(const TooFewAgree& fault) {
  return {{"agree", fault.agree}, {"photographCount", fault.all}};
}

Json ValuesOf(const NotRefined& /*fault*/) {
  return Json::object();
}

Json ValuesOf(const NotCrossChecked& /*fault*/) {
  return Json::object();
}

Json ValuesOf(const LeftOutPhotographs& fault) {
  return {{"photographCount", fault.disagreements.size()}};
}

Json ValuesOf(const BadPhotographs& fault) {
  const Disagreement& worst = fault.disagreements.at(0);
  return {{"share", NumberJson(fault.share)},
          {"worstMm", NumberJson(worst.mm)},
          {"worstDegrees", NumberJson(worst.degrees)}};
}

Json ValuesOf(const crosscheck::NoAgreement& fault) {
  return {{"photographCount", fault.photographs},
          {"used", fault.used},
          {"mm", NumberJson(fault.noiseMm)},
          {"degrees", NumberJson(fault.noiseDegrees)}};
}

Json ValuesOf(const crosscheck::MisreadRows& fault) {
  return {{"reading", Name(fault.reading)},
          {"times", NumberJson(fault.times)},
          {"asReadMm", NumberJson(fault.asReadMm)},
          {"fittedMm", NumberJson(fault.fittedMm)}};
}

Json ValuesOf(const crosscheck::TooLittleRotation& fault) {
  return {{"amplification", NumberJson(fault.amplification)},
          {"rotationDegrees", NumberJson(fault.rotationDegrees)},
          {"axisX", NumberJson(fault.axisInChart.x())},
          {"axisY", NumberJson(fault.axisInChart.y())},
          {"axisZ", NumberJson(fault.axisInChart.z())},
          {"axes", fault.axes}};
}

Json ValuesOf(const crosscheck::TrackerMoved& fault) {
  return {{"tracker", Name(fault.tracker)},
          {"before", fault.before},
          {"mm", NumberJson(fault.mm)},
          {"degrees", NumberJson(fault.degrees)},
          {"gain", NumberJson(fault.gain)}};
}

Json ValuesOf(const crosscheck::MountingOff& fault) {
  Json values = {{"offMm", NumberJson(fault.offMm)},
                 {"offDegrees", NumberJson(fault.offDegrees)},
                 {"resultOffMm", NumberJson(fault.resultOffMm)},
                 {"resultOffDegrees", NumberJson(fault.resultOffDegrees)},
                 {"p", NumberJson(fault.p)},
                 {"pScaleFree", NumberJson(fault.pScaleFree)}};
  values["likelyMistake"] = fault.likelyMistake ? Json(Name(*fault.likelyMistake)) : Json(nullptr);
  return values;
}

Json ValuesOf(const crosscheck::SquareSizeOff& fault) {
  return {{"factor", NumberJson(fault.factor)},
          {"standardError", NumberJson(fault.standardError)},
          {"p", NumberJson(fault.p)}};
}

Json ValuesOf(const crosscheck::HalvesDiffer& fault) {
  return OffsetJson(fault.offMm, fault.offDegrees, fault.p);
}

Json ValuesOf(const crosscheck::Uncertain& fault) {
  return {{"mm", NumberJson(fault.found.mm)},
          {"degrees", NumberJson(fault.found.degrees)},
          {"neededMm", NumberJson(fault.needed.mm)},
          {"neededDegrees", NumberJson(fault.needed.degrees)},
          {"lensMm", NumberJson(fault.byLens.mm)},
          {"lensDegrees", NumberJson(fault.byLens.degrees)},
          {"trackersMm", NumberJson(fault.byTrackers.mm)},
          {"trackersDegrees", NumberJson(fault.byTrackers.degrees)},
          {"pixels", NumberJson(fault.pixels)},
          {"distanceMetres", NumberJson(fault.distanceMetres)},
          {"closerMetres", NumberJson(fault.closerMetres)}};
}

Json ValuesOf(const crosscheck::TrackersNoisy& fault) {
  return {{"mm", NumberJson(fault.mm)}, {"degrees", NumberJson(fault.degrees)}};
}

Json ValuesOf(const crosscheck::LibraryApart& fault) {
  return With(OffsetJson(fault.offMm, fault.offDegrees, fault.p), "mountingUnknown",
              fault.mountingUnknown);
}

Json MovedJson(double mm, double degrees) {
  return {{"movedMm", NumberJson(mm)}, {"movedDegrees", NumberJson(degrees)}};
}

Json ValuesOf(const crosscheck::ChartNotFlat& fault) {
  return With(MovedJson(fault.movedMm, fault.movedDegrees), "bowMm", NumberJson(fault.bowMm));
}

Json ValuesOf(const crosscheck::ChartStretched& fault) {
  return With(MovedJson(fault.movedMm, fault.movedDegrees), "widerBy", NumberJson(fault.widerBy));
}

Json ValuesOf(const crosscheck::LensModel& fault) {
  Json values = MovedJson(fault.movedMm, fault.movedDegrees);
  values.update({{"p1", NumberJson(fault.p1)},
                 {"p2", NumberJson(fault.p2)},
                 {"k3", NumberJson(fault.k3)},
                 {"pixels", NumberJson(fault.pixels)},
                 {"distanceMetres", NumberJson(fault.distanceMetres)}});
  return values;
}

Json ValuesOf(const crosscheck::LensNotSeen& fault) {
  Json parts = Json::array();
  for (const crosscheck::ImagePart part : fault.parts) {
    parts.push_back(Name(part));
  }
  return {{"share", fault.share}, {"pixels", NumberJson(fault.pixels)}, {"parts", parts}};
}

Json ValuesOf(const crosscheck::TrackerErrors& fault) {
  Json values = MovedJson(fault.movedMm, fault.movedDegrees);
  values.update({{"mm", NumberJson(fault.mm)},
                 {"degrees", NumberJson(fault.degrees)},
                 {"p", NumberJson(fault.p)}});
  if (fault.follow == crosscheck::TrackerFlaw::kDelay) {
    values["delayMs"] = NumberJson(1e3 * fault.delaySeconds);
  }
  return values;
}

Json ValuesOf(const crosscheck::NotStill& fault) {
  return {{"p", NumberJson(fault.p)},
          {"widerPixels", NumberJson(fault.widerPixels)},
          {"pixels", NumberJson(fault.pixels)},
          {"mm", NumberJson(fault.mm)}};
}

Json ValuesOf(const crosscheck::TrackerLoose& fault) {
  return {{"tracker", Name(fault.tracker)},
          {"mm", NumberJson(fault.mm)},
          {"degrees", NumberJson(fault.degrees)},
          {"photographCount", fault.photographs.size()}};
}

Json FindingJson(const Finding& finding) {
  Json json = {{"id", Id(finding)},
               {"severity", Name(finding.severity)},
               {"text", Text(finding)},
               {"advice", Advice(finding)}};
  json.update(std::visit([](const auto& kind) { return ValuesOf(kind); }, finding.kind));
  if (!finding.photographs.empty()) {
    json["photographs"] = finding.photographs;
  }
  return json;
}

}  // namespace

Json FindingsJson(const std::vector<Finding>& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    list.push_back(FindingJson(finding));
  }
  return list;
}

}  // namespace trackedcam::host
