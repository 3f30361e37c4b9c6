#include "host/findings/finding.h"

#include <cmath>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host/findings/finding_json.h"
#include "host/findings/finding_text.h"

namespace trackedcam::host {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

Json JsonOf(const FindingKind& kind, const std::vector<std::string>& photographs = {}) {
  Json json = FindingsJson({{Severity::kWarning, kind, photographs}})[0];
  json.erase("text");
  json.erase("advice");
  return json;
}

TEST(FindingJson, HasTheSentences) {
  const Finding finding = {Severity::kNote, FewUsed{2, 14, 13}, {}};
  EXPECT_EQ(Json(FindingsJson({finding})), Json::array({{{"id", "fewUsed"},
                                                         {"severity", "note"},
                                                         {"text", Text(finding)},
                                                         {"advice", Advice(finding)},
                                                         {"used", 2},
                                                         {"seen", 14},
                                                         {"agree", 13}}}));
}

TEST(FindingJson, HasTheValuesByName) {
  EXPECT_EQ(JsonOf(crosscheck::MountingOff{27, 1, 18.5, 0.7, 1e-9, 1e-8,
                                           crosscheck::MountingMistake::kAngleSigns}),
            Json::parse(R"({"id": "mountingOff", "severity": "warning", "offMm": 27,
                            "offDegrees": 1, "resultOffMm": 18.5, "resultOffDegrees": 0.7,
                            "p": 1e-9, "pScaleFree": 1e-8, "likelyMistake": "angleSigns"})"));
  EXPECT_EQ(JsonOf(crosscheck::TooLittleRotation{11.5, 20, {0.6, 0, -0.8}, 2}),
            Json::parse(R"({"id": "tooLittleRotation", "severity": "warning",
                            "amplification": 11.5, "rotationDegrees": 20, "axisX": 0.6,
                            "axisY": 0, "axisZ": -0.8, "axes": 2})"));
  EXPECT_EQ(JsonOf(crosscheck::MisreadRows{crosscheck::RowReading::kOrderXyzw, 42, 420, 10}),
            Json::parse(R"({"id": "reading", "severity": "warning", "reading": "orderXyzw",
                            "times": 42, "asReadMm": 420, "fittedMm": 10})"));
  EXPECT_EQ(JsonOf(crosscheck::LibraryApart{5, 0.5, 1e-9, true}),
            Json::parse(R"({"id": "libraryApart", "severity": "warning", "offMm": 5,
                            "offDegrees": 0.5, "p": 1e-9, "mountingUnknown": true})"));
  EXPECT_EQ(JsonOf(LengthUnit{1250}),
            Json::parse(R"({"id": "lengthUnit", "severity": "warning", "metres": 1250})"));
}

TEST(FindingJson, HasNullForUnknownValues) {
  EXPECT_TRUE(JsonOf(crosscheck::MountingOff{})["likelyMistake"].is_null());
  EXPECT_TRUE(JsonOf(crosscheck::NoAgreement{40, 0, std::nan(""), std::nan("")})["mm"].is_null());
}

// "photographs" is always the names.
TEST(FindingJson, CountsPhotographsByAnotherName) {
  const Json none = JsonOf(crosscheck::NoAgreement{40, 12, 25, 3});
  EXPECT_EQ(none["photographCount"], 40);
  EXPECT_FALSE(none.contains("photographs"));
  const Json files =
      JsonOf(PhotographFault{PhotographFault::Kind::kUnreadable, 150, 200}, {"a", "b", "c"});
  EXPECT_EQ(files["photographCount"], 150);
  EXPECT_EQ(files["photographs"], Json({"a", "b", "c"}));
  const Json bad = JsonOf(BadPhotographs{0.1, {{39, 2.9, {}, ""}}}, {"a"});
  EXPECT_EQ(bad["worstMm"], 39);
  EXPECT_EQ(bad["photographs"], Json::array({"a"}));
  const Json leftOut = JsonOf(LeftOutPhotographs{{{39, 2.9, {}, ""}, {4, 1, {}, ""}}}, {"a", "b"});
  EXPECT_EQ(leftOut["photographCount"], 2);
  EXPECT_EQ(leftOut["photographs"], Json({"a", "b"}));
}

TEST(FindingText, NamesTheFirstFewRows) {
  const auto textOf = [](std::vector<std::size_t> lines, std::size_t all) {
    const RowNumbers rows = {std::move(lines), all};
    return Text({Severity::kNote, RowFault{RowFault::Kind::kTabs, rows}, {}});
  };
  EXPECT_THAT(textOf({4}, 40), HasSubstr(" row 4,"));
  EXPECT_THAT(textOf({4}, 1), HasSubstr(" row 4,"));
  EXPECT_THAT(textOf({4, 6}, 40), HasSubstr(" rows 4 and 6,"));
  EXPECT_THAT(textOf({4, 6, 7, 9}, 40), HasSubstr(" rows 4, 6, 7 and 9,"));
  EXPECT_THAT(textOf({4, 6, 7, 9, 12}, 40), HasSubstr(" rows 4, 6, 7 and 2 more,"));
  EXPECT_THAT(textOf({2, 3}, 2), HasSubstr(" all 2 rows,"));
}

TEST(FindingText, NamesTheFirstFewPhotographs) {
  const auto textOf = [](std::size_t count, std::size_t all) {
    return Text({Severity::kNote,
                 PhotographFault{PhotographFault::Kind::kUnreadable, count, all},
                 {"a", "b", "c", "d"}});
  };
  EXPECT_THAT(textOf(1, 1), HasSubstr(": a."));
  EXPECT_THAT(textOf(4, 40), HasSubstr(": a, b, c and d."));
  EXPECT_THAT(textOf(150, 200), HasSubstr(": a, b, c and 147 more."));
  EXPECT_THAT(textOf(4, 4), HasSubstr(": all 4 photographs."));
}

TEST(OptionFor, MendsTheCause) {
  const auto optionFor = [](const FindingKind& kind) {
    return OptionFor({Severity::kError, kind, {}});
  };
  const auto ofReading = [&](crosscheck::RowReading reading) {
    return optionFor(crosscheck::MisreadRows{reading, 42, 420, 10});
  };
  using crosscheck::RowReading;
  EXPECT_EQ(ofReading(RowReading::kQuaternionsInverted), "--invert-tracker-quaternions");
  EXPECT_EQ(ofReading(RowReading::kOrderXyzw), "--quaternion-order=xyzw");
  EXPECT_EQ(ofReading(RowReading::kInches), "--tracker-units=in");
  EXPECT_EQ(ofReading(RowReading::kLeftHanded), "--tracker-axes=unity");
  EXPECT_EQ(ofReading(RowReading::kEngineCentimetres), "--tracker-axes=unreal");
  EXPECT_EQ(ofReading(RowReading::kChartLate), "");
  EXPECT_EQ(optionFor(crosscheck::MountingOff{}), "--refine-mounting");
  EXPECT_EQ(optionFor(LengthUnit{600}), "--tracker-units=mm");
  EXPECT_EQ(optionFor(LengthUnit{60}), "--tracker-units=cm");  // 0.6 m, not 0.06 m
  EXPECT_EQ(optionFor(crosscheck::TrackersNoisy{}), "");
}

TEST(Finding, CanBeOfWhatASecondRunImproves) {
  for (const FindingKind& kind : std::vector<FindingKind>{
           crosscheck::MountingOff{}, BadPhotographs{}, crosscheck::LibraryApart{}}) {
    EXPECT_TRUE(CanRefine({Severity::kNote, kind, {}}));
  }
  EXPECT_FALSE(CanRefine({Severity::kError, crosscheck::TrackersNoisy{}, {}}));
}

TEST(Finding, IsAboutTheRunOrTheShoot) {
  for (const FindingKind& kind :
       std::vector<FindingKind>{crosscheck::MountingOff{}, crosscheck::LibraryApart{}, FewUsed{}}) {
    EXPECT_TRUE(IsAboutRun({Severity::kError, kind, {}}));
  }
  EXPECT_FALSE(IsAboutRun({Severity::kError, crosscheck::TrackerMoved{}, {}}));
  EXPECT_TRUE(NothingFits({Severity::kError, crosscheck::MisreadRows{}, {}}));
  EXPECT_FALSE(NothingFits({Severity::kError, crosscheck::MountingOff{}, {}}));
}

TEST(Finding, CanBeOfMissingOutput) {
  for (const FindingKind& kind :
       std::vector<FindingKind>{LogIncomplete{}, ImagesMissing{}, NotRefined{}}) {
    EXPECT_TRUE(IsOutputError({Severity::kWarning, kind, {}}));
  }
  EXPECT_FALSE(IsOutputError({Severity::kWarning, NotCrossChecked{}, {}}));
}

TEST(CertaintyText, FollowsFromThePAlone) {
  EXPECT_EQ(CertaintyText(0.0009, false), "certain");
  EXPECT_EQ(CertaintyText(0.0009, true), "certain, but good enough");
  for (const bool isGood : {false, true}) {
    EXPECT_EQ(CertaintyText(0.001, isGood), "likely (p = 0.001)");
    EXPECT_EQ(CertaintyText(0.01, isGood), "likely (p = 0.010)");
    EXPECT_EQ(CertaintyText(0.05, isGood), "may be chance (p = 0.05)");
    EXPECT_EQ(CertaintyText(std::nan(""), isGood), "cannot be checked");
  }
}

TEST(Findings, AreSortedByTheirSeverity) {
  std::vector<Finding> findings = {{Severity::kNote, LengthUnit{1}, {}},
                                   {Severity::kError, LengthUnit{2}, {}},
                                   {Severity::kWarning, LengthUnit{3}, {}},
                                   {Severity::kError, LengthUnit{4}, {}}};
  SortFindings(findings);
  std::vector<double> metres;
  for (const Finding& finding : findings) {
    metres.push_back(std::get<LengthUnit>(finding.kind).metres);
  }
  EXPECT_THAT(metres, testing::ElementsAre(2, 4, 3, 1));
}

}  // namespace
}  // namespace trackedcam::host
