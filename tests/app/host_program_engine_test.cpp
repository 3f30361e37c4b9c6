// A shoot that was recorded in an engine, and its result used in the same engine.

#include <map>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "../host/set_in_engine.h"
#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using Eigen::Matrix3d;
using Eigen::Vector3d;
using host::AxesOf;
using host::arithmetic::Pose;
using Json = nlohmann::json;
using testing::HasSubstr;

struct EngineOnSet {
  std::string name;
  // Of its component and its world, in the reported axes; any left-handed ones may be recorded.
  std::string component;
  double unitsPerMetre;
  std::string atCamera;
};

class HostProgramEngine : public testing::TestWithParam<EngineOnSet> {
 protected:
  HostProgramEngine() {
    const ProgramRun run = RunHostProgram(
        folder.Path(), {"simulate", "shoot", "--photographs", "14", "--image", "960x540"});
    EXPECT_EQ(run.status, 0) << run.error;
  }

  // What the component reads when the tracking system reports these values.
  Pose InEngine(const std::vector<double>& f) const {
    const Matrix3d reported = host::arithmetic::Quaternion({f[4], f[5], f[6], f[3]});
    const Matrix3d axes = AxesOf(GetParam().component);
    return {axes * reported * axes.transpose(),
            axes * Vector3d(f[0], f[1], f[2]) * GetParam().unitsPerMetre};
  }

  static void Append(const Pose& pose, std::ostream& row) {
    const Eigen::Quaterniond q(pose.axes);
    row << ',' << pose.position.x() << ',' << pose.position.y() << ',' << pose.position.z() << ','
        << q.w() << ',' << q.x() << ',' << q.y() << ',' << q.z();
  }

  // Writes the shoot's data file anew as the engine would, and keeps the camera's components.
  void Record() {
    std::istringstream rows(test::ReadFile(folder.File("shoot/tracker_data.csv")));
    std::ostringstream recorded;
    recorded.precision(12);
    for (std::string row; std::getline(rows, row);) {
      if (row.empty() || row.front() == 'T') {
        continue;
      }
      std::istringstream fields(row);
      std::string time, photograph;
      std::getline(fields, time, ',');
      std::getline(fields, photograph, ',');
      std::vector<double> values;
      for (std::string value; std::getline(fields, value, ',');) {
        values.push_back(std::stod(value));
      }
      components.push_back(InEngine({values.begin(), values.begin() + 7}));
      recorded << time << ',' << photograph;
      Append(components.back(), recorded);
      Append(InEngine({values.begin() + 7, values.begin() + 14}), recorded);
      recorded << '\n';
    }
    test::WriteFile(folder.File("shoot/recorded.csv"), recorded.str());
  }

  test::TemporaryFolder folder;
  std::vector<Pose> components;
};

TEST_P(HostProgramEngine, RecordsAndUsesTheSameComponent) {
  Record();
  const std::string& name = GetParam().name;
  const ProgramRun run = RunHostProgram(
      folder.Path(), {"calibrate", "--config", "shoot/shoot.toml", "--data", "shoot/recorded.csv",
                      "--tracker-axes", name, "--export", name, "--result", "result.json"});
  ASSERT_EQ(run.status, 0) << run.out << run.error;
  EXPECT_THAT(run.out, HasSubstr("\nTracker data: poses in Un"));

  const Json engine = Json::parse(test::ReadFile(folder.File("result.json")))["exports"][name];
  const auto t =
      engine[name == "unreal" ? "locationCm" : "localPosition"].get<std::vector<double>>();
  const auto q =
      engine[name == "unreal" ? "quaternionXyzw" : "localRotationXyzw"].get<std::vector<double>>();
  const Pose relative = {host::arithmetic::Quaternion(q), Vector3d(t.data())};
  const auto truth = Json::parse(test::ReadFile(folder.File("shoot/truth.json")))["transformCamTc"]
                         .get<std::vector<double>>();
  const Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>> Transform_Cam_Tc(
      truth.data());
  const Matrix3d axes = AxesOf(GetParam().component);
  Matrix3d fix;
  fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  const Matrix3d rotation = fix * Transform_Cam_Tc.topLeftCorner<3, 3>().transpose();
  const Vector3d position = -rotation * Transform_Cam_Tc.topRightCorner<3, 1>();
  for (const Pose& component : components) {
    const Pose camera = Below(component, relative);
    const Pose expected =
        Below(component, {axes * rotation * AxesOf(GetParam().atCamera).transpose(),
                          axes * position * GetParam().unitsPerMetre});
    // A shoot without noise is solved to a tenth of a millimetre.
    EXPECT_LT((camera.position - expected.position).norm() / GetParam().unitsPerMetre, 1e-4);
    EXPECT_LT(host::arithmetic::DegreesBetween(camera.axes, expected.axes), 0.01);
  }
}

std::string TestName(const testing::TestParamInfo<EngineOnSet>& engine) {
  return engine.param.name;
}
INSTANTIATE_TEST_SUITE_P(OnSet, HostProgramEngine,
                         testing::Values(EngineOnSet{"unreal", "z,-x,y", 100, "z,x,-y"},
                                         EngineOnSet{"unity", "-x,y,z", 1, "x,-y,z"}),
                         TestName);

TEST(HostProgramMounting, MayBeInReportedAxes) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(RunHostProgram(folder.Path(),
                           {"simulate", "shoot", "--photographs", "14", "--image", "960x540"})
                .status,
            0);
  // The shoot's mounting is 15.6,-9.31,3.87 degrees and 0.0936,-0.0449,0.0257 m after the axis fix:
  // this one, multiplied out by hand.
  std::vector<std::string> arguments = {"calibrate",
                                        "--config",
                                        "shoot/shoot.toml",
                                        "--chart-rotation",
                                        "74.4,9.31,-176.13",
                                        "--chart-translation",
                                        "-0.0936,-0.0257,0.0449",
                                        "--mounting-axes",
                                        "reported"};
  const ProgramRun run = RunHostProgram(folder.Path(), arguments);
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out,
              testing::HasSubstr(
                  "  stated, deg                         74.4000       9.3100    -176.1300\n"
                  "  stated, mm                           -93.60       -25.70        44.90\n"));
  const auto fixed = Json::parse(test::ReadFile(folder.File("shoot/result.json")))["inputs"];
  EXPECT_THAT(
      fixed["chartRotationDegrees"].get<std::vector<double>>(),
      testing::Pointwise(testing::DoubleNear(1e-9), std::vector<double>{15.6, -9.31, 3.87}));
  arguments.back() = "fixed";
  EXPECT_EQ(RunHostProgram(folder.Path(), arguments).status, 1);
}

}  // namespace
}  // namespace trackedcam::app
