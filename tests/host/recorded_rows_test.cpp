#include <gtest/gtest.h>

#include "host/input/data_file.h"
#include "host/input/inputs.h"

namespace trackedcam::host {
namespace {

TEST(DataTextTest, HoldsARowForEachPhotograph) {
  const std::string text = DataText(
      {{0.5, "a b.jpg", {1, 2, 3, 1, 0, 0, 0}, {4, 5, 6, 0, 1, 0, 0}}, {-1, "c.jpg", {}, {}}});
  EXPECT_EQ(text,
            "Time,photograph,camera x,y,z,camera w,x,y,z,chart x,y,z,chart w,x,y,z\n"
            "0.5,a b.jpg,1,2,3,1,0,0,0,4,5,6,0,1,0,0\n"
            "-1,c.jpg,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n");
}

TEST(DataTextTest, ReadsBackToTheLastBit) {
  const TrackerPose pose = {0.1, 1.0 / 3, -2.0 / 7, 1e-300, 123456789.123456789, -5e-324, 1e22};
  const std::vector<DataRow> rows = ReadRows(DataText({{1.0 / 9, "a.jpg", pose, pose}}));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].photograph, "a.jpg");
  const auto poses = PosesIn(SplitFields(rows[0].text));
  EXPECT_EQ(poses[0], pose);
  EXPECT_EQ(poses[1], pose);
}

TEST(RequireNameTest, RefusesWhatCannotStandInADataFile) {
  RequireName("C:\\shoot\\ein Bild.jpg");
  for (const std::string& name : {std::string(), std::string("a,b"), std::string("a\nb"),
                                  std::string("a\rb"), std::string("a\0b", 3)}) {
    EXPECT_THROW(RequireName(name), InputError) << name;
  }
}

}  // namespace
}  // namespace trackedcam::host
