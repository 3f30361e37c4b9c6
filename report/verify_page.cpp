#include "report/verify_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/embedded.h"
#include "report/html.h"
#include "report/result_values.h"
#include "report/template.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMapColumns = 16;
constexpr double kMapWidth = 480;  // of the picture, any unit

std::string LevelOfAnswer(const std::string& answer) {
  return answer == "holds"                                      ? "good"
         : answer == "tooFew"                                   ? "none"
         : answer == "chartTrackerMoved" || answer == "unclear" ? "doubt"
                                                                : "wrong";
}

// Old, new and their difference, each with so many decimals.
Json ChangeRow(const std::string& name, const std::string& unit,
               const std::optional<double>& before, const std::optional<double>& after,
               int decimals) {
  const std::optional<double> change =
      before && after ? std::optional<double>(*after - *before) : std::nullopt;
  return {{"name", name},
          {"unit", unit},
          {"old", Fixed(before, decimals)},
          {"new", Fixed(after, decimals)},
          {"change", Fixed(change, decimals)}};
}

Json ChangeRows(const Json& verification) {
  Json rows = Json::array();
  const auto add = [&](const std::string& name, const std::string& unit, const std::string& path,
                       double scale, int decimals) {
    rows.push_back(ChangeRow(name, unit, Times(NumberAt(verification, "/old" + path), scale),
                             Times(NumberAt(verification, "/new" + path), scale), decimals));
  };
  constexpr std::array<const char*, 3> kAxes = {"x", "y", "z"};
  for (const auto& [name, key] : {std::pair("camera’s tracker ", "/transformCamTc"),
                                  std::pair("chart on its tracker ", "/transformTrChart")}) {
    for (std::size_t i = 0; i < kAxes.size(); ++i) {
      add(name + std::string(kAxes.at(i)), "mm", At(key, 4 * i + 3), 1000, 2);
    }
  }
  for (const char* name : {"fx", "fy", "cx", "cy"}) {
    add(name, "px", std::string("/lens/") + name, 1, 2);
  }
  for (const char* name : {"k1", "k2"}) {
    add(name, "", std::string("/lens/") + name, 1, 5);
  }
  return rows;
}

Json PhotographRows(const Json& photographs) {
  Json rows = Json::array();
  double most = 1;  // pixels: bars of a calibration that holds stay short
  for (const Json& photograph : photographs) {
    most = std::max(most, NumberAt(photograph, "/verified/oldPixels").value_or(0));
  }
  for (const Json& photograph : photographs) {
    const auto before = NumberAt(photograph, "/verified/oldPixels");
    const auto after = NumberAt(photograph, "/verified/newPixels");
    rows.push_back({{"name", TextAt(photograph, "/name")},
                    {"isUsed", TextAt(photograph, "/state") == "used"},
                    {"reason", TextAt(photograph, "/reason")},
                    {"oldBar", std::lround(100 * before.value_or(0) / most)},
                    {"newBar", std::lround(100 * after.value_or(0) / most)},
                    {"oldPixels", Fixed(before, 2)},
                    {"newPixels", Fixed(after, 2)},
                    {"mm", Fixed(NumberAt(photograph, "/verified/oldMm"), 2)},
                    {"degrees", Fixed(NumberAt(photograph, "/verified/oldDegrees"), 3)}});
  }
  return rows;
}

// The mean distance between corners and predictions in each part of the image.
class ResidualMap {
 public:
  ResidualMap(double width, double height)
      : width_(width),
        height_(height),
        rows_(std::clamp<std::size_t>(
            static_cast<std::size_t>(std::lround(kMapColumns * height / width)), 1, 64)),
        sums_(kMapColumns * rows_),
        counts_(sums_.size()) {}

  void Add(const Json& corners, const Json& predicted) {
    for (std::size_t i = 0; i < std::min(corners.size(), predicted.size()); ++i) {
      const auto x = NumberAt(corners[i], "/0");
      const auto y = NumberAt(corners[i], "/1");
      const auto u = NumberAt(predicted[i], "/0");
      const auto v = NumberAt(predicted[i], "/1");
      if (!x || !y || !u || !v) {
        continue;
      }
      const double column = std::floor(kMapColumns * *x / width_);
      const double row = std::floor(static_cast<double>(rows_) * *y / height_);
      if (column >= 0 && column < kMapColumns && row >= 0 && row < static_cast<double>(rows_)) {
        const auto cell = static_cast<std::size_t>(row * kMapColumns + column);
        sums_[cell] += std::hypot(*u - *x, *v - *y);
        ++counts_[cell];
      }
    }
  }

  double Most() const {
    double most = 0;
    for (std::size_t i = 0; i < sums_.size(); ++i) {
      most = counts_[i] > 0 ? std::max(most, sums_[i] / counts_[i]) : most;
    }
    return most;
  }

  /// @param most Pixels that are drawn in full colour.
  Json Picture(const std::string& title, double most) const {
    const double side = kMapWidth / kMapColumns;
    Json cells = Json::array();
    for (std::size_t i = 0; i < sums_.size(); ++i) {
      if (counts_[i] > 0) {
        const double pixels = sums_[i] / counts_[i];
        const auto place = [](std::size_t index, double size, double part) {
          return std::lround((static_cast<double>(index) + part) * size);
        };
        cells.push_back({{"x", place(i % kMapColumns, side, 0)},
                         {"y", place(i / kMapColumns, side, 0)},
                         {"middleX", place(i % kMapColumns, side, 0.5)},
                         {"middleY", place(i / kMapColumns, side, 0.5)},
                         {"strength", std::lround(10 * std::min(1.0, pixels / most))},
                         {"pixels", Fixed(pixels, pixels < 10 ? 1 : 0)}});
      }
    }
    return {{"title", title},
            {"width", kMapWidth},
            {"height", std::lround(side * static_cast<double>(rows_))},
            {"side", side},
            {"cells", cells}};
  }

 private:
  double width_;
  double height_;
  std::size_t rows_;
  std::vector<double> sums_;  // pixels
  std::vector<double> counts_;
};

Json Maps(const Json& verification) {
  const auto width = NumberAt(verification, "/imageSize/0");
  const auto height = NumberAt(verification, "/imageSize/1");
  if (!width || !height || !(*width >= 1 && *height >= 1)) {
    return Json::array();
  }
  ResidualMap before(*width, *height);
  ResidualMap after(*width, *height);
  for (const Json& photograph : ValueAt(verification, "/photographs")) {
    const Json& corners = ValueAt(photograph, "/verified/corners");
    if (corners.is_array() && TextAt(photograph, "/state") == "used") {
      before.Add(corners, ValueAt(photograph, "/verified/oldPredicted"));
      after.Add(corners, ValueAt(photograph, "/verified/newPredicted"));
    }
  }
  const double most = std::max(1.0, before.Most());
  return {before.Picture("With the old result", most), after.Picture("After the change", most)};
}

}  // namespace

std::string VerifyPage(const Json& verification) {
  if (!verification.is_object()) {
    throw std::invalid_argument("it is not a JSON object");
  }
  const std::string answer = TextAt(verification, "/answer");
  const bool hasChanged = answer != "holds" && answer != "tooFew" && answer != "unrelated";
  Json maps = Maps(verification);
  if (!hasChanged && maps.size() > 1) {
    maps.erase(1);
  }
  Json findings = Json::array();
  for (const Json& finding : ValueAt(verification, "/findings")) {
    findings.push_back(
        {{"text", TextAt(finding, "/text")}, {"advice", TextAt(finding, "/advice")}});
  }
  return Render(
      kVerifyHtml.Text(),
      {{"policy", "default-src 'none'; style-src 'sha256-" + Base64(BytesOfHex(kPageCss.sha256)) +
                      "'; base-uri 'none'; form-action 'none'"},
       {"style", kPageCss.Text()},
       {"level", LevelOfAnswer(answer)},
       {"message", TextAt(verification, "/message")},
       {"details", ValueAt(verification, "/details")},
       {"advice", TextAt(verification, "/advice")},
       {"calibrated", TextAt(verification, "/calibrated")},
       {"result", ShortName(TextAt(verification, "/inputs/result"))},
       {"data", ShortName(TextAt(verification, "/inputs/data"))},
       {"hasChanged", hasChanged},
       {"findings", findings},
       {"hasFindings", !findings.empty()},
       {"rows", ChangeRows(verification)},
       {"photographs", PhotographRows(ValueAt(verification, "/photographs"))},
       {"maps", maps}});
}

}  // namespace trackedcam::report
