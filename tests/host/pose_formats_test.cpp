#include "host/recording/pose_formats.h"

#include <cmath>
#include <string>
#include <vector>

#include <Eigen/Geometry>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/input/input_error.h"
#include "host/lens_files/opentrackio.h"
#include "simulator/write_recording.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using Eigen::Vector3d;
using Eigen::Vector4d;

class PoseFormatsTest : public testing::Test {
 protected:
  PoseRecording Read(const std::string& content, const PoseFormat& format = {}) const {
    test::WriteFile(folder.File("poses"), content);
    return ReadPoseRecording(folder.Path() / "poses", format);
  }

  std::string Refusal(const std::string& content, const PoseFormat& format = {}) const {
    try {
      Read(content, format);
    } catch (const InputError& error) {
      const std::string file = (folder.Path() / "poses").u8string() + ": ";
      const std::string text = error.what();
      EXPECT_EQ(text.substr(0, file.size()), file);
      return text.substr(file.size());
    }
    return "none";
  }

  test::TemporaryFolder folder;
};

void ExpectPose(const TimedPose& pose, double seconds, const Vector3d& position,
                const Vector4d& wxyz) {
  EXPECT_DOUBLE_EQ(pose.seconds, seconds);
  EXPECT_LT((pose.pose.position - position).norm(), 1e-12);
  EXPECT_LT((pose.pose.quaternionWxyz - wxyz).norm(), 1e-12);
}

void ExpectLeftOut(const PoseRecording& recording, std::size_t repeated, std::size_t falling,
                   std::size_t unreadable) {
  EXPECT_EQ(recording.repeatedStamps, repeated);
  EXPECT_EQ(recording.fallingStamps, falling);
  EXPECT_EQ(recording.unreadable, unreadable);
}

constexpr const char* kTum =
    "# a recording\n"
    "# timestamp tx ty tz qx qy qz qw\n"
    "1700000000.123456789 1 2 3 0.5 -0.5 0.5 0.25\n"
    "\n"
    "1700000000.131790123  1.5\t2e0 -3 0 0 0 2\n";

TEST_F(PoseFormatsTest, ReadsTum) {
  const PoseRecording recording = Read(kTum);
  ASSERT_EQ(recording.poses.size(), 2U);
  EXPECT_DOUBLE_EQ(recording.firstStamp, 1700000000.123456789);
  ExpectPose(recording.poses[0], 0, {1, 2, 3}, {0.25, 0.5, -0.5, 0.5});
  ExpectPose(recording.poses[1], 0.008333334, {1.5, 2, -3}, {2, 0, 0, 0});
  ExpectLeftOut(recording, 0, 0, 0);
}

// The simulation reports other axes of a tracker: its -x, -z, -y.
TEST_F(PoseFormatsTest, ReadsASimulatedRecording) {
  simulator::RecordingOptions options;
  options.seconds = 1;
  options.firstStamp = 1700000000;
  const simulator::Recording simulated = simulator::SimulateRecording(options);
  const PoseRecording recording = Read(simulator::PosesText(simulated.camera, options));
  ASSERT_EQ(recording.poses.size(), simulated.camera.size());
  for (std::size_t i = 0; i < recording.poses.size(); ++i) {
    const auto& [seconds, pose] = recording.poses[i];
    const Eigen::Isometry3d& truth = simulated.camera[i].pose;
    EXPECT_NEAR(recording.firstStamp + seconds, simulated.camera[i].stamp, 1e-6);
    EXPECT_LT((pose.position - truth.translation()).norm(), 1e-11);
    const Eigen::Quaterniond rotation(pose.quaternionWxyz[0], pose.quaternionWxyz[1],
                                      pose.quaternionWxyz[2], pose.quaternionWxyz[3]);
    EXPECT_LT((rotation * Vector3d::UnitX() + truth.linear().col(0)).norm(), 1e-10);
    EXPECT_LT((rotation * Vector3d::UnitY() + truth.linear().col(2)).norm(), 1e-10);
  }
}

TEST_F(PoseFormatsTest, ReadsEuroc) {
  const PoseRecording recording = Read(
      "#timestamp [ns], p_RS_R_x [m], p_RS_R_y [m], p_RS_R_z [m], q_RS_w [], q_RS_x [], q_RS_y [], "
      "q_RS_z [], v_RS_R_x [m s^-1]\r\n"
      "1403636579763555584,4.688319,-1.786938,0.783338,0.534108,-0.153029,-0.827383,-0.082152,7\r\n"
      "1403636579763555585, 4.688177,-1.786770,0.787350,0.534640,-0.152990,-0.826976,-0.082863,8");
  ASSERT_EQ(recording.poses.size(), 2U);
  EXPECT_DOUBLE_EQ(recording.firstStamp, 1403636579.763555584);
  ExpectPose(recording.poses[0], 0, {4.688319, -1.786938, 0.783338},
             {0.534108, -0.153029, -0.827383, -0.082152});
  ExpectPose(recording.poses[1], 1e-9, {4.688177, -1.786770, 0.787350},
             {0.534640, -0.152990, -0.826976, -0.082863});
}

TEST_F(PoseFormatsTest, ReadsEurocWithoutAHeaderIfItIsStated) {
  const std::string rows = "5000000000,1,2,3,1,0,0,0\n5010000000,1,2,3,1,0,0,0\n";
  PoseFormat format;
  format.kind = PoseFileKind::kEuroc;
  const PoseRecording recording = Read(rows, format);
  EXPECT_DOUBLE_EQ(recording.firstStamp, 5);
  EXPECT_DOUBLE_EQ(recording.poses.at(1).seconds, 0.01);
  EXPECT_EQ(Refusal(rows),
            "line 1: the format is not recognised: state it (tum, euroc, opentrackio or csv), or "
            "the columns of a table");
}

// One sample with these transforms, at this time.
std::string Sample(const std::string& transforms, int seconds, int nanoseconds,
                   const std::string& more = "") {
  return R"({"timing": {"sampleTimestamp": {"seconds": )" + std::to_string(seconds) +
         R"(, "nanoseconds": )" + std::to_string(nanoseconds) + R"(}}, "transforms": )" +
         transforms + more + "}\n";
}

std::string OneTransform(double x, double y, double z, double pan, double tilt, double roll) {
  return nlohmann::json{{{"translation", {{"x", x}, {"y", y}, {"z", z}}},
                         {"rotation", {{"pan", pan}, {"tilt", tilt}, {"roll", roll}}},
                         {"id", "tracker"}}}
      .dump();
}

// A quarter turn to the left, then with the nose up, then with the right side down.
TEST_F(PoseFormatsTest, ReadsOpenTrackIo) {
  const PoseRecording recording =
      Read(Sample(OneTransform(1, 2, 3, 90, 0, 0), 1700000000, 5) +
           Sample(OneTransform(0, 0, 0, 0, 90, 0), 1700000000, 10000005) +
           Sample(OneTransform(0, 0, 0, 0, 0, 90), 1700000001, 5) +
           Sample(OneTransform(0, 0, 0, 90, 90, 0), 1700000002, 0));
  ASSERT_EQ(recording.poses.size(), 4U);
  const double half = std::sqrt(0.5);
  ExpectPose(recording.poses[0], 0, {1, 2, 3}, {half, 0, 0, half});
  ExpectPose(recording.poses[1], 0.01, {0, 0, 0}, {half, half, 0, 0});
  ExpectPose(recording.poses[2], 1, {0, 0, 0}, {half, 0, half, 0});
  ExpectPose(recording.poses[3], 1.999999995, {0, 0, 0}, {0.5, 0.5, 0.5, 0.5});
}

// The second transform is seen from the first: its forward is the first one's left.
TEST_F(PoseFormatsTest, ComposesTheTransformsOfOpenTrackIoInTheirOrder) {
  const std::string crane = OneTransform(10, 0, 1, 90, 0, 0);
  const std::string head = OneTransform(0, 2, 0, 0, 90, 0);
  const std::string both =
      crane.substr(0, crane.size() - 1) + ", " + head.substr(1, head.size() - 1);
  const PoseRecording recording = Read(Sample(both, 5, 0) + Sample(both, 6, 0));
  ASSERT_EQ(recording.poses.size(), 2U);
  ExpectPose(recording.poses[0], 0, {8, 0, 1}, {0.5, 0.5, 0.5, 0.5});
}

// The pose that is exported is the pose that is read.
TEST_F(PoseFormatsTest, ReadsTheTransformThatIsExported) {
  // Any rotation and translation of the camera's tracker in frame Cam.
  const Eigen::Matrix3d rotation =
      (Eigen::AngleAxisd(1.9, Vector3d(1, 0.4, -0.3).normalized())).toRotationMatrix();
  const Vector3d translation(0.03, -0.11, -0.06);
  ExportInput input;
  input.parentAxes = "x,y,z";
  for (int row = 0; row < 3; ++row) {
    for (int col = 0; col < 3; ++col) {
      input.calibration.transformCamTc.push_back(rotation(row, col));
    }
    input.calibration.transformCamTc.push_back(translation[row]);
  }
  for (const double number : {0, 0, 0, 1}) {
    input.calibration.transformCamTc.push_back(number);
  }
  input.calibration.imageSize = {1920, 1080};
  input.calibration.normFocal = {0.8, 1.42};
  input.calibration.normCenter = {0.5, 0.5};
  input.calibration.distortion = {0, 0, 0, 0, 0};
  input.sensorMm = {{36, 20.25}};
  const auto sample = nlohmann::json::parse(OpenTrackIoText(input));
  const PoseRecording recording = Read(Sample(sample.at("transforms").dump(), 1, 0) +
                                       Sample(sample.at("transforms").dump(), 2, 0));
  ASSERT_EQ(recording.poses.size(), 2U);

  const CameraPlacement placement =
      InEngineAxes(PlacementInReportedAxes(input.calibration.transformCamTc),
                   Eigen::Matrix3d::Identity(), RightForwardUp());
  const crosscheck::TrackerPose& pose = recording.poses[0].pose;
  EXPECT_LT((pose.position - placement.position).norm(), 1e-12);
  const Eigen::Quaterniond read(pose.quaternionWxyz[0], pose.quaternionWxyz[1],
                                pose.quaternionWxyz[2], pose.quaternionWxyz[3]);
  EXPECT_LT((read.toRotationMatrix() - placement.rotation).norm(), 1e-12);
}

TEST_F(PoseFormatsTest, LeavesOutSamplesWithoutATransform) {
  const std::string transforms = OneTransform(1, 2, 3, 0, 0, 0);
  const PoseRecording recording = Read(
      Sample(transforms, 1, 0) + Sample("[]", 2, 0) +
      Sample(R"([{"translation": {"x": 1, "y": null, "z": 2}}])", 3, 0) + Sample(transforms, 4, 0));
  EXPECT_EQ(recording.poses.size(), 2U);
  ExpectLeftOut(recording, 0, 0, 2);
}

TEST_F(PoseFormatsTest, RefusesOtherSamplesOfOpenTrackIo) {
  const std::string transforms = OneTransform(1, 2, 3, 0, 0, 0);
  EXPECT_EQ(Refusal(Sample(transforms, 1, 0) +
                    R"({"timing": {"timecode": {"hours": 1}}, "transforms": []})"
                    "\n"),
            "line 2: the sample has no timing.sampleTimestamp with seconds and nanoseconds, the "
            "only time that is read");
  EXPECT_EQ(Refusal(Sample(transforms, 1, 0, R"(, "sourceNumber": 1)") +
                    Sample(transforms, 2, 0, R"(, "sourceNumber": 2)")),
            "line 2: the sample has another sourceId or sourceNumber than the first: write the "
            "samples of each tracker to a separate file");
  EXPECT_EQ(Refusal("{\n  \"timing\": {}\n}\n"),
            "line 1: not a JSON object: a file of OpenTrackIO has one sample on each line");
  std::string scaled = transforms;
  scaled.insert(2, R"("scale": {"x": 2, "y": 2, "z": 2}, )");
  EXPECT_EQ(Refusal(Sample(scaled, 1, 0)),
            "line 1: a transform has a scale other than 1, which the pose of a tracker cannot "
            "have");
  scaled = transforms;
  scaled.insert(2, R"("scale": {"x": 1, "y": 1, "z": 1}, )");
  EXPECT_EQ(Read(Sample(scaled, 1, 0) + Sample(scaled, 2, 0)).poses.size(), 2U);
  EXPECT_EQ(Refusal(Sample(transforms, -1, 0)), "line 1: timing.sampleTimestamp is out of range");
}

TEST_F(PoseFormatsTest, ReadsTablesByTheNamesOfTheirColumns) {
  PoseFormat format;
  format.columns = ParsePoseColumns(
      "time=Time, x=Cam.X,y=Cam.Y,z=Cam.Z,qw=Cam.QW,qx=Cam.QX,qy=Cam.QY,qz=Cam.QZ");
  format.unit = &kTrackerUnits[2];
  format.timeUnit = TimeUnit::kMilliseconds;
  ASSERT_EQ(format.unit->name, "mm");
  const PoseRecording recording = Read(
      "\xEF\xBB\xBF# exported\n"
      "Frame;Cam.QX;Cam.QY;Cam.QZ;Cam.QW;Cam.X;Cam.Y;Cam.Z;Time;Other.X;\n"
      "7;0.1;0.2;0.3;0.4;1000;2000;-500;1700000000123.25;9;\n"
      "8;0.5;0.6;0.7;0.8;1000;2000;-500;1700000000131.5;9;\n",
      format);
  ASSERT_EQ(recording.poses.size(), 2U);
  EXPECT_DOUBLE_EQ(recording.firstStamp, 1700000000.12325);
  ExpectPose(recording.poses[0], 0, {1, 2, -0.5}, {0.4, 0.1, 0.2, 0.3});
  ExpectPose(recording.poses[1], 0.00825, {1, 2, -0.5}, {0.8, 0.5, 0.6, 0.7});
}

TEST_F(PoseFormatsTest, RecognisesTheUsualNamesAndTheirUnits) {
  const std::vector<std::string> headers = {
      "timestamp_us,Pos_X [cm],Pos_Y [cm],Pos_Z [cm],quat_w,quat_x,quat_y,quat_z",
      "#time(us)\ttx_cm\tty_cm\ttz_cm\tqw\tqx\tqy\tqz",
      "\"t [us]\";\"x (cm)\";\"y (cm)\";\"z (cm)\";\"q_w\";\"q_x\";\"q_y\";\"q_z\"",
      "Timestamp us,Position X cm,position_y_cm,PositionZ cm,Orientation W,Rot X,Quaternion Y,qz"};
  for (const std::string& header : headers) {
    SCOPED_TRACE(header);
    const char separator = header.find('\t') != std::string::npos  ? '\t'
                           : header.find(';') != std::string::npos ? ';'
                                                                   : ',';
    std::string rows = "\n2000000,100,200,300,1,0,0,0\n2008000,100,200,300,0,1,2,3\n";
    for (char& character : rows) {
      character = character == ',' ? separator : character;
    }
    const PoseRecording recording = Read(header + rows);
    ASSERT_EQ(recording.poses.size(), 2U);
    EXPECT_DOUBLE_EQ(recording.firstStamp, 2);
    ExpectPose(recording.poses[1], 0.008, {1, 2, 3}, {0, 1, 2, 3});
  }
}

TEST_F(PoseFormatsTest, AsksForColumnsThatAreNotClear) {
  const std::string ask =
      "line 1: the format is not recognised: state it (tum, euroc, opentrackio or csv), or the "
      "columns of a table";
  EXPECT_EQ(Refusal("Time,A.X,A.Y,A.Z,A.QW,A.QX,A.QY,A.QZ\n"), ask);
  EXPECT_EQ(Refusal("time,x,y,z,qw,qx,qy,qz,pos_x\n"), ask);
  EXPECT_EQ(Refusal("time,x,y,z,roll,pitch,yaw\n"), ask);
  EXPECT_EQ(Refusal("1,2,3,4,5,6,7,8\n"), ask);
  EXPECT_EQ(Refusal("1 2 3 4 5 6 7\n"), ask);
  PoseFormat format;
  format.kind = PoseFileKind::kColumns;
  EXPECT_EQ(Refusal("time,x,y,z,roll,pitch,yaw\n", format),
            "line 1: the header does not have time, x, y, z, qw, qx, qy and qz once each: state "
            "the columns");
  format.columns = ParsePoseColumns("time=t,x=x,y=y,z=z,qw=w,qx=a,qy=b,qz=c");
  EXPECT_EQ(Refusal("t,x,y,z,w,a,b\n", format),
            "line 1: the header does not have each of the stated columns once");
  format.kind = PoseFileKind::kTum;
  EXPECT_EQ(Refusal("t,x,y,z,w,a,b,c\n", format),
            "columns are stated, but the stated format is not csv");
}

TEST_F(PoseFormatsTest, LeavesOutRepeatedAndFallingTimesAndInvalidValues) {
  const PoseRecording recording = Read(
      "10.00 1 0 0 0 0 0 1\n"
      "10.01 2 0 0 0 0 0 1\n"
      "10.01 3 0 0 0 0 0 1\n"
      "10.02 nan 0 0 0 0 0 1\n"
      "10.02 4 inf 0 0 0 0 1\n"
      "10.02 4 0 0 0 0 0 0\n"
      "nan 4 0 0 0 0 0 1\n"
      "10.005 5 0 0 0 0 0 1\n"
      "10.02 6 0 0 0 0 0 1\n");
  ASSERT_EQ(recording.poses.size(), 3U);
  EXPECT_DOUBLE_EQ(recording.poses[2].seconds, 0.02);
  EXPECT_EQ(recording.poses[2].pose.position.x(), 6);
  ExpectLeftOut(recording, 1, 1, 4);
}

TEST_F(PoseFormatsTest, TakesAnEmptyFieldForLostTracking) {
  const PoseRecording recording =
      Read("time,x,y,z,qw,qx,qy,qz\n1,1,2,3,1,0,0,0\n1.01,,,,,,,\n1.02,1,2,3,1,0,0,0\n");
  EXPECT_EQ(recording.poses.size(), 2U);
  ExpectLeftOut(recording, 0, 0, 1);
  const PoseRecording withTabs = Read(
      "time\tx\ty\tz\tqw\tqx\tqy\tqz\n1\t1\t2\t3\t1\t0\t0\t0\n1.01\t\t\t\t\t\t\t\n"
      "1.02\t1\t2\t3\t1\t0\t0\t0\t\n");
  EXPECT_EQ(withTabs.poses.size(), 2U);
  ExpectLeftOut(withTabs, 0, 0, 1);
}

// The writer may have been stopped.
TEST_F(PoseFormatsTest, LeavesOutALastLineThatIsCutOff) {
  const std::string rows = "1 1 2 3 0 0 0 1\n2 1 2 3 0 0 0 1\n";
  ExpectLeftOut(Read(rows + "3 1 2 3 0 0"), 0, 0, 1);
  const std::string sample =
      Sample(OneTransform(1, 2, 3, 0, 0, 0), 1, 0) + Sample(OneTransform(1, 2, 3, 0, 0, 0), 2, 0);
  ExpectLeftOut(Read(sample + R"({"timing": {"sam)"), 0, 0, 1);
  EXPECT_EQ(Refusal(rows + "3 1 2 3 0 0\n"), "line 3: 6 values, expected 8");
}

TEST_F(PoseFormatsTest, NamesTheLineThatIsNotOfTheFormat) {
  EXPECT_EQ(Refusal("1 1 2 3 0 0 0 1\n# so far\n2 1 2 x 0 0 0 1\n"),
            "line 3: \"x\" is not a number");
  EXPECT_EQ(Refusal("time,x,y,z,qw,qx,qy,qz\n1,0,2,0,3,0,1,0,0,0,0\n"),
            "line 2: 11 values, expected 8");
  EXPECT_EQ(Refusal("1 1 2 3 0 0 0 1\n2 1 2 3 0 0 0 " + std::string(50, 'a') + "\n"),
            "line 2: \"" + std::string(40, 'a') + "...\" is not a number");
  EXPECT_EQ(Refusal("1 1 2 3 0 0 0 1\n" + std::string(70000, '1')),
            "line 2: longer than 65536 characters");
}

TEST_F(PoseFormatsTest, RefusesWhatIsNoRecording) {
  EXPECT_EQ(Refusal(""), "it has no poses");
  EXPECT_EQ(Refusal("# timestamp tx ty tz qx qy qz qw\n\n"), "it has no poses");
  EXPECT_EQ(Refusal("1 1 2 3 0 0 0 1\n1 1 2 3 0 0 0 1\n2 1 2 3 0 0 0 0\n"),
            "has one pose only, expected a recording; left out: 1 with missing or invalid values; "
            "left out: 1 with a repeated time");
  const std::string missing = (folder.Path() / "missing").u8string();
  try {
    ReadPoseRecording(folder.Path() / "missing");
    ADD_FAILURE();
  } catch (const InputError& error) {
    EXPECT_EQ(error.what(), missing + ": file not found");
  }
  EXPECT_THROW(ReadPoseRecording(folder.Path()), InputError);
}

// A pose every 8 s, unless these are milliseconds.
TEST_F(PoseFormatsTest, AsksForTheUnitOfTimesThatAreNoSeconds) {
  const std::string rows =
      "8 1 2 3 0 0 0 1\n16 1 2 3 0 0 0 1\n24 1 2 3 0 0 0 1\n32 1 2 3 0 0 0 1\n";
  EXPECT_EQ(Refusal(rows),
            "the poses are 8 s apart if the times are in seconds: state the unit of the times (s, "
            "ms, us or ns)");
  PoseFormat format;
  format.timeUnit = TimeUnit::kMilliseconds;
  EXPECT_DOUBLE_EQ(Read(rows, format).poses.back().seconds, 0.024);
  format.timeUnit = TimeUnit::kSeconds;
  EXPECT_DOUBLE_EQ(Read(rows, format).poses.back().seconds, 24);
}

TEST(ParsePoseColumnsTest, RefusesWhatIsNotAllColumnsOnce) {
  const auto refusal = [](const std::string& text) -> std::string {
    try {
      ParsePoseColumns(text);
    } catch (const InputError& error) {
      return error.what();
    }
    return "none";
  };
  EXPECT_EQ(refusal("time=a,x=b,y=c,z=d,qw=e,qx=f,qy=g,qz=h"), "none");
  EXPECT_EQ(refusal("time=a,x=b,y=c,z=d,qw=e,qx=f,qy=g"),
            "no column for qz: state time, x, y, z, qw, qx, qy and qz");
  EXPECT_EQ(refusal("time=a,x=b,x=c"), "two columns for x");
  for (const char* text : {"time=a,w=b", "time=a,x=", "time=a,x", ""}) {
    EXPECT_NE(refusal(text).find("is not a column such as"), std::string::npos) << text;
  }
}

TEST(ParseNanosecondsTest, IsExact) {
  const auto seconds = [](const char* text) { return ParseNanoseconds(text, TimeUnit::kSeconds); };
  EXPECT_EQ(seconds("1700000000.123456789"), 1700000000123456789);
  EXPECT_EQ(seconds("1.700000000123456789e+09"), 1700000000123456789);
  EXPECT_EQ(seconds("0.0000000014"), 1);
  EXPECT_EQ(seconds("0.0000000015"), 2);
  EXPECT_EQ(seconds("-0.25"), -250000000);
  EXPECT_EQ(seconds("+3"), 3000000000);
  EXPECT_EQ(seconds(".5"), 500000000);
  EXPECT_EQ(seconds("5."), 5000000000);
  EXPECT_EQ(seconds("0.0"), 0);
  EXPECT_EQ(seconds("00012.5E-1"), 1250000000);
  EXPECT_EQ(ParseNanoseconds("1403636579763555584", TimeUnit::kNanoseconds), 1403636579763555584);
  EXPECT_EQ(ParseNanoseconds("1.403636579763555527e+18", TimeUnit::kNanoseconds),
            1403636579763555527);
  EXPECT_EQ(ParseNanoseconds("1700000000123.25", TimeUnit::kMilliseconds), 1700000000123250000);
  EXPECT_EQ(ParseNanoseconds("1700000000123456.7", TimeUnit::kMicroseconds), 1700000000123456700);
}

TEST(ParseNanosecondsTest, RefusesWhatIsNoTime) {
  for (const char* text : {"", "-", "x", "1 2", "1e", "1.2.3", "nan", "inf", "--1", "0x10", "1e99",
                           "9e18", "4.6e9", "1,5"}) {
    EXPECT_EQ(ParseNanoseconds(text, TimeUnit::kSeconds), std::nullopt) << text;
  }
  EXPECT_EQ(ParseNanoseconds("4500000000", TimeUnit::kSeconds), 4500000000000000000);
  EXPECT_EQ(ParseNanoseconds("9223372036854775807", TimeUnit::kNanoseconds), std::nullopt);
  EXPECT_EQ(ParseNanoseconds("-4500000001", TimeUnit::kSeconds), std::nullopt);
}

}  // namespace
}  // namespace trackedcam::host
