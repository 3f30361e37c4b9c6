#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "host/text/files.h"
#include "support/platform.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

class FileTextTest : public testing::Test {
 protected:
  std::size_t Files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.Path()), {}));
  }

  test::TemporaryFolder folder;
  fs::path file = folder.Path() / "file.json";
};

TEST_F(FileTextTest, IsReadAsItWasWritten) {
  const std::string content = std::string("a\r\nb\n\0c", 7);
  WriteFile(file, content);
  EXPECT_EQ(ReadFile(file), content);
  WriteFile(file, "");
  EXPECT_EQ(ReadFile(file), "");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(FileTextTest, StaysWhereWritingFails) {
  fs::create_directory(file);
  EXPECT_THROW(WriteFile(file, "content"), std::runtime_error);
  EXPECT_TRUE(fs::is_directory(file));
  EXPECT_EQ(Files(), 1U);
  EXPECT_THROW(WriteFile(folder.Path() / "missing" / "file", ""), std::runtime_error);
}

TEST_F(FileTextTest, RemovesWhatKilledProcessesLeft) {
  const auto left = fs::file_time_type::clock::now() - std::chrono::minutes(5);
  const std::vector<std::string> stay = {".trackedcam-.part", ".trackedcam-mine.part",
                                         "trackedcam-1f.part", ".trackedcam-1f.part.txt"};
  for (const std::string& name : stay) {
    test::WriteFile(folder.File(name), "not of WriteFile");
    fs::last_write_time(folder.Path() / name, left);
  }
  test::WriteFile(folder.File(".trackedcam-1f.part"), "half");
  fs::last_write_time(folder.Path() / ".trackedcam-1f.part", left);
  test::WriteFile(folder.File(".trackedcam-2f.part"), "being written");
  WriteFile(file, "content");
  EXPECT_FALSE(fs::exists(folder.Path() / ".trackedcam-1f.part"));
  EXPECT_TRUE(fs::exists(folder.Path() / ".trackedcam-2f.part"));
  EXPECT_EQ(Files(), stay.size() + 2);
}

TEST_F(FileTextTest, SaysWhyItCannotBeWritten) {
  try {
    WriteFile(folder.Path() / "missing" / "file", "");
    FAIL() << "written";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("file: "));
  }
}

TEST_F(FileTextTest, MayHaveTheLongestName) {
  const fs::path longest = folder.Path() / std::string(255, 'a');
  WriteFile(longest, "old");
  WriteFile(longest, "new");
  EXPECT_EQ(ReadFile(longest), "new");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(FileTextTest, KeepsItsPermissions) {
  WriteFile(file, "old");
  const auto mine = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(file, mine);
  const fs::perms before = fs::status(file).permissions();  // not every system has them all
  WriteFile(file, "new");
  EXPECT_EQ(fs::status(file).permissions(), before);
}

TEST_F(FileTextTest, WritesWhatLinksLeadTo) {
  fs::create_directory(folder.Path() / "sub");
  std::error_code error;
  fs::create_symlink("sub/inner", file, error);
  if (error) {
    GTEST_SKIP() << "no links here: " << error.message();
  }
  fs::create_symlink("../other", folder.Path() / "sub" / "inner");
  for (const char* content : {"new", "newer"}) {  // before it exists, and after
    WriteFile(file, content);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(folder.Path() / "sub" / "inner"));
    EXPECT_EQ(ReadFile(folder.Path() / "other"), content);
  }
}

TEST_F(FileTextTest, DoesNotFollowACircleOfLinks) {
  std::error_code error;
  fs::create_symlink("other", file, error);
  if (error) {
    GTEST_SKIP() << "no links here: " << error.message();
  }
  fs::create_symlink(file.filename(), folder.Path() / "other");
  EXPECT_THROW(WriteFile(file, "new"), std::runtime_error);
}

TEST_F(FileTextTest, RespectsWriteProtection) {
  WriteFile(file, "old");
  fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  EXPECT_THROW(WriteFile(file, "new"), std::runtime_error);  // for root too
  EXPECT_EQ(ReadFile(file), "old");
  EXPECT_EQ(Files(), 1U);
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
}

TEST_F(FileTextTest, IsNoneOfTheSystem) {
  const std::vector<fs::path> systemFiles = test::SystemFiles();
  std::error_code error;
  fs::create_symlink(systemFiles.front(), folder.Path() / "link", error);
  for (const fs::path& path : systemFiles) {
    EXPECT_THROW(OutputTarget(path), std::runtime_error) << path;
  }
  if (!error) {
    EXPECT_THROW(OutputTarget(folder.Path() / "link"), std::runtime_error);
  }
}

TEST_F(FileTextTest, NeverTakesThePlaceOfAPipe) {
  if (!test::MakePipe(file)) {
    GTEST_SKIP() << "no pipes among the files here";
  }
  EXPECT_THROW(WriteFile(file, "new"), std::runtime_error);
  EXPECT_TRUE(fs::is_fifo(file));
  EXPECT_EQ(Files(), 1U);
}

TEST_F(FileTextTest, IsWholeWhoeverElseWritesIt) {
  constexpr int kWriters = 4;
  constexpr int kTimes = 25;
  std::vector<std::thread> writers;
  for (int writer = 0; writer < kWriters; ++writer) {
    writers.emplace_back([this, writer] {
      for (int i = 0; i < kTimes; ++i) {
        WriteFile(file, std::string(100000, static_cast<char>('a' + writer)));
      }
    });
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  const std::string content = ReadFile(file);
  EXPECT_EQ(content, std::string(100000, content.front()));
  EXPECT_EQ(Files(), 1U);
}

TEST_F(FileTextTest, ThatIsMissingOrNoneCannotBeRead) {
  EXPECT_THROW(ReadFile(file), std::runtime_error);
  EXPECT_THROW(ReadFile(folder.Path()), std::runtime_error);
  if (test::MakePipe(file)) {  // it would block
    EXPECT_THROW(ReadFile(file), std::runtime_error);
  }
}

}  // namespace
}  // namespace trackedcam::host
