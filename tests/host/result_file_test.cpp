#include "host/result/result_file.h"

#include <stdexcept>

#include <gmock/gmock.h>

#include "host/input/inputs.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kResult = R"({
  "code": 99, "normFocal": [0.9, 1.6], "normCenter": [0.5, 0.49],
  "transformCamTc": [1, 0, 0, 0.01, 0, 1, 0, -0.02, 0, 0, 1, 0.03, 0, 0, 0, 1]})";

class ResultFileTest : public testing::Test {
 protected:
  ExportInput Read(const std::string& content) {
    test::WriteFile(folder.File("result.json"), content);
    return ReadResult(folder.Path() / "result.json");
  }

  template <class Error>
  std::string ErrorOf(const std::string& content) {
    try {
      Read(content);
    } catch (const Error& error) {
      return error.what();
    }
    return "no error";
  }

  static std::string With(const std::string& part, const std::string& replacement) {
    std::string content = kResult;
    return content.replace(content.find(part), part.size(), replacement);
  }

  test::TemporaryFolder folder;
};

TEST_F(ResultFileTest, HasWhatEnginesNeed) {
  const ExportInput input = Read(kResult);
  const CalibrationOutputs& outputs = input.calibration;
  EXPECT_THAT(outputs.normFocal, ElementsAre(0.9, 1.6));
  EXPECT_THAT(outputs.normCenter, ElementsAre(0.5, 0.49));
  EXPECT_EQ(outputs.transformCamTc.size(), 16U);
  EXPECT_EQ(outputs.transformCamTc[7], -0.02);
  EXPECT_FALSE(input.sensorMm);
}

TEST_F(ResultFileTest, MayTellTheWholeLens) {
  const std::string lens = R"("imageSize": [1920, 1080], "distortion": [-0.1, 0.02, 0, 0, 0], )"
                           R"("inputs": {"sensorMm": [36, 20.25]}, "normFocal")";
  const ExportInput input = Read(With("\"normFocal\"", lens));
  EXPECT_THAT(input.calibration.imageSize, ElementsAre(1920, 1080));
  EXPECT_THAT(input.calibration.distortion, ElementsAre(-0.1, 0.02, 0, 0, 0));
  ASSERT_TRUE(input.sensorMm);
  EXPECT_THAT(*input.sensorMm, ElementsAre(36, 20.25));
}

TEST_F(ResultFileTest, MustBeOfAUsableCalibration) {
  EXPECT_THAT(ErrorOf<std::runtime_error>(R"({"code": 4, "normFocal": []})"),
              HasSubstr("result.json is of a calibration that failed, code 4: Fewer than 12"));
  EXPECT_THAT(ErrorOf<std::runtime_error>(With("99", "14")), HasSubstr("code 14"));
}

TEST_F(ResultFileTest, MustHoldARotationAndATranslation) {
  for (const auto& [part, replacement] :
       std::vector<std::pair<std::string, std::string>>{{"[1, 0", "[0, 0"},            // singular
                                                        {"[1, 0", "[2, 0"},            // scaled
                                                        {"[1, 0", "[-1, 0"},           // mirrored
                                                        {"0, 1, 0, -", "0, 1, 1, -"},  // sheared
                                                        {"0.01", "1e300"}}) {
    EXPECT_THAT(ErrorOf<InputError>(With(part, replacement)),
                HasSubstr("result.json holds a transformCamTc that no engine can take"))
        << replacement;
  }
  EXPECT_THAT(ErrorOf<InputError>(With("0.9", "0")), HasSubstr("normFocal"));
}

TEST_F(ResultFileTest, MustFitIntoMemory) {
  EXPECT_THAT(ErrorOf<InputError>(std::string(1000000, '[')), HasSubstr("nested too deep"));
  EXPECT_THAT(ErrorOf<InputError>("\"\\\"\\\\\"" + std::string(101, '{')),
              HasSubstr("nested too deep"));
  EXPECT_THAT(ErrorOf<InputError>("\"\\\"" + std::string(101, '[') + '"'),
              testing::Not(HasSubstr("nested too deep")))
      << "a string";
  EXPECT_THAT(ErrorOf<InputError>(std::string(65 << 20, ' ')), HasSubstr("too large"));
}

// Each key of an object is compared with those before it.
TEST_F(ResultFileTest, MustNotHaveManyKeysInOneObject) {
  const auto keys = [](int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += (i == 0 ? "\"" : ",\"") + std::to_string(i) + "\": [{\"a,:\": 0}, 0]";
    }
    return '{' + text + '}';
  };
  EXPECT_THAT(ErrorOf<InputError>(keys(1001)), HasSubstr("more than 1000 keys"));
  EXPECT_THAT(ErrorOf<InputError>(keys(1000)), testing::Not(HasSubstr("keys")));
}

TEST_F(ResultFileTest, MustBeAResult) {
  for (const std::string& content :
       {std::string(), std::string("[]"), std::string("{}"), With("99", "\"0\""),
        With("transformCamTc", "transform"), With("0.01,", ""), With("1.6", "null"),
        With("[0.9, 1.6]", "0.9"), With("0.49]", "0.49, 1]"), With("]}", "")}) {
    EXPECT_THAT(ErrorOf<InputError>(content), HasSubstr("is not the result of a calibration: "))
        << content;
  }
}

TEST_F(ResultFileTest, SaysWhereTheResultComesFrom) {
  const Origin ofCode = Read(kResult).origin.value();
  EXPECT_EQ(ofCode.level, Level::kDoubtful);  // code 99
  EXPECT_THAT(ofCode.message, HasSubstr("a new calibration is recommended"));
  EXPECT_EQ(ofCode.time, "");
  EXPECT_THAT(ofCode.lensErrors, testing::IsEmpty());

  const Origin origin = Read(With("\"code\": 99",
                                  R"("code": 0, "time": "2026-11-22 14:05:09",
                   "verdict": {"level": "wrong", "message": "The result is off."},
                   "crossCheck": {"lens": {"fx": 1, "fy": 2, "cx": 3, "cy": 4, "k1": 5, "k2": 6},
                                  "standardErrorCamTc": {"translationMm": [1, 2, 3],
                                                         "rotationDegrees": [4, 5, null]}})"))
                            .origin.value();
  EXPECT_EQ(origin.level, Level::kWrong);
  EXPECT_EQ(origin.message, "The result is off.");
  EXPECT_EQ(origin.time, "2026-11-22 14:05:09");
  EXPECT_THAT(origin.lensErrors, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(origin.positionErrorsMm, ElementsAre(1, 2, 3));
  EXPECT_THAT(origin.rotationErrorsDegrees, testing::IsEmpty());
}

TEST_F(ResultFileTest, ShowsThePhotographInWhichTheChartReachesFarthest) {
  const auto photographs = [](const std::string& list) {
    return With("\"code\": 99",
                R"("code": 99, "imageSize": [100, 100], "distortion": [0, 0, 0, 0, 0],
                   "photographs": )" +
                    list);
  };
  EXPECT_EQ(Read(photographs(R"([
    {"state": "used", "path": "/a.jpg", "crossCheck": {"corners": [[50, 50], [60, 50]]}},
    {"state": "used", "path": "/b.jpg", "crossCheck": {"corners": [[50, 10], [60, 50]]}},
    {"state": "leftOutByFilter", "path": "/c.jpg", "crossCheck": {"corners": [[0, 0]]}},
    {"state": "used", "path": "/d.jpg", "crossCheck": null}])"))
                .photograph.u8string(),
            "/b.jpg");
  for (const char* list : {"[]", "null", "[1, null, [], {}]", R"({"a": 1})",
                           R"([{"state": "used", "crossCheck": {"corners": [[null, 1], 2]}}])"}) {
    EXPECT_EQ(Read(photographs(list)).photograph, "") << list;
  }
}

TEST_F(ResultFileTest, KnowsItsOwnExports) {
  const auto isExport = [&](const std::string& content) {
    test::WriteFile(folder.File("file"), content);
    return IsExportFile(folder.Path() / "file");
  };
  EXPECT_TRUE(isExport("%YAML:1.0\n---\n# Written by trackedcam 1.1.0\n"));
  EXPECT_FALSE(isExport("%YAML:1.0\n---\n# Written by hand\n"));
  EXPECT_FALSE(isExport(std::string(5000, ' ') + "Written by trackedcam 1.1.0"));
  EXPECT_FALSE(IsExportFile(folder.Path() / "none"));
}

}  // namespace
}  // namespace trackedcam::host
