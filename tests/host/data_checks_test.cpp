#include "host/input/data_checks.h"

#include <cmath>
#include <functional>
#include <random>

#include <gmock/gmock.h>

#include "host/text/text.h"
#include "simulator/shoot.h"
#include "simulator/write_shoot.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Row = std::vector<std::string>;

constexpr const char* kHeader = "Time,Photograph,x,y,z,w,x,y,z,x,y,z,w,x,y,z";
constexpr std::size_t kRows = 20;

// A turn about z, at a place of its own.
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
  return CheckData(content, ReadRows(content));
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
  const char* text;
};

void PrintTo(const Fault& fault, std::ostream* stream) {
  *stream << fault.name;
}

class DataFault : public testing::TestWithParam<Fault> {};

TEST_P(DataFault, IsNamedOnceAndAlone) {
  const Fault& fault = GetParam();
  const std::vector<Finding> findings = FindingsOf(fault.content);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_EQ(findings[0].id, fault.id);
  EXPECT_EQ(findings[0].text, fault.text);
  EXPECT_EQ(findings[0].severity, fault.severity);
  EXPECT_NE(findings[0].advice, "");
}

INSTANTIATE_TEST_SUITE_P(
    Form, DataFault,
    testing::Values(
        Fault{"semicolons", Joined(CleanRows(), ";"), "separator", Severity::kError,
              "Semicolons stand between the fields in all 20 rows, not commas, so no field is "
              "found."},
        Fault{"tabs", Joined(CleanRows(), "\t"), "separator", Severity::kError,
              "Tabs stand between the fields in all 20 rows, not commas, so no field is found."},
        Fault{"decimal commas", AllWithDecimalCommas(","), "decimalComma", Severity::kError,
              "Numbers have a decimal comma in all 20 rows, and a comma ends the field."},
        Fault{"all quoted", AllChanged([](Row& row) {
                for (std::string& field : row) {
                  field = '"' + field + '"';
                }
              }),
              "quotedFields", Severity::kError,
              "Fields stand in quotes in all 20 rows; a number in quotes reads as 0, and a path in "
              "quotes names no photograph."},
        Fault{"a quoted path", Changed({3}, Set(1, "\"my photo.jpg\"")), "quotedFields",
              Severity::kWarning,
              "Fields stand in quotes in row 4; a number in quotes reads as 0, and a path in "
              "quotes names no photograph."},
        Fault{"UTF-16", Utf16(Joined(CleanRows())), "encoding", Severity::kError,
              "The data file is UTF-16 text, so no row of it can be read."},
        Fault{"Latin-1 in the header", Joined(CleanRows(), ",", "Time,Bild,Winkel \xB0"),
              "encoding", Severity::kNote,
              "There are letters that are not UTF-8 in row 1, but in no path of a photograph."},
        Fault{"Latin-1 in paths", Changed({3, 5}, [](Row& row) { row[1] = "m\xFCller/" + row[1]; }),
              "pathEncoding", Severity::kWarning,
              "The path of the photograph is not UTF-8 in rows 4 and 6, so it cannot be opened."},
        Fault{"an extra column", AllChanged([](Row& row) { row.insert(row.begin(), "7"); }),
              "extraColumn", Severity::kError,
              "A column too many stands before the photograph in all 20 rows, so every number is "
              "read from the wrong field."},
        Fault{"times with a T", AllChanged([](Row& row) { row[0] = "T" + row[0]; }),
              "timesBeginWithT", Severity::kError,
              "The time begins with T in all 20 rows, and such a line is skipped."},
        Fault{"one time with a T", Changed({3}, Set(0, "T07")), "timesBeginWithT",
              Severity::kWarning, "The time begins with T in row 4, and such a line is skipped."},
        Fault{"blank lines", Joined(CleanRows()) + "\n\r\n", "blankLines", Severity::kNote,
              "There is nothing in rows 22 and 23; a blank line counts as a row without a "
              "photograph."},
        Fault{"a line of commas", Joined(CleanRows()) + ",,,,,,,,,,,,,,,\n", "blankLines",
              Severity::kNote,
              "There is nothing in row 22; a blank line counts as a row without a photograph."},
        Fault{"another header", Joined(CleanRows(), ",", "Frame,Image,x,y,z"), "header",
              Severity::kNote,
              "The header in row 1 does not begin with \"Time,\", so it counts as a row without a "
              "photograph."}));

INSTANTIATE_TEST_SUITE_P(
    Fields, DataFault,
    testing::Values(
        Fault{"a nan", Changed({3}, Set(4, "nan")), "noNumber", Severity::kError,
              "A figure is nan or infinite in row 4 (field 5 of row 4, photos/3.jpg); one such row "
              "can "
              "spoil the whole result."},
        Fault{"a figure without bounds", Changed({3, 5}, Set(4, "-1e200")), "tooLarge",
              Severity::kError,
              "A figure is far larger than any pose has in rows 4 and 6 (field 5 of row 4, "
              "photos/3.jpg); "
              "one such row can spoil the whole result."},
        Fault{"an infinity", Changed({3}, Set(15, " -inf")), "noNumber", Severity::kError,
              "A figure is nan or infinite in row 4 (field 16 of row 4, photos/3.jpg); one such "
              "row can "
              "spoil the whole result."},
        Fault{"texts", Changed({3, 9}, Set(5, "1.2m")), "noNumber", Severity::kWarning,
              "Text stands where a number must in rows 4 and 10 (field 6 of row 4, photos/3.jpg), "
              "which reads as 0 or in part."},
        Fault{"a row cut short", Changed({3}, [](Row& row) { row.resize(10); }), "missingFields",
              Severity::kWarning, "Fields are missing or empty in row 4; each reads as 0."},
        Fault{"a column less", AllChanged([](Row& row) { row.pop_back(); }), "missingFields",
              Severity::kError, "Fields are missing or empty in all 20 rows; each reads as 0."},
        Fault{"empty fields", Changed({1, 2, 3, 4, 5}, Set(7, " ")), "missingFields",
              Severity::kWarning,
              "Fields are missing or empty in rows 2, 3, 4 and 2 more; each reads as 0."},
        Fault{"an empty path", Changed({3}, Set(1, "")), "missingFields", Severity::kWarning,
              "Fields are missing or empty in row 4; each reads as 0."}));

INSTANTIATE_TEST_SUITE_P(
    Poses, DataFault,
    testing::Values(
        Fault{"millimetres", ScaledPositions(1000, 3), "lengthUnit", Severity::kError,
              "The two trackers are 1000 m apart; lengths in millimetres would make it 1.00 m, in "
              "centimetres 10.00 m."},
        Fault{"centimetres", ScaledPositions(100, 4), "lengthUnit", Severity::kError,
              "The two trackers are 100 m apart; lengths in millimetres would make it 0.10 m, in "
              "centimetres 1.00 m."},
        Fault{"a zero quaternion", Changed({3}, SetPose(5, Row(4, "0.000"))), "zeroQuaternion",
              Severity::kWarning,
              "The quaternion of a tracker is zero in row 4, so its turn is not known."},
        Fault{"zero quaternions only", AllChanged(SetPose(12, Row(4, "0"))), "zeroQuaternion",
              Severity::kError,
              "The quaternion of a tracker is zero in all 20 rows, so its turn is not known."},
        Fault{"a long quaternion", Changed({3}, SetPose(5, {"1", "1", "0", "0"})),
              "quaternionLength", Severity::kWarning,
              "The quaternion of a tracker does not have length 1 in row 4 (1.414 in row 4)."},
        Fault{"lost tracking", Changed({3, 7, 8, 9}, SetPose(2, kZeros)), "lostTracking",
              Severity::kWarning,
              "Tracking was lost in rows 4, 8, 9 and 10: a tracker stands at the origin, not "
              "turned."},
        Fault{"lost, reported as no turn",
              Changed({3}, SetPose(9, {"0", "0", "0", "1", "0", "0", "0"})), "lostTracking",
              Severity::kWarning,
              "Tracking was lost in row 4: a tracker stands at the origin, not turned."},
        Fault{"a frozen camera", Changed({4, 5}, SetPose(2, PoseText(3))), "frozenPose",
              Severity::kWarning,
              "The camera's tracker reports the pose of the row before in rows 5 and 6, to the "
              "last digit, while the other tracker moves."},
        Fault{"a frozen chart", Changed({4}, SetPose(9, PoseText(27))), "frozenPose",
              Severity::kWarning,
              "The chart's tracker reports the pose of the row before in row 5, to the last digit, "
              "while the other tracker moves."},
        Fault{"a recorder that stood still",
              Changed({4},
                      [](Row& row) {
                        SetPose(2, PoseText(3))(row);
                        SetPose(9, PoseText(27))(row);
                      }),
              "repeatedPoses", Severity::kNote,
              "Both trackers report the poses of an earlier row in row 5, to the last digit."},
        Fault{"a photograph twice", Changed({4}, Set(1, "photos/3.jpg")), "repeatedRows",
              Severity::kWarning,
              "A photograph that an earlier row names is named again in row 5, and counts each "
              "time."},
        Fault{"copies of one row", Joined(std::vector<Row>(20, CleanRows()[0])), "repeatedRows",
              Severity::kError,
              "A photograph that an earlier row names is named again in rows 3, 4, 5 and 16 more, "
              "and counts each time."}));

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
  EXPECT_EQ(findings[0].id, "frozenPose");
  EXPECT_EQ(findings[0].severity, Severity::kNote);
}

TEST(DataChecks, NameBothFaultsOfAnotherCountrysTables) {
  const auto findings = FindingsOf(AllWithDecimalCommas(";"));
  ASSERT_THAT(findings, SizeIs(2));
  EXPECT_EQ(findings[0].id, "separator");
  EXPECT_EQ(findings[1].id, "decimalComma");
}

TEST(DataChecks, PutTheWorstFirst) {
  const auto findings = FindingsOf("\n" + Changed({3}, Set(4, "nan")) + Joined({{"1", "a.jpg"}}));
  ASSERT_THAT(findings, SizeIs(3));
  EXPECT_EQ(findings[0].severity, Severity::kError);
  EXPECT_EQ(findings[1].severity, Severity::kWarning);
  EXPECT_EQ(findings[2].severity, Severity::kNote);
}

TEST(DataChecks, CountAndNameRowsAndPhotographs) {
  const auto findings = FindingsOf(Changed({3, 9}, Set(5, "?")));
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_THAT(findings[0].photographs, ElementsAre("photos/3.jpg", "photos/9.jpg"));
  EXPECT_THAT(findings[0].numbers,
              ElementsAre(testing::Pair("rows", 2), testing::Pair("firstRow", 4)));
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
      EXPECT_NE(finding.text, "");
    }
  }
}

}  // namespace
}  // namespace trackedcam::host
