#include "host/input/excluded.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "host/input/input_error.h"
#include "host/input/shoot_data.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::vector<std::string> kTwoDays = {"day1/img_001.jpg", "day1/img_002.jpg",
                                           "day2/img_001.jpg", "day2/img_003.png",
                                           "day2/img_003.jpg", ""};

std::string RefusalOf(const std::vector<std::string>& names) {
  try {
    FindExcluded(kTwoDays, names);
  } catch (const InputError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(Excluded, IsNamedAsPeopleWrite) {
  EXPECT_THAT(FindExcluded(kTwoDays, {}), IsEmpty());
  EXPECT_THAT(FindExcluded(kTwoDays, {"img_002"}), ElementsAre(1));
  EXPECT_THAT(FindExcluded(kTwoDays, {"img_002.jpg"}), ElementsAre(1));
  EXPECT_THAT(FindExcluded(kTwoDays, {"day2/img_001", "day1/img_002.jpg"}), ElementsAre(1, 2));
  EXPECT_THAT(FindExcluded(kTwoDays, {"day2\\img_001.jpg"}), ElementsAre(2));
  EXPECT_THAT(FindExcluded(kTwoDays, {"img_003.png", "img_003.png"}), ElementsAre(3));
}

TEST(Excluded, IsInEachRowOfThePhotograph) {
  EXPECT_THAT(FindExcluded({"a.jpg", "b.jpg", "a.jpg"}, {"a"}), ElementsAre(0, 2));
}

// a.jpg is the whole path of one and the end of the other.
TEST(Excluded, IsTheWholePathFirst) {
  EXPECT_THAT(FindExcluded({"old/a.jpg", "a.jpg"}, {"a.jpg"}), ElementsAre(1));
  EXPECT_THAT(FindExcluded({"a.jpg", "a"}, {"a"}), ElementsAre(1));
}

TEST(Excluded, IsRefusedWithoutOnePhotograph) {
  EXPECT_THAT(RefusalOf({"img_001"}),
              AllOf(HasSubstr("img_001"), HasSubstr("day1/img_001.jpg and day2/img_001.jpg")));
  EXPECT_THAT(RefusalOf({"img_003"}), HasSubstr("day2/img_003.jpg and day2/img_003.png"));
  EXPECT_THAT(RefusalOf({"img_002", "img_02"}),
              AllOf(HasSubstr("img_02:"), HasSubstr("day1/img_001.jpg")));
  EXPECT_THAT(RefusalOf({"1/img_002.jpg"}), HasSubstr("no photograph"));
  EXPECT_THAT(RefusalOf({""}), HasSubstr("no photograph"));
}

TEST(Excluded, HasTheShortestName) {
  EXPECT_EQ(ShortestName(kTwoDays[0], kTwoDays), "day1/img_001.jpg");
  EXPECT_EQ(ShortestName(kTwoDays[1], kTwoDays), "img_002");
  EXPECT_EQ(ShortestName(kTwoDays[3], kTwoDays), "img_003.png");
}

TEST(Excluded, HasNoFindings) {
  const test::TemporaryFolder folder;
  const std::string lost = ",nan,0,0,1,0,0,0,1,2,3,0.5,0.5,0.5,0.5\n";
  const std::filesystem::path data = folder.Path() / "data.csv";
  test::WriteFile(data.u8string(), "Time,\n0,a.jpg" + lost + "1,b.jpg" + lost);
  EXPECT_THAT(ReadShootData(data, {}).leaveOut, ElementsAre(0, 1));
  const ShootData shoot = ReadShootData(data, {}, {"a"});
  EXPECT_THAT(shoot.excluded, ElementsAre(0));
  EXPECT_THAT(shoot.leaveOut, ElementsAre(1));
  EXPECT_EQ(shoot.rows.size(), 2U);
  ASSERT_EQ(shoot.findings.size(), 1U);
  EXPECT_THAT(shoot.findings[0].photographs, ElementsAre("b.jpg"));
}

// The separator is what must be corrected, not the name.
TEST(Excluded, IsNotTheErrorOfAFileThatCannotBeRead) {
  const test::TemporaryFolder folder;
  const std::filesystem::path data = folder.Path() / "data.csv";
  test::WriteFile(data.u8string(), "0;a.jpg;0;0;0;1;0;0;0;1;2;3;1;0;0;0\n");
  try {
    ReadShootData(data, {}, {"a"});
    FAIL() << "not refused";
  } catch (const InputError& error) {
    EXPECT_THAT(error.what(), HasSubstr("Semicolons"));
  }
}

}  // namespace
}  // namespace trackedcam::host
