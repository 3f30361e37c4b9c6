#include "calib/reprojection_error.h"

#include <cmath>

#include "calib/reprojected_image.h"
#include "support/image_file.h"
#include "support/pose_lists.h"
#include "support/stage_test.h"
#include "support/working_folder.h"

namespace trackedcam {
namespace {

namespace fs = std::filesystem;

const cv::Scalar kGrey = cv::Scalar::all(128);
const cv::Vec3b kRed(20, 20, 200);
const cv::Vec3b kBlue(200, 20, 20);

class ReprojectionErrorTest : public test::StageTest {
 protected:
  // The chart is one metre in front of a camera with fx = fy = 100 and its principal point at
  // (50, 40). The poses of the trackers are random.
  void AddPhotograph(const std::string& path, cv::Point2f detectedShift) {
    Transform Transform_Cam_Chart = Transform::Identity();
    Transform_Cam_Chart(2, 3) = 1;
    const Transform Transform_Tr_Base = test::RandomTransform(random);
    Transform_Tr_Base_all.push_back(Transform_Tr_Base);
    Transform_Base_Tc_all.push_back(
        (Transform_Cam_Chart * Transform_Chart_Tr * Transform_Tr_Base).inverse() *
        Transform_Cam_Tc);
    Corners corners;
    for (const cv::Point3f& point : boardTemplate) {
      corners.push_back(cv::Point2f(50 + 100 * point.x, 40 + 100 * point.y) + detectedShift);
    }
    imagePoints.push_back(corners);
    imagePaths.push_back(path);
  }

  std::string GreyImage(const std::string& name) {
    return test::WriteImage(folder.File(name), cv::Mat(80, 100, CV_8UC3, kGrey));
  }

  ResultCode Measure(bool writeImages = false) {
    return Cal_Reproj_Error(log, averageError, boardTemplate, imagePoints, cameraMatrix, distortion,
                            Transform_Cam_Tc, Transform_Base_Tc_all, Transform_Tr_Base_all,
                            Transform_Chart_Tr, imagePaths, writeImages, folder.Path().u8string());
  }

  std::mt19937 random{1};
  Transform Transform_Cam_Tc = test::RandomTransform(random);
  Transform Transform_Chart_Tr = test::RandomTransform(random);
  TransformList Transform_Tr_Base_all;
  TransformList Transform_Base_Tc_all;
  BoardTemplate boardTemplate = {{0, 0, 0}, {0.125F, 0, 0}, {0, 0.25F, 0}};
  cv::Mat cameraMatrix = (cv::Mat_<double>(3, 3) << 100, 0, 50, 0, 100, 40, 0, 0, 1);
  cv::Mat distortion = cv::Mat::zeros(1, 5, CV_64F);
  std::vector<Corners> imagePoints;
  std::vector<std::string> imagePaths;
  float averageError = -1;
};

TEST_F(ReprojectionErrorTest, IsThreeForThreePixelsToTheRight) {
  AddPhotograph(GreyImage("a.png"), {-3, 0});
  EXPECT_EQ(Measure(), 0);
  EXPECT_NEAR(averageError, 3.0F, 1e-4);
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{"Image 0 reprojection error : 3.000000 pixels.",
                                      "Average reprojection error : 3.000000 pixels."}));
}

TEST_F(ReprojectionErrorTest, IsTheMeanOfTheDistancesNotOfTheirSquares) {
  AddPhotograph(GreyImage("a.png"), {0, 0});
  imagePoints[0][1] += cv::Point2f(6, 8);
  AddPhotograph(GreyImage("b.png"), {0, -1});
  EXPECT_EQ(Measure(), 0);
  EXPECT_NEAR(averageError, (10.0 / 3 + 1) / 2, 1e-4);
}

TEST_F(ReprojectionErrorTest, GoesThroughTheLens) {
  distortion.at<double>(0) = 0.5;
  AddPhotograph(GreyImage("a.png"), {0, 0});
  EXPECT_EQ(Measure(), 0);
  // Points at distances r = 0.125 and 0.25 from the axis move by 100 * 0.5 * r³ pixels.
  EXPECT_NEAR(averageError, 50 * (std::pow(0.125, 3) + std::pow(0.25, 3)) / 3, 1e-4);
}

TEST_F(ReprojectionErrorTest, OfNoPhotographsIsNotANumber) {
  EXPECT_EQ(Measure(), 0);
  EXPECT_TRUE(std::isnan(averageError));
  ASSERT_EQ(LogLines().size(), 1u);
  EXPECT_NE(LogLines()[0].find("nan pixels."), std::string::npos);
}

TEST_F(ReprojectionErrorTest, OfListsThatDifferIsCodeSeven) {
  AddPhotograph(GreyImage("a.png"), {0, 0});
  AddPhotograph(GreyImage("b.png"), {0, 0});
  Transform_Base_Tc_all.pop_back();
  EXPECT_EQ(Measure(true), 7);
  EXPECT_EQ(averageError, -1.0F);
  EXPECT_EQ(LogLines(),
            std::vector<std::string>{"Error code 7: Data size is not same in Cal_Reproj_Error."});
  EXPECT_FALSE(fs::exists(fs::u8path(folder.File("Reproject_a.png"))));
}

TEST_F(ReprojectionErrorTest, DoesNotDependOnPhotographsThatAreGone) {
  for (const char* name : {"x\\emptied.png", "x\\removed.png", "x\\there.png"}) {
    AddPhotograph(GreyImage(name), {-3, 0});
  }
  test::WriteFile(folder.File("x\\emptied.png"), "");
  fs::remove(fs::u8path(folder.File("x\\removed.png")));
  EXPECT_EQ(Measure(true), 0);
  EXPECT_NEAR(averageError, 3.0F, 1e-4);
  EXPECT_EQ(LogLines().size(), 4U);
  EXPECT_FALSE(fs::exists(fs::u8path(folder.File("Reproject_emptied.png"))));
  EXPECT_TRUE(fs::exists(fs::u8path(folder.File("Reproject_there.png"))));
}

TEST_F(ReprojectionErrorTest, IsDrawnWhenImagesAreWritten) {
  const std::string photograph = GreyImage("shots\\img_07.png");
  AddPhotograph(photograph, {-30, 0});
  EXPECT_EQ(Measure(false), 0);
  EXPECT_FALSE(fs::exists(fs::u8path(folder.File("Reproject_img_07.png"))));
  EXPECT_EQ(Measure(true), 0);
  const cv::Mat image = test::ReadImage(folder.File("Reproject_img_07.png"));
  ASSERT_EQ(image.size(), cv::Size(100, 80));
  EXPECT_EQ(image.at<cv::Vec3b>(40, 20), kRed);
  EXPECT_EQ(image.at<cv::Vec3b>(40, 50), kBlue);
  EXPECT_EQ(image.at<cv::Vec3b>(5, 90), cv::Vec3b(128, 128, 128));
}

TEST_F(ReprojectionErrorTest, DecodesPhotographsOnlyToWriteThem) {
  const std::string empty = folder.File("empty.png");
  test::WriteFile(empty, "");  // the decoder refuses it
  AddPhotograph(empty, {0, 0});
  AddPhotograph(folder.File("missing.png"), {0, 0});
  const std::string console = ConsoleOf([&] { EXPECT_EQ(Measure(false), 0); });
  EXPECT_NEAR(averageError, 0, 1e-4);
  // The line of the missing photograph is between those of the two errors.
  const std::size_t missing = console.find("Failed to open 0x");
  EXPECT_LT(console.find("Image 0"), missing);
  EXPECT_LT(missing, console.find("Image 1"));
  EXPECT_EQ(Measure(true), 0);  // writes no image
}

TEST_F(ReprojectionErrorTest, AppendsAPathWithForwardSlashesWhole) {
  GreyImage("photos/a.png");
  fs::create_directory(folder.Path() / "Reproject_photos");
  AddPhotograph("photos/a.png", {0, 0});
  const test::WorkingFolder workingFolder(folder.Path());
  EXPECT_EQ(Measure(true), 0);
  EXPECT_TRUE(fs::exists(folder.Path() / "Reproject_photos" / "a.png"));
}

TEST_F(ReprojectionErrorTest, GoesOnWithoutAnImageThatCannotBeWritten) {
  AddPhotograph(GreyImage("in a missing folder.png"), {-1, 0});  // no folder for its image
  const std::string untyped = folder.File("no type");
  fs::copy(fs::u8path(imagePaths[0]), fs::u8path(untyped));
  AddPhotograph(untyped, {-2, 0});
  AddPhotograph(folder.File("missing.png"), {-3, 0});
  EXPECT_EQ(Measure(true), 0);
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{"Image 0 reprojection error : 1.000000 pixels.",
                                      "Image 1 reprojection error : 2.000000 pixels.",
                                      "Image 2 reprojection error : 3.000000 pixels.",
                                      "Average reprojection error : 2.000000 pixels."}));
}

TEST(ReprojectedImage, ShowsTheProjectionAboveTheDetection) {
  cv::Mat image(60, 60, CV_8UC3, kGrey);
  DrawCorners(image, {{30.9F, 30.9F}}, {{40.9F, 30.9F}});
  EXPECT_EQ(image.at<cv::Vec3b>(30, 22), kRed);   // 8 pixels left of 30: truncated, not rounded
  EXPECT_EQ(image.at<cv::Vec3b>(30, 36), kBlue);  // where the discs overlap
  EXPECT_EQ(image.at<cv::Vec3b>(30, 48), kBlue);
  EXPECT_EQ(image.at<cv::Vec3b>(30, 49), cv::Vec3b(128, 128, 128));
}

TEST(ReprojectedImage, LeavesOutProjectionsOnOrBeyondTheBorder) {
  for (const cv::Point2f point :
       {cv::Point2f(0, 30), cv::Point2f(60, 30), cv::Point2f(30, 0), cv::Point2f(30, 60),
        cv::Point2f(-1, 30), cv::Point2f(1e9F, 30)}) {
    cv::Mat image(60, 60, CV_8UC3, kGrey);
    DrawCorners(image, {{-100, -100}}, {point});
    EXPECT_EQ(cv::norm(image, cv::Mat(60, 60, CV_8UC3, kGrey), cv::NORM_INF), 0) << point;
  }
  cv::Mat image(60, 60, CV_8UC3, kGrey);
  DrawCorners(image, {{-100, -100}}, {{0.001F, 30}});
  EXPECT_EQ(image.at<cv::Vec3b>(30, 0), kBlue);
}

TEST(ReprojectedImage, MayBeEmpty) {
  cv::Mat image;
  DrawCorners(image, {{5, 5}}, {{5, 5}});
  EXPECT_TRUE(image.empty());
}

}  // namespace
}  // namespace trackedcam
