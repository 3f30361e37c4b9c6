#include "app/run/run_log_finder.h"

#include <gtest/gtest.h>

#include "support/stage_test.h"

namespace trackedcam::app {
namespace {

class RunLogFinderTest : public testing::Test {
 protected:
  void Write(const std::string& name, const std::string& content) {
    test::WriteFile(folder.File(name), content);
  }

  test::TemporaryFolder folder;
};

TEST_F(RunLogFinderTest, FindsTheNewLog) {
  Write("log_2026-11-21-01.02.03.txt", "old");
  const RunLogFinder finder(folder.Path());
  EXPECT_EQ(finder.Find(), "");
  Write("log_2026-11-21-01.02.04.txt", "new");
  EXPECT_EQ(finder.Find(), folder.Path() / "log_2026-11-21-01.02.04.txt");
}

TEST_F(RunLogFinderTest, FindsALogThatHasGrown) {
  Write("log_2026-11-21-01.02.03.txt", "old");
  Write("log_2026-11-21-01.02.04.txt", "older name, untouched");
  const RunLogFinder finder(folder.Path());
  Write("log_2026-11-21-01.02.03.txt", "old and more");
  EXPECT_EQ(finder.Find(), folder.Path() / "log_2026-11-21-01.02.03.txt");
}

TEST_F(RunLogFinderTest, FindsTheNewestOfTwo) {
  const RunLogFinder finder(folder.Path());
  Write("log_2026-11-21-23.59.59.txt", "of a run beside this one");
  Write("log_2026-11-22-00.00.00.txt", "new");
  EXPECT_EQ(finder.Find(), folder.Path() / "log_2026-11-22-00.00.00.txt");
}

TEST_F(RunLogFinderTest, PassesOverOtherFiles) {
  const RunLogFinder finder(folder.Path());
  Write("log_.jpg", "");
  Write("notes.txt", "");
  std::filesystem::create_directory(folder.Path() / "log_folder.txt");
  EXPECT_EQ(finder.Find(), "");
}

}  // namespace
}  // namespace trackedcam::app
