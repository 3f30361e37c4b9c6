// Pairings: their values as JSON.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "c/handles.h"
#include "c/status.h"
#include "host/pair/pair.h"
#include "host/pair/paired_shoot.h"
#include "host/recording/pose_formats.h"
#include "host/text/files.h"

namespace trackedcam::c {
namespace {

struct Pairing {
  std::string json;
};

Handles<trackedcam_pairing, Pairing>& Pairings() {
  static auto* const all = new Handles<trackedcam_pairing, Pairing>("pairing");
  return *all;
}

std::filesystem::path PairPath(const char* text, const char* name) {
  const std::string path = RequireText(text, name);
  if (path.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is empty.");
  }
  return std::filesystem::absolute(std::filesystem::u8path(path));
}

// Nothing for an empty text.
template <class Value>
Value Parsed(const char* text, const char* name, Value (*parse)(std::string_view)) {
  const std::string value = OptionalText(text, name);
  const Value parsed = value.empty() ? Value() : parse(value);
  if (!value.empty() && !parsed) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " has no value " + value + '.');
  }
  return parsed;
}

const host::TrackerUnit* UnitNamed(std::string_view name) {
  const auto unit = std::find_if(host::kTrackerUnits.begin(), host::kTrackerUnits.end(),
                                 [&](const auto& one) { return one.name == name; });
  return unit == host::kTrackerUnits.end() ? nullptr : &*unit;
}

host::PoseFormat FormatOf(const trackedcam_pair_options& options) {
  host::PoseFormat format;
  format.kind = Parsed(options.pose_format, "pose_format", &host::ParsePoseFileKind);
  format.unit = Parsed(options.pose_unit, "pose_unit", &UnitNamed);
  format.timeUnit = Parsed(options.time_unit, "time_unit", &host::ParseTimeUnit);
  const std::string columns = OptionalText(options.columns, "columns");
  if (!columns.empty()) {
    format.columns = host::ParsePoseColumns(columns);
  }
  return format;
}

host::PairInputs PairInputsOf(const trackedcam_pair_options& options) {
  RequireSize(options.struct_size, sizeof(trackedcam_pair_options), "options");
  if ((options.times == nullptr) != (options.frames_per_second > 0)) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "State one of times and frames_per_second.");
  }
  if (options.photographs < host::kLeastPairedPhotographs) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, "photographs must be at least 12.");
  }
  const std::filesystem::path frames = PairPath(options.frames, "frames");
  const host::PoseFormat format = FormatOf(options);
  host::PairInputs inputs;
  inputs.film = options.times == nullptr ? host::ReadFilm(frames, options.frames_per_second)
                                         : host::ReadFilm(frames, PairPath(options.times, "times"));
  inputs.camera = ReadPoseRecording(PairPath(options.camera_poses, "camera_poses"), format);
  if (options.chart_poses != nullptr) {
    inputs.chart = ReadPoseRecording(PairPath(options.chart_poses, "chart_poses"), format);
  }
  inputs.board = {options.board_columns, options.board_rows};
  inputs.squareMetres = options.square_m;
  inputs.photographs = static_cast<std::size_t>(options.photographs);
  return inputs;
}

}  // namespace
}  // namespace trackedcam::c

using namespace trackedcam::c;

trackedcam_status trackedcam_pair_options_init(trackedcam_pair_options* options,
                                               size_t struct_size) {
  return Guarded([&] {
    RequirePointer(options, "options");
    RequireSize(struct_size, sizeof(trackedcam_pair_options), "options");
    *options = {};
    options->struct_size = sizeof(trackedcam_pair_options);
    options->photographs = static_cast<int32_t>(trackedcam::host::PairInputs().photographs);
  });
}

trackedcam_status trackedcam_pair(const trackedcam_pair_options* options,
                                  trackedcam_pairing** pairing) {
  return Guarded([&] {
    RequirePointer(options, "options");
    RequirePointer(pairing, "pairing");
    const trackedcam::host::PairInputs inputs = PairInputsOf(*options);
    const std::filesystem::path folder = PairPath(options->out_folder, "out_folder");
    trackedcam::host::RequireEmpty(folder);
    trackedcam::host::ShootSettings settings;
    if (options->sensor_width_mm > 0 && options->sensor_height_mm > 0) {
      settings.sensorMm = {options->sensor_width_mm, options->sensor_height_mm};
    }
    const auto report = trackedcam::host::Pair(inputs, [](std::size_t, std::size_t) {});
    trackedcam::host::WritePairedShoot(inputs, report, settings, folder);
    *pairing = Pairings().Add(std::make_shared<Pairing>(
        Pairing{trackedcam::host::JsonText(trackedcam::host::PairingJson(inputs, report))}));
  });
}

trackedcam_status trackedcam_pairing_json(trackedcam_pairing* pairing, const char** json) {
  return Guarded([&] {
    const auto asked = Pairings().Get(pairing);
    RequirePointer(json, "json");
    *json = asked->json.c_str();
  });
}

trackedcam_status trackedcam_pairing_free(trackedcam_pairing* pairing) {
  return Guarded([&] { Pairings().Free(pairing); });
}
