#include "host/result/earlier_runs.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr std::size_t kMostRuns = 20;

std::optional<double> NumberIn(const Json& json, const char* pointer) {
  const Json::json_pointer at(pointer);
  return json.contains(at) && json[at].is_number() ? std::optional(json[at].get<double>())
                                                   : std::nullopt;
}

std::string TextIn(const Json& json, const char* pointer) {
  const Json::json_pointer at(pointer);
  return json.contains(at) && json[at].is_string() ? json[at].get<std::string>() : std::string();
}

// The largest of three axes, with 95 %.
std::optional<double> KnownTo(const Json& result, const std::string& errors) {
  const auto t95 = NumberIn(result, "/crossCheck/t95");
  double most = 0;
  for (const char* axis : {"/0", "/1", "/2"}) {
    const auto error =
        NumberIn(result, ("/crossCheck/standardErrorCamTc/" + errors + axis).c_str());
    if (!error || !t95) {
      return std::nullopt;
    }
    most = std::max(most, *t95 * *error);
  }
  return most;
}

Json RunJson(const std::string& name, const Json& result) {
  return {{"name", name},
          {"time", TextIn(result, "/time")},
          {"level", TextIn(result, "/verdict/level")},
          {"pixels", NumberJson(NumberIn(result, "/reprojectionErrorPixels"))},
          {"mm", NumberJson(KnownTo(result, "translationMm"))},
          {"degrees", NumberJson(KnownTo(result, "rotationDegrees"))}};
}

bool IsUsable(const Json& run) {
  return (run["level"] == "good" || run["level"] == "doubt") && run["mm"].is_number();
}

std::string ComparedText(const Json& own, const Json& others) {
  const Json* best = nullptr;
  for (const Json& other : others) {
    if (IsUsable(other) && (best == nullptr || other["mm"] < (*best)["mm"])) {
      best = &other;
    }
  }
  if (best == nullptr) {
    return "No other run has a result that can be used.";
  }
  const std::string name = (*best)["name"];
  const double theirs = (*best)["mm"];
  if (!IsUsable(own)) {
    return "This run has no result to use; " + name + " knows the transform to +/- " +
           Fixed(theirs, 1) + " mm (95 %).";
  }
  const double ours = own["mm"];
  return std::string("This run is ") + (ours <= theirs ? "better" : "worse") + " than " + name +
         ", the best of the others, by " + Fixed(std::abs(ours - theirs), 1) +
         " mm: it knows the transform to +/- " + Fixed(ours, 1) + " mm (95 %).";
}

}  // namespace

Json RunsBeside(const fs::path& runFolder, const Json& result) {
  std::vector<fs::path> folders;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(runFolder.parent_path(), error)) {
    if (entry.path().filename().u8string().rfind("run_", 0) == 0 &&
        entry.path().filename() != runFolder.filename()) {
      folders.push_back(entry.path());
    }
  }
  std::sort(folders.begin(), folders.end(), std::greater<>());
  Json runs = Json::array();
  for (const fs::path& folder : folders) {
    if (runs.size() == kMostRuns) {
      break;
    }
    try {
      const Json other = ReadJson<Json>(folder / "result.json");
      if (!TextIn(other, "/verdict/level").empty()) {
        runs.push_back(RunJson(folder.filename().u8string(), other));
      }
    } catch (const std::exception&) {
      continue;  // a run that was ended, or a file of something else
    }
  }
  if (runs.empty()) {
    return nullptr;
  }
  const std::string text = ComparedText(RunJson(runFolder.filename().u8string(), result), runs);
  return {{"text", text}, {"runs", runs}};
}

}  // namespace trackedcam::host
