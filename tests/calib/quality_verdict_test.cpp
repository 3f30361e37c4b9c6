#include "calib/quality_verdict.h"

#include <cmath>

#include "support/random_transform.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

constexpr float kGoodError = 0.002F;

class QualityVerdictTest : public test::StageTest {
 protected:
  ResultCode Judge(float normError, const std::vector<Eigen::Vector3f>& translations) {
    return Quality_Verdict(log, normError, 0.011111111F, 0.016666668F, mean, translations, 0.01F,
                           0.015F);
  }

  // Judges two photographs with exactly this spread.
  ResultCode JudgeSpread(float normError, float x, float y, float z) {
    return Judge(normError, {{x, y, z}, {-x, -y, -z}});
  }

  Transform mean = Transform::Identity();
};

TEST_F(QualityVerdictTest, IsGoodWithinAllLimits) {
  EXPECT_EQ(JudgeSpread(kGoodError, 0.004F, 0.003F, 0.001F), 0);
  EXPECT_EQ(LogLines(), (std::vector<std::string>{"Norm Reprojection error : 0.002000",
                                                  "T_STD : 0.004000, 0.003000, 0.001000 meter.",
                                                  "Max T_STD : 0.004000 meter."}));
}

TEST_F(QualityVerdictTest, FailsBeyondTheSpreadLimitOfAnyAxis) {
  EXPECT_EQ(JudgeSpread(kGoodError, 0.016F, 0, 0), 6);
  EXPECT_EQ(JudgeSpread(kGoodError, 0, 0.016F, 0), 6);
  EXPECT_EQ(JudgeSpread(1, 0, 0, 0.016F), 6);
  const std::vector<std::string> lines = LogLines();
  EXPECT_EQ(lines[3], "T_STD too large. ( 0.016000 > 0.015000 )");
  EXPECT_EQ(
      lines[4],
      "Error code 6: Camera tracker calibration failed, Translation STD too large. (> 1.5cm)");
}

TEST_F(QualityVerdictTest, WarnsAtExactlyTheSpreadFailureLimit) {
  EXPECT_EQ(JudgeSpread(kGoodError, 0.015F, 0, 0), 99);
  EXPECT_EQ(JudgeSpread(kGoodError, std::nextafter(0.015F, 1.0F), 0, 0), 6);
}

TEST_F(QualityVerdictTest, IsGoodAtExactlyTheSpreadWarningLimit) {
  EXPECT_EQ(JudgeSpread(kGoodError, 0.01F, 0, 0), 0);
  EXPECT_EQ(JudgeSpread(kGoodError, std::nextafter(0.01F, 1.0F), 0, 0), 99);
}

TEST_F(QualityVerdictTest, ReportsASpreadWarningBeforeAFailingError) {
  EXPECT_EQ(JudgeSpread(0.02F, 0.004F, 0.011F, 0.003F), 99);
  const std::vector<std::string> lines = LogLines();
  EXPECT_EQ(lines[2], "Max T_STD : 0.011000 meter.");
  EXPECT_EQ(lines[3], "Recalibration recommended. ( T_STD 0.011000 > 0.010000 )");
  EXPECT_EQ(lines[4], "Error code 99: Recalibration is recommended.");
}

TEST_F(QualityVerdictTest, FailsBeyondTheErrorLimit) {
  EXPECT_EQ(JudgeSpread(0.017F, 0.001F, 0, 0), 14);
  const std::vector<std::string> lines = LogLines();
  EXPECT_EQ(lines[3], "Reprojection error too large. ( 0.017000 > 0.016667 )");
  EXPECT_EQ(lines[4], "Error code 14: Reprojection error too large (>18 pixel in 1080p)");
}

TEST_F(QualityVerdictTest, WarnsBeyondTwelvePixelsAt1080Rows) {
  EXPECT_EQ(JudgeSpread(0.0125F, 0.001F, 0, 0), 99);
  const std::vector<std::string> lines = LogLines();
  EXPECT_EQ(lines[3], "Recalibration recommended. ( Reprojection error 0.012500 > 0.011111 )");
  EXPECT_EQ(lines[4], "Error code 99: Recalibration is recommended.");
}

TEST_F(QualityVerdictTest, PassesErrorsThatEqualTheirLimits) {
  EXPECT_EQ(JudgeSpread(0.011111111F, 0, 0, 0), 0);
  EXPECT_EQ(JudgeSpread(0.016666668F, 0, 0, 0), 99);
}

TEST_F(QualityVerdictTest, MeasuresFromTheMeanTransform) {
  mean(0, 3) = 1.0;
  mean(1, 3) = -2.0;
  EXPECT_EQ(Judge(kGoodError, {{1, -2, 0}}), 0);
  EXPECT_EQ(LogLines()[1], "T_STD : 0.000000, 0.000000, 0.000000 meter.");
  EXPECT_EQ(Judge(kGoodError, {{1.5F, -2, 0.25F}}), 6);
  EXPECT_EQ(LogLines()[4], "T_STD : 0.500000, 0.000000, 0.250000 meter.");
}

TEST_F(QualityVerdictTest, DividesByTheNumberOfPhotographs) {
  EXPECT_EQ(Judge(kGoodError, {{0.008F, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}), 0);
  EXPECT_EQ(LogLines()[2], "Max T_STD : 0.004000 meter.");
}

TEST_F(QualityVerdictTest, JudgesNoPhotographsByTheErrorAlone) {
  EXPECT_EQ(Judge(kGoodError, {}), 0);
  EXPECT_EQ(Judge(0.017F, {}), 14);
  EXPECT_NE(LogLines()[2].find("nan"), std::string::npos);
}

TEST_F(QualityVerdictTest, PassesAnErrorThatIsNotANumber) {
  EXPECT_EQ(JudgeSpread(NAN, 0.001F, 0, 0), 0);
  EXPECT_EQ(JudgeSpread(NAN, 0.012F, 0, 0), 99);
}

}  // namespace
}  // namespace trackedcam
