#include "host/calibrate.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <regex>
#include <set>

#include <gmock/gmock.h>

#include "host/findings/finding_text.h"
#include "simulator/shoot.h"
#include "simulator/write_shoot.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::HasSubstr;

template <class Kind>
const Finding* Find(const Report& report) {
  for (const Finding& finding : report.findings) {
    if (std::holds_alternative<Kind>(finding.kind)) {
      return &finding;
    }
  }
  return nullptr;
}

class CalibrateTest : public testing::Test {
 protected:
  // Without a mounting.
  Inputs Simulate(const simulator::ShootOptions& options,
                  const std::function<void(simulator::Shoot&)>& change = {}) {
    simulated = simulator::SimulateShoot(options);
    if (change) {
      change(simulated);
    }
    simulator::WriteShoot(simulated, folder.Path() / "shoot", [](int, int) {});
    Inputs inputs;
    inputs.data = folder.Path() / "shoot" / "tracker_data.csv";
    inputs.workingFolder = inputs.data.parent_path();
    inputs.logFolder = folder.Path() / "logs";
    inputs.sensorMm = {options.sensorWidthMm, options.sensorHeightMm};
    inputs.board = {options.chart.cols, options.chart.rows};
    inputs.squareMetres = options.chart.squareMetres;
    return inputs;
  }

  Report WithoutMounting(const simulator::ShootOptions& options) {
    return Calibrate(Simulate(options));
  }

  Report WithMounting(Inputs inputs) {
    const simulator::Mounting& stated = simulated.nominalMounting;
    inputs.mounting.emplace();
    Eigen::Vector3d::Map(inputs.mounting->rotationDegrees.data()) = stated.anglesDegrees;
    Eigen::Vector3d::Map(inputs.mounting->translationMetres.data()) = stated.translationMetres;
    return Calibrate(inputs);
  }

  // Replaces numbers from a field on in some rows, both counted from 0.
  static void ChangeRows(const Inputs& inputs, const std::set<std::size_t>& rows,
                         std::size_t firstField, const std::vector<std::string>& numbers) {
    std::string changed;
    std::size_t index = 0;
    for (const DataRow& row : ReadRows(test::ReadFile(inputs.data.u8string()))) {
      const std::vector<std::string_view> parts = SplitFields(row.text);
      std::vector<std::string> fields(parts.begin(), parts.end());
      if (rows.count(index++) != 0) {
        std::copy(numbers.begin(), numbers.end(),
                  fields.begin() + static_cast<std::ptrdiff_t>(firstField));
      }
      for (std::size_t i = 0; i < fields.size(); ++i) {
        changed += (i == 0 ? "" : ",") + fields[i];
      }
      changed += '\n';
    }
    test::WriteFile(inputs.data.u8string(), changed);
  }

  double OffMillimetres(const Report& report) const {
    const std::vector<double>& found = report.run.outputs.transformCamTc;
    const Eigen::Vector3d translation(found.at(3), found.at(7), found.at(11));
    return 1000 * (translation - simulated.Transform_Cam_Tc.translation()).norm();
  }

  static Report Calibrate(const Inputs& inputs) {
    return host::Calibrate(inputs, ReadShootData(inputs.data, {}, inputs.exclude),
                           [](const Progress&) {});
  }

  static simulator::ShootOptions Small(int photographs) {
    simulator::ShootOptions options;
    options.photographs = photographs;
    options.imageWidth = 640;
    options.imageHeight = 360;
    return options;
  }

  test::TemporaryFolder folder;
  simulator::Shoot simulated;
};

// A run with zeros for an unknown mounting must not look like a result.
TEST_F(CalibrateTest, FailsWithoutAMountingWhereItCannotBeFound) {
  const Report report = WithoutMounting(Small(5));
  EXPECT_FALSE(report.mountingIsStated);
  EXPECT_EQ(report.firstRun, nullptr);
  EXPECT_EQ(report.verdict.level, Level::kFailed);
  EXPECT_THAT(report.verdict.message, HasSubstr(' ' + VerdictOf(kTooFewPhotographs).message));
  EXPECT_EQ(report.verdict.advice, VerdictOf(kTooFewPhotographs).advice);
}

TEST_F(CalibrateTest, CalibratesWithTheMountingThatItFound) {
  const Report report = WithoutMounting(Small(14));
  EXPECT_FALSE(report.mountingIsStated);
  ASSERT_NE(report.firstRun, nullptr);
  ASSERT_TRUE(report.inputs.mounting);
  EXPECT_GT(report.seconds.library.value(), report.firstRun->seconds.library.value());
  EXPECT_GT(report.seconds.crossCheck.value(), report.firstRun->seconds.crossCheck.value());
  EXPECT_GT(report.firstRun->seconds.library.value(), 0);
  EXPECT_NE(report.verdict.level, Level::kFailed);
  EXPECT_NE(report.run.folder, report.firstRun->run.folder);
}

TEST_F(CalibrateTest, DecodesPhotographsOnceForBothRuns) {
  const Report report = WithoutMounting(Small(14));
  ASSERT_NE(report.firstRun, nullptr);
  EXPECT_EQ(report.sharpness, report.firstRun->sharpness);
  for (const PhotographEntry& entry : report.photographs) {
    EXPECT_TRUE(report.sharpness->at(entry.index)) << entry.name;
  }
}

// What the first run left out keeps its row and place, and says why.
TEST_F(CalibrateTest, ListsEveryRowInTheSecondRun) {
  simulator::ShootOptions options = Small(20);
  options.outliers = 2;
  options.missing = 1;
  const Report report = WithoutMounting(options);
  ASSERT_NE(report.firstRun, nullptr);
  ASSERT_EQ(report.photographs.size(), 20U);
  ASSERT_EQ(report.firstRun->photographs.size(), 20U);
  EXPECT_EQ(CountInState(report.photographs, PhotographState::kLeftOutByCrossCheck), 2U);
  EXPECT_EQ(CountInState(report.photographs, PhotographState::kNotLoaded), 1U);
  const std::size_t used = CountInState(report.photographs, PhotographState::kUsed);
  const std::size_t filtered = CountInState(report.photographs, PhotographState::kLeftOutByFilter);
  EXPECT_EQ(used + filtered + 3, 20U);
  const Finding* leftOut = Find<LeftOutPhotographs>(report);
  ASSERT_NE(leftOut, nullptr);
  EXPECT_EQ(leftOut->severity, Severity::kNote);
  EXPECT_EQ(leftOut->photographs.size(), 2U);
  for (std::size_t i = 0; i < report.photographs.size(); ++i) {
    const PhotographEntry& entry = report.photographs[i];
    EXPECT_EQ(entry.row, i + 2);
    EXPECT_EQ(entry.name, report.firstRun->photographs[i].name);
    EXPECT_EQ(entry.reason.empty(), entry.state == PhotographState::kUsed) << entry.name;
    if (entry.inRun) {
      EXPECT_EQ(report.run.record.photographs.at(*entry.inRun).path, entry.name);
    }
    if (entry.state == PhotographState::kUsed) {
      EXPECT_THAT(report.run.images.at(*entry.inRun).u8string(),
                  HasSubstr(std::filesystem::u8path(entry.name).filename().u8string()));
      EXPECT_TRUE(report.run.record.photographs[*entry.inRun].errorPixels);
    }
  }
}

// A second run must not look right because of what it leaves out.
TEST_F(CalibrateTest, KeepsWhatTheFirstRunFoundOfTheShoot) {
  simulator::ShootOptions options = Small(24);
  options.trackerNoiseMm = 0.3;
  options.trackerNoiseDegrees = 0.05;
  const Inputs inputs = Simulate(options, [](simulator::Shoot& shoot) {
    const Eigen::Isometry3d moved(Eigen::Translation3d(0.01, 0, 0) *
                                  Eigen::AngleAxisd(0.02, Eigen::Vector3d::UnitY()));
    for (std::size_t i = 17; i < shoot.photographs.size(); ++i) {
      shoot.photographs[i].trackedTc = shoot.photographs[i].trackedTc * moved;
    }
  });
  const Report report = Calibrate(inputs);
  ASSERT_NE(report.firstRun, nullptr);
  EXPECT_EQ(report.verdict.level, Level::kWrong);
  const Finding* moved = Find<crosscheck::TrackerMoved>(report);
  ASSERT_NE(moved, nullptr);
  EXPECT_THAT(moved->photographs, testing::ElementsAre(report.photographs[17].name));
  EXPECT_EQ(report.verdict.advice, Advice(*moved));
  EXPECT_EQ(report.verdict.option, "");
}

// A file that changes after it was checked does not change what is calibrated.
TEST_F(CalibrateTest, CalibratesWhatWasRead) {
  const Report before = WithoutMounting(Small(14));
  const ShootData shoot = ReadShootData(before.inputs.data, {});
  test::WriteFile(before.inputs.data.u8string(), "Time\n0,photos/img_000.jpg\n");
  Inputs inputs = before.inputs;
  inputs.mounting = std::nullopt;
  const Report after = host::Calibrate(inputs, shoot, [](const Progress&) {});
  EXPECT_EQ(after.run.outputs.transformCamTc, before.run.outputs.transformCamTc);
}

// One row without a pose spoils the library's result by centimetres.
TEST_F(CalibrateTest, LeavesOutRowsInWhichTrackingWasLost) {
  const Inputs inputs = Simulate(Small(20));
  ChangeRows(inputs, {4, 11}, 9, {"0", "0", "0", "1", "0", "0", "0"});
  const Report report = WithMounting(inputs);
  EXPECT_EQ(report.verdict.level, Level::kGood) << report.verdict.message;
  EXPECT_LT(OffMillimetres(report), 1);
  ASSERT_EQ(report.photographs.size(), 20U);
  EXPECT_EQ(report.photographs[4].state, PhotographState::kLeftOutBeforeTheRun);
  EXPECT_NE(report.photographs[4].reason, "");
  EXPECT_EQ(CountInState(report.photographs, PhotographState::kLeftOutBeforeTheRun), 2U);
  const Finding* lost = Find<RowFault>(report);
  ASSERT_NE(lost, nullptr);
  EXPECT_EQ(std::get<RowFault>(lost->kind).kind, RowFault::Kind::kLostTracking);
  EXPECT_THAT(lost->photographs,
              testing::ElementsAre(report.photographs[4].name, report.photographs[11].name));
}

TEST_F(CalibrateTest, IsWrongIfTheResultIsCertainlyOffThoughTheMountingIsRight) {
  simulator::ShootOptions options = Small(20);
  options.outliers = 1;
  options.slipMm = 200;
  options.slipDegrees = 10;
  const Inputs inputs = Simulate(options);
  const Report report = WithMounting(inputs);
  ASSERT_GT(OffMillimetres(report), 5);
  EXPECT_EQ(report.verdict.level, Level::kWrong);
  EXPECT_NE(Find<crosscheck::LibraryApart>(report), nullptr);
  EXPECT_EQ(report.verdict.option, "--refine-mounting");

  Inputs refined = inputs;
  refined.refineMounting = true;
  const Report second = WithMounting(refined);
  EXPECT_LT(OffMillimetres(second), 1);
}

// One photograph that contradicts the others; the verdict names it for the next call.
TEST_F(CalibrateTest, LeavesOutWhatTheUserNames) {
  simulator::ShootOptions options = Small(20);
  options.outliers = 1;
  options.slipMm = 200;
  options.slipDegrees = 10;
  Inputs inputs = Simulate(options);
  const Report first = WithMounting(inputs);
  ASSERT_GT(OffMillimetres(first), 5);
  ASSERT_EQ(first.verdict.exclude.size(), 1U);

  inputs.exclude = first.verdict.exclude;
  const Report report = WithMounting(inputs);
  EXPECT_EQ(report.verdict.level, Level::kGood) << report.verdict.message;
  EXPECT_LT(OffMillimetres(report), 1);
  EXPECT_THAT(report.verdict.exclude, testing::IsEmpty());
  ASSERT_EQ(report.photographs.size(), 20U);
  for (std::size_t i = 0; i < 20; ++i) {
    const PhotographEntry& entry = report.photographs[i];
    EXPECT_EQ(entry.row, first.photographs[i].row);
    EXPECT_EQ(entry.name, first.photographs[i].name);
    const bool isExcluded = entry.name.find(inputs.exclude[0]) != std::string::npos;
    EXPECT_EQ(entry.state == PhotographState::kLeftOutByUser, isExcluded) << entry.name;
    EXPECT_EQ(entry.reason == "left out by the user", isExcluded) << entry.reason;
  }
  EXPECT_THAT(CountText(report.photographs), HasSubstr("1 left out by the user"));

  // The same in a second run, and in the check of a log.
  inputs.mounting = std::nullopt;
  const Report second = Calibrate(inputs);
  ASSERT_NE(second.firstRun, nullptr);
  EXPECT_EQ(CountInState(second.photographs, PhotographState::kLeftOutByUser), 1U);
  EXPECT_EQ(CountInState(second.photographs, PhotographState::kLeftOutByCrossCheck), 0U);
  EXPECT_LT(OffMillimetres(second), 1);
  const Report log = CheckLog(first.run.log, first.inputs.mounting, {}, 0.001, inputs.exclude);
  EXPECT_EQ(CountInState(log.photographs, PhotographState::kLeftOutByUser), 1U);
  EXPECT_EQ(log.crossCheck->photographs, 19U);
  EXPECT_NE(Find<crosscheck::LibraryApart>(log), nullptr);  // its result rests on all of them
  EXPECT_THROW(CheckLog(first.run.log, std::nullopt, {}, 0.001, {"none"}), InputError);
}

TEST_F(CalibrateTest, IsTheSameIfTheShootWasContinuedInAnotherFile) {
  Inputs inputs = Simulate(Small(20));
  const Report whole = WithMounting(inputs);
  const std::string data = test::ReadFile(inputs.data.u8string());
  const std::size_t header = data.find('\n') + 1;
  std::size_t middle = header;
  for (int row = 0; row < 9; ++row) {
    middle = data.find('\n', middle) + 1;
  }
  const std::filesystem::path more = inputs.data.parent_path() / "more.csv";
  test::WriteFile(inputs.data.u8string(), data.substr(0, middle - 1));  // without a line end
  test::WriteFile(more.u8string(), data.substr(0, header) + data.substr(middle));
  inputs.moreData = {more};
  inputs.mounting = whole.inputs.mounting;
  const Report continued = host::Calibrate(inputs, ReadShootData(inputs), [](const Progress&) {});
  EXPECT_EQ(continued.run.outputs.transformCamTc, whole.run.outputs.transformCamTc);
  ASSERT_EQ(continued.photographs.size(), 20U);
  EXPECT_EQ(continued.photographs[8].row, whole.photographs[8].row);
  EXPECT_EQ(continued.photographs[9].row, whole.photographs[9].row + 1);  // after the header
  EXPECT_EQ(continued.photographs[9].name, whole.photographs[9].name);
}

TEST_F(CalibrateTest, NeedsAPhotographThatIsNotLeftOut) {
  Inputs inputs = Simulate(Small(3));
  for (const DataRow& row : ReadRows(test::ReadFile(inputs.data.u8string()))) {
    inputs.exclude.push_back(row.photograph);
  }
  EXPECT_THROW(Calibrate(inputs), InputError);
}

// The library may write any number into its log.
TEST_F(CalibrateTest, NeverCallsALogGoodThatItCannotCheck) {
  const Report report = WithMounting(Simulate(Small(20)));
  ASSERT_EQ(report.verdict.level, Level::kGood);
  const std::string log = test::ReadFile(report.run.log.u8string());
  const std::filesystem::path changed = folder.Path() / "log.txt";
  const auto checked = [&](const std::string& line, const std::string& value) {
    test::WriteFile(changed.u8string(), std::regex_replace(log, std::regex(line + " : [-0-9.]+"),
                                                           line + " : " + value));
    return CheckLog(changed, report.inputs.mounting, {}, 0.001);
  };
  EXPECT_EQ(CheckLog(report.run.log, report.inputs.mounting, {}, 0.001).verdict.level,
            Level::kGood);
  for (const auto& [line, value] : {std::pair("Fx", "nan"),
                                    {"Fy", "0.000000"},
                                    {"Cx", "inf"},
                                    {"Image Width", "0"},
                                    {"Image Height", "none"}}) {
    SCOPED_TRACE(std::string(line) + " " + value);
    const Report unchecked = checked(line, value);
    EXPECT_EQ(unchecked.verdict.level, Level::kDoubtful);
    EXPECT_NE(Find<NotCrossChecked>(unchecked), nullptr);
    EXPECT_THAT(unchecked.verdict.summary, HasSubstr("cannot be checked"));
  }
  // Both solves print the mean transform; the second one is the result.
  const std::size_t at = log.rfind("Mean_Transform_Cam_Tc : ");
  ASSERT_NE(at, std::string::npos);
  for (const std::size_t place : {at, log.find("[[", at)}) {  // without a transform, or a row of it
    std::string without = log;
    without[place + 1] = '?';
    test::WriteFile(changed.u8string(), without);
    EXPECT_EQ(CheckLog(changed, report.inputs.mounting, {}, 0.001).verdict.level, Level::kDoubtful);
  }
}

// Without the bad ones the library would end with code 4, which says nothing of them.
TEST_F(CalibrateTest, DoesNotCalibrateAgainWithTooFewPhotographs) {
  simulator::ShootOptions options = Small(15);
  options.outliers = 4;
  options.mountingErrorMm = 27;
  options.mountingErrorDegrees = 1;
  Inputs inputs = Simulate(options);
  inputs.refineMounting = true;
  const Report report = WithMounting(inputs);
  EXPECT_EQ(report.firstRun, nullptr);
  ASSERT_NE(Find<TooFewAgree>(report), nullptr);
  const auto& few = std::get<TooFewAgree>(Find<TooFewAgree>(report)->kind);
  EXPECT_EQ(few.agree, 11U);
  EXPECT_EQ(few.all, 15U);
  EXPECT_THAT(report.verdict.message, HasSubstr(Text(report.findings.front())));
  EXPECT_EQ(report.verdict.advice, Advice(*Find<TooFewAgree>(report)));
  EXPECT_EQ(report.verdict.option, "");
  ASSERT_NE(Find<BadPhotographs>(report), nullptr);
  EXPECT_EQ(Find<BadPhotographs>(report)->photographs.size(), 4U);

  const Report open = Calibrate(inputs);
  EXPECT_EQ(open.firstRun, nullptr);
  EXPECT_EQ(open.verdict.level, Level::kFailed);
  EXPECT_EQ(open.verdict.advice, report.verdict.advice);
}

TEST_F(CalibrateTest, DoesNotCalibrateAgainWithRowsThatAreReadWrongly) {
  simulator::ShootOptions options = Small(20);
  options.invertedQuaternions = true;
  Inputs inputs = Simulate(options);
  inputs.refineMounting = true;
  for (const Report& report : {WithMounting(inputs), Calibrate(inputs)}) {
    EXPECT_EQ(report.firstRun, nullptr);
    EXPECT_EQ(report.verdict.level, Level::kFailed);
    ASSERT_NE(Find<crosscheck::MisreadRows>(report), nullptr);
    EXPECT_THAT(report.verdict.message, HasSubstr(Text(*Find<crosscheck::MisreadRows>(report))));
  }
}

// The library says only that the lens fits badly, or that boards are missing.
TEST_F(CalibrateTest, NamesPhotographsThatAreNotSharp) {
  simulator::ShootOptions options = Small(16);
  options.blurPixels = 6;
  const Report report = WithMounting(Simulate(options));
  EXPECT_EQ(report.verdict.level, Level::kFailed);
  const Finding* unsharp = Find<UnsharpPhotographs>(report);
  ASSERT_NE(unsharp, nullptr);
  EXPECT_EQ(unsharp->severity, Severity::kError);
  EXPECT_EQ(unsharp->photographs.size(), 16U);
  EXPECT_EQ(report.verdict.advice, Advice(*unsharp));
}

TEST_F(CalibrateTest, NamesFilesThatAreCutShort) {
  const Inputs inputs = Simulate(Small(20));
  std::vector<std::string> names;
  for (std::size_t i = 0; i < 8; ++i) {
    names.push_back(simulated.photographs[2 * i].path);
    const std::filesystem::path file = inputs.workingFolder / names.back();
    std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
  }
  const Report report = WithMounting(inputs);
  EXPECT_LT(OffMillimetres(report), 1);
  EXPECT_EQ(report.verdict.level, Level::kDoubtful);
  const Finding* cut = Find<PhotographFault>(report);
  ASSERT_NE(cut, nullptr);
  EXPECT_EQ(std::get<PhotographFault>(cut->kind).kind, PhotographFault::Kind::kCutShort);
  EXPECT_EQ(cut->photographs, names);
  EXPECT_EQ(Find<UnsharpPhotographs>(report), nullptr);
}

// The hands tremble, and the poses are those of 30 ms before: only the pictures show it.
TEST_F(CalibrateTest, NamesPhotographsThatWereTakenInMotion) {
  simulator::ShootOptions options = Small(24);
  options.imageWidth = 960;
  options.imageHeight = 540;
  options.trackerNoiseMm = 0.3;
  options.trackerNoiseDegrees = 0.05;
  options.exposureMs = 20;
  options.tremorMmPerSecond = 60;
  for (const double delayMs : {30.0, 0.0}) {
    SCOPED_TRACE(delayMs);
    options.delayMs = delayMs;
    const Report report = WithMounting(Simulate(options));
    const Finding* motion = Find<crosscheck::NotStill>(report);
    ASSERT_EQ(motion != nullptr, delayMs != 0);
    if (motion != nullptr) {
      EXPECT_GT(std::get<crosscheck::NotStill>(motion->kind).mm, 1);
      EXPECT_EQ(report.verdict.level, Level::kDoubtful);
    }
  }
}

}  // namespace
}  // namespace trackedcam::host
