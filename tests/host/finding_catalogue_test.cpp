// The sentences of all findings and verdicts, compared with catalogue.txt. To write that file anew:
//   TRACKEDCAM_UPDATE_CATALOGUE=1 build/dev/tests/host_tests --gtest_filter='FindingCatalogue.*'

#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/findings/finding_text.h"
#include "host/verdict/verdict.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using crosscheck::MountingMistake;
using crosscheck::RowReading;
using crosscheck::Tracker;
using crosscheck::WhyLeftOut;

const std::vector<std::string> kPhotographs = {"photos/a.jpg", "photos/b.jpg", "photos/c.jpg",
                                               "photos/d.jpg", "photos/e.jpg"};
const std::vector<ImageSize> kSizes = {{640, 480}, {1280, 720}, {64, 48}, {128, 72}, {256, 144}};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// All values of an enumeration that counts from 0.
template <class Enum>
std::vector<Enum> UpTo(Enum last) {
  std::vector<Enum> values;
  for (int i = 0; i <= static_cast<int>(last); ++i) {
    values.push_back(static_cast<Enum>(i));
  }
  return values;
}

std::vector<Finding> RowSamples() {
  const RowNumbers some = {{3, 4, 5, 9, 12}, 40};
  std::vector<FindingKind> kinds = {RowFault{RowFault::Kind::kTabs, {{3}, 40}},
                                    RowFault{RowFault::Kind::kTabs, {{3, 7}, 40}},
                                    RowFault{RowFault::Kind::kTabs, {{3, 4, 5, 9}, 40}},
                                    RowFault{RowFault::Kind::kTabs, {{2, 3}, 2}}};
  for (const auto kind : UpTo(RowFault::Kind::kHeader)) {
    kinds.emplace_back(RowFault{kind, some});
  }
  for (const auto kind : UpTo(ValueFault::Kind::kText)) {
    kinds.emplace_back(ValueFault{kind, some, 5, "photos/a.jpg"});
  }
  kinds.emplace_back(ValueFault{ValueFault::Kind::kText, some, 5, ""});
  kinds.emplace_back(QuaternionLength{some, std::sqrt(2)});
  kinds.emplace_back(FrozenPose{Tracker::kCamera, some});
  kinds.emplace_back(FrozenPose{Tracker::kChart, some});
  kinds.emplace_back(FrozenPose{Tracker::kChart, some, false});
  kinds.emplace_back(RepeatedRows{some, 35});
  kinds.emplace_back(LengthUnit{1250});
  kinds.emplace_back(LengthUnit{60});
  kinds.emplace_back(Utf16Text{});
  std::vector<Finding> findings;
  for (FindingKind& kind : kinds) {
    findings.push_back({Severity::kError, std::move(kind), kPhotographs});
  }
  return findings;
}

std::vector<Finding> PhotographSamples() {
  std::vector<FindingKind> kinds;
  for (const auto kind : UpTo(PhotographFault::Kind::kCutShort)) {
    kinds.emplace_back(PhotographFault{kind, 5, 40});
  }
  kinds.emplace_back(MissingPhotographs{5, 5, "", "", false});
  kinds.emplace_back(MissingPhotographs{5, 40, "/takes/new", "photos/a.jpg", true});
  for (const auto cause :
       {MissingPhotographs::Cause::kSpaces, MissingPhotographs::Cause::kBackslashes}) {
    kinds.emplace_back(MissingPhotographs{5, 40, "", "", false, cause, "photos/a.jpg"});
  }
  kinds.emplace_back(MissingPhotographs{5, 40, "/takes/new", "a.jpg", false});
  kinds.emplace_back(HugePhotographs{kSizes, 5, 40});
  kinds.emplace_back(PhotographSizes{{1920, 1080}, kSizes, 5});
  kinds.emplace_back(OrientationTag{false, 5, 40});
  kinds.emplace_back(OrientationTag{true, 5, 40});
  kinds.emplace_back(Aspect{{60, 40}, {36, 20.25}});
  kinds.emplace_back(Aspect{{60, 40}, {36, 30}});
  kinds.emplace_back(UnsharpPhotographs{{21.3, 20, 18, 15, 12}, 5, 40});
  kinds.emplace_back(UnsharpPhotographs{{21.3}, 1, 40});
  std::vector<Finding> findings;
  for (FindingKind& kind : kinds) {
    findings.push_back({Severity::kNote, std::move(kind), kPhotographs});
  }
  return findings;
}

std::vector<Finding> RunSamples() {
  std::vector<Finding> findings;
  for (const FindingKind& kind :
       std::vector<FindingKind>{FewUsed{2, 14, {}}, FewUsed{4, 14, 8}, BoardNowhere{10, 7},
                                LogIncomplete{true}, LogIncomplete{false}, TooFewAgree{11, 15},
                                NotRefined{"Cannot write below the log folder.", "Try again."},
                                NotCrossChecked{"Out of memory."}}) {
    findings.push_back({Severity::kWarning, kind, {}});
  }
  findings.push_back({Severity::kWarning, ImagesMissing{5, 40}, kPhotographs});
  return findings;
}

std::vector<Finding> CrossCheckSamples() {
  std::vector<FindingKind> kinds = {crosscheck::NoAgreement{40, 12, 25, 3}};
  for (const auto reading : UpTo(RowReading::kChartLate)) {
    kinds.emplace_back(crosscheck::MisreadRows{reading, 42.4, 420, 10});
  }
  for (const Eigen::Vector3d& axis :
       {Eigen::Vector3d(-0.9, 0.2, 0.1), Eigen::Vector3d(0.1, 0.9, 0.2)}) {
    kinds.emplace_back(crosscheck::TooLittleRotation{11.2, 20, axis, 1});
  }
  kinds.emplace_back(crosscheck::TooLittleRotation{11.2, 20, {0.1, 0.2, -0.9}, 2});
  kinds.emplace_back(crosscheck::TooLittleRotation{7.2, 20, {0.1, 0.2, -0.9}, 1});
  kinds.emplace_back(crosscheck::MountingOff{27, 1.006, 18.46, 0.69, 1e-9, 1e-9, {}});
  for (const auto mistake : UpTo(MountingMistake::kBoardTurned)) {
    kinds.emplace_back(crosscheck::MountingOff{27, 1.006, 18.46, 0.69, 1e-9, 1e-9, mistake});
  }
  kinds.emplace_back(crosscheck::SquareSizeOff{1.021, 0.0015, 1e-9});
  kinds.emplace_back(crosscheck::SquareSizeOff{0.988, kNaN, 1e-9});
  kinds.emplace_back(crosscheck::HalvesDiffer{4, 0.4, 1e-9});
  kinds.emplace_back(crosscheck::ChartNotFlat{0.51, 2.8, 0.05});
  kinds.emplace_back(crosscheck::ChartNotFlat{-0.51, 2.8, 0.05});
  kinds.emplace_back(crosscheck::ChartStretched{0.00495, 2.1, 0.02});
  kinds.emplace_back(crosscheck::ChartStretched{-0.00495, 2.1, 0.02});
  kinds.emplace_back(crosscheck::LensModel{0.001, -0.00012, 0, 0.3, 0.21, 0.19, 4});
  kinds.emplace_back(crosscheck::LensModel{0, 0, -0.29, 0.1, 0.01, 0.4, 4});
  kinds.emplace_back(crosscheck::NotStill{1e-5, 3.2, 2.41, 1.23});
  kinds.emplace_back(crosscheck::LensNotSeen{0.062, 5.31, {crosscheck::ImagePart::kUpperRight}});
  kinds.emplace_back(crosscheck::LensNotSeen{0.41, kNaN, UpTo(crosscheck::ImagePart::kLowerRight)});
  kinds.emplace_back(crosscheck::TrackerErrors{std::nullopt, 0.0005, 0, kNaN, kNaN, kNaN, kNaN});
  for (const auto flaw : UpTo(crosscheck::TrackerFlaw::kDelay)) {
    kinds.emplace_back(crosscheck::TrackerErrors{flaw, 1e-6, 0.024, 2.9, 0.1, 0.6, 0.03});
  }
  crosscheck::Uncertain uncertain = {{2, 0.2}, {2.6, 0.1}, {2.4, 0.08}, {1, 0.06}, 3.4, 2, {}};
  for (const std::optional<double> closer : {std::optional<double>(), std::optional(0.8)}) {
    uncertain.closerMetres = closer;
    kinds.emplace_back(crosscheck::LensUncertain{uncertain});
    kinds.emplace_back(crosscheck::TrackersUncertain{uncertain});
  }
  kinds.emplace_back(crosscheck::TrackersNoisy{3.1, 0.31});
  kinds.emplace_back(crosscheck::LibraryApart{5, 0.5, 1e-9, false});
  kinds.emplace_back(crosscheck::LibraryApart{5, 0.5, 1e-9, true});
  std::vector<Finding> findings;
  for (FindingKind& kind : kinds) {
    findings.push_back({Severity::kError, std::move(kind), {}});
  }
  findings.push_back(
      {Severity::kError, crosscheck::TrackerMoved{Tracker::kChart, 2, 6, 0.5, 90}, {"c.jpg"}});
  findings.push_back({Severity::kError,
                      crosscheck::TrackerLoose{Tracker::kCamera, 5.1, 0.02, {0, 1, 2, 3, 4}},
                      kPhotographs});
  BadPhotographs bad;
  bad.share = 0.125;
  for (const auto why : UpTo(WhyLeftOut::kNoPose)) {
    const bool isMeasured = why <= WhyLeftOut::kFirstCornerAtOtherEnd;
    bad.disagreements = {{isMeasured ? 39.4 : kNaN, isMeasured ? 2.9 : kNaN, why, "img_004.jpg"}};
    findings.push_back({Severity::kWarning, bad, {"img_003.jpg"}});
  }
  bad.disagreements.assign(5, {39.4, 2.9, {}, ""});
  findings.push_back({Severity::kWarning, bad, kPhotographs});
  findings.push_back({Severity::kNote, LeftOutPhotographs{bad.disagreements}, kPhotographs});
  findings.push_back({Severity::kNote,
                      LeftOutPhotographs{{{39.4, 2.9, WhyLeftOut::kFitsTrackersOf, "b.jpg"}}},
                      {"a.jpg"}});
  bad.areEnoughLeft = false;
  findings.push_back({Severity::kWarning, bad, kPhotographs});
  return findings;
}

std::vector<Finding> AllSamples() {
  std::vector<Finding> all;
  for (const auto& samples :
       {RowSamples(), PhotographSamples(), RunSamples(), CrossCheckSamples()}) {
    all.insert(all.end(), samples.begin(), samples.end());
  }
  return all;
}

std::string Catalogue() {
  std::string text = "Findings: the id, what is found, what to do.\n";
  for (const Finding& finding : AllSamples()) {
    text +=
        '\n' + std::string(Id(finding)) + "\n  " + Text(finding) + "\n  " + Advice(finding) + '\n';
  }
  text += "\nVerdicts: the library's code, the message, what to do.\n";
  for (const int code : {0, 99, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, -1, 1000}) {
    const Verdict verdict = VerdictOf(code);
    text += '\n' + std::to_string(code) + "\n  " + verdict.message + "\n  " + verdict.advice + '\n';
  }
  text += "\nSuggested views.\n\n";
  for (const double direction : {0, 45, 90, 135, 180, -135, -90, -45}) {
    crosscheck::SuggestedView view;
    view.views = direction < 0 ? 1 : 3;
    view.distanceMetres = 0.84;
    view.tiltDegrees = 35;
    view.tiltDirectionDegrees = direction;
    view.rollDegrees = -20;
    text += Text(view) + '\n';
  }
  return text;
}

TEST(FindingCatalogue, IsTheOneInTheFile) {
  const std::string file = TRACKEDCAM_FINDING_CATALOGUE;
  if (std::getenv("TRACKEDCAM_UPDATE_CATALOGUE") != nullptr) {
    test::WriteFile(file, Catalogue());
  }
  EXPECT_EQ(test::ReadFile(file), Catalogue());
}

TEST(FindingCatalogue, HasEveryKind) {
  std::set<std::size_t> kinds;
  for (const Finding& finding : AllSamples()) {
    kinds.insert(finding.kind.index());
    EXPECT_EQ(Text(finding).back(), '.') << Id(finding);
    EXPECT_EQ(Advice(finding).back(), '.') << Id(finding);
  }
  EXPECT_EQ(kinds.size(), std::variant_size_v<FindingKind>);
}

}  // namespace
}  // namespace trackedcam::host
