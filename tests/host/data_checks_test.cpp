#include "host/input/data_checks.h"

#include <cmath>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host/findings/finding_json.h"
#include "host/findings/finding_text.h"
#include "host/text/text.h"
#include "simulator/shoot.h"
#include "simulator/write_shoot.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Json = nlohmann::json;
using Row = std::vector<std::string>;

constexpr const char* kHeader = "Time,Photograph,x,y,z,w,x,y,z,x,y,z,w,x,y,z";
constexpr std::size_t kRows = 20;

// A rotation about z, at a different position for each number.
Row PoseText(double number) {
  const double angle = 0.1 * number;
  Row text;
  for (const double value :
       {0.1 * number, 0.2, 1.5, std::cos(angle / 2), 0.0, 0.0, std::sin(angle / 2)}) {
    text.push_back(Fixed(value, 6));
  }
  return text;
}

// Photograph 3 is in row 4, below the header.
std::vector<Row> CleanRows() {
  std::vector<Row> rows;
  for (std::size_t i = 1; i <= kRows; ++i) {
    Row row = {Fixed(2.5 * static_cast<double>(i), 3), "photos/" + std::to_string(i) + ".jpg"};
    for (const double number : {static_cast<double>(i), 30.0 - static_cast<double>(i)}) {
      const Row pose = PoseText(number);
      row.insert(row.end(), pose.begin(), pose.end());
    }
    rows.push_back(row);
  }
  return rows;
}

std::string Joined(const std::vector<Row>& rows, const std::string& separator = ",",
                   const std::string& header = kHeader) {
  std::string content = header + '\n';
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      content += (i == 0 ? "" : separator) + row[i];
    }
    content += '\n';
  }
  return content;
}

std::string Replaced(std::string text, char from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, 1, to);
  }
  return text;
}

std::string Utf16(const std::string& text) {
  std::string wide = "\xFF\xFE";
  for (const char letter : text) {
    wide += letter;
    wide += '\0';
  }
  return wide;
}

std::vector<Finding> FindingsOf(const std::string& content) {
  return CheckData(content, ReadRows(content)).findings;
}

// The clean rows after a change to each that is named, by number from 1.
std::string Changed(const std::vector<std::size_t>& numbers,
                    const std::function<void(Row&)>& change) {
  std::vector<Row> rows = CleanRows();
  for (const std::size_t number : numbers) {
    change(rows[number - 1]);
  }
  return Joined(rows);
}

std::string AllChanged(const std::function<void(Row&)>& change) {
  std::vector<Row> rows = CleanRows();
  for (Row& row : rows) {
    change(row);
  }
  return Joined(rows);
}

std::function<void(Row&)> Set(std::size_t field, const std::string& text) {
  return [=](Row& row) { row[field] = text; };
}

std::function<void(Row&)> SetPose(std::size_t first, const Row& pose) {
  return [=](Row& row) {
    std::copy(pose.begin(), pose.end(), row.begin() + static_cast<std::ptrdiff_t>(first));
  };
}

std::string ScaledPositions(double factor, int decimals) {
  return AllChanged([=](Row& row) {
    for (const std::size_t field : {2, 3, 4, 9, 10, 11}) {
      row[field] = Fixed(factor * *ParseNumber(row[field]), decimals);
    }
  });
}

std::string AllWithDecimalCommas(const std::string& separator) {
  std::vector<Row> rows = CleanRows();
  for (Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = i == 1 ? row[i] : Replaced(row[i], '.', ",");
    }
  }
  return Joined(rows, separator);
}

const Row kZeros(7, "0");

struct Fault {
  const char* name;
  std::string content;
  const char* id;
  Severity severity;
  const char* values;  // JSON
};

void PrintTo(const Fault& fault, std::ostream* stream) {
  *stream << fault.name;
}

class DataFault : public testing::TestWithParam<Fault> {};

TEST_P(DataFault, IsNamedOnceAndAlone) {
  const Fault& fault = GetParam();
  const std::vector<Finding> findings = FindingsOf(fault.content);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_EQ(findings[0].severity, fault.severity);
  Json json = FindingsJson(findings)[0];
  EXPECT_EQ(json["id"], fault.id);
  for (const char* key : {"id", "severity", "text", "advice", "photographs"}) {
    json.erase(key);
  }
  EXPECT_EQ(json, Json::parse(fault.values));
}

INSTANTIATE_TEST_SUITE_P(
    Form, DataFault,
    testing::Values(
        Fault{"semicolons", Joined(CleanRows(), ";"), "separator", Severity::kError,
              R"({"rows": 20, "firstRow": 2})"},
        Fault{"tabs", Joined(CleanRows(), "\t"), "separator", Severity::kError,
              R"({"rows": 20, "firstRow": 2})"},
        Fault{"decimal commas", AllWithDecimalCommas(","), "decimalComma", Severity::kError,
              R"({"rows": 20, "firstRow": 2})"},
        Fault{"all quoted", AllChanged([](Row& row) {
                for (std::string& field : row) {
                  field = '"' + field + '"';
                }
              }),
              "quotedFields", Severity::kError, R"({"rows": 20, "firstRow": 2})"},
        Fault{"a quoted path", Changed({3}, Set(1, "\"my photo.jpg\"")), "quotedFields",
              Severity::kWarning, R"({"rows": 1, "firstRow": 4})"},
        Fault{"UTF-16", Utf16(Joined(CleanRows())), "encoding", Severity::kError, R"({})"},
        Fault{"Latin-1 in the header", Joined(CleanRows(), ",", "Time,Bild,Winkel \xB0"),
              "encoding", Severity::kNote, R"({"rows": 1, "firstRow": 1})"},
        Fault{"Latin-1 in paths", Changed({3, 5}, [](Row& row) { row[1] = "m\xFCller/" + row[1]; }),
              "pathEncoding", Severity::kWarning, R"({"rows": 2, "firstRow": 4})"},
        Fault{"an extra column", AllChanged([](Row& row) { row.insert(row.begin(), "7"); }),
              "extraColumn", Severity::kError, R"({"rows": 20, "firstRow": 2})"},
        Fault{"the path first", AllChanged([](Row& row) { std::swap(row[0], row[1]); }),
              "pathFirst", Severity::kError, R"({"rows": 20, "firstRow": 2})"},
        Fault{"no time", AllChanged([](Row& row) { row.erase(row.begin()); }), "pathFirst",
              Severity::kError, R"({"rows": 20, "firstRow": 2})"},
        Fault{"times with a T", AllChanged([](Row& row) { row[0] = "T" + row[0]; }),
              "timesBeginWithT", Severity::kError, R"({"rows": 20, "firstRow": 2})"},
        Fault{"one time with a T", Changed({3}, Set(0, "T07")), "timesBeginWithT",
              Severity::kWarning, R"({"rows": 1, "firstRow": 4})"},
        Fault{"blank lines", Joined(CleanRows()) + "\n\r\n", "blankLines", Severity::kNote,
              R"({"rows": 2, "firstRow": 22})"},
        Fault{"a line of commas", Joined(CleanRows()) + ",,,,,,,,,,,,,,,\n", "blankLines",
              Severity::kNote, R"({"rows": 1, "firstRow": 22})"},
        Fault{"another header", Joined(CleanRows(), ",", "Frame,Image,x,y,z"), "header",
              Severity::kNote, R"({"rows": 1, "firstRow": 1})"}));

INSTANTIATE_TEST_SUITE_P(
    Fields, DataFault,
    testing::Values(Fault{"a nan", Changed({3}, Set(4, "nan")), "noNumber", Severity::kNote,
                          R"({"rows": 1, "firstRow": 4, "field": 5})"},
                    Fault{"a value without bounds", Changed({3, 5}, Set(4, "-1e200")), "tooLarge",
                          Severity::kNote, R"({"rows": 2, "firstRow": 4, "field": 5})"},
                    Fault{"an infinity", Changed({3}, Set(15, " -inf")), "noNumber",
                          Severity::kNote, R"({"rows": 1, "firstRow": 4, "field": 16})"},
                    Fault{"texts", Changed({3, 9}, Set(5, "1.2m")), "noNumber", Severity::kNote,
                          R"({"rows": 2, "firstRow": 4, "field": 6})"},
                    Fault{"a row cut short", Changed({3}, [](Row& row) { row.resize(10); }),
                          "missingFields", Severity::kNote, R"({"rows": 1, "firstRow": 4})"},
                    Fault{"a column less", AllChanged([](Row& row) { row.pop_back(); }),
                          "missingFields", Severity::kError, R"({"rows": 20, "firstRow": 2})"},
                    Fault{"empty fields", Changed({1, 2, 3, 4, 5, 6, 7}, Set(7, " ")),
                          "missingFields", Severity::kWarning, R"({"rows": 7, "firstRow": 2})"},
                    Fault{"an empty path", Changed({3}, Set(1, "")), "missingFields",
                          Severity::kNote, R"({"rows": 1, "firstRow": 4})"}));

INSTANTIATE_TEST_SUITE_P(
    Poses, DataFault,
    testing::Values(Fault{"millimetres", ScaledPositions(1000, 3), "lengthUnit", Severity::kError,
                          R"({"metres": 1000})"},
                    Fault{"centimetres", ScaledPositions(100, 4), "lengthUnit", Severity::kError,
                          R"({"metres": 100})"},
                    Fault{"a zero quaternion", Changed({3}, SetPose(5, Row(4, "0.000"))),
                          "zeroQuaternion", Severity::kNote, R"({"rows": 1, "firstRow": 4})"},
                    Fault{"zero quaternions only", AllChanged(SetPose(12, Row(4, "0"))),
                          "zeroQuaternion", Severity::kError, R"({"rows": 20, "firstRow": 2})"},
                    Fault{"a long quaternion", Changed({3}, SetPose(5, {"1", "1", "0", "0"})),
                          "quaternionLength", Severity::kWarning,
                          R"({"rows": 1, "firstRow": 4, "length": 1.4142135623730951})"},
                    Fault{"lost tracking", Changed({3, 7, 8, 9}, SetPose(2, kZeros)),
                          "lostTracking", Severity::kNote, R"({"rows": 4, "firstRow": 4})"},
                    Fault{"lost, reported without rotation",
                          Changed({3, 4}, SetPose(9, {"0", "0", "0", "1", "0", "0", "0"})),
                          "lostTracking", Severity::kNote, R"({"rows": 2, "firstRow": 4})"},
                    Fault{"lost so often that too few rows are left",
                          Changed({1, 2, 3, 4, 5, 6, 7, 8, 9}, SetPose(2, kZeros)), "lostTracking",
                          Severity::kError, R"({"rows": 9, "firstRow": 2})"},
                    Fault{"a frozen camera", Changed({4, 5}, SetPose(2, PoseText(3))), "frozenPose",
                          Severity::kNote, R"({"rows": 2, "firstRow": 5, "tracker": "camera"})"},
                    Fault{"a frozen chart", Changed({4}, SetPose(9, PoseText(27))), "frozenPose",
                          Severity::kNote, R"({"rows": 1, "firstRow": 5, "tracker": "chart"})"},
                    Fault{"a recorder that stood still",
                          Changed({4},
                                  [](Row& row) {
                                    SetPose(2, PoseText(3))(row);
                                    SetPose(9, PoseText(27))(row);
                                  }),
                          "repeatedPoses", Severity::kNote, R"({"rows": 1, "firstRow": 5})"},
                    Fault{"a photograph twice", Changed({4}, Set(1, "photos/3.jpg")),
                          "repeatedRows", Severity::kWarning,
                          R"({"rows": 1, "firstRow": 5, "different": 19})"},
                    Fault{"copies of one row", Joined(std::vector<Row>(20, CleanRows()[0])),
                          "repeatedRows", Severity::kError,
                          R"({"rows": 19, "firstRow": 3, "different": 1})"}));

TEST(DataChecks, FindNothingInCleanRows) {
  EXPECT_THAT(FindingsOf(Joined(CleanRows())), IsEmpty());
  EXPECT_THAT(FindingsOf(Replaced(Joined(CleanRows()), '\n', "\r\n")), IsEmpty());
  EXPECT_THAT(FindingsOf("\xEF\xBB\xBF" + Joined(CleanRows())), IsEmpty());
}

TEST(DataChecks, LeaveOrdinaryHabitsAlone) {
  const auto noFindings = [](const std::string& content) {
    EXPECT_THAT(FindingsOf(content), IsEmpty());
  };
  noFindings(AllChanged([](Row& row) { row[0] = "12:30:05.123"; }));        // time of day
  noFindings(AllChanged([](Row& row) { row[1] = row[0]; }));                // a number for a name
  noFindings(AllChanged([](Row& row) { row[0].clear(); }));                 // no time
  noFindings(AllChanged([](Row& row) { row.resize(20, "more"); }));         // more columns
  noFindings(AllChanged(Set(3, " +1.5e-3 ")));                              // other numbers
  noFindings(AllChanged(SetPose(2, PoseText(1))));                          // camera on a tripod
  noFindings(AllChanged(SetPose(9, PoseText(1))));                          // chart on a stand
  noFindings(AllChanged(SetPose(9, {"0", "0", "0", "1", "0", "0", "0"})));  // chart is the origin
  noFindings(AllChanged(SetPose(5, {"0.71", "0.71", "0", "0"})));           // two decimals
  noFindings(AllChanged([](Row& row) { row[1] = "Fotos/\xC3\xA4 " + row[0] + ".jpg"; }));
}

TEST(DataChecks, FindNothingInSimulatedShoots) {
  for (const std::uint64_t seed : {1, 2, 3}) {
    simulator::ShootOptions options;
    options.seed = seed;
    options.photographs = 60;
    options.outliers = 6;
    options.missing = 3;
    options.windowsLineEnds = seed == 1;
    options.byteOrderMark = seed == 2;
    options.trackerNoiseMm = seed == 3 ? 0.3 : 0;
    EXPECT_THAT(FindingsOf(simulator::TrackerDataText(simulator::SimulateShoot(options))),
                IsEmpty())
        << "seed " << seed;
  }
}

TEST(DataChecks, ToleratesACameraThatStandsMostOfTheTime) {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 2; i <= 15; ++i) {
    numbers.push_back(i);
  }
  const auto findings = FindingsOf(Changed(numbers, SetPose(2, PoseText(1))));
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_STREQ(Id(findings[0]), "frozenPose");
  EXPECT_EQ(findings[0].severity, Severity::kNote);
}

// One row without a pose can spoil the whole result.
TEST(DataChecks, LeaveOutRowsWithoutAPose) {
  std::vector<Row> rows = CleanRows();
  SetPose(2, kZeros)(rows[1]);                // lost
  SetPose(12, Row(4, "0"))(rows[3]);          // no rotation
  Set(4, "nan")(rows[5]);                     // no number
  rows[8].resize(12);                         // cut short
  SetPose(9, PoseText(30.0 - 12))(rows[12]);  // frozen, as in the row before
  const std::string content = Joined(rows);
  EXPECT_THAT(CheckData(content, ReadRows(content)).leaveOut, ElementsAre(1, 3, 5, 8, 12));
}

TEST(DataChecks, KeepRowsOfWhichTheCrossCheckMustJudge) {
  const auto leftOut = [](const std::string& content) {
    return CheckData(content, ReadRows(content)).leaveOut;
  };
  EXPECT_THAT(leftOut(Joined(CleanRows())), IsEmpty());
  EXPECT_THAT(leftOut(Joined(std::vector<Row>(20, CleanRows()[0]))), IsEmpty());
  // A camera that stands still for two photographs each time.
  std::vector<Row> rows = CleanRows();
  for (std::size_t i = 1; i < rows.size(); i += 2) {
    SetPose(2, PoseText(static_cast<double>(i)))(rows[i]);
  }
  EXPECT_THAT(leftOut(Joined(rows)), IsEmpty());
  ASSERT_THAT(FindingsOf(Joined(rows)), SizeIs(1));
  EXPECT_EQ(FindingsOf(Joined(rows))[0].severity, Severity::kNote);
}

TEST(DataChecks, NameBothFaultsOfAnotherCountrysTables) {
  const auto findings = FindingsOf(AllWithDecimalCommas(";"));
  ASSERT_THAT(findings, SizeIs(2));
  EXPECT_STREQ(Id(findings[0]), "separator");
  EXPECT_STREQ(Id(findings[1]), "decimalComma");
}

TEST(DataChecks, PutTheWorstFirst) {
  const auto findings = FindingsOf("\n" + ScaledPositions(1000, 3) + Joined({CleanRows()[4]}));
  ASSERT_THAT(findings, SizeIs(3));
  EXPECT_EQ(findings[0].severity, Severity::kError);
  EXPECT_EQ(findings[1].severity, Severity::kWarning);
  EXPECT_EQ(findings[2].severity, Severity::kNote);
}

TEST(DataChecks, CountAndNameRowsAndPhotographs) {
  const auto findings = FindingsOf(Changed({3, 9}, Set(5, "?")));
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_THAT(findings[0].photographs, ElementsAre("photos/3.jpg", "photos/9.jpg"));
  const auto& fault = std::get<ValueFault>(findings[0].kind);
  EXPECT_EQ(fault.kind, ValueFault::Kind::kText);
  EXPECT_THAT(fault.rows.lines, ElementsAre(4, 10));
  EXPECT_EQ(fault.rows.all, kRows);
  EXPECT_EQ(fault.field, 6U);
  EXPECT_EQ(fault.photograph, "photos/3.jpg");
}

TEST(DataChecks, TellSeparatorsApart) {
  const auto kindOf = [](const char* separator) {
    return std::get<RowFault>(FindingsOf(Joined(CleanRows(), separator)).at(0).kind).kind;
  };
  EXPECT_EQ(kindOf(";"), RowFault::Kind::kSemicolons);
  EXPECT_EQ(kindOf("\t"), RowFault::Kind::kTabs);
  EXPECT_EQ(kindOf("|"), RowFault::Kind::kBars);
}

TEST(DataChecks, NameAtMostAHundredPhotographs) {
  std::vector<Row> rows;
  for (int i = 0; i < 101; ++i) {
    rows.push_back(CleanRows()[0]);
    rows.back()[1] = std::to_string(i) + ".jpg";
    rows.back()[4] = "nan";
  }
  const auto findings = FindingsOf(Joined(rows));
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_THAT(findings[0].photographs, SizeIs(100));
  EXPECT_THAT(std::get<ValueFault>(findings[0].kind).rows.lines, SizeIs(101));
}

TEST(DataChecks, SurviveAnyBytes) {
  const std::uint32_t seed = 7;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::string clean = Joined(CleanRows());
  for (int round = 0; round < 2000; ++round) {
    std::string content = clean.substr(0, random() % clean.size());
    for (int change = 0; change < 8 && !content.empty(); ++change) {
      content[random() % content.size()] = static_cast<char>(random());
    }
    for (const Finding& finding : FindingsOf(content)) {
      EXPECT_NE(Text(finding), "");
    }
  }
}

}  // namespace
}  // namespace trackedcam::host
