// Verifications of a simulated shoot.

#include <array>
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "simulated_shoot.h"
#include "support/platform.h"

namespace trackedcam::c {
namespace {

using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using OwnedVerification = Owned<trackedcam_verification, trackedcam_verification_free>;

class VerifyTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = new test::TemporaryFolder;
    const std::string log = folder->File("log");
    const OwnedReport report = Calibrated(OpenedShoot(), SettingsFor(log));
    ASSERT_EQ(trackedcam_report_save(report.Get(), ResultFile().c_str(), nullptr), TRACKEDCAM_OK);
  }
  static void TearDownTestSuite() { delete folder; }

  static std::string ResultFile() { return folder->File("result.json"); }

  // The first rows of the shoot's data file, with its header.
  static std::string DataFile(int count) {
    std::istringstream data(test::ReadFile(SimulatedShoot::Get().DataFile()));
    std::string text;
    std::string line;
    for (int k = 0; k <= count && std::getline(data, line); ++k) {
      text += line + '\n';
    }
    test::WriteFile(folder->File("later.csv"), text);
    return folder->File("later.csv");
  }

  static trackedcam_verify_options Options() {
    trackedcam_verify_options options;
    EXPECT_EQ(trackedcam_verify_options_init(&options, sizeof options), TRACKEDCAM_OK);
    return options;
  }

  static test::TemporaryFolder* folder;
};
test::TemporaryFolder* VerifyTest::folder = nullptr;

TEST_F(VerifyTest, SaysThatTheShootsOwnPhotographsFit) {
  const std::string photographs = SimulatedShoot::Get().Folder().u8string();
  trackedcam_verify_options options = Options();
  options.working_folder = photographs.c_str();
  OwnedVerification verification;
  ASSERT_EQ(
      trackedcam_verify(ResultFile().c_str(), DataFile(5).c_str(), &options, verification.Fill()),
      TRACKEDCAM_OK)
      << trackedcam_last_error();
  std::int32_t answer = -1;
  ASSERT_EQ(trackedcam_verification_answer(verification.Get(), &answer), TRACKEDCAM_OK);
  EXPECT_EQ(answer, TRACKEDCAM_HOLDS);
  const char* text = nullptr;
  ASSERT_EQ(trackedcam_verification_json(verification.Get(), &text), TRACKEDCAM_OK);
  const Json json = Json::parse(text);
  EXPECT_EQ(json["answer"], "holds");
  EXPECT_EQ(json["photographs"].size(), 5U);
}

TEST_F(VerifyTest, StatesTheErrorAtDistances) {
  const std::string photographs = SimulatedShoot::Get().Folder().u8string();
  constexpr std::array<double, 2> kAt = {7, 3};
  trackedcam_verify_options options = Options();
  options.working_folder = photographs.c_str();
  options.at_m = kAt.data();
  options.at_count = 2;
  OwnedVerification verification;
  ASSERT_EQ(
      trackedcam_verify(ResultFile().c_str(), DataFile(5).c_str(), &options, verification.Fill()),
      TRACKEDCAM_OK)
      << trackedcam_last_error();
  const char* text = nullptr;
  ASSERT_EQ(trackedcam_verification_json(verification.Get(), &text), TRACKEDCAM_OK);
  const Json onScreen = Json::parse(text)["onScreen"];
  ASSERT_EQ(onScreen.size(), 2U);
  EXPECT_EQ(onScreen[0]["distanceMetres"], 3);
  EXPECT_GT(onScreen[1]["corner"]["pixels"], 0);

  options.at_m = nullptr;
  trackedcam_verification* none = nullptr;
  EXPECT_EQ(trackedcam_verify(ResultFile().c_str(), DataFile(5).c_str(), &options, &none),
            TRACKEDCAM_INVALID_ARGUMENT);
  constexpr double kBehind = -1;
  options.at_m = &kBehind;
  options.at_count = 1;
  EXPECT_EQ(trackedcam_verify(ResultFile().c_str(), DataFile(5).c_str(), &options, &none),
            TRACKEDCAM_BAD_INPUT);
}

TEST_F(VerifyTest, SaysThatTwoAreTooFew) {
  const std::string photographs = SimulatedShoot::Get().Folder().u8string();
  trackedcam_verify_options options = Options();
  options.working_folder = photographs.c_str();
  OwnedVerification verification;
  ASSERT_EQ(
      trackedcam_verify(ResultFile().c_str(), DataFile(2).c_str(), &options, verification.Fill()),
      TRACKEDCAM_OK);
  std::int32_t answer = -1;
  ASSERT_EQ(trackedcam_verification_answer(verification.Get(), &answer), TRACKEDCAM_OK);
  EXPECT_EQ(answer, TRACKEDCAM_TOO_FEW);
}

TEST_F(VerifyTest, RefusesWrongUse) {
  const std::string result = ResultFile();
  const std::string data = DataFile(5);
  trackedcam_verify_options options = Options();
  trackedcam_verification* none = nullptr;
  const auto verify = [&] {
    return trackedcam_verify(result.c_str(), data.c_str(), &options, &none);
  };
  EXPECT_EQ(trackedcam_verify(nullptr, data.c_str(), &options, &none), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_verify(result.c_str(), "", &options, &none), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_verify(result.c_str(), data.c_str(), &options, nullptr),
            TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_verify(data.c_str(), data.c_str(), &options, &none), TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("result file"));

  options.board_columns = 7;
  options.board_rows = 5;
  EXPECT_EQ(verify(), TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), AllOf(HasSubstr("7 x 5"), HasSubstr("9 x 6")));
  options.chart_remounted = 1;
  options.board_rows = -5;
  EXPECT_EQ(verify(), TRACKEDCAM_BAD_INPUT);
  options.struct_size = 4;
  EXPECT_EQ(verify(), TRACKEDCAM_INVALID_ARGUMENT);

  EXPECT_EQ(trackedcam_verification_answer(none, nullptr), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_verification_json(nullptr, nullptr), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_verification_free(nullptr), TRACKEDCAM_OK);
  EXPECT_EQ(none, nullptr);
}

TEST_F(VerifyTest, ComparesResultsAsTheProgramDoes) {
  const std::string log = folder->File("without");
  const std::string other = folder->File("other.json");
  trackedcam_settings settings = SettingsFor(log);
  settings.exclude = "img_003,img_004,img_005";
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  ASSERT_EQ(trackedcam_report_save(report.Get(), other.c_str(), nullptr), TRACKEDCAM_OK);

  Owned<trackedcam_comparison, trackedcam_comparison_free> comparison;
  ASSERT_EQ(trackedcam_compare(ResultFile().c_str(), other.c_str(), comparison.Fill()),
            TRACKEDCAM_OK)
      << trackedcam_last_error();
  const char* text = "";
  ASSERT_EQ(trackedcam_comparison_json(comparison.Get(), &text), TRACKEDCAM_OK);
  EXPECT_EQ(Json::parse(text)["lens"]["fx"]["second"].get<double>(),
            Json::parse(test::ReadFile(other))["normFocal"][0].get<double>() *
                Json::parse(test::ReadFile(other))["imageSize"][0].get<double>());
  test::RunProgram(std::filesystem::absolute(TRACKEDCAM_HOST_PROGRAM),
                   {"compare", "--json", ResultFile(), other}, folder->Path(),
                   folder->Path() / "out", folder->Path() / "error");
  EXPECT_EQ(Json::parse(text), Json::parse(test::ReadFile(folder->File("out"))));
}

TEST_F(VerifyTest, RefusesToCompareWhatIsNoResult) {
  const std::string result = ResultFile();
  const std::string data = DataFile(5);
  trackedcam_comparison* none = nullptr;
  EXPECT_EQ(trackedcam_compare(nullptr, result.c_str(), &none), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_compare(result.c_str(), "", &none), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_compare(result.c_str(), result.c_str(), nullptr),
            TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_compare(result.c_str(), data.c_str(), &none), TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr(data));
  EXPECT_EQ(trackedcam_comparison_json(nullptr, nullptr), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_comparison_free(nullptr), TRACKEDCAM_OK);
  EXPECT_EQ(none, nullptr);
}

}  // namespace
}  // namespace trackedcam::c
