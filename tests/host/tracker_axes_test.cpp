#include <sstream>

#include <gmock/gmock.h>

#include "host/input/inputs.h"
#include "host/input/reported_axes.h"
#include "set_in_engine.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix3d;
using Eigen::Vector3d;
using testing::HasSubstr;

TrackerFrame Frame(const std::string& axes, const std::string& unit = "") {
  TrackerFrame frame;
  for (const TrackerAxes& known : kTrackerAxes) {
    frame.axes = known.name == axes ? &known : frame.axes;
  }
  for (const TrackerUnit& known : kTrackerUnits) {
    frame.unit = known.name == unit ? &known : frame.unit;
  }
  return frame;
}

DataRow Row(const std::string& poses) {
  return {7, "1.5,photos/a.jpg," + poses, "photos/a.jpg"};
}

TEST(TrackerAxes, OfUnrealAreTurnedAndBecomeMetres) {
  // (-Y, Z, X) / 100 and w, x, y, z = w, Y, -Z, -X.
  EXPECT_EQ(InReportedAxes(Row("100,20,-3,0.5,0.1,0.2,0.3,1,2,3,4,5,6,7"), Frame("unreal")).text,
            "1.5,photos/a.jpg,-0.2,-0.03,1,0.5,0.2,-0.3,-0.1,-0.02,0.03,0.01,4,6,-7,-5");
}

TEST(TrackerAxes, OfUnityAreTurned) {
  EXPECT_EQ(InReportedAxes(Row("1,2,3,0.5,0.1,0.2,0.3,4,5,6,1,0,0,0"), Frame("unity")).text,
            "1.5,photos/a.jpg,-1,2,3,0.5,0.1,-0.2,-0.3,-4,5,6,1,0,0,0");
}

TEST(TrackerAxes, HaveAUnit) {
  EXPECT_EQ(InReportedAxes(Row("100,20,-3,1,0,0,0,1,2,3,1,0,0,0"), Frame("unreal", "mm")).text,
            "1.5,photos/a.jpg,-0.02,-0.003,0.1,1,0,0,0,-0.002,0.003,0.001,1,0,0,0");
  EXPECT_EQ(
      InReportedAxes(Row(" +100 ,20,-3,1,0,0.5,0,1,2,3,1,0,0,0,spare"), Frame("reported", "cm"))
          .text,
      "1.5,photos/a.jpg,1,0.2,-0.03,1,0,0.5,0,0.01,0.02,0.03,1,0,0,0,spare");
  EXPECT_EQ(InReportedAxes(Row("100,0,50,1,0,0,0,1,2,3,1,0,0,0"), Frame("", "in")).text,
            "1.5,photos/a.jpg,2.54,0,1.27,1,0,0,0,0.0254,0.0508,0.0762,1,0,0,0");
  EXPECT_EQ(Describe(Frame("unreal")), "Unreal's axes, in cm");
  EXPECT_EQ(Describe(Frame("unity")), "Unity's axes, in m");
  EXPECT_EQ(Describe(Frame("", "mm")), "the tracking system's axes, in mm");
}

TEST(TrackerAxes, MayHaveQuaternionsInAnotherOrder) {
  TrackerFrame frame = Frame("reported");
  frame.hasQuaternionsXyzw = true;
  EXPECT_TRUE(IsConverted(frame));
  EXPECT_EQ(InReportedAxes(Row("1,2,3,0.1,0.2,0.3,0.5,4,5,6,0,0,0,1"), frame).text,
            "1.5,photos/a.jpg,1,2,3,0.5,0.1,0.2,0.3,4,5,6,1,0,0,0");
  EXPECT_EQ(Describe(frame), "the tracking system's axes, in m, quaternions x, y, z, w");
  frame = Frame("unreal");
  frame.hasQuaternionsXyzw = true;
  EXPECT_EQ(InReportedAxes(Row("100,20,-3,0.1,0.2,0.3,0.5,1,2,3,5,6,7,4"), frame).text,
            "1.5,photos/a.jpg,-0.2,-0.03,1,0.5,0.2,-0.3,-0.1,-0.02,0.03,0.01,4,6,-7,-5");
}

TEST(TrackerAxes, OfQuaternionsAreThoseOfTheConversion) {
  for (const char* name : {"reported", "unreal", "unity"}) {
    const DataRow row = InReportedAxes(Row("0,0,0,0.5,0.1,0.2,0.3,0,0,0,1,0,0,0"), Frame(name));
    const auto pose = PosesIn(SplitFields(row.text))[0];
    const Vector3d expected(pose[4], pose[5], pose[6]);
    EXPECT_TRUE((QuaternionAxes(Frame(name)) * Vector3d(0.1, 0.2, 0.3)).isApprox(expected)) << name;
  }
}

TEST(TrackerAxes, OfATrackingSystemStayAsTheyAre) {
  const DataRow row = Row("no,numbers");
  for (const TrackerFrame& frame :
       {TrackerFrame(), Frame("reported"), Frame("reported", "m"), Frame("", "m")}) {
    EXPECT_FALSE(IsConverted(frame));
    EXPECT_EQ(InReportedAxes(row, frame).text, row.text);
  }
  EXPECT_TRUE(IsConverted(Frame("reported", "cm")));
  EXPECT_TRUE(IsConverted(Frame("unity")));
  EXPECT_EQ(InReportedAxes(DataRow{3, "", ""}, Frame("unity")).text, "");
}

TEST(TrackerAxes, NeedFourteenNumbers) {
  const auto error = [](const std::string& poses) {
    try {
      InReportedAxes(Row(poses), Frame("unreal"));
    } catch (const InputError& caught) {
      return std::string(caught.what());
    }
    return std::string("no error");
  };
  EXPECT_THAT(error("1,2,3,x,0,0,0,1,2,3,1,0,0,0"),
              HasSubstr("row 7, field 6: \"x\" is not a number"));
  EXPECT_THAT(error("1,2,3,1,0,0,0,1,2,3,1,0,0"),
              HasSubstr("row 7, field 16: the number is missing"));
}

std::string Text(const arithmetic::Pose& pose) {
  // Columns are the turned axes; Eigen's formula is that of both engines.
  const Eigen::Quaterniond q(pose.axes);
  std::ostringstream text;
  text.precision(17);
  text << pose.position.x() << ',' << pose.position.y() << ',' << pose.position.z() << ',' << q.w()
       << ',' << q.x() << ',' << q.y() << ',' << q.z();
  return text.str();
}

// The rows of a component, whichever axes it has, are those of some tracker whose reported axes are
// what the engine's export presumes of that component.
TEST(TrackerAxes, FitTheExportBelowTheSameComponent) {
  struct Case {
    const char* name;
    const char* component;  // the axes that the export presumes
    double unitsPerMetre;
  };
  const unsigned seed = 4;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (const Case& engine : {Case{"unreal", "z,-x,y", 100}, Case{"unity", "-x,y,z", 1}}) {
    for (int round = 0; round < 20; ++round) {
      const Instant instant(random);
      const std::string world = engine.component;
      const arithmetic::Pose component =
          instant.Component(world, engine.component, engine.unitsPerMetre);
      const DataRow row =
          InReportedAxes(Row(Text(component) + "," + Text(component)), Frame(engine.name));
      std::vector<double> values;
      std::istringstream stream(row.text.substr(row.text.find("jpg,") + 4));
      for (std::string value; std::getline(stream, value, ',');) {
        values.push_back(std::stod(value));
      }
      ASSERT_EQ(values.size(), 14U);
      for (const std::size_t first : {0, 7}) {
        const double* f = values.data() + first;
        const Matrix3d axes = arithmetic::Quaternion({f[4], f[5], f[6], f[3]});
        EXPECT_TRUE(Vector3d(f).isApprox(instant.reported.topRightCorner<3, 1>(), 1e-12));
        EXPECT_TRUE(axes.isApprox(instant.reported.topLeftCorner<3, 3>(), 1e-9));
      }
    }
  }
}

}  // namespace
}  // namespace trackedcam::host
