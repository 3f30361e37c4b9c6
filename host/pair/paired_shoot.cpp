#include "host/pair/paired_shoot.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "host/input/input_error.h"
#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr double kMs = 1e3;
constexpr double kPerMillion = 1e6;
// From there on, the clocks do not show the same time, and their difference is no delay.
constexpr double kMostDelaySeconds = 10;

Json StreamJson(const StreamQuality& stream) {
  return {{"poses", stream.poses},
          {"repeatedStamps", stream.repeatedStamps},
          {"fallingStamps", stream.fallingStamps},
          {"unreadable", stream.unreadable},
          {"gaps", stream.gaps},
          {"jumps", stream.jumps},
          {"frozenPoses", stream.frozenPoses}};
}

Json FramesJson(const Film& film, const PairReport& report) {
  Json frames = Json::array();
  for (std::size_t i = 0; i < film.frames.size(); ++i) {
    frames.push_back({{"frame", film.frames[i].name},
                      {"time", film.frames[i].seconds},
                      {"state", Name(report.frames[i])}});
  }
  return frames;
}

std::string Triple(const std::array<double, 3>& numbers) {
  return '"' + Shortest(numbers[0]) + ',' + Shortest(numbers[1]) + ',' + Shortest(numbers[2]) +
         "\"\n";
}

std::string ConfigText(const PairInputs& inputs, const PairReport& report,
                       const ShootSettings& settings) {
  constexpr double kUsualWidthMm = 36;
  const double aspect = static_cast<double>(report.imageSize[1]) / report.imageSize[0];
  const std::array<double, 2> sensor =
      settings.sensorMm.value_or(std::array<double, 2>{kUsualWidthMm, kUsualWidthMm * aspect});
  std::string text =
      "# Paired from a film and a recording. Run it with: trackedcam calibrate "
      "--config shoot.toml\n[calibrate]\ndata = \"tracker_data.csv\"\n";
  if (!settings.sensorMm) {
    text += "# Not stated: millimetres of focal length follow it, pixels and angles do not.\n";
  }
  text += "sensor = \"" + Shortest(sensor[0]) + 'x' + Shortest(sensor[1]) + "\"\nboard = \"" +
          std::to_string(inputs.board[0]) + 'x' + std::to_string(inputs.board[1]) +
          "\"\nsquare = " + Shortest(inputs.squareMetres) + '\n';
  if (settings.chartRotationDegrees && settings.chartTranslationMetres) {
    text += "chart-rotation = " + Triple(*settings.chartRotationDegrees) +
            "chart-translation = " + Triple(*settings.chartTranslationMetres);
  }
  return text + "log-folder = \"log\"\nresult = \"result.json\"\n";
}

std::string Counted(std::size_t count, const char* what) {
  return count == 0 ? std::string() : ", " + std::to_string(count) + ' ' + what;
}

std::string StreamText(const char* name, const StreamQuality& stream) {
  return std::string(name) + ": " + std::to_string(stream.poses) + " poses" +
         Counted(stream.gaps, "gaps") + Counted(stream.jumps, "jumps") +
         Counted(stream.frozenPoses, "frozen") +
         Counted(stream.repeatedStamps, "more with a repeated time") +
         Counted(stream.fallingStamps, "more with a falling time") +
         Counted(stream.unreadable, "more that cannot be read");
}

std::string DelayText(const PairReport& report) {
  const double delay = report.DelaySeconds();
  const std::string half = ", +/- " + Fixed(kMs * report.clock.delayHalf, 2) + " ms (95 %)";
  if (std::abs(delay) < kMostDelaySeconds) {
    return "Delay: the times of the poses are " + Fixed(kMs * std::abs(delay), 2) + " ms " +
           (delay < 0 ? "earlier" : "later") + " than those of the frames" + half;
  }
  return "Clocks: the poses' shows " + Fixed(delay, 5) + " s where the film's shows 0" + half;
}

std::string DriftText(const Clock& clock) {
  return clock.drift == 0
             ? "Drift: none is sure" +
                   (std::isfinite(clock.driftHalf)
                        ? ", +/- " + Fixed(kPerMillion * clock.driftHalf, 0) + " millionths (95 %)"
                        : std::string())
             : "Drift: the clock of the poses runs " +
                   Fixed(kPerMillion * std::abs(clock.drift), 0) + " millionths " +
                   (clock.drift < 0 ? "slower" : "faster") + ", +/- " +
                   Fixed(kPerMillion * clock.driftHalf, 0) + " (95 %)";
}

std::string FramesText(const PairInputs& inputs, const PairReport& report) {
  const auto count = [&](FrameState state) {
    return static_cast<std::size_t>(std::count(report.frames.begin(), report.frames.end(), state));
  };
  return "Frames: " + std::to_string(report.frames.size()) + ", searched " +
         std::to_string(report.frames.size() - count(FrameState::kNotSearched)) +
         Counted(count(FrameState::kNoBoard), "without the board") +
         Counted(count(FrameState::kUnreadable), "not readable or of another size") +
         Counted(count(FrameState::kNoPoses), "without poses") +
         Counted(inputs.film.framesWithoutTime, "more without a time") +
         Counted(inputs.film.timesWithoutFrame, "times without a frame") +
         Counted(inputs.film.repeatedTimes, "repeated") + "; chosen " +
         std::to_string(report.rows.size()) +
         Counted(report.averaged, "of them with a pose averaged where a tracker stood still");
}

}  // namespace

void RequireEmpty(const fs::path& folder) {
  std::error_code error;
  if (fs::exists(folder, error) && !fs::is_empty(folder, error)) {
    throw InputError(folder.u8string() + " exists and is not empty; name another folder");
  }
}

Json PairingJson(const PairInputs& inputs, const PairReport& report) {
  const Clock& clock = report.clock;
  Json text = Json::array();
  for (const std::string& line : PairingText(inputs, report)) {
    text.push_back(line);
  }
  return {{"text", text},
          {"delaySeconds", report.DelaySeconds()},
          {"delayHalfMs", NumberJson(kMs * clock.delayHalf)},
          {"atSeconds", clock.meanSeconds},
          {"driftPpm", kPerMillion * clock.drift},
          {"driftHalfPpm", NumberJson(kPerMillion * clock.driftHalf)},
          {"correlation", report.correlation},
          {"framesForDelay", report.forDelay},
          {"trackerNoise", {{"mm", clock.trackerNoiseMm}, {"degrees", clock.trackerNoiseDegrees}}},
          {"averagedRows", report.averaged},
          {"cameraPoses", StreamJson(report.camera)},
          {"chartPoses", report.chart ? StreamJson(*report.chart) : Json(nullptr)},
          {"framesWithoutTime", inputs.film.framesWithoutTime},
          {"timesWithoutFrame", inputs.film.timesWithoutFrame},
          {"repeatedTimes", inputs.film.repeatedTimes},
          {"frames", FramesJson(inputs.film, report)}};
}

void WritePairedShoot(const PairInputs& inputs, const PairReport& report,
                      const ShootSettings& settings, const fs::path& folder) {
  RequireEmpty(folder);
  std::vector<RecordedRow> rows = report.rows;
  for (RecordedRow& row : rows) {
    RequireName(row.photograph);
    row.photograph = "photos/" + row.photograph;
  }
  fs::create_directories(folder / "photos");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    fs::copy_file(inputs.film.folder / fs::u8path(report.rows[i].photograph),
                  folder / fs::u8path(rows[i].photograph));
  }
  WriteFile(folder / "tracker_data.csv", DataText(rows));
  WriteFile(folder / "shoot.toml", ConfigText(inputs, report, settings));
  WriteFile(folder / "pairing.json", JsonText(PairingJson(inputs, report)));
}

std::vector<std::string> PairingText(const PairInputs& inputs, const PairReport& report) {
  std::vector<std::string> lines = {DelayText(report), DriftText(report.clock),
                                    FramesText(inputs, report),
                                    StreamText("Camera's tracker", report.camera)};
  if (report.chart) {
    lines.push_back(StreamText("Chart's tracker", *report.chart));
  }
  return lines;
}

}  // namespace trackedcam::host
