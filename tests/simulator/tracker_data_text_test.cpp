#include "simulator/tracker_data_text.h"

#include <regex>
#include <sstream>

#include <gmock/gmock.h>

#include "support/foreign_locale.h"

namespace trackedcam::simulator {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    parts.push_back(part);
  }
  return parts;
}

// The pose that the row reports from this field on.
Eigen::Isometry3d Pose(const std::vector<std::string>& fields, std::size_t first) {
  const auto number = [&](std::size_t i) { return std::stod(fields.at(first + i)); };
  return Eigen::Translation3d(number(0), number(1), number(2)) *
         Eigen::Quaterniond(number(3), number(4), number(5), number(6));
}

// The tracking system's axes on a tracker, seen from the axes that the shoot counts in.
Eigen::Isometry3d Axes() {
  Eigen::Isometry3d axes = Eigen::Isometry3d::Identity();
  axes.linear() << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  return axes;
}

class TrackerDataTextTest : public testing::Test {
 protected:
  TrackerDataTextTest() { options.photographs = 5; }

  ShootOptions options;
};

TEST_F(TrackerDataTextTest, HasAHeaderAndARowForEachPhotograph) {
  options.missing = 1;
  const std::vector<std::string> lines = Split(TrackerDataText(SimulateShoot(options)), '\n');
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_THAT(lines[0], StartsWith("Time,"));
  EXPECT_EQ(Split(lines[0], ',').size(), 16U);
  const std::regex row(R"(\d+\.\d{3},photos/img_\d{3}\.jpg(,-?\d+\.\d{9,}){14})");
  for (std::size_t i = 1; i < lines.size(); ++i) {
    EXPECT_TRUE(std::regex_match(lines[i], row)) << lines[i];
  }
  EXPECT_THAT(lines[1], HasSubstr(",photos/img_000.jpg,"));
  EXPECT_THAT(lines[5], HasSubstr(",photos/img_004.jpg,"));
}

TEST_F(TrackerDataTextTest, ReportsTheTrackedPosesInTheTrackersOwnAxes) {
  options.trackerNoiseMm = 1;
  options.outliers = 1;
  const Shoot shoot = SimulateShoot(options);
  const std::vector<std::string> lines = Split(TrackerDataText(shoot), '\n');
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    const std::vector<std::string> fields = Split(lines.at(i + 1), ',');
    const Photograph& photograph = shoot.photographs[i];
    EXPECT_TRUE((Pose(fields, 2) * Axes()).isApprox(photograph.trackedTc, 1e-10));
    EXPECT_TRUE((Pose(fields, 9) * Axes()).isApprox(photograph.trackedTr, 1e-10));
  }
}

TEST_F(TrackerDataTextTest, InvertedQuaternionsGiveTheInverseRotation) {
  options.invertedQuaternions = true;
  const Shoot shoot = SimulateShoot(options);
  const std::vector<std::string> fields = Split(Split(TrackerDataText(shoot), '\n').at(1), ',');
  for (const auto& [first, tracked] :
       {std::pair(2, shoot.photographs[0].trackedTc), {9, shoot.photographs[0].trackedTr}}) {
    Eigen::Isometry3d pose = Pose(fields, static_cast<std::size_t>(first));
    pose.linear().transposeInPlace();
    EXPECT_TRUE((pose * Axes()).isApprox(tracked, 1e-10));
  }
}

TEST_F(TrackerDataTextTest, LineEndsAreAsAskedFor) {
  const std::string plain = TrackerDataText(SimulateShoot(options));
  EXPECT_THAT(plain, Not(HasSubstr("\r")));
  EXPECT_THAT(plain, EndsWith("\n"));
  options.windowsLineEnds = true;
  const std::string windows = TrackerDataText(SimulateShoot(options));
  EXPECT_EQ(std::regex_replace(windows, std::regex("\r\n"), "\n"), plain);
  EXPECT_EQ(windows.size(), plain.size() + 6);
}

TEST_F(TrackerDataTextTest, AByteOrderMarkComesFirst) {
  const std::string plain = TrackerDataText(SimulateShoot(options));
  options.byteOrderMark = true;
  EXPECT_EQ(TrackerDataText(SimulateShoot(options)), "\xEF\xBB\xBF" + plain);
}

TEST_F(TrackerDataTextTest, IsTheSameUnderEveryLocale) {
  const Shoot shoot = SimulateShoot(options);
  const std::string plain = TrackerDataText(shoot);
  const test::ForeignLocale locale;
  EXPECT_EQ(TrackerDataText(shoot), plain);
}

}  // namespace
}  // namespace trackedcam::simulator
