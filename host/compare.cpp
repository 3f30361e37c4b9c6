#include "host/compare.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include <nlohmann/json.hpp>

#include "crosscheck/corner_model.h"
#include "crosscheck/result.h"
#include "crosscheck/statistics.h"
#include "crosscheck/symmetric.h"
#include "host/engines/placement.h"
#include "host/findings/finding_text.h"
#include "host/input/input_error.h"
#include "host/text/files.h"
#include "host/text/text.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

using crosscheck::Pose;

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
constexpr std::array<const char*, 6> kLensNames = {"fx", "fy", "cx", "cy", "k1", "k2"};

// Reading.

Pose PoseOfRows(const std::vector<double>& numbers) {
  return crosscheck::PoseOf(
      Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>>(numbers.data()));
}

// Null in the file if the shoot does not determine the transform.
bool IsDetermined(const nlohmann::json& check) {
  const nlohmann::json& error = check.at("standardErrorCamTc");
  return check.at("solved").get<bool>() && !error.at("translationMm").at(0).is_null() &&
         !error.at("rotationDegrees").at(0).is_null();
}

double MedianDistance(const nlohmann::json& photographs) {
  std::vector<double> distances;
  for (const nlohmann::json& photograph : photographs) {
    const nlohmann::json& check = photograph.at("crossCheck");
    if (!check.is_null() && check.at("used").get<bool>()) {
      distances.push_back(check.at("distanceMetres").get<double>());
    }
  }
  return distances.empty() ? kUnknown : crosscheck::Median(std::move(distances));
}

std::optional<ComparedCheck> CheckOf(const nlohmann::json& result) {
  const nlohmann::json& json = result.at("crossCheck");
  if (json.is_null() || !IsDetermined(json)) {
    return std::nullopt;
  }
  ComparedCheck check;
  check.Transform_Cam_Tc = PoseOfRows(ReadNumbers(json, "transformCamTc", 16));
  const auto rows = json.at("covarianceCamTcTwist").get<std::vector<std::vector<double>>>();
  for (Eigen::Index i = 0; i < 6; ++i) {
    for (Eigen::Index k = 0; k < 6; ++k) {
      check.covariance(i, k) = rows.at(static_cast<std::size_t>(i)).at(static_cast<std::size_t>(k));
    }
  }
  for (std::size_t i = 0; i < kLensNames.size(); ++i) {
    const nlohmann::json& error = json.at("lens").at(kLensNames.at(i));
    check.lensErrors.at(i) = error.is_null() ? kUnknown : error.get<double>();
  }
  // Three for each photograph that is used, less the six unknowns.
  check.freedom = 3 * json.at("used").get<double>() - 6;
  check.chartMetres = MedianDistance(result.at("photographs"));
  const double t95 = json.at("t95").get<double>();
  for (const nlohmann::json& at : json.at("onScreen")) {
    if (!at.at("pixels").is_null()) {
      check.onScreen.push_back(
          {at.at("distanceMetres").get<double>(), at.at("pixels").get<double>() / t95});
    }
  }
  return check;
}

ComparedResult Parse(const nlohmann::json& json, const std::string& file) {
  ComparedResult result;
  result.file = file;
  result.verdict = json.at("verdict").at("message").get<std::string>();
  const nlohmann::json& inputs = json.at("inputs");
  result.board = inputs.at("board").get<std::array<int, 2>>();
  result.squareMetres = inputs.at("squareMetres").get<double>();
  const auto size = ReadNumbers(json, "imageSize", 2);
  const auto focal = ReadNumbers(json, "normFocal", 2);
  const auto centre = ReadNumbers(json, "normCenter", 2);
  const auto distortion = ReadNumbers(json, "distortion", 5);
  if (!(size[0] >= 1 && size[1] >= 1 && size[0] < 1e6 && size[1] < 1e6 && focal[0] > 0 &&
        focal[1] > 0)) {
    throw InputError("it holds no lens");
  }
  result.lens = {static_cast<int>(size[0]),
                 static_cast<int>(size[1]),
                 focal[0] * size[0],
                 focal[1] * size[1],
                 centre[0] * size[0],
                 centre[1] * size[1],
                 distortion[0],
                 distortion[1],
                 distortion[2],
                 distortion[3],
                 distortion[4]};
  const auto transform = ReadNumbers(json, "transformCamTc", 16);
  if (!IsPlacement(transform)) {
    throw InputError("its transformCamTc is no rotation and translation");
  }
  result.Transform_Cam_Tc = PoseOfRows(transform);
  result.check = CheckOf(json);
  for (const nlohmann::json& photograph : json.at("photographs")) {
    const nlohmann::json& check = photograph.at("crossCheck");
    if (!check.is_null()) {
      result.photographs.push_back(check.at("corners").dump());
    }
  }
  return result;
}

// Refusing.

std::string SizeText(int width, int height) {
  return std::to_string(width) + 'x' + std::to_string(height);
}

void RequireSame(const std::string& what, const ComparedResult& first, const std::string& ofFirst,
                 const ComparedResult& second, const std::string& ofSecond) {
  if (ofFirst != ofSecond) {
    throw InputError("cannot compare results with different " + what + ": " + ofFirst + " in " +
                     first.file + ", " + ofSecond + " in " + second.file);
  }
}

void RequireComparable(const ComparedResult& a, const ComparedResult& b) {
  RequireSame("image sizes", a, SizeText(a.lens.width, a.lens.height), b,
              SizeText(b.lens.width, b.lens.height));
  RequireSame("boards", a, SizeText(a.board[0], a.board[1]), b, SizeText(b.board[0], b.board[1]));
  RequireSame("squares", a, Shortest(a.squareMetres) + " m", b, Shortest(b.squareMetres) + " m");
}

// In the image.

struct PixelsApart {
  double rms = 0;
  double worst = 0;
};

// At the middles of columns and rows of equal parts of the image, and for the worst also at its
// corners. A point that one of the lenses does not show is left out.
PixelsApart ApartAt(double metres, int columns, int rows, const crosscheck::Lens& lensA,
                    const Pose& a, const crosscheck::Lens& lensB, const Pose& b) {
  const auto distanceAt = [&](double x, double y) {
    const Eigen::Vector2d pixel(x * lensA.width, y * lensA.height);
    const auto ray = Ray(lensA, pixel);
    if (!ray) {
      return kUnknown;
    }
    const Eigen::Vector3d point = b * (a.inverse() * (metres * ray->homogeneous()));
    return point.z() > 0 ? (Project(lensB, point) - pixel).norm() : kUnknown;
  };
  PixelsApart apart;
  int count = 0;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const double pixels = distanceAt((column + 0.5) / columns, (row + 0.5) / rows);
      if (std::isfinite(pixels)) {
        apart.rms += pixels * pixels;
        apart.worst = std::max(apart.worst, pixels);
        ++count;
      }
    }
  }
  apart.rms = count == 0 ? kUnknown : std::sqrt(apart.rms / count);
  for (const double x : {0.0, 1.0}) {
    for (const double y : {0.0, 1.0}) {
      const double pixels = distanceAt(x, y);
      apart.worst = std::isfinite(pixels) ? std::max(apart.worst, pixels) : apart.worst;
    }
  }
  return apart;
}

// As a function of 1 / distance the error is convex, so between two distances a straight line is
// not below it. Nearer, it grows no faster than 1 / distance.
double ErrorAt(double metres, const std::vector<std::array<double, 2>>& onScreen) {
  if (onScreen.empty()) {
    return kUnknown;
  }
  const auto [nearest, atNearest] = onScreen.front();
  if (metres <= nearest) {
    return atNearest * nearest / metres;
  }
  for (std::size_t i = 1; i < onScreen.size(); ++i) {
    const auto [near, atNear] = onScreen[i - 1];
    const auto [far, atFar] = onScreen[i];
    if (metres <= far) {
      const double share = (1 / metres - 1 / far) / (1 / near - 1 / far);
      return share * atNear + (1 - share) * atFar;
    }
  }
  return onScreen.back()[1];
}

// The errors are the standard errors in the worst direction. The mean square over both directions
// is at most twice as large, and few large values are likeliest if one direction has it all.
double TailOnScreen(double rms, double metres, const ComparedCheck& a, const ComparedCheck& b,
                    double freedom) {
  const double error = std::hypot(ErrorAt(metres, a.onScreen), ErrorAt(metres, b.onScreen));
  return crosscheck::StudentTail(rms / (std::sqrt(2.0) * error), freedom);
}

// Comparing.

std::array<double, 6> ValuesOf(const crosscheck::Lens& lens) {
  return {lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2};
}

std::size_t CountShared(const ComparedResult& first, const ComparedResult& second) {
  const std::multiset<std::string> known(first.photographs.begin(), first.photographs.end());
  return static_cast<std::size_t>(
      std::count_if(second.photographs.begin(), second.photographs.end(),
                    [&](const std::string& corners) { return known.count(corners) != 0; }));
}

// In the axes of the first camera, about the place of its tracker.
void FillTransform(const Pose& first, const Pose& second, Comparison::Transform& transform) {
  const Eigen::Vector3d mm = 1e3 * (second.translation() - first.translation());
  const Eigen::Vector3d degrees =
      crosscheck::Log(second * first.inverse()).head<3>() / crosscheck::kDegree;
  Eigen::Vector3d::Map(transform.mm.data()) = mm;
  Eigen::Vector3d::Map(transform.degrees.data()) = degrees;
  transform.offMm = mm.norm();
  transform.offDegrees = degrees.norm();
}

// Nothing is known of a difference that is not tested.
void FillTails(const ComparedCheck& a, const ComparedCheck& b, const ComparedResult& first,
               const ComparedResult& second, Comparison& comparison) {
  const double freedom = std::min(a.freedom, b.freedom);
  const Pose& before = a.Transform_Cam_Tc;
  const Pose& after = b.Transform_Cam_Tc;
  comparison.transform.p = crosscheck::HotellingTail(
      crosscheck::SquaredDistance(crosscheck::Log(after * before.inverse()),
                                  a.covariance + b.covariance),
      6, freedom);
  double leastOfLens = 1;
  for (std::size_t i = 0; i < comparison.lens.size(); ++i) {
    Comparison::LensValue& value = comparison.lens.at(i);
    value.p = crosscheck::StudentTail(
        (value.second - value.first) / std::hypot(a.lensErrors.at(i), b.lensErrors.at(i)), freedom);
    leastOfLens = value.p < leastOfLens ? value.p : leastOfLens;
  }
  constexpr int kPerSide = 3;  // as for the errors
  for (Comparison::OnScreen& at : comparison.onScreen) {
    const PixelsApart apart =
        ApartAt(at.distanceMetres, kPerSide, kPerSide, first.lens, before, second.lens, after);
    at.p = TailOnScreen(apart.rms, at.distanceMetres, a, b, freedom);
  }
  const auto values = static_cast<double>(comparison.lens.size());
  comparison.p =
      std::min(1.0, 2 * std::min(comparison.transform.p, std::min(1.0, values * leastOfLens)));
}

void KeepOnlyWhatIsCertain(Comparison& comparison) {
  const auto keep = [](double& p) {
    p = crosscheck::CertaintyOf(p) == crosscheck::Certainty::kIsCertain ? p : kUnknown;
  };
  keep(comparison.p);
  keep(comparison.transform.p);
  for (Comparison::LensValue& value : comparison.lens) {
    keep(value.p);
  }
  for (Comparison::OnScreen& at : comparison.onScreen) {
    keep(at.p);
  }
}

// That of the chart and those of the result file.
std::vector<double> DistancesOf(const ComparedResult& first, const ComparedResult& second) {
  std::vector<double> distances = {1, 2, 5, 10};
  if (first.check && second.check) {
    const double chart = (first.check->chartMetres + second.check->chartMetres) / 2;
    if (std::isfinite(chart) && chart > 0) {
      distances.insert(distances.begin(), chart);
    }
  }
  return distances;
}

nlohmann::json TailJson(double p) {
  const crosscheck::Certainty certainty = crosscheck::CertaintyOf(p);
  return {{"p", NumberJson(p)},
          {"certainty", Name(certainty)},
          {"certaintyText", CertaintyText(p, false)}};
}

nlohmann::ordered_json WithTail(nlohmann::ordered_json json, double p) {
  const nlohmann::json tail = TailJson(p);
  for (const char* key : {"p", "certainty", "certaintyText"}) {
    json[key] = tail.at(key);
  }
  return json;
}

}  // namespace

ComparedResult ReadComparedResult(const std::filesystem::path& file) {
  try {
    const nlohmann::json json = ReadJson<nlohmann::json>(file);
    const nlohmann::json& code = json.at("code");
    if (code.is_null() || !IsUsable(code.get<int>())) {
      throw InputError("the calibration failed");
    }
    return Parse(json, file.u8string());
  } catch (const std::exception& error) {
    throw InputError(file.u8string() + " is not a result that can be compared: " + error.what());
  }
}

Comparison Compare(const ComparedResult& first, const ComparedResult& second) {
  RequireComparable(first, second);
  Comparison comparison;
  FillTransform(first.Transform_Cam_Tc, second.Transform_Cam_Tc, comparison.transform);
  const auto before = ValuesOf(first.lens);
  const auto after = ValuesOf(second.lens);
  for (std::size_t i = 0; i < before.size(); ++i) {
    comparison.lens.at(i) = {kLensNames.at(i), before.at(i), after.at(i), kUnknown};
  }
  for (const double metres : DistancesOf(first, second)) {
    constexpr int kColumns = 32;
    constexpr int kRows = 18;
    const PixelsApart apart = ApartAt(metres, kColumns, kRows, first.lens, first.Transform_Cam_Tc,
                                      second.lens, second.Transform_Cam_Tc);
    comparison.onScreen.push_back({metres, apart.rms, apart.worst, kUnknown});
  }
  comparison.shared = CountShared(first, second);
  comparison.transform.p = comparison.p = kUnknown;
  comparison.isSame =
      before == after && first.Transform_Cam_Tc.isApprox(second.Transform_Cam_Tc, 0);
  if (first.check && second.check) {
    FillTails(*first.check, *second.check, first, second, comparison);
    if (comparison.shared > 0) {
      KeepOnlyWhatIsCertain(comparison);
    }
  }
  return comparison;
}

std::string Conclusion(const Comparison& comparison) {
  if (comparison.isSame) {
    return "The results are the same.";
  }
  const std::string by = Fixed(comparison.transform.offMm, 2) + " mm and " +
                         Fixed(comparison.transform.offDegrees, 3) + " deg";
  switch (crosscheck::CertaintyOf(comparison.p)) {
    case crosscheck::Certainty::kIsCertain:
      return "The results differ, and not by chance: by " + by + '.';
    case crosscheck::Certainty::kIsLikely:
      return "The results differ by " + by + ", which is probably not by chance.";
    case crosscheck::Certainty::kMayBeChance:
      return "The results differ by " + by + ", which may be chance.";
    case crosscheck::Certainty::kIsUnknown:
      break;
  }
  return "The results differ by " + by + "; whether that is chance cannot be told, because " +
         (comparison.shared > 0
              ? std::to_string(comparison.shared) + " photographs are in both of them."
              : "one of them has no cross-check that determines its transform.");
}

nlohmann::ordered_json ComparisonJson(const ComparedResult& first, const ComparedResult& second,
                                      const Comparison& comparison) {
  using Ordered = nlohmann::ordered_json;
  Ordered lens = Ordered::object();
  for (const Comparison::LensValue& value : comparison.lens) {
    lens[value.name] = WithTail({{"first", value.first},
                                 {"second", value.second},
                                 {"difference", value.second - value.first}},
                                value.p);
  }
  Ordered onScreen = Ordered::array();
  for (const Comparison::OnScreen& at : comparison.onScreen) {
    onScreen.push_back(WithTail({{"distanceMetres", at.distanceMetres},
                                 {"rmsPixels", NumberJson(at.rmsPixels)},
                                 {"worstPixels", NumberJson(at.worstPixels)}},
                                at.p));
  }
  const Comparison::Transform& transform = comparison.transform;
  return WithTail({{"first", first.file},
                   {"second", second.file},
                   {"conclusion", Conclusion(comparison)},
                   {"transform", WithTail({{"mm", transform.mm},
                                           {"degrees", transform.degrees},
                                           {"offMm", transform.offMm},
                                           {"offDegrees", transform.offDegrees}},
                                          transform.p)},
                   {"lens", std::move(lens)},
                   {"onScreen", std::move(onScreen)},
                   {"sharedPhotographs", comparison.shared}},
                  comparison.p);
}

}  // namespace trackedcam::host
