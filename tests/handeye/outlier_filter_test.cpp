#include "handeye/outlier_filter.h"

#include <cmath>

#include "support/random_transform.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

using Corners = std::vector<cv::Point2f>;

// A rotation by 100 degrees about (1, 2, 2) / 3.
const Transform kMean = test::Disturbed(Transform::Identity(), 100, {1, 2, 2}, {0.1, -0.2, 0.05});

class OutlierFilterTest : public test::StageTest {
 protected:
  // Fills every list with elements that identify their photograph.
  ResultCode Filter(const TransformList& transforms) {
    Transform_Cam_Tc_all = transforms;
    for (std::size_t i = 0; i < transforms.size(); ++i) {
      const auto mark = static_cast<double>(i);
      ImageCoordinate.push_back(Corners(3, cv::Point2f(static_cast<float>(i), 0)));
      Image_name.push_back("photo" + std::to_string(i));
      Transform_Tr_Base_all.push_back(Transform::Constant(mark));
      Transform_Base_Tc_all.push_back(Transform::Constant(mark + 0.25));
      Transform_Cam_Chart_all.push_back(Transform::Constant(mark + 0.5));
    }
    return FilterLists();
  }

  void Clear() {
    ImageCoordinate.clear();
    Image_name.clear();
    Transform_Tr_Base_all.clear();
    Transform_Base_Tc_all.clear();
    Transform_Cam_Chart_all.clear();
  }

  ResultCode FilterLists() {
    return RT_Filt_Outlier(log, Transform_Cam_Tc_all, kMean, ImageCoordinate, Image_name,
                           Transform_Tr_Base_all, Transform_Base_Tc_all, Transform_Cam_Chart_all);
  }

  // The remaining photographs, after a check that all lists hold the same ones.
  std::vector<int> Left() const {
    std::vector<int> photographs;
    for (std::size_t i = 0; i < Image_name.size(); ++i) {
      const int photograph = std::stoi(Image_name[i].substr(5));
      EXPECT_EQ(ImageCoordinate.at(i)[0].x, photograph);
      EXPECT_EQ(Transform_Tr_Base_all.at(i)(0, 0), photograph);
      EXPECT_EQ(Transform_Base_Tc_all.at(i)(0, 0), photograph + 0.25);
      EXPECT_EQ(Transform_Cam_Chart_all.at(i)(0, 0), photograph + 0.5);
      photographs.push_back(photograph);
    }
    return photographs;
  }

  TransformList Transform_Cam_Tc_all;
  std::vector<Corners> ImageCoordinate;
  std::vector<std::string> Image_name;
  TransformList Transform_Tr_Base_all;
  TransformList Transform_Base_Tc_all;
  TransformList Transform_Cam_Chart_all;
};

Transform Shifted(double x, double y = 0, double z = 0) {
  return test::Disturbed(kMean, 0, {1, 0, 0}, {x, y, z});
}

// The rotation of kMean about an axis that is tilted by this angle.
Transform WithTiltedAxis(double degrees) {
  const Eigen::Vector3d axis = Eigen::Vector3d(1, 2, 2) / 3;
  const Eigen::Matrix3d tilt =
      Eigen::AngleAxisd(degrees * EIGEN_PI / 180, Eigen::Vector3d(2, -1, 0).normalized())
          .toRotationMatrix();
  return MakeTransform(Eigen::AngleAxisd(100 * EIGEN_PI / 180, tilt * axis).toRotationMatrix(),
                       kMean.topRightCorner<3, 1>());
}

TEST_F(OutlierFilterTest, KeepsATurnAboutTheSameAxis) {
  EXPECT_EQ(Filter({kMean, test::Disturbed(kMean, 20, {1, 2, 2}, {0, 0, 0}), kMean}), 0);
  EXPECT_EQ(Left(), (std::vector<int>{0, 1, 2}));
}

TEST_F(OutlierFilterTest, RemovesAnAxisThatIsTiltedByMoreThanHalfADegree) {
  EXPECT_EQ(Filter({kMean, WithTiltedAxis(0.6), WithTiltedAxis(0.4), kMean}), 0);
  EXPECT_EQ(Left(), (std::vector<int>{0, 2, 3}));
}

TEST_F(OutlierFilterTest, LogsTheAnglesBetweenTheAxesAndTheirSpread) {
  EXPECT_EQ(Filter({WithTiltedAxis(0.4), WithTiltedAxis(10)}), 13);
  const std::string first = LogLines()[0];
  const std::string second = LogLines()[1];
  EXPECT_EQ(first.rfind("Diff R in image 0 : ", 0), 0u);
  EXPECT_NEAR(std::stod(first.substr(20)), 0.4, 0.01);
  EXPECT_EQ(second.rfind("Diff R in image 1 : ", 0), 0u);
  EXPECT_NEAR(std::stod(second.substr(20)), 10, 0.001);
  EXPECT_EQ(second.substr(second.size() - 8), " degree.");

  // The root mean square is sqrt((0.4² + 10²) / 2).
  const std::string spread = LogLines()[2];
  EXPECT_EQ(spread.rfind("STD_R : ", 0), 0u);
  EXPECT_NEAR(std::stod(spread.substr(8)), 7.0767, 0.001);
}

TEST_F(OutlierFilterTest, RemovesBeyondOnePointThreeOfTheSpread) {
  for (const Eigen::Vector3d axis :
       {Eigen::Vector3d::UnitX(), Eigen::Vector3d::UnitY(), Eigen::Vector3d::UnitZ()}) {
    Clear();
    const auto shifted = [&](double metres) {
      const Eigen::Vector3d shift = metres * axis;
      return Shifted(shift.x(), shift.y(), shift.z());
    };
    // The root mean square is sqrt((0.01² + 0.02² + 0.01² + 0.03²) / 4) = 0.0194, the limit 0.0252.
    EXPECT_EQ(Filter({shifted(0.01), shifted(-0.02), shifted(0.01), shifted(-0.03)}), 0);
    EXPECT_EQ(Left(), (std::vector<int>{0, 1, 2}));
  }
}

TEST_F(OutlierFilterTest, KeepsEqualTranslations) {
  EXPECT_EQ(Filter({kMean, kMean, kMean}), 0);
  EXPECT_EQ(Left(), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(LogLines()[4], "STD_T : 0.000000, 0.000000, 0.000000 meter.");
}

TEST_F(OutlierFilterTest, RemovesTheLastFirstAndKeepsTheOrder) {
  TransformList transforms(8, kMean);
  transforms[2] = Shifted(0.05);
  transforms[5] = Shifted(0, 0.05);
  EXPECT_EQ(Filter(transforms), 0);
  EXPECT_EQ(Left(), (std::vector<int>{0, 1, 3, 4, 6, 7}));
  const std::vector<std::string> lines = LogLines();
  const std::vector<std::string> tail(lines.begin() + 10, lines.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"Remove outlier data number : 2",
                                            "Size list : (init) 8", "Remove index : 5",
                                            "Remove name : photo5", "Remove index : 2",
                                            "Remove name : photo2", "Size list : (init) 6"}));
}

TEST_F(OutlierFilterTest, WithFewerThanTwoLeftIsCodeThirteen) {
  EXPECT_EQ(Filter({WithTiltedAxis(1), WithTiltedAxis(-1), kMean}), 13);
  EXPECT_EQ(Left(), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(Transform_Cam_Tc_all.size(), 3u);
  const std::vector<std::string> lines = LogLines();
  const std::vector<std::string> tail(lines.begin() + 5, lines.end());
  EXPECT_EQ(tail,
            (std::vector<std::string>{"Remove outlier data number : 2", "Size list : (init) 3",
                                      "Filtered data number not enough : 1 <= 2",
                                      "Error code 13: Filtered data not enough (<2)"}));
}

TEST_F(OutlierFilterTest, KeepsExactlyTwo) {
  EXPECT_EQ(Filter({kMean, WithTiltedAxis(1), kMean}), 0);
  EXPECT_EQ(Left(), (std::vector<int>{0, 2}));
}

TEST_F(OutlierFilterTest, OfNothingIsCodeThirteen) {
  EXPECT_EQ(Filter({}), 13);
  EXPECT_TRUE(std::isnan(std::stod(LogLines()[0].substr(8))));
  EXPECT_EQ(LogLines()[4], "Filtered data number not enough : 0 <= 2");
}

TEST_F(OutlierFilterTest, KeepsWhatIsNotANumber) {
  Transform broken = kMean;
  broken(0, 3) = NAN;
  EXPECT_EQ(Filter({kMean, broken, kMean}), 0);
  EXPECT_EQ(Left(), (std::vector<int>{0, 1, 2}));
}

TEST_F(OutlierFilterTest, WithListsThatDifferIsCodeEleven) {
  EXPECT_EQ(Filter({kMean, kMean, kMean}), 0);
  Image_name.push_back("one too many");
  Transform_Cam_Chart_all.pop_back();
  Transform_Cam_Tc_all[0] = WithTiltedAxis(1);
  const std::size_t before = LogLines().size();
  EXPECT_EQ(FilterLists(), 11);
  const std::vector<std::string> lines = LogLines();
  const std::vector<std::string> tail(lines.begin() + static_cast<std::ptrdiff_t>(before) + 9,
                                      lines.end());
  EXPECT_EQ(tail, (std::vector<std::string>{
                      "RT_Filt_Outlier output size is not same", "Size list : (Filt)",
                      "Transform_Cam_Tc_all : 2", "ImageCoordinate : 2", "Image_name : 3",
                      "Transform_Tr_Base_all : 2", "Transform_Base_Tc_all : 2",
                      "Transform_Cam_Chart_all : 1",
                      "Error code 11: RT_Filt_Outlier output size is not same."}));
}

}  // namespace
}  // namespace trackedcam
