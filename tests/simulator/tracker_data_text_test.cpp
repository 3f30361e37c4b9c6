#include <sstream>

#include <gmock/gmock.h>

#include "simulator/write_shoot.h"
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

// The number of decimals; -1 if the text is not a number with a decimal point.
int Decimals(const std::string& text) {
  const std::size_t point = text.find('.');
  const bool isNumber =
      point != std::string::npos && text.find_first_not_of("-.0123456789") == std::string::npos;
  return isNumber ? static_cast<int>(text.size() - point - 1) : -1;
}

// The pose in the seven fields of the row from `first` on.
Eigen::Isometry3d Pose(const std::vector<std::string>& fields, std::size_t first) {
  const auto number = [&](std::size_t i) { return std::stod(fields.at(first + i)); };
  return Eigen::Translation3d(number(0), number(1), number(2)) *
         Eigen::Quaterniond(number(3), number(4), number(5), number(6));
}

// The reported axes of a tracker, in the tracker axes of the shoot.
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
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::vector<std::string> fields = Split(lines[i], ',');
    ASSERT_EQ(fields.size(), 16U) << lines[i];
    EXPECT_EQ(fields[1], "photos/img_00" + std::to_string(i - 1) + ".jpg");
    EXPECT_EQ(Decimals(fields[0]), 3) << lines[i];
    for (std::size_t k = 2; k < fields.size(); ++k) {
      EXPECT_GE(Decimals(fields[k]), 9) << lines[i];
    }
  }
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
  std::string expected;
  for (const std::string& line : Split(plain, '\n')) {
    expected += line + "\r\n";
  }
  EXPECT_EQ(windows, expected);
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
