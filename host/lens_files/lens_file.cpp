#include "host/lens_files/lens_file.h"

#include <nlohmann/json.hpp>

#include "host/input/inputs.h"
#include "host/lens_files/camera_texts.h"
#include "host/lens_files/exr.h"
#include "host/lens_files/lens_model.h"
#include "host/lens_files/opentrackio.h"
#include "host/lens_files/preview.h"
#include "host/lens_files/stmap.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;

template <std::string (*TextOf)(const LensModel&, const Origin&)>
std::vector<LensFile> CameraText(const ExportInput& input, const LensFileOptions& /*options*/) {
  return {{"", TextOf(LensModelOf(input.calibration), input.origin.value_or(Origin()))}};
}

std::vector<LensFile> OpenTrackIo(const ExportInput& input, const LensFileOptions& /*options*/) {
  return {{"", OpenTrackIoText(input)}};
}

std::string MapBytes(const StMap& map, const std::string& direction, const Origin& origin) {
  std::string comments = "ST map to " + direction;
  for (const std::string& line : OriginLines(origin)) {
    comments += '\n' + line;
  }
  // Some readers take no picture without blue.
  return ExrBytes(map.width, map.height, {{"B"}, {"G", &map.t}, {"R", &map.s}}, comments);
}

std::vector<LensFile> StMaps(const ExportInput& input, const LensFileOptions& options) {
  const LensModel lens = LensModelOf(input.calibration);
  const std::array<int, 2> size = UndistortedSize(lens, options.overscan);
  const Origin origin = input.origin.value_or(Origin());
  return {{"_undistort", MapBytes(UndistortMap(lens, size), "undistort", origin)},
          {"_distort", MapBytes(DistortMap(lens, size), "distort", origin)}};
}

Json OverscanJson(const LensModel& lens, const std::array<int, 2>& size) {
  return {
      {"imageSize", {lens.width, lens.height}},
      {"undistortedSize", size},
      {"overscan",
       {static_cast<double>(size[0]) / lens.width, static_cast<double>(size[1]) / lens.height}}};
}

}  // namespace

const std::array<LensFileFormat, 5> kLensFileFormats = {{
    {"opencv", "OpenCV", {".yml", ".yaml"}, nullptr, true, CameraText<OpenCvText>},
    {"ros", "ROS camera_info", {".yaml", ".yml"}, nullptr, true, CameraText<RosText>},
    {"colmap", "COLMAP", {".txt"}, nullptr, true, CameraText<ColmapText>},
    {"opentrackio", "OpenTrackIO", {".json"}, kOpenTrackIoParentAxes, true, OpenTrackIo},
    {"stmap", "ST maps", {".exr"}, nullptr, false, StMaps},
}};

Json LensFileJson(const LensFileFormat& format, const ExportInput& input,
                  const LensFileOptions& options) {
  const std::string doubt = input.origin ? DoubtOf(*input.origin) : "";
  Json json = {{"code", 0},
               {"message", doubt.empty() ? "No error" : doubt},
               {"format", format.name},
               {"title", format.title}};
  if (format.isText) {
    json["text"] = format.write(input, options).front().content;
  } else {
    const LensModel lens = LensModelOf(input.calibration);
    json.update(OverscanJson(lens, UndistortedSize(lens, options.overscan)));
  }
  return json;
}

std::string PreviewOf(const ExportInput& input, const LensFileOptions& options) {
  if (input.photograph.empty()) {
    throw InputError("the result does not name a photograph in which the chart was found");
  }
  const LensModel lens = LensModelOf(input.calibration);
  return UndistortedPng(lens, UndistortedSize(lens, options.overscan), input.photograph);
}

}  // namespace trackedcam::host
