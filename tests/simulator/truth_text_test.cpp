#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "simulator/write_shoot.h"

namespace trackedcam::simulator {
namespace {

using nlohmann::json;

class TruthTextTest : public testing::Test {
 protected:
  TruthTextTest() {
    options.photographs = 8;
    options.missing = options.notAnImage = options.withoutChart = 1;
    options.outliers = 2;
    options.mountingErrorMm = 3;
    options.mountingErrorDegrees = 1;
    shoot = SimulateShoot(options);
    truth = json::parse(TruthText(shoot));
  }

  ShootOptions options;
  Shoot shoot;
  json truth;
};

json Listed(const Eigen::Vector3d& vector) {
  return {vector.x(), vector.y(), vector.z()};
}

json RowByRow(const Eigen::Isometry3d& transform) {
  const Eigen::Matrix<double, 4, 4, Eigen::RowMajor> rows = transform.matrix();
  return std::vector<double>(rows.data(), rows.data() + rows.size());
}

TEST_F(TruthTextTest, HoldsTheLens) {
  const Lens& lens = shoot.lens;
  EXPECT_EQ(truth["imageSize"], json({1920, 1080}));
  EXPECT_EQ(truth["lensPixels"],
            json({{"fx", lens.fx}, {"fy", lens.fy}, {"cx", lens.cx}, {"cy", lens.cy}}));
  EXPECT_EQ(truth["normFocal"], json({lens.fx / 1920, lens.fy / 1080}));
  EXPECT_EQ(truth["normCenter"], json({lens.cx / 1920, lens.cy / 1080}));
  EXPECT_EQ(truth["distortion"], json({lens.k1, lens.k2, 0, 0, 0}));
}

TEST_F(TruthTextTest, HoldsTheWholeDistortion) {
  shoot.lens.p1 = 0.001;
  shoot.lens.p2 = -0.0005;
  shoot.lens.k3 = 0.25;
  truth = json::parse(TruthText(shoot));
  EXPECT_EQ(truth["distortion"], json({shoot.lens.k1, shoot.lens.k2, 0.001, -0.0005, 0.25}));
}

TEST_F(TruthTextTest, HoldsWhatTheCalibrationDoesNotModel) {
  EXPECT_EQ(truth["flaws"], json::parse(R"({
    "printStretch": 0, "chartBowMetres": 0, "noiseCorrelation": 0, "trackerScale": 1,
    "volumeBendMm": 0, "poseErrorMm": 0, "poseErrorDegrees": 0, "delayMs": 0, "exposureMs": 0,
    "tremorMmPerSecond": 0, "sagMm": 0,
    "looseMm": 0, "frozenRows": 0, "heldPoses": 1, "repeatedRows": false, "turntable": false})"));
  EXPECT_EQ(truth["frozen"], json::array());

  options.chart.stretch = 0.005;
  options.chart.bowMetres = 0.002;
  options.noiseCorrelation = 0.5;
  options.trackerScale = 1.004;
  options.volumeBendMm = 3;
  options.poseErrorMm = 0.25;
  options.poseErrorDegrees = 0.125;
  options.delayMs = 20;
  options.exposureMs = 5;
  options.tremorMmPerSecond = 40;
  options.sagMm = 1;
  options.looseMm = 2;
  options.frozenRows = 2;
  options.heldPoses = 4;
  options.repeatedRows = options.turntable = true;
  shoot = SimulateShoot(options);
  truth = json::parse(TruthText(shoot));
  EXPECT_EQ(truth["flaws"], json::parse(R"({
    "printStretch": 0.005, "chartBowMetres": 0.002, "noiseCorrelation": 0.5, "trackerScale": 1.004,
    "volumeBendMm": 3, "poseErrorMm": 0.25, "poseErrorDegrees": 0.125, "delayMs": 20, "exposureMs": 5,
    "tremorMmPerSecond": 40, "sagMm": 1,
    "looseMm": 2, "frozenRows": 2, "heldPoses": 4, "repeatedRows": true, "turntable": true})"));
  json frozen = json::array();
  for (const Photograph& photograph : shoot.photographs) {
    if (photograph.isFrozen) {
      frozen.push_back(photograph.path);
    }
  }
  EXPECT_EQ(frozen.size(), 2U);
  EXPECT_EQ(truth["frozen"], frozen);
}

TEST_F(TruthTextTest, HoldsTheFieldsOfViewInDegrees) {
  shoot.lens.fx = 960;
  shoot.lens.fy = 540 / std::sqrt(3);
  truth = json::parse(TruthText(shoot));
  EXPECT_NEAR(truth["fieldOfView"][0], 90, 1e-12);
  EXPECT_NEAR(truth["fieldOfView"][1], 120, 1e-12);
}

TEST_F(TruthTextTest, HoldsTheTransformBetweenCameraAndTrackerRowByRow) {
  EXPECT_EQ(truth["transformCamTc"], RowByRow(shoot.Transform_Cam_Tc));
}

TEST_F(TruthTextTest, HoldsTrueAndNominalMounting) {
  for (const auto& [name, mounting] :
       {std::pair("true", shoot.trueMounting), {"nominal", shoot.nominalMounting}}) {
    const json values = truth["mounting"][name];
    EXPECT_EQ(values["rotationDegrees"], Listed(mounting.anglesDegrees));
    EXPECT_EQ(values["translationMetres"], Listed(mounting.translationMetres));
    EXPECT_EQ(values["transformTrChart"], RowByRow(mounting.Transform()));
  }
  EXPECT_NE(truth["mounting"]["true"], truth["mounting"]["nominal"]);
}

TEST_F(TruthTextTest, ListsThePosesOfEveryPhotograph) {
  ASSERT_EQ(truth["photographs"].size(), shoot.photographs.size());
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    const Photograph& photograph = shoot.photographs[i];
    const json listed = truth["photographs"][i];
    EXPECT_EQ(listed["photograph"], photograph.path);
    EXPECT_EQ(listed["transformCamChart"], RowByRow(photograph.Transform_Cam_Chart));
    EXPECT_EQ(listed["transformBaseTc"], RowByRow(photograph.Transform_Base_Tc));
    EXPECT_EQ(listed["transformBaseTr"], RowByRow(photograph.Transform_Base_Tr));
  }
}

TEST_F(TruthTextTest, ListsOutliersAndUnusablePhotographs) {
  json outliers = json::array();
  json unusable = json::array();
  const std::map<Flaw, std::string> reasons = {{Flaw::kMissing, "missing"},
                                               {Flaw::kNotAnImage, "not an image"},
                                               {Flaw::kWithoutChart, "without chart"}};
  for (const Photograph& photograph : shoot.photographs) {
    if (photograph.flaw == Flaw::kSlippedTracker) {
      outliers.push_back(photograph.path);
    } else if (photograph.flaw != Flaw::kNone) {
      unusable.push_back(
          {{"photograph", photograph.path}, {"reason", reasons.at(photograph.flaw)}});
    }
  }
  EXPECT_EQ(outliers.size(), 2U);
  EXPECT_EQ(unusable.size(), 3U);
  EXPECT_EQ(truth["outliers"], outliers);
  EXPECT_EQ(truth["unusable"], unusable);
}

}  // namespace
}  // namespace trackedcam::simulator
