#include "handeye/rotation_axis.h"

#include <cmath>

#include "support/stage_test.h"

namespace trackedcam {
namespace {

using RotationAxisTest = test::StageTest;

cv::Mat Vector(double x, double y, double z) {
  return (cv::Mat_<double>(3, 1) << x, y, z);
}

TEST_F(RotationAxisTest, IsOfUnitLength) {
  cv::Mat vector = Vector(3, 0, -4);
  EXPECT_EQ(Norm_Vec(log, vector), 0);
  EXPECT_EQ(vector.at<double>(0), 0.6);
  EXPECT_EQ(vector.at<double>(1), 0);
  EXPECT_EQ(vector.at<double>(2), -0.8);
}

TEST_F(RotationAxisTest, IsDividedByASinglePrecisionLength) {
  cv::Mat vector = Vector(0.1, 0.2, 0.7);
  EXPECT_EQ(Norm_Vec(log, vector), 0);
  float sum = static_cast<float>(0.1 * 0.1);
  sum = static_cast<float>(sum + 0.2 * 0.2);
  sum = static_cast<float>(sum + 0.7 * 0.7);
  EXPECT_EQ(vector.at<double>(2), 0.7 / static_cast<double>(std::sqrt(sum)));
}

TEST_F(RotationAxisTest, OfAnotherShapeIsCodeNine) {
  for (const cv::Size size : {cv::Size(3, 1), cv::Size(1, 4), cv::Size(3, 3), cv::Size(0, 0)}) {
    cv::Mat wrong = cv::Mat::ones(size, CV_64F);
    EXPECT_EQ(Norm_Vec(log, wrong), 9);
    EXPECT_EQ(LogLines().back(), "Error code 9: Norm_Vec size is not correct.");
  }
}

TEST_F(RotationAxisTest, OfNoRotationIsNotANumber) {
  cv::Mat axis;
  EXPECT_EQ(RotationAxis(log, Transform::Identity(), axis), 0);
  EXPECT_TRUE(std::isnan(axis.at<double>(0)));
}

TEST_F(RotationAxisTest, OfAQuarterTurnAboutZIsZ) {
  Transform transform = Transform::Identity();
  transform.topLeftCorner<2, 2>() << 0, -1, 1, 0;
  cv::Mat axis;
  EXPECT_EQ(RotationAxis(log, transform, axis), 0);
  EXPECT_NEAR(axis.at<double>(0), 0, 1e-7);
  EXPECT_NEAR(axis.at<double>(1), 0, 1e-7);
  EXPECT_NEAR(axis.at<double>(2), 1, 1e-7);
}

TEST_F(RotationAxisTest, ProductIsSummedInSinglePrecision) {
  float product = 7;
  EXPECT_EQ(Dot_Vec(log, product, Vector(1e8, 1, -1e8), Vector(1, 1, 1)), 0);
  EXPECT_EQ(product, 0.0F);  // the 1 is lost in single precision
}

TEST_F(RotationAxisTest, ProductOfAnotherShapeIsCodeTen) {
  float product = 7;
  EXPECT_EQ(Dot_Vec(log, product, cv::Mat::ones(1, 3, CV_64F), cv::Mat::ones(1, 3, CV_64F)), 10);
  EXPECT_EQ(product, 0.0F);
  EXPECT_EQ(LogLines().back(), "Error code 10: Dot_Vec size is not correct. Rot_Cam_Tc_vec");
  EXPECT_EQ(Dot_Vec(log, product, Vector(1, 0, 0), cv::Mat::ones(1, 3, CV_64F)), 10);
  EXPECT_EQ(LogLines().back(), "Error code 10: Dot_Vec size is not correct. Mean_Rot_Cam_Tc_vec");
}

}  // namespace
}  // namespace trackedcam
