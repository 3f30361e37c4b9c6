// Everything that a host reads from a report.

#include <cmath>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "simulated_shoot.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using testing::StartsWith;

class ReportTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    logFolder = new test::TemporaryFolder;
    const std::string log = logFolder->File("log");
    shared = new OwnedReport(Calibrated(OpenedShoot(), SettingsFor(log)));
  }
  static void TearDownTestSuite() {
    delete shared;
    delete logFolder;
  }

  static test::TemporaryFolder* logFolder;
  static OwnedReport* shared;
  const OwnedReport& report = *shared;
  trackedcam_report* handle = report.Get();
  test::TemporaryFolder folder;
};
test::TemporaryFolder* ReportTest::logFolder = nullptr;
OwnedReport* ReportTest::shared = nullptr;

TEST_F(ReportTest, NumbersAreThoseOfTheJsonText) {
  const Json json = Json::parse(JsonOf(report));
  std::vector<double> covariance;
  for (const auto& row : json["crossCheck"]["covarianceCamTcTwist"]) {
    covariance.insert(covariance.end(), row.begin(), row.end());
  }
  EXPECT_EQ(covariance.size(), 36U);
  EXPECT_EQ(NumbersAt(report, "/crossCheck/covarianceCamTcTwist"), covariance);
  EXPECT_EQ(NumbersAt(report, "/inputs/board"), (std::vector<double>{9, 6}));
  EXPECT_EQ(NumbersAt(report, "/lensErrorPixels"),
            std::vector<double>{json["lensErrorPixels"].get<double>()});
}

TEST_F(ReportTest, ReturnsTheNumberOfNumbers) {
  std::size_t count = 99;
  double few[15];
  EXPECT_EQ(trackedcam_report_numbers(handle, "/transformCamTc", few, 15, &count),
            TRACKEDCAM_TOO_SMALL);
  EXPECT_EQ(count, 16U);
}

TEST_F(ReportTest, RejectsPlacesThatItDoesNotHave) {
  std::size_t count = 99;
  const char* text = nullptr;
  for (const char* pointer : {"/nothing", "/transformCamTc/16", "/verdict/message/0", "/code/x"}) {
    EXPECT_EQ(trackedcam_report_numbers(handle, pointer, nullptr, 0, &count), TRACKEDCAM_NOT_FOUND)
        << pointer;
    EXPECT_EQ(trackedcam_report_text(handle, pointer, &text), TRACKEDCAM_NOT_FOUND) << pointer;
    EXPECT_EQ(trackedcam_report_count(handle, pointer, &count), TRACKEDCAM_NOT_FOUND) << pointer;
  }
  EXPECT_EQ(trackedcam_report_numbers(handle, "/verdict/message", nullptr, 0, &count),
            TRACKEDCAM_NOT_FOUND);
  EXPECT_EQ(trackedcam_report_numbers(handle, "/firstRun", nullptr, 0, &count),
            TRACKEDCAM_NOT_FOUND);
  EXPECT_EQ(trackedcam_report_text(handle, "/code", &text), TRACKEDCAM_NOT_FOUND);
  EXPECT_EQ(trackedcam_report_count(handle, "/code", &count), TRACKEDCAM_NOT_FOUND);
  EXPECT_EQ(trackedcam_report_text(handle, "no slash", &text), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(count, 99U);
  EXPECT_EQ(text, nullptr);
}

TEST_F(ReportTest, CountsListsAndObjects) {
  std::size_t count = 99;
  EXPECT_EQ(trackedcam_report_count(handle, "/photographs", &count), TRACKEDCAM_OK);
  EXPECT_EQ(count, 24U);
  EXPECT_EQ(trackedcam_report_count(handle, "/verdict", &count), TRACKEDCAM_OK);
  EXPECT_EQ(count, 4U);  // level, message, advice, commands
}

TEST_F(ReportTest, ListsThePhotographsInTheOrderOfTheRows) {
  std::size_t used = 0;
  const auto& truth = SimulatedShoot::Get().Truth().photographs;
  ASSERT_EQ(truth.size(), 24U);
  for (std::size_t i = 0; i < truth.size(); ++i) {
    const std::string place = "/photographs/" + std::to_string(i);
    EXPECT_EQ(TextAt(report, (place + "/name").c_str()), truth[i].path);
    const std::string path = TextAt(report, (place + "/path").c_str());
    EXPECT_TRUE(fs::equivalent(fs::u8path(path),
                               SimulatedShoot::Get().Folder() / fs::u8path(truth[i].path)));
    EXPECT_EQ(NumbersAt(report, (place + "/row").c_str()),
              std::vector<double>{static_cast<double>(i + 2)});  // a header is in line 1
    const std::string state = TextAt(report, (place + "/state").c_str());
    EXPECT_TRUE(state == "used" || state == "leftOutByFilter") << state;
    if (state == "used") {
      const std::string image = TextAt(report, (place + "/reprojectedImage").c_str());
      EXPECT_TRUE(fs::is_regular_file(fs::u8path(image))) << image;
      ++used;
    }
    EXPECT_EQ(NumbersAt(report, (place + "/crossCheck/transformCamChart").c_str()).size(), 16U);
  }
  EXPECT_GE(used, 12U);
}

TEST_F(ReportTest, HasTheLensInPixels) {
  trackedcam_lens lens;
  ASSERT_EQ(trackedcam_report_lens(handle, &lens, sizeof lens), TRACKEDCAM_OK);
  const simulator::Lens& truth = SimulatedShoot::Get().Truth().lens;
  EXPECT_EQ(lens.image_width_px, 640);
  EXPECT_EQ(lens.image_height_px, 360);
  EXPECT_NEAR(lens.fx_px, truth.fx, 0.01 * truth.fx);
  EXPECT_NEAR(lens.fy_px, truth.fy, 0.01 * truth.fy);
  EXPECT_NEAR(lens.cx_px, truth.cx, 5);
  EXPECT_NEAR(lens.cy_px, truth.cy, 5);
  EXPECT_NEAR(lens.k1, truth.k1, 0.02);
  EXPECT_EQ(lens.p1, 0);
  EXPECT_EQ(lens.p2, 0);
  EXPECT_EQ(lens.k3, 0);
  EXPECT_EQ(std::vector<double>({lens.horizontal_fov_deg, lens.vertical_fov_deg}),
            NumbersAt(report, "/fieldOfView"));
  EXPECT_NEAR(lens.focal_length_mm, truth.fx * 36 / 640, 0.5);
}

TEST_F(ReportTest, HasAVerdict) {
  std::int32_t level = -1;
  EXPECT_EQ(trackedcam_report_level(handle, &level), TRACKEDCAM_OK);
  EXPECT_EQ(level, TRACKEDCAM_GOOD);
  const char* message = nullptr;
  const char* advice = nullptr;
  ASSERT_EQ(trackedcam_report_verdict(handle, &message, &advice), TRACKEDCAM_OK);
  EXPECT_EQ(message, TextAt(report, "/verdict/message"));
  EXPECT_EQ(advice, TextAt(report, "/verdict/advice"));
  EXPECT_STRNE(message, "");
}

TEST_F(ReportTest, ExportsToEveryEngine) {
  for (const char* engine : {"unreal", "unity", "ue4", "ue5", "ue5-xn", "aximmetry"}) {
    const char* text = nullptr;
    ASSERT_EQ(trackedcam_report_export(handle, engine, nullptr, &text), TRACKEDCAM_OK) << engine;
    const Json json = Json::parse(text);
    EXPECT_EQ(json["code"], 0) << engine;
    EXPECT_EQ(json["engine"], engine);
    EXPECT_EQ(Json::parse(JsonOf(report))["exports"][engine], json) << engine;
  }
  EXPECT_EQ(NumbersAt(report, "/exports/ue4/translationCm").size(), 3U);
  EXPECT_EQ(NumbersAt(report, "/exports/ue5/quaternionXyzw").size(), 4U);
}

TEST_F(ReportTest, TakesTheAxesOfTheParent) {
  ASSERT_EQ(trackedcam_report_export(handle, "unreal", "z,-x,y", nullptr), TRACKEDCAM_OK);
  const std::vector<double> before = NumbersAt(report, "/exports/unreal/locationCm");
  ASSERT_EQ(trackedcam_report_export(handle, "unreal", "minus-z-forward", nullptr), TRACKEDCAM_OK);
  const std::vector<double> after = NumbersAt(report, "/exports/unreal/locationCm");
  EXPECT_EQ(after[0], -before[0]);
  EXPECT_EQ(after[2], before[2]);
  const char* text = nullptr;
  EXPECT_EQ(trackedcam_report_export(handle, "unreal", "x,y,z", &text), TRACKEDCAM_BAD_INPUT);
  EXPECT_EQ(trackedcam_report_export(handle, "ue4", "z,-x,y", &text), TRACKEDCAM_BAD_INPUT);
  EXPECT_EQ(trackedcam_report_export(handle, "blender", nullptr, &text), TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("ue4, ue5, ue5-xn, aximmetry, unreal, unity"));
  EXPECT_EQ(text, nullptr);
}

TEST_F(ReportTest, WritesALensFile) {
  const char* text = nullptr;
  ASSERT_EQ(trackedcam_report_lens_file(handle, nullptr, "Prime 35", &text), TRACKEDCAM_OK);
  EXPECT_THAT(text, HasSubstr("Prime 35"));
  EXPECT_TRUE(Json::accept(text));
}

TEST_F(ReportTest, ExportsToEveryFormatOfFiles) {
  for (const char* format : {"opencv", "ros", "colmap", "opentrackio"}) {
    const char* text = nullptr;
    ASSERT_EQ(trackedcam_report_export(handle, format, nullptr, &text), TRACKEDCAM_OK)
        << trackedcam_last_error();
    const Json json = Json::parse(text);
    EXPECT_EQ(json["code"], 0);
    EXPECT_EQ(json["format"], format);
    const std::string content = json["text"];
    EXPECT_THAT(content, HasSubstr("Verdict good: "));
    EXPECT_THAT(content, HasSubstr("Standard errors of the lens: "));
    EXPECT_EQ(Json::parse(JsonOf(report))["exports"][format], json);
    const std::string file = folder.File("lens");
    ASSERT_EQ(trackedcam_report_export_file(handle, format, nullptr, file.c_str()), TRACKEDCAM_OK);
    EXPECT_EQ(test::ReadFile(file), content);
  }
}

TEST_F(ReportTest, ExportsStMapsAndAPreview) {
  trackedcam_export_options options;
  ASSERT_EQ(trackedcam_export_options_init(&options, sizeof options), TRACKEDCAM_OK);
  const std::string preview = folder.File("preview.png");
  const std::string file = folder.File("lens.exr");
  options.overscan = 1.25;
  const char* text = nullptr;
  ASSERT_EQ(trackedcam_report_export_with(handle, "stmap", &options, &text), TRACKEDCAM_OK);
  EXPECT_EQ(Json::parse(text)["undistortedSize"], Json({800, 450}));
  options.preview_file = preview.c_str();
  ASSERT_EQ(trackedcam_report_export_file(handle, "stmap", &options, file.c_str()), TRACKEDCAM_OK)
      << trackedcam_last_error();
  for (const char* name : {"lens_undistort.exr", "lens_distort.exr"}) {
    EXPECT_THAT(test::ReadFile(folder.File(name)), StartsWith("\x76\x2f\x31\x01")) << name;
  }
  EXPECT_THAT(test::ReadFile(preview), StartsWith("\x89PNG"));
}

TEST_F(ReportTest, WritesTheNodalOffsetOnRequest) {
  trackedcam_export_options options;
  ASSERT_EQ(trackedcam_export_options_init(&options, sizeof options), TRACKEDCAM_OK);
  const std::string file = folder.File("prime.ulens");
  const auto tables = [&] {
    EXPECT_EQ(trackedcam_report_export_file(handle, "unreal", &options, file.c_str()),
              TRACKEDCAM_OK);
    return Json::parse(test::ReadFile(file))["cameraParameterTables"].size();
  };
  EXPECT_EQ(tables(), 3U);
  options.nodal_offset = 1;
  EXPECT_EQ(tables(), 4U);
  EXPECT_EQ(Json::parse(test::ReadFile(file))["metadata"]["name"], "prime");
}

TEST_F(ReportTest, RefusesOptionsOfOtherFormats) {
  const auto refused = [&](const char* format, auto set) {
    trackedcam_export_options options;
    ASSERT_EQ(trackedcam_export_options_init(&options, sizeof options), TRACKEDCAM_OK);
    set(options);
    EXPECT_EQ(trackedcam_report_export_with(handle, format, &options, nullptr),
              TRACKEDCAM_BAD_INPUT);
    EXPECT_STRNE(trackedcam_last_error(), "");
  };
  refused("opencv", [](trackedcam_export_options& options) { options.overscan = 1.1; });
  refused("opencv", [](trackedcam_export_options& options) { options.parent_axes = "x,y,z"; });
  refused("opentrackio",
          [](trackedcam_export_options& options) { options.parent_axes = "z,-x,y"; });
  refused("unreal", [](trackedcam_export_options& options) { options.nodal_offset = 1; });
  refused("stmap", [](trackedcam_export_options& options) { options.preview_file = "a.png"; });
  refused("stmap", [](trackedcam_export_options& options) { options.overscan = 0.5; });
  const std::string file = folder.File("file");
  EXPECT_EQ(trackedcam_report_export_file(handle, "unity", nullptr, file.c_str()),
            TRACKEDCAM_BAD_INPUT);
}

TEST(WrongReport, IsNotExportedUnlessAskedFor) {
  const test::TemporaryFolder folder;
  const std::string log = folder.File("log");
  trackedcam_settings settings = SettingsFor(log);
  settings.chart_translation_m[0] += 0.01;
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  std::int32_t level = -1;
  ASSERT_EQ(trackedcam_report_level(report.Get(), &level), TRACKEDCAM_OK);
  ASSERT_EQ(level, TRACKEDCAM_WRONG);
  trackedcam_export_options options;
  ASSERT_EQ(trackedcam_export_options_init(&options, sizeof options), TRACKEDCAM_OK);
  const std::string file = folder.File("file");
  const char* text = nullptr;
  for (const char* format : {"unity", "ue5", "opencv", "opentrackio"}) {
    EXPECT_EQ(trackedcam_report_export(report.Get(), format, nullptr, &text),
              TRACKEDCAM_WRONG_RESULT);
    EXPECT_THAT(trackedcam_last_error(), HasSubstr("export it with even_if_wrong"));
    EXPECT_EQ(trackedcam_report_export_with(report.Get(), format, &options, &text),
              TRACKEDCAM_WRONG_RESULT);
  }
  EXPECT_EQ(trackedcam_report_export_file(report.Get(), "opencv", nullptr, file.c_str()),
            TRACKEDCAM_WRONG_RESULT);
  EXPECT_EQ(trackedcam_report_lens_file(report.Get(), nullptr, "a", &text),
            TRACKEDCAM_WRONG_RESULT);
  EXPECT_EQ(text, nullptr);
  EXPECT_FALSE(fs::exists(fs::u8path(file)));
  options.even_if_wrong = 1;
  ASSERT_EQ(trackedcam_report_export_with(report.Get(), "unity", &options, &text), TRACKEDCAM_OK);
  EXPECT_EQ(Json::parse(text)["message"], TextAt(report, "/verdict/message"));
  EXPECT_EQ(trackedcam_report_export_file(report.Get(), "opencv", &options, file.c_str()),
            TRACKEDCAM_OK);
  EXPECT_THAT(test::ReadFile(file), HasSubstr("# Verdict wrong: "));
}

TEST_F(ReportTest, TextIsValidUntilTheReportIsFreed) {
  const char* first = nullptr;
  const char* again = nullptr;
  ASSERT_EQ(trackedcam_report_text(handle, "/verdict/message", &first), TRACKEDCAM_OK);
  const std::string before = first;
  for (int i = 0; i < 24; ++i) {
    TextAt(report, ("/photographs/" + std::to_string(i) + "/name").c_str());
  }
  ASSERT_EQ(trackedcam_report_text(handle, "/verdict/message", &again), TRACKEDCAM_OK);
  EXPECT_EQ(first, again);
  EXPECT_EQ(first, before);
}

TEST_F(ReportTest, SavesResultFileAndPage) {
  const std::string json = folder.File("result.json");
  const std::string page = folder.File("page.html");
  ASSERT_EQ(trackedcam_report_save(handle, json.c_str(), page.c_str()), TRACKEDCAM_OK)
      << trackedcam_last_error();
  EXPECT_EQ(test::ReadFile(json), JsonOf(report));
  const char* html = nullptr;
  ASSERT_EQ(trackedcam_report_page(handle, folder.Path().u8string().c_str(), &html), TRACKEDCAM_OK);
  EXPECT_EQ(test::ReadFile(page), html);
  EXPECT_THAT(html, StartsWith("<!"));
  EXPECT_THAT(html, HasSubstr("data:image/jpeg;base64,"));
  ASSERT_EQ(trackedcam_report_page(handle, nullptr, &html), TRACKEDCAM_OK);
  EXPECT_EQ(trackedcam_report_save(handle, nullptr, nullptr), TRACKEDCAM_OK);
  EXPECT_EQ(trackedcam_report_save(handle, folder.Path().u8string().c_str(), nullptr),
            TRACKEDCAM_FAILURE);
}

TEST(FailedReport, HasNeitherLensNorTransform) {
  const test::TemporaryFolder folder;
  const std::string log = folder.File("log");
  trackedcam_settings settings = SettingsFor(log);
  settings.board_columns = 8;  // the chart has 9: the board is found nowhere
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  std::int32_t level = -1, code = -1;
  EXPECT_EQ(trackedcam_report_level(report.Get(), &level), TRACKEDCAM_OK);
  EXPECT_EQ(level, TRACKEDCAM_FAILED);
  EXPECT_EQ(trackedcam_report_code(report.Get(), &code), TRACKEDCAM_OK);
  EXPECT_EQ(code, 4);
  const std::string message = TextAt(report, "/verdict/message");
  trackedcam_lens lens;
  double transform[16];
  EXPECT_EQ(trackedcam_report_lens(report.Get(), &lens, sizeof lens), TRACKEDCAM_NOT_FOUND);
  EXPECT_THAT(trackedcam_last_error(), testing::HasSubstr(message));
  EXPECT_EQ(trackedcam_report_transform_cam_tc(report.Get(), transform), TRACKEDCAM_NOT_FOUND);
  EXPECT_THAT(trackedcam_last_error(), testing::HasSubstr(message));
  EXPECT_EQ(trackedcam_report_export(report.Get(), "ue4", nullptr, nullptr), TRACKEDCAM_NOT_FOUND);
  const char* text = nullptr;
  EXPECT_EQ(trackedcam_report_lens_file(report.Get(), nullptr, "a", &text), TRACKEDCAM_NOT_FOUND);
  EXPECT_EQ(trackedcam_report_page(report.Get(), nullptr, &text), TRACKEDCAM_OK);
}

TEST(FailedReport, HasTheCodeOfTheLibrary) {
  const test::TemporaryFolder folder;
  const std::string log = folder.File("log");
  trackedcam_settings settings = SettingsFor(log);
  settings.expected_records = 0;
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  std::int32_t level = -1, code = -1;
  EXPECT_EQ(trackedcam_report_code(report.Get(), &code), TRACKEDCAM_OK);
  EXPECT_EQ(code, 7);
  EXPECT_EQ(trackedcam_report_level(report.Get(), &level), TRACKEDCAM_OK);
  EXPECT_EQ(level, TRACKEDCAM_FAILED);
}

}  // namespace
}  // namespace trackedcam::c
