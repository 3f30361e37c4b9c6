#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include "app/options/outputs.h"
#include "support/platform.h"
#include "support/stage_test.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

bool IsNote(const fs::path& file) {
  return test::ReadFile(file.u8string()) == "note";
}

class OutputFileTest : public testing::Test {
 protected:
  OutputFileTest() { test::WriteFile(folder.File("input.jpg"), "picture"); }

  // Empty where the file is accepted.
  std::string Refusal(const fs::path& file) const {
    try {
      PrepareOutputFile({"--note", file, "a note", IsNote},
                        {folder.Path() / "input.jpg", folder.Path() / "missing.jpg", {}});
    } catch (const CLI::ValidationError& error) {
      return error.what();
    }
    return "";
  }

  std::string RefusalOf(const std::string& name) const { return Refusal(folder.Path() / name); }

  // False where the system makes none.
  bool Link(const std::string& to, const std::string& name) const {
    std::error_code error;
    fs::create_symlink(folder.Path() / to, folder.Path() / name, error);
    return !error;
  }

  test::TemporaryFolder folder;
};

TEST_F(OutputFileTest, MayBeNewEmptyOrOfItsOwnKind) {
  test::WriteFile(folder.File("old"), "note");
  test::WriteFile(folder.File("empty"), "");
  EXPECT_EQ(RefusalOf("old"), "");
  EXPECT_EQ(RefusalOf("empty"), "");
  EXPECT_EQ(RefusalOf("new/folder/note"), "");
  EXPECT_TRUE(fs::is_directory(folder.Path() / "new" / "folder"));
  EXPECT_EQ(test::ReadFile(folder.File("old")), "note");
}

TEST_F(OutputFileTest, IsNoFileOfAnotherKind) {
  test::WriteFile(folder.File("novel"), "chapter");
  EXPECT_THAT(RefusalOf("novel"), HasSubstr("novel exists and is not a note"));
}

TEST_F(OutputFileTest, IsNoFolderAndNoPipe) {
  EXPECT_THAT(Refusal(folder.Path()), HasSubstr("is a folder, not a file"));
  if (test::MakePipe(folder.Path() / "pipe")) {
    EXPECT_THAT(RefusalOf("pipe"), HasSubstr("pipe: it is not a regular file"));
  }
}

TEST_F(OutputFileTest, IsNoneOfTheSystem) {
  for (const fs::path& path : test::SystemFiles()) {
    EXPECT_THAT(Refusal(path), HasSubstr("it is a file of the system")) << path;
  }
}

TEST_F(OutputFileTest, IsNotProtected) {
  test::WriteFile(folder.File("old"), "note");
  const auto anyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(folder.Path() / "old", anyWrite, fs::perm_options::remove);
  EXPECT_THAT(RefusalOf("old"), HasSubstr("it is protected against writing"));
  fs::permissions(folder.Path() / "old", fs::perms::owner_write, fs::perm_options::add);
}

TEST_F(OutputFileTest, IsNoInputByAnyName) {
  fs::create_directory(folder.Path() / "sub");
  fs::create_hard_link(folder.Path() / "input.jpg", folder.Path() / "hard");
  for (const char* name : {"input.jpg", "sub/../input.jpg", "./input.jpg", "hard"}) {
    EXPECT_THAT(RefusalOf(name), HasSubstr("would be overwritten")) << name;
  }
  if (Link("input.jpg", "soft") && Link(".", "sub/loop")) {
    EXPECT_THAT(RefusalOf("soft"), HasSubstr("would be overwritten"));
    EXPECT_THAT(RefusalOf("sub/loop/input.jpg"), HasSubstr("would be overwritten"));
  }
}

TEST_F(OutputFileTest, IsNoInputThatDoesNotExistYet) {
  EXPECT_THAT(RefusalOf("missing.jpg"), HasSubstr("would be overwritten"));
  if (Link(".", "loop")) {
    EXPECT_THAT(RefusalOf("loop/missing.jpg"), HasSubstr("would be overwritten"));
  }
}

}  // namespace
}  // namespace trackedcam::app
