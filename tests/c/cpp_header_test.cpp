// The header for hosts in C++17, against the C interface.

#include <fstream>
#include <stdexcept>
#include <type_traits>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "simulated_shoot.h"
#include "trackedcam/trackedcam.h"  // both headers in one file: their names must not clash
#include "trackedcam/trackedcam.hpp"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAreArray;
using testing::HasSubstr;

static_assert(std::is_move_constructible_v<Report> && !std::is_copy_constructible_v<Report>);
static_assert(std::is_move_constructible_v<Shoot> && !std::is_copy_constructible_v<Shoot>);
static_assert(std::is_move_constructible_v<Run> && !std::is_copy_constructible_v<Run>);

Settings CppSettings(const fs::path& logFolder) {
  Settings settings;
  static_cast<trackedcam_settings&>(settings) = SettingsFor("");
  settings.log_folder = logFolder;
  return settings;
}

template <class Call>
trackedcam_status StatusOf(Call call) {
  try {
    call();
  } catch (const Error& error) {
    EXPECT_STRNE(error.what(), "");
    return error.Status();
  }
  return TRACKEDCAM_OK;
}

class CppHeaderTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = new test::TemporaryFolder;
    report = new Report(Calibrate(OneShoot(), CppSettings(Log())));
  }
  static void TearDownTestSuite() {
    delete report;
    delete folder;
  }

  static Shoot OneShoot() { return Shoot(fs::u8path(SimulatedShoot::Get().DataFile())); }
  static fs::path Log() { return folder->Path() / fs::u8path(u8"Büro"); }

  static test::TemporaryFolder* folder;
  static Report* report;
};
test::TemporaryFolder* CppHeaderTest::folder = nullptr;
Report* CppHeaderTest::report = nullptr;

TEST_F(CppHeaderTest, ReturnsTheValuesOfTheResultFile) {
  const fs::path file = folder->Path() / fs::u8path(u8"Ergebnis_ü.json");
  const fs::path page = folder->Path() / fs::u8path(u8"Seite_ü.html");
  report->Save(file, page);
  std::ifstream stream(file);
  const nlohmann::json result = nlohmann::json::parse(stream);
  EXPECT_EQ(nlohmann::json::parse(report->Json()), result);
  EXPECT_THAT(report->TransformCamTc().value(),
              ElementsAreArray(result["transformCamTc"].get<std::vector<double>>()));
  EXPECT_THAT(report->Numbers("/normFocal").value(),
              ElementsAreArray(result["normFocal"].get<std::vector<double>>()));
  EXPECT_EQ(report->Code(), result["code"].get<int>());
  EXPECT_EQ(report->Level(), TRACKEDCAM_GOOD);
  EXPECT_EQ(report->Message(), result["verdict"]["message"]);
  EXPECT_EQ(report->Advice(), result["verdict"]["advice"]);
  EXPECT_EQ(report->Text("/verdict/message"), report->Message());
  EXPECT_EQ(report->Count("/photographs"), 24u);
  EXPECT_EQ(report->Lens().value().image_width_px, 640);
  EXPECT_GT(fs::file_size(page), 10000u);
  EXPECT_THAT(report->Page(), testing::StartsWith("<!doctype html>"));
  EXPECT_TRUE(fs::is_directory(Log() / "run_001"));
}

TEST_F(CppHeaderTest, HasNoValueWhereTheReportHasNone) {
  EXPECT_EQ(report->Numbers("/nothing"), std::nullopt);
  EXPECT_EQ(report->Text("/normFocal"), std::nullopt);
  EXPECT_EQ(report->Count("/code"), std::nullopt);
}

TEST_F(CppHeaderTest, ExportsWithAndWithoutOptions) {
  ExportOptions options;
  options.parent_axes = "z,-x,y";  // the default of unreal
  EXPECT_EQ(report->Export("unreal"), report->Export("unreal", options));
  options.parent_axes = "minus-z-forward";
  EXPECT_NE(report->Export("unreal"), report->Export("unreal", options));

  const fs::path file = folder->Path() / fs::u8path(u8"Kamera_ü.yml");
  report->ExportFile("opencv", file);
  EXPECT_THAT(test::ReadText(file.u8string()), HasSubstr("camera_matrix"));
  EXPECT_THAT(report->LensFile("A lens"), HasSubstr("A lens"));
  EXPECT_EQ(StatusOf([] { report->Export("nothing"); }), TRACKEDCAM_BAD_INPUT);
}

TEST_F(CppHeaderTest, ThrowsTheStatusAndTheSentence) {
  Settings settings = CppSettings(Log());
  settings.square_m = 30;
  try {
    Calibrate(OneShoot(), settings);
    FAIL() << "squares of 30 m";
  } catch (const Error& error) {
    EXPECT_EQ(error.Status(), TRACKEDCAM_BAD_INPUT);
    EXPECT_THAT(error.what(), HasSubstr("30"));
  }
  Shoot moved = OneShoot();
  const Shoot shoot = std::move(moved);
  // NOLINTNEXTLINE(bugprone-use-after-move): it must not crash
  EXPECT_EQ(StatusOf([&] { moved.Save("rows.csv"); }), TRACKEDCAM_INVALID_ARGUMENT);
}

TEST_F(CppHeaderTest, PassesTheProgressAndAnExceptionOfItsListener) {
  std::vector<std::string> stages;
  int calls = 0;
  const auto tell = [&](const trackedcam_progress& progress) {
    ++calls;
    stages.emplace_back(progress.stage);
    throw std::out_of_range("the host's");
  };
  EXPECT_THROW(Calibrate(OneShoot(), CppSettings(folder->Path() / "thrown"), tell),
               std::out_of_range);
  EXPECT_EQ(calls, 1);  // and the run went on to its end
  EXPECT_EQ(trackedcam::Run(OneShoot(), CppSettings(folder->Path() / "thrown")).WaitFor({}), false);
}

TEST_F(CppHeaderTest, RunsInTheBackground) {
  Settings settings = CppSettings(folder->Path() / "background");
  settings.exclude = {"img_003", "img_007"};
  settings.at_m = {3, 5};
  const trackedcam::Run run(OneShoot(), settings);
  EXPECT_EQ(StatusOf([&] { run.Report(); }), TRACKEDCAM_NOT_DONE);
  EXPECT_FALSE(run.WaitFor(std::chrono::milliseconds(1)));
  run.Wait();
  EXPECT_TRUE(run.IsDone());
  EXPECT_TRUE(run.WaitFor(std::chrono::hours(10000)));
  EXPECT_STRNE(run.Progress().stage, "");
  const Report later = run.Report();
  EXPECT_THAT(later.Text("/inputs/exclude/1").value_or(""), HasSubstr("img_007"));
  EXPECT_THAT(later.Json(), HasSubstr("\"leftOutByUser\""));
}

TEST_F(CppHeaderTest, KeepsRowsInMemory) {
  Shoot shoot;
  const trackedcam_pose pose = {{1, 2, 3}, {1, 0, 0, 0}};
  shoot.Add(0.5, fs::u8path(u8"Bild_ü.png"), pose, pose);
  const fs::path file = folder->Path() / fs::u8path(u8"Zeilen_ü.csv");
  shoot.Save(file);
  EXPECT_THAT(test::ReadText(file.u8string()), HasSubstr(u8"Bild_ü.png"));
  Shoot continued = OneShoot();
  continued.Continue(file);
}

TEST_F(CppHeaderTest, ChecksVerifiesAndCompares) {
  const Report checked = CrossCheck(fs::u8path(report->Text("/log").value()), CppSettings({}));
  EXPECT_THAT(checked.Numbers("/crossCheck/transformCamTc"),
              report->Numbers("/crossCheck/transformCamTc"));

  const fs::path file = folder->Path() / "compared.json";
  report->Save(file);
  VerifyOptions options;
  options.at_m = {3};
  const Verification verification(file, fs::u8path(SimulatedShoot::Get().DataFile()), options);
  EXPECT_EQ(verification.Answer(), TRACKEDCAM_HOLDS);
  EXPECT_EQ(nlohmann::json::parse(verification.Json())["answer"], "holds");
  EXPECT_THAT(nlohmann::json::parse(Comparison(file, file).Json())["conclusion"].get<std::string>(),
              testing::Not(testing::IsEmpty()));
}

TEST(CppHeader, HasTheVersionOfTheLibrary) {
  EXPECT_EQ(Version(), TRACKEDCAM_VERSION);
}

}  // namespace
}  // namespace trackedcam::c
