#include <gmock/gmock.h>

#include "host/run/library_run.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(ReprojectedImages, AreNamedAfterWhatFollowsTheLastBackslash) {
  EXPECT_EQ(ReprojectedImage("log", "photos/a.jpg"), fs::path("log/Reproject_photos/a.jpg"));
  EXPECT_EQ(ReprojectedImage("log", "/a/b/c.jpg"), fs::path("log/Reproject_/a/b/c.jpg"));
  EXPECT_EQ(ReprojectedImage("log", "D:\\shoot\\c.jpg"), fs::path("log/Reproject_c.jpg"));
  EXPECT_EQ(ReprojectedImage("log", "x\\y/c.jpg"), fs::path("log/Reproject_y/c.jpg"));
}

TEST(ReprojectedImages, StayInTheirFolderWithoutStepsUp) {
  for (const char* name :
       {"a.jpg", "photos/a.jpg", "../a.jpg", "/a/b.jpg", "a..b/..c", "x\\..\\y"}) {
    EXPECT_TRUE(StaysInFolder(name)) << name;
  }
  for (const char* name : {"../../a.jpg", "photos/../a.jpg", "x\\../../y", "a/.."}) {
    EXPECT_FALSE(StaysInFolder(name)) << name;
  }
}

TEST(ReprojectedImages, GetTheFoldersThatTheirNamesNeed) {
  const test::TemporaryFolder folder;
  CreateReprojectedImageFolders(folder.Path(),
                                {"photos/a.jpg", "/a/b/c.jpg", "D:\\shoot\\c.jpg", ""});
  EXPECT_TRUE(fs::is_directory(folder.Path() / "Reproject_photos"));
  EXPECT_TRUE(fs::is_directory(folder.Path() / "Reproject_" / "a" / "b"));
  EXPECT_FALSE(fs::exists(folder.Path() / "Reproject_photos" / "a.jpg"));
}

TEST(ReprojectedImages, NeedNotGetTheirFolders) {
  const test::TemporaryFolder folder;
  test::WriteFile(folder.File("Reproject_photos"), "in the way");
  CreateReprojectedImageFolders(folder.Path(), {"photos/a.jpg", "more/b.jpg"});
  EXPECT_TRUE(fs::is_directory(folder.Path() / "Reproject_more"));
}

TEST(ReprojectedImages, AreFoundWhereTheyWereWritten) {
  const test::TemporaryFolder folder;
  const std::string jpeg = "\xFF\xD8\xFF a picture \xFF\xD9";
  test::WriteFile(folder.File("Reproject_b.jpg"), jpeg);
  test::WriteFile(folder.File("Reproject_c.jpg"), "");  // the disk was full
  test::WriteFile(folder.File("Reproject_d.jpg"), jpeg.substr(0, 14));
  EXPECT_THAT(FindReprojectedImages(folder.Path(), {"a.jpg", "b.jpg", "c.jpg", "d.jpg"}),
              ElementsAre(folder.Path() / "Reproject_b.jpg"));
}

}  // namespace
}  // namespace trackedcam::host
