#include "host/compare.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "host/input/input_error.h"
#include "host/result/result_json.h"
#include "host/text/files.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using crosscheck::kDegree;
using crosscheck::Pose;
using crosscheck::Twist;
using testing::HasSubstr;

// One scene, in which neither the noise nor the seed of the noise is drawn yet.
const simulator::Shoot& Scene() {
  static const simulator::Shoot scene = [] {
    simulator::ShootOptions options = test::FortyPhotographs(5);
    options.photographs = 30;
    return simulator::SimulateShoot(options);
  }();
  return scene;
}

// 0.3 mm and 0.05 degrees, as of good trackers, on the scene's exact poses.
test::KnownShoot WithNoise(unsigned seed, const Pose& move = Pose::Identity()) {
  std::mt19937 engine(seed);
  std::normal_distribution<double> normal;
  const auto noise = [&] {
    Twist twist;
    for (Eigen::Index i = 0; i < 6; ++i) {
      twist[i] = normal(engine) * (i < 3 ? 0.05 * kDegree : 0.3e-3);
    }
    return crosscheck::Exp(twist);
  };
  simulator::Shoot shoot = Scene();
  shoot.options.seed = seed;  // of the corners' noise
  for (simulator::Photograph& photograph : shoot.photographs) {
    photograph.trackedTc = photograph.trackedTc * move * noise();
    photograph.trackedTr = photograph.trackedTr * noise();
  }
  return test::MakeShoot(shoot, 0.05);
}

// To the camera's right, and about its vertical axis; seen from the tracker.
Pose MovedBy(double mm, double degrees) {
  const Eigen::Matrix3d Rotation_Tc_Cam = Scene().Transform_Cam_Tc.linear().transpose();
  Twist twist;
  twist << degrees * kDegree * Rotation_Tc_Cam.col(1), 1e-3 * mm * Rotation_Tc_Cam.col(0);
  return crosscheck::Exp(twist);
}

// The root mean square over the image of a pinhole camera that is panned.
double PannedPixels(double degrees, const crosscheck::Lens& lens) {
  double squares = 0;
  int count = 0;
  for (double u = 0.5; u < lens.width; u += 8) {
    for (double v = 0.5; v < lens.height; v += 8) {
      const Eigen::Vector3d ray((u - lens.cx) / lens.fx, (v - lens.cy) / lens.fy, 1);
      const Eigen::Vector3d panned =
          Eigen::AngleAxisd(degrees * kDegree, Eigen::Vector3d::UnitY()) * ray;
      squares +=
          (lens.fx *
           (panned / panned.z() - ray).cwiseProduct(Eigen::Vector3d(1, lens.fy / lens.fx, 0)))
              .squaredNorm();
      ++count;
    }
  }
  return std::sqrt(squares / count);
}

// The report of a calibration whose transform is that of the cross-check.
Report ReportOf(const test::KnownShoot& shoot) {
  const crosscheck::Observations& observations = shoot.observations;
  const crosscheck::Lens& lens = observations.lens;
  Report report;
  report.crossCheck = crosscheck::Check(observations);
  report.inputs.board = {observations.boardColumns, observations.boardRows};
  report.inputs.squareMetres = observations.square;
  report.verdict.message = "the verdict";
  report.run.code = 0;
  report.run.record.isSuccessful = true;
  for (const crosscheck::Photograph& seen : observations.photographs) {
    Photograph photograph;
    photograph.path = seen.name;
    photograph.raw.emplace();
    for (const Eigen::Vector2d& corner : seen.corners) {
      photograph.raw->corners.push_back({corner.x(), corner.y()});
    }
    report.run.record.photographs.push_back(std::move(photograph));
  }
  report.photographs = ListPhotographs(report.run.record);
  EnterRun(report.run, ToRun(report.photographs), report.photographs);
  CalibrationOutputs& outputs = report.run.outputs;
  const double width = lens.width;
  const double height = lens.height;
  outputs.imageSize = {width, height};
  outputs.normFocal = {lens.fx / width, lens.fy / height};
  outputs.normCenter = {lens.cx / width, lens.cy / height};
  outputs.distortion = {lens.k1, lens.k2, 0, 0, 0};
  const Eigen::Matrix<double, 4, 4, Eigen::RowMajor> rows = report.crossCheck->Transform_Cam_Tc;
  outputs.transformCamTc.assign(rows.data(), rows.data() + rows.size());
  return report;
}

class CompareTest : public testing::Test {
 protected:
  ComparedResult Read(const nlohmann::ordered_json& json) const {
    const std::string file = folder.File("result.json");
    test::WriteFile(file, JsonText(json));
    return ReadComparedResult(std::filesystem::u8path(file));
  }
  ComparedResult ResultOf(const test::KnownShoot& shoot) const {
    return Read(ResultJson(ReportOf(shoot)));
  }

  test::TemporaryFolder folder;
};

// By chance, p is below 0.05 in one of twenty.
TEST_F(CompareTest, IsChanceIfOnlyTheNoiseIsOther) {
  const ComparedResult first = ResultOf(WithNoise(1));
  int small = 0;
  double squares = 0;  // of pixels against those that are stated to be chance
  int places = 0;
  constexpr unsigned kPairs = 30;
  for (unsigned seed = 2; seed < 2 + kPairs; ++seed) {
    SCOPED_TRACE(seed);
    const Comparison comparison = Compare(first, ResultOf(WithNoise(seed)));
    EXPECT_EQ(comparison.shared, 0U);
    EXPECT_GT(comparison.transform.offMm, 0);
    EXPECT_GT(comparison.p, 0.001);
    EXPECT_GT(comparison.transform.p, 0.001);
    small += comparison.p < 0.05 ? 1 : 0;
    for (const Comparison::OnScreen& at : comparison.onScreen) {
      EXPECT_LT(at.rmsPixels, 4 * at.byChance) << at.distanceMetres;
      squares += at.rmsPixels * at.rmsPixels / (at.byChance * at.byChance);
      ++places;
      EXPECT_GE(at.worstPixels, at.rmsPixels);
    }
  }
  EXPECT_LE(small, 5);
  EXPECT_NEAR(std::sqrt(squares / places), 1, 0.5);
}

TEST_F(CompareTest, IsNoChanceIfTheTrackerMoved) {
  const ComparedResult first = ResultOf(WithNoise(1));
  for (const unsigned seed : {2U, 3U, 4U}) {
    const Comparison comparison = Compare(first, ResultOf(WithNoise(seed, MovedBy(4, 0.3))));
    EXPECT_LT(comparison.p, 0.001);
    EXPECT_LT(comparison.transform.p, 0.001);
    EXPECT_NEAR(comparison.transform.offDegrees, 0.3, 0.1);
    EXPECT_THAT(Conclusion(comparison), HasSubstr("not by chance"));
    for (const Comparison::LensValue& value : comparison.lens) {
      EXPECT_GT(value.p, 0.001) << value.name;  // it has not changed
    }
    const auto far = std::find_if(comparison.onScreen.begin(), comparison.onScreen.end(),
                                  [](const auto& at) { return at.distanceMetres == 10; });
    EXPECT_GT(far->rmsPixels, 3 * far->byChance);
    EXPECT_NEAR(far->rmsPixels, PannedPixels(0.3, first.lens), 0.2 * far->rmsPixels);
  }
}

// What is seen of a known difference, worked by hand.
TEST_F(CompareTest, HasTheDifferencesOfTheResults) {
  ComparedResult first = ResultOf(WithNoise(1));
  first.lens.k1 = first.lens.k2 = 0;
  first.lens.fx = first.lens.fy = 1000;
  first.lens.cx = first.lens.width / 2.0;
  first.lens.cy = first.lens.height / 2.0;
  first.Transform_Cam_Tc = Pose::Identity();
  ComparedResult second = first;
  second.Transform_Cam_Tc.translation().x() = 3e-3;
  Comparison comparison = Compare(first, second);
  EXPECT_NEAR(comparison.transform.offMm, 3, 1e-9);
  EXPECT_NEAR(comparison.transform.mm[0], 3, 1e-9);
  EXPECT_NEAR(comparison.transform.offDegrees, 0, 1e-9);
  for (const Comparison::OnScreen& at : comparison.onScreen) {
    EXPECT_NEAR(at.rmsPixels, 3 / at.distanceMetres, 1e-6);  // 1000 px for 1 m at 1 m
    EXPECT_NEAR(at.worstPixels, 3 / at.distanceMetres, 1e-6);
  }

  second = first;
  second.lens.fx = second.lens.fy = 1010;
  comparison = Compare(first, second);
  const double halfWidth = first.lens.width / 2.0;
  const double halfHeight = first.lens.height / 2.0;
  for (const Comparison::OnScreen& at : comparison.onScreen) {
    EXPECT_NEAR(at.worstPixels, 0.01 * std::hypot(halfWidth, halfHeight), 1e-6);
    EXPECT_NEAR(at.rmsPixels, at.worstPixels / std::sqrt(3.0), 0.001 * at.worstPixels);
  }
}

TEST_F(CompareTest, TellsOnlyWhatIsCertainOfResultsThatSharePhotographs) {
  const test::KnownShoot all = WithNoise(1);
  test::KnownShoot half = all;
  half.observations.photographs.resize(20);
  const ComparedResult first = ResultOf(all);
  const Comparison comparison = Compare(first, ResultOf(half));
  EXPECT_EQ(comparison.shared, 20U);
  EXPECT_FALSE(comparison.isSame);
  EXPECT_TRUE(std::isnan(comparison.p));
  EXPECT_TRUE(std::isnan(comparison.transform.p));
  EXPECT_THAT(Conclusion(comparison), HasSubstr("20 photographs are in both"));

  const Comparison same = Compare(first, first);
  EXPECT_TRUE(same.isSame);
  EXPECT_EQ(same.transform.offMm, 0);

  ComparedResult moved = first;
  moved.calibration->Transform_Cam_Tc = MovedBy(20, 2) * moved.calibration->Transform_Cam_Tc;
  moved.Transform_Cam_Tc = moved.calibration->Transform_Cam_Tc;
  EXPECT_LT(Compare(first, moved).p, 0.001);
}

TEST_F(CompareTest, CannotTellWithoutACrossCheck) {
  const Report report = ReportOf(WithNoise(1));
  nlohmann::ordered_json json = ResultJson(report);
  json["crossCheck"] = nullptr;
  for (auto& photograph : json["photographs"]) {
    photograph["crossCheck"] = nullptr;
  }
  const Comparison comparison = Compare(Read(json), ResultOf(WithNoise(2)));
  EXPECT_TRUE(std::isnan(comparison.p));
  EXPECT_GT(comparison.transform.offMm, 0);
  EXPECT_THAT(Conclusion(comparison), HasSubstr("no cross-check"));
}

TEST_F(CompareTest, NamesResultsThatAreCertainlyWrong) {
  Report wrong = ReportOf(WithNoise(1));
  wrong.verdict.level = Level::kWrong;
  const ComparedResult first = Read(ResultJson(wrong));
  ComparedResult second = ResultOf(WithNoise(2));
  second.file = "second.json";
  EXPECT_TRUE(Compare(second, second).wrong.empty());
  const Comparison comparison = Compare(first, second);
  EXPECT_THAT(comparison.wrong, testing::ElementsAre(first.file));
  EXPECT_THAT(Conclusion(comparison), HasSubstr(first.file + " is certainly wrong"));
  EXPECT_THAT(Conclusion(comparison), testing::Not(HasSubstr("second.json")));
  EXPECT_EQ(ComparisonJson(first, second, comparison).at("certainlyWrong").size(), 1U);
}

TEST_F(CompareTest, RefusesOtherImagesAndCharts) {
  const ComparedResult first = ResultOf(WithNoise(1));
  const auto refusalOf = [&](const std::function<void(ComparedResult&)>& change) {
    ComparedResult second = first;
    change(second);
    try {
      Compare(first, second);
    } catch (const InputError& error) {
      return std::string(error.what());
    }
    return std::string("not refused");
  };
  EXPECT_THAT(refusalOf([](auto& result) { result.lens.width = 1280; }),
              testing::AllOf(HasSubstr("image sizes"), HasSubstr("1280x")));
  EXPECT_THAT(refusalOf([](auto& result) { result.board = {7, 5}; }), HasSubstr("7x5"));
  EXPECT_THAT(refusalOf([](auto& result) { result.squareMetres = 0.04; }), HasSubstr("0.04 m"));
}

TEST_F(CompareTest, RefusesWhatIsNoResult) {
  const nlohmann::ordered_json good = ResultJson(ReportOf(WithNoise(1)));
  const auto expectRefused = [&](const std::string& place, const nlohmann::ordered_json& value) {
    SCOPED_TRACE(place);
    nlohmann::ordered_json json = good;
    json[nlohmann::ordered_json::json_pointer(place)] = value;
    EXPECT_THROW(Read(json), InputError);
  };
  EXPECT_NO_THROW(Read(good));
  expectRefused("/code", 4);
  expectRefused("/code", nullptr);
  expectRefused("/imageSize", {1920});
  expectRefused("/normFocal", {0, 0});
  expectRefused("/transformCamTc", {1, 2, 3});
  expectRefused("/transformCamTc/5", 7);
  expectRefused("/crossCheck/calibration/covariance", {{1}});
  expectRefused("/crossCheck/calibration/freedom", 7);
  expectRefused("/photographs", 7);
  test::WriteFile(folder.File("cut.json"), JsonText(good).substr(0, 3000));
  EXPECT_THROW(ReadComparedResult(folder.Path() / "cut.json"), InputError);
}

}  // namespace
}  // namespace trackedcam::host
