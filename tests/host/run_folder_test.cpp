#include "host/run/run_folder.h"

#include <chrono>
#include <set>
#include <thread>

#include <gmock/gmock.h>

#include "host/input/inputs.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class RunFolderTest : public testing::Test {
 protected:
  std::string Create() { return CreateRunFolder(logFolder).filename().u8string(); }

  test::TemporaryFolder folder;
  fs::path logFolder = folder.Path() / "log" / "day 1";
};

TEST_F(RunFolderTest, IsCounted) {
  EXPECT_EQ(Create(), "run_001");
  EXPECT_EQ(Create(), "run_002");
  EXPECT_TRUE(fs::is_empty(logFolder / "run_002"));
}

TEST_F(RunFolderTest, ComesAfterTheLastOne) {
  fs::create_directories(logFolder / "run_041");
  fs::create_directories(logFolder / "run_of_mine");
  EXPECT_EQ(Create(), "run_042");
  fs::create_directories(logFolder / "run_999");
  EXPECT_EQ(Create(), "run_1000");
  fs::create_directories(logFolder / "run_2147483647");
  EXPECT_EQ(Create(), "run_1001");
}

TEST_F(RunFolderTest, TakesThePlaceOfOnesThatWereLeftEmpty) {
  const auto begun = fs::file_time_type::clock::now() - std::chrono::minutes(5);
  const auto left = [&](const std::string& name) {
    fs::create_directories(logFolder / name / "photos" / "day 1");
    test::WriteFile((logFolder / name / ".trackedcam-7f.part").u8string(), "half");
    for (const char* inside : {".trackedcam-7f.part", "photos", ""}) {
      std::error_code error;
      fs::last_write_time(logFolder / name / inside, begun, error);
    }
  };
  left("run_003");
  test::WriteFile((logFolder / "run_003" / "photos" / "day 1" / "a.jpg").u8string(), "a picture");
  left("run_004");
  left("run_005");
  left("my run_006");
  if (fs::last_write_time(logFolder / "run_004") > begun + std::chrono::minutes(1)) {
    GTEST_SKIP() << "this system sets no times of folders";
  }
  EXPECT_EQ(Create(), "run_004");
  EXPECT_TRUE(fs::exists(logFolder / "run_003" / "photos" / "day 1" / "a.jpg"));
  EXPECT_FALSE(fs::exists(logFolder / "run_005"));
  EXPECT_TRUE(fs::exists(logFolder / "my run_006"));
}

// Another process may just have created it.
TEST_F(RunFolderTest, LeavesNewEmptyOnes) {
  fs::create_directories(logFolder / "run_001");
  EXPECT_EQ(Create(), "run_002");
  EXPECT_TRUE(fs::exists(logFolder / "run_001"));
}

TEST_F(RunFolderTest, IsNeverShared) {
  std::vector<std::string> names(24);
  std::vector<std::thread> threads;
  for (std::string& name : names) {
    threads.emplace_back([&] { name = Create(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST_F(RunFolderTest, NeedsAFolderThatCanBeWritten) {
  test::WriteFile(folder.File("log"), "a file in the way");
  try {
    Create();
    FAIL() << "created a folder below a file";
  } catch (const InputError& error) {
    EXPECT_THAT(error.what(), HasSubstr("without a log there is no record of a run"));
  }
}

}  // namespace
}  // namespace trackedcam::host
