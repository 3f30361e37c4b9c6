#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "app/commands/calibrate_command.h"
#include "app/commands/config_file.h"
#include "support/stage_test.h"

namespace trackedcam::app {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kConfig = R"(# a shoot
[calibrate]
data = "data.csv"   # the rows
sensor = "36x20.25"
board = "9x6"
square = 0.03
chart-rotation = "12,-8,5"
chart-translation = [0.1, -0.05, 0.02]
invert-tracker-quaternions = true
log-folder = "log #1, in"
)";

class CalibrateOptionsTest : public testing::Test {
 protected:
  CalibrateOptionsTest() {
    test::WriteFile(folder.File("data.csv"), "1,a.jpg\n");
    test::WriteFile(folder.File("other.csv"), "1,a.jpg\n");
    test::WriteFile(config, kConfig);
  }

  void Parse(std::vector<std::string> arguments) {
    CLI::App program("", "trackedcam");
    CLI::App* command = program.add_subcommand("calibrate")->fallthrough();
    AddCalibrateOptions(*command, options);
    AddConfigFile(program);
    command->callback([this] { ++calls; });
    arguments.insert(arguments.begin(), "calibrate");
    std::reverse(arguments.begin(), arguments.end());
    program.parse(arguments);
  }

  std::string ErrorOf(const std::vector<std::string>& arguments) {
    try {
      Parse(arguments);
    } catch (const CLI::ParseError& error) {
      return error.what();
    }
    return "no error";
  }

  test::TemporaryFolder folder;
  std::string config = folder.File("shoot.toml");
  CalibrateOptions options;
  int calls = 0;
};

TEST_F(CalibrateOptionsTest, ComeFromTheConfigurationFile) {
  Parse({"--config", config});
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(options.inputs.sensorMm, ElementsAre(36, 20.25));
  EXPECT_THAT(options.inputs.board, ElementsAre(9, 6));
  EXPECT_EQ(options.inputs.squareMetres, 0.03);
  EXPECT_THAT(*options.mounting.rotation, ElementsAre(12, -8, 5));
  EXPECT_THAT(*options.mounting.translation, ElementsAre(0.1, -0.05, 0.02));
  EXPECT_TRUE(options.inputs.invertTrackerQuaternions);
  EXPECT_EQ(options.inputs.expectedRecords, std::nullopt);
  EXPECT_FALSE(options.verbose);
}

TEST_F(CalibrateOptionsTest, TakeSeveralDataFiles) {
  std::string listed = kConfig;
  listed.replace(listed.find("\"data.csv\""), 10, "[\"data.csv\", 'other.csv']");
  test::WriteFile(config, listed);
  Parse({"--config", config});
  EXPECT_EQ(options.inputs.data, folder.Path() / "data.csv");
  EXPECT_THAT(options.inputs.moreData, ElementsAre(folder.Path() / "other.csv"));
  Parse({"--config", config, "--data", folder.File("other.csv")});
  EXPECT_EQ(options.inputs.data, folder.Path() / "other.csv");
  EXPECT_THAT(options.inputs.moreData, testing::IsEmpty());
  Parse(
      {"--config", config, "--data", folder.File("other.csv"), "--data", folder.File("data.csv")});
  EXPECT_EQ(options.inputs.data, folder.Path() / "other.csv");
  EXPECT_THAT(options.inputs.moreData, ElementsAre(folder.Path() / "data.csv"));
  EXPECT_THAT(ErrorOf({"--config", config, "--data", folder.File("data.csv"), "--data",
                       folder.File("none.csv")}),
              HasSubstr("none.csv"));
}

TEST_F(CalibrateOptionsTest, HavePathsRelativeToTheConfigurationFile) {
  Parse({"--config", config});
  EXPECT_EQ(options.inputs.data, folder.Path() / "data.csv");
  EXPECT_EQ(options.inputs.logFolder, folder.Path() / "log #1, in");
  EXPECT_TRUE(options.result.empty());
}

TEST_F(CalibrateOptionsTest, OfTheCommandLineOverrideTheFile) {
  Parse({"--config", config, "--data", folder.File("other.csv"), "--square", "0.05",
         "--chart-rotation", "-1,2,3", "--expected-records", "7", "--log-folder", "logs"});
  EXPECT_EQ(options.inputs.data, folder.Path() / "other.csv");
  EXPECT_EQ(options.inputs.squareMetres, 0.05);
  EXPECT_THAT(*options.mounting.rotation, ElementsAre(-1, 2, 3));
  EXPECT_EQ(options.inputs.expectedRecords, 7);
  EXPECT_THAT(options.inputs.board, ElementsAre(9, 6));
  EXPECT_EQ(options.inputs.logFolder, std::filesystem::current_path() / "logs");
}

TEST_F(CalibrateOptionsTest, AreCheckedInTheConfigurationFileToo) {
  test::WriteFile(config, std::string(kConfig) + "expected-records = 'few'\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("--expected-records: few is not a number"));
}

TEST_F(CalibrateOptionsTest, MustBeKnown) {
  test::WriteFile(config, std::string(kConfig) + "squarre = 0.04\n");
  EXPECT_THAT(ErrorOf({"--config", config}),
              HasSubstr("--config: there is no option calibrate.squarre (line 11, column 1)"));
  test::WriteFile(config, "square = 0.04\n");
  EXPECT_THAT(ErrorOf({"--config", config}),
              HasSubstr("--config: the option square (line 1, column 1) is not in a section"));
  test::WriteFile(config, "[calibarte]\nsquare = 0.04\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("--config: there is no section calibarte"));
}

TEST_F(CalibrateOptionsTest, MayUseAllOfToml) {
  test::WriteFile(config, R"([calibrate]
data = 'data.csv'
sensor = """\
  36x20.25"""
board = "9x6"
square = 3e-2
chart-rotation = [
  12,   # about x
  -8.0,
  5,
]
chart-translation = "0.1,\u002D0.05,0.02"
log-folder = 'C:\takes\new'
)");
  Parse({"--config", config});
  EXPECT_THAT(options.inputs.sensorMm, ElementsAre(36, 20.25));
  EXPECT_EQ(options.inputs.squareMetres, 0.03);
  EXPECT_THAT(*options.mounting.rotation, ElementsAre(12, -8, 5));
  EXPECT_THAT(*options.mounting.translation, ElementsAre(0.1, -0.05, 0.02));
  EXPECT_THAT(options.inputs.logFolder.u8string(), HasSubstr("C:\\takes\\new"));
}

TEST_F(CalibrateOptionsTest, AreRefusedIfTheFileIsNotToml) {
  test::WriteFile(config, std::string(kConfig) + "square = 0.04\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml, line 11, column "));
  test::WriteFile(config, "[calibrate]\nsquare = 0.04.5\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml, line 2, column "));
  test::WriteFile(config, "[calibrate]\nsquare = 2026-11-21\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("calibrate.square must be a string, "));
}

// The parser itself would end the program.
TEST_F(CalibrateOptionsTest, AreRefusedIfTheFileIsNotText) {
  test::WriteFile(config, std::string("[calibrate]\n[\0x]\n", 18));
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml, line 2: a control character"));
  test::WriteFile(config, "[@]\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml"));
  test::WriteFile(config, "[calibrate]\nlog-folder = 'm\xFCller'\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml is not UTF-8"));
  test::WriteFile(config, std::string(2 << 20, '\n'));
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("is too large"));
}

TEST_F(CalibrateOptionsTest, MayHaveCharactersOfAnyLanguageInStringsAndComments) {
  const std::string name = "é撮影𝄞\uFEFB\u3000";
  for (const std::string& text :
       {"'" + name + "'", '"' + name + '"', "'''\n" + name + "'''", "\"\"\"\n" + name + "\"\"\"",
        "\"\"\"\\\n" + ('\\' + ("u00e9" + name.substr(2))) + "\"\"\"", '"' + name + "\"#\uFEFBé"}) {
    test::WriteFile(config,
                    "\uFEFF# \uFEFBé\n[calibrate]\ndata = 'data.csv'\nsensor = '36x20'\n"
                    "board = '9x6'\nsquare = 0.03\nlog-folder = " +
                        text + '\n');
    Parse({"--config", config});
    EXPECT_EQ(options.inputs.logFolder.filename().u8string(), name) << text;
  }
}

// The parser has undefined behaviour for them.
TEST_F(CalibrateOptionsTest, HaveNoCharactersBeyondAsciiElsewhere) {
  for (const char* text :
       {"é = 3", "\uFEFB", "square = é", "square = 3\u3000", "square\u00A0= 3", "square = 3\"é\"",
        "square = 3.'é'", "square = 3=\"é\"", "[ calibrate é ]", "board = ['9x6' é]"}) {
    test::WriteFile(config, std::string("[calibrate]\n") + text + '\n');
    EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml, line 2, column ")) << text;
  }
  test::WriteFile(config, "[calibrate]\né = 3\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("only strings and comments"));
  test::WriteFile(config, "[é]\n");
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("shoot.toml: a name is invalid"));
  for (const char* text : {"\"\"\"a\\\n é\"\"\"", "\"\"\"a\\ \r\n\n\t\u3000\"\"\""}) {
    test::WriteFile(config, std::string("[calibrate]\nlog-folder = ") + text + '\n');
    EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("after a backslash")) << text;
  }
  test::WriteFile(config, "[calibrate]\n'é' = 3\n");  // a string
  EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("there is no option calibrate.é"));
}

TEST_F(CalibrateOptionsTest, SayHowAPathOfWindowsIsWritten) {
  for (const char* path : {R"("D:\takes\new")", R"("D:\shoots\day")"}) {
    test::WriteFile(config, std::string("[calibrate]\nlog-folder = ") + path + '\n');
    EXPECT_THAT(ErrorOf({"--config", config}), HasSubstr("write a path in single quotes")) << path;
  }
}

TEST_F(CalibrateOptionsTest, NameFilesAndFoldersThatExist) {
  EXPECT_EQ(ErrorOf({"--config", "missing.toml"}), "--config: there is no file missing.toml");
  EXPECT_EQ(ErrorOf({"--config", config, "--data", "missing.csv"}),
            "--data: there is no file missing.csv");
  EXPECT_EQ(ErrorOf({"--config", config, "--truth", "missing.json"}),
            "--truth: there is no file missing.json");
  EXPECT_EQ(ErrorOf({"--config", config, "--working-folder", "missing"}),
            "--working-folder: there is no folder missing");
}

TEST_F(CalibrateOptionsTest, MayHaveNoMounting) {
  EXPECT_EQ(MountingOf({}), std::nullopt);
  const auto mounting = MountingOf({{{1, 2, 3}}, {{4, 5, 6}}});
  EXPECT_THAT(mounting->rotationDegrees, ElementsAre(1, 2, 3));
  EXPECT_THAT(mounting->translationMetres, ElementsAre(4, 5, 6));
  EXPECT_THROW(MountingOf({{{1, 2, 3}}, std::nullopt}), CLI::ValidationError);
  EXPECT_THROW(MountingOf({std::nullopt, {{4, 5, 6}}}), CLI::ValidationError);
}

TEST_F(CalibrateOptionsTest, AreRequired) {
  EXPECT_EQ(ErrorOf({}), "--data is required");
}

}  // namespace
}  // namespace trackedcam::app
