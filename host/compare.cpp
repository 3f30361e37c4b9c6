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
#include "host/result/stored_calibration.h"
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

ComparedResult Parse(const nlohmann::json& json, const std::string& file) {
  ComparedResult result;
  result.file = file;
  result.verdict = json.at("verdict").at("message").get<std::string>();
  result.isWrong = json.at("verdict").at("level") == Name(Level::kWrong);
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
  if (const auto stored = CalibrationIn(json)) {
    result.calibration = stored->calibration;
  }
  result.chartMetres = MedianDistance(json.at("photographs"));
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

// Transform_Cam_Tc with its lens.
struct Camera {
  crosscheck::Lens lens;
  Pose Transform_Cam_Tc;
};

// Nothing if one of the cameras does not show what the first sees there.
std::optional<Eigen::Vector2d> Apart(const Eigen::Vector2d& pixel, double metres, const Camera& a,
                                     const Camera& b) {
  const auto ray = Ray(a.lens, pixel);
  if (!ray) {
    return std::nullopt;
  }
  const Eigen::Vector3d point =
      b.Transform_Cam_Tc * (a.Transform_Cam_Tc.inverse() * (metres * ray->homogeneous()));
  if (!(point.z() > 0)) {
    return std::nullopt;
  }
  const Eigen::Vector2d apart = Project(b.lens, point) - pixel;
  return apart.allFinite() ? std::optional(apart) : std::nullopt;
}

// Spread evenly over the image.
std::vector<Eigen::Vector2d> PlacesIn(const crosscheck::Lens& lens, int columns, int rows) {
  std::vector<Eigen::Vector2d> places;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      places.emplace_back((column + 0.5) / columns * lens.width, (row + 0.5) / rows * lens.height);
    }
  }
  return places;
}

// The root mean square over the image, and the largest there or at its corners.
PixelsApart ApartAt(double metres, const Camera& a, const Camera& b) {
  PixelsApart apart;
  int count = 0;
  for (const Eigen::Vector2d& place : PlacesIn(a.lens, 32, 18)) {
    if (const auto pixels = Apart(place, metres, a, b)) {
      apart.rms += pixels->squaredNorm();
      apart.worst = std::max(apart.worst, pixels->norm());
      ++count;
    }
  }
  apart.rms = count == 0 ? kUnknown : std::sqrt(apart.rms / count);
  for (const double x : {0.0, 1.0}) {
    for (const double y : {0.0, 1.0}) {
      if (const auto pixels = Apart({x * a.lens.width, y * a.lens.height}, metres, a, b)) {
        apart.worst = std::max(apart.worst, pixels->norm());
      }
    }
  }
  return apart;
}

// Uncertainty.

using crosscheck::CameraCovariance;

constexpr Eigen::Index kLens = crosscheck::kAllLensParameters;
using Uncertain = Eigen::Matrix<double, crosscheck::kCameraUncertain, 1>;

Uncertain DifferenceOf(const crosscheck::Calibration& a, const crosscheck::Calibration& b) {
  const auto lens = [](const crosscheck::Calibration& calibration) -> Eigen::VectorXd {
    return crosscheck::CornerModel{calibration.lens, calibration.board}.Parameters().head<kLens>();
  };
  Uncertain difference;
  difference << lens(b) - lens(a),
      crosscheck::Log(b.Transform_Cam_Tc * a.Transform_Cam_Tc.inverse());
  return difference;
}

Camera Changed(const Camera& camera, const Uncertain& by) {
  crosscheck::CornerModel model{camera.lens, {}};
  crosscheck::CornerVector parameters = model.Parameters();
  parameters.head<kLens>() += by.head<kLens>();
  model.SetParameters(parameters);
  return {model.lens, crosscheck::Exp(by.tail<6>()) * camera.Transform_Cam_Tc};
}

// The rms over the image by what is uncertain. Each column of the covariance's root is a change
// that is independent of the others.
double ByChance(double metres, const Camera& camera, const CameraCovariance& covariance) {
  const Eigen::MatrixXd root = crosscheck::SquareRoot(covariance);
  const std::vector<Eigen::Vector2d> places = PlacesIn(camera.lens, 8, 6);
  double squares = 0;
  int seen = 0;
  for (const Eigen::Vector2d& place : places) {
    for (Eigen::Index i = 0; i < root.cols(); ++i) {
      if (const auto apart = Apart(place, metres, camera, Changed(camera, root.col(i)))) {
        squares += apart->squaredNorm();
        ++seen;
      }
    }
  }
  const double most = static_cast<double>(places.size()) * static_cast<double>(root.cols());
  return seen == 0 ? kUnknown
                   : std::sqrt(squares * most / seen / static_cast<double>(places.size()));
}

// Of what at least one of the calibrations has solved for.
double JointTail(const Uncertain& difference, const CameraCovariance& covariance, double freedom) {
  std::vector<Eigen::Index> solved;
  for (Eigen::Index i = 0; i < covariance.rows(); ++i) {
    if (covariance(i, i) > 0) {
      solved.push_back(i);
    }
  }
  const auto size = static_cast<Eigen::Index>(solved.size());
  Eigen::MatrixXd scaled(size, size);  // the parameters differ in size by orders of magnitude
  Eigen::VectorXd values(size);
  for (Eigen::Index i = 0; i < size; ++i) {
    const Eigen::Index own = solved[static_cast<std::size_t>(i)];
    values[i] = difference[own] / std::sqrt(covariance(own, own));
    for (Eigen::Index k = 0; k < size; ++k) {
      const Eigen::Index other = solved[static_cast<std::size_t>(k)];
      scaled(i, k) =
          covariance(own, other) / std::sqrt(covariance(own, own) * covariance(other, other));
    }
  }
  return crosscheck::HotellingTail(values.dot(scaled.ldlt().solve(values)),
                                   static_cast<double>(size), freedom);
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

void FillTails(const crosscheck::Calibration& a, const crosscheck::Calibration& b,
               Comparison& comparison) {
  const double freedom = std::min(a.freedom, b.freedom);
  const CameraCovariance covariance = CovarianceOfCamera(a) + CovarianceOfCamera(b);
  const Uncertain difference = DifferenceOf(a, b);
  comparison.p = JointTail(difference, covariance, freedom);
  comparison.transform.p = crosscheck::HotellingTail(
      crosscheck::SquaredDistance(difference.tail<6>(), covariance.bottomRightCorner<6, 6>()), 6,
      freedom);
  for (std::size_t i = 0; i < comparison.lens.size(); ++i) {
    Comparison::LensValue& value = comparison.lens.at(i);
    const auto parameter = static_cast<Eigen::Index>(i);
    value.p = crosscheck::StudentTail(
        (value.second - value.first) / std::sqrt(covariance(parameter, parameter)), freedom);
  }
  for (Comparison::OnScreen& at : comparison.onScreen) {
    at.byChance = ByChance(at.distanceMetres, {a.lens, a.Transform_Cam_Tc}, covariance);
  }
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
    at.byChance = kUnknown;
  }
}

// That of the chart and those of the result file.
std::vector<double> DistancesOf(const ComparedResult& first, const ComparedResult& second) {
  std::vector<double> distances = {2, 4, 10};
  const double chart = (first.chartMetres + second.chartMetres) / 2;
  if (std::isfinite(chart) && chart > 0) {
    distances.insert(distances.begin(), chart);
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

std::string DifferenceText(const Comparison& comparison) {
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
    const PixelsApart apart = ApartAt(metres, {first.lens, first.Transform_Cam_Tc},
                                      {second.lens, second.Transform_Cam_Tc});
    comparison.onScreen.push_back({metres, apart.rms, apart.worst, kUnknown});
  }
  for (const ComparedResult* result : {&first, &second}) {
    if (result->isWrong) {
      comparison.wrong.push_back(result->file);
    }
  }
  comparison.shared = CountShared(first, second);
  comparison.transform.p = comparison.p = kUnknown;
  comparison.isSame =
      before == after && first.Transform_Cam_Tc.isApprox(second.Transform_Cam_Tc, 0);
  if (first.calibration && second.calibration) {
    FillTails(*first.calibration, *second.calibration, comparison);
    if (comparison.shared > 0) {
      KeepOnlyWhatIsCertain(comparison);
    }
  }
  return comparison;
}

std::string Conclusion(const Comparison& comparison) {
  std::string text = DifferenceText(comparison);
  for (const std::string& file : comparison.wrong) {
    text += " The result of " + file + " is certainly wrong: a comparison says nothing about it.";
  }
  return text;
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
    onScreen.push_back({{"distanceMetres", at.distanceMetres},
                        {"rmsPixels", NumberJson(at.rmsPixels)},
                        {"worstPixels", NumberJson(at.worstPixels)},
                        {"byChancePixels", NumberJson(at.byChance)}});
  }
  const Comparison::Transform& transform = comparison.transform;
  return WithTail({{"first", first.file},
                   {"second", second.file},
                   {"conclusion", Conclusion(comparison)},
                   {"certainlyWrong", comparison.wrong},
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
