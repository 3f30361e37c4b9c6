#include "geometry/axis_change.h"

#include "support/random_transform.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::IsNear;
using AxisChangeTest = test::StageTest;
using Change = ResultCode (*)(RunLog, const Transform&, Transform&);

Transform Rows(std::initializer_list<double> elements) {
  return TransformFromVector(std::vector<double>(elements));
}

// The axes of camera and tracker of each engine, as functions of a point, without matrix products.
using Point = Eigen::Vector3d;
struct Engine {
  Change change;
  Point (*cameraAxes)(const Point&);   // from frame Cam to the engine's camera
  Point (*trackerAxes)(const Point&);  // from frame Tc to the engine's tracker
};

const Engine kEngines[] = {
    {AxisChangeUE4, [](const Point& p) { return Point(p.z(), p.x(), -p.y()); },
     [](const Point& p) { return Point(-p.y(), p.x(), -p.z()); }},
    {AxisChangeUE5, [](const Point& p) { return p; },
     [](const Point& p) { return Point(p.x(), p.z(), -p.y()); }},
    {AxisChangeUE5xN, [](const Point& p) { return Point(-p.y(), p.z(), -p.x()); },
     [](const Point& p) { return Point(-p.z(), -p.y(), -p.x()); }},
    {AxisChangeAximmetry, [](const Point& p) { return Point(p.x(), -p.y(), p.z()); },
     [](const Point& p) { return Point(p.x(), -p.z(), -p.y()); }},
};

TEST_F(AxisChangeTest, TakesPointsFromCameraToTracker) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> metre(-1, 1);
  ConsoleOf([&] {
    for (int i = 0; i < 10000; ++i) {
      const Transform Transform_Cam_Tc = test::RandomTransform(random);
      const Point inTracker(metre(random), metre(random), metre(random));
      const Point inCamera = (Transform_Cam_Tc * inTracker.homogeneous()).head<3>();
      for (const Engine& engine : kEngines) {
        Transform Transform_Tc_Cam;
        RunLog silent;
        ASSERT_EQ(engine.change(silent, Transform_Cam_Tc, Transform_Tc_Cam), 0);
        const Point mapped =
            (Transform_Tc_Cam * engine.cameraAxes(inCamera).homogeneous()).head<3>();
        ASSERT_THAT(mapped, IsNear(engine.trackerAxes(inTracker), 1e-12));
      }
    }
  });
}

TEST_F(AxisChangeTest, OfATranslationIsTheValueComputedByHand) {
  Transform shifted = Transform::Identity();
  shifted.topRightCorner<3, 1>() = Eigen::Vector3d(0.1, 0.2, 0.3);
  const std::pair<Change, Transform> values[] = {
      {AxisChangeUE4, Rows({0, 0, 1, 0.2, 0, 1, 0, -0.1, -1, 0, 0, 0.3, 0, 0, 0, 1})},
      {AxisChangeUE5, Rows({1, 0, 0, -0.1, 0, 0, 1, -0.3, 0, -1, 0, 0.2, 0, 0, 0, 1})},
      {AxisChangeUE5xN, Rows({0, -1, 0, 0.3, 1, 0, 0, 0.2, 0, 0, 1, 0.1, 0, 0, 0, 1})},
      {AxisChangeAximmetry, Rows({1, 0, 0, -0.1, 0, 0, -1, 0.3, 0, 1, 0, 0.2, 0, 0, 0, 1})},
  };
  for (const auto& [change, expected] : values) {
    Transform out;
    EXPECT_EQ(change(log, shifted, out), 0);
    EXPECT_THAT(out, IsNear(expected, 1e-15));
  }
}

TEST_F(AxisChangeTest, LogsItsStepsForUnrealEngine4Only) {
  Transform out;
  AxisChangeUE5(log, Transform::Identity(), out);
  AxisChangeUE5xN(log, Transform::Identity(), out);
  AxisChangeAximmetry(log, Transform::Identity(), out);
  EXPECT_TRUE(LogLines().empty());
  AxisChangeUE4(log, Transform::Identity(), out);
  EXPECT_EQ(LogLines(), (std::vector<std::string>{"I Change Hand.", "I Transform_Tc_UE4Cam.",
                                                  "I Transform_Tc_Cam_inUE4."}));
}

}  // namespace
}  // namespace trackedcam
