#include "io/tracker_data.h"

#include <cmath>
#include <stdexcept>

#include "support/foreign_locale.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

const std::string kHeader = "Time,Image,TcX,TcY,TcZ\n";
const std::string kRow = "1,shot.png,2,3,4,5,6,7,8,9,10,11,12,13,14,15";
const TrackerRecord kRecord = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

class TrackerDataTest : public test::StageTest {
 protected:
  ResultCode Read(const std::string& content) {
    test::WriteFile(folder.File("data.csv"), content);
    return ReadTrackerData(log, folder.File("data.csv"), imagePaths, records);
  }

  std::vector<std::string> imagePaths;
  std::vector<TrackerRecord> records;
};

TEST_F(TrackerDataTest, BecomesAPathAndARecordForEachRow) {
  EXPECT_EQ(Read(kHeader + kRow + "\n" + kRow + "\n"), 0);
  EXPECT_EQ(imagePaths, (std::vector<std::string>{"shot.png", "shot.png"}));
  EXPECT_EQ(records, (std::vector<TrackerRecord>{kRecord, kRecord}));
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(TrackerDataTest, IsAppendedToTheLists) {
  imagePaths = {"earlier.png"};
  records = {TrackerRecord(15, 0.5)};
  EXPECT_EQ(Read(kRow), 0);
  EXPECT_EQ(imagePaths, (std::vector<std::string>{"earlier.png", "shot.png"}));
  EXPECT_EQ(records.back(), kRecord);
}

TEST_F(TrackerDataTest, WithOnlyAHeaderIsEmpty) {
  EXPECT_EQ(Read(kHeader), 0);
  EXPECT_TRUE(imagePaths.empty());
  EXPECT_TRUE(records.empty());
}

TEST_F(TrackerDataTest, WithoutAnyByteIsEmpty) {
  EXPECT_EQ(Read(""), 0);
  EXPECT_TRUE(records.empty());
}

TEST_F(TrackerDataTest, MayBeginWithAByteOrderMark) {
  for (const std::string mark : {"\xFF\xFE", "\xEF\xBB\xBF", "abcd"}) {
    records.clear();
    EXPECT_EQ(Read(mark + kHeader + kRow), 0);
    EXPECT_EQ(records.size(), 1u) << mark;
  }
}

TEST_F(TrackerDataTest, KeepsOtherBytesBeforeTheHeader) {
  for (const std::string bytes : {"a", "abcde"}) {
    records.clear();
    EXPECT_EQ(Read(bytes + kHeader + kRow), 0);
    EXPECT_EQ(records.size(), 2u) << bytes;
  }
}

TEST_F(TrackerDataTest, IgnoresAByteOrderMarkInTheFirstLineOnly) {
  EXPECT_EQ(Read(kRow + "\n\xEF\xBB\xBF" + kHeader), 0);
  EXPECT_EQ(records.size(), 2u);
}

TEST_F(TrackerDataTest, SkipsEveryLineThatBeginsWithT) {
  EXPECT_EQ(Read(kHeader + kRow + "\n" + kHeader + "T" + kRow + "\n" + kRow), 0);
  EXPECT_EQ(records.size(), 2u);
}

TEST_F(TrackerDataTest, IgnoresFieldsAfterTheSixteenth) {
  EXPECT_EQ(Read(kRow + ",16,17,18,19"), 0);
  EXPECT_EQ(records, std::vector<TrackerRecord>{kRecord});
}

TEST_F(TrackerDataTest, ReadsMissingFieldsAsZero) {
  EXPECT_EQ(Read("1,shot.png,2,3,4,5,6,7,8,9"), 0);
  EXPECT_EQ(records, (std::vector<TrackerRecord>{{1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 0, 0, 0}}));
}

TEST_F(TrackerDataTest, ReadsABlankLineAsARowWithoutAPath) {
  EXPECT_EQ(Read(kRow + "\n\n" + kRow + "\n\n"), 0);
  EXPECT_EQ(imagePaths, (std::vector<std::string>{"shot.png", "", "shot.png", ""}));
  EXPECT_EQ(records[1], TrackerRecord(15, 0.0));
}

TEST_F(TrackerDataTest, ReadsTheNumberAtTheBeginningOfAField) {
  EXPECT_EQ(Read("12:30:05.123, my shot.png ,x,,  -2.5e-1m,+3"), 0);
  EXPECT_EQ(imagePaths.front(), " my shot.png ");
  EXPECT_EQ(records.front()[0], 12);
  EXPECT_EQ(records.front()[1], 0);
  EXPECT_EQ(records.front()[2], 0);
  EXPECT_EQ(records.front()[3], -0.25);
  EXPECT_EQ(records.front()[4], 3);
}

TEST_F(TrackerDataTest, ReadsNumbersAsAtofDoes) {
  EXPECT_EQ(Read("inf,shot.png,nan,0x10,-inf"), 0);
  EXPECT_EQ(records.front()[0], INFINITY);
  EXPECT_TRUE(std::isnan(records.front()[1]));
  EXPECT_EQ(records.front()[2], 16);
  EXPECT_EQ(records.front()[3], -INFINITY);
}

TEST_F(TrackerDataTest, KeepsTheDecimalPointInAnyLocale) {
  const test::ForeignLocale locale;
  EXPECT_EQ(Read("0.25,shot.png"), 0);
  EXPECT_EQ(records.front()[0], 0.25);
}

TEST_F(TrackerDataTest, IgnoresCarriageReturnsBeforeLineFeedsOnly) {
  const std::string row = "1,a\rb.png,2,3,4,5,6,7,8,9,10,11,12,13,14,15,end\r";
  EXPECT_EQ(Read("0,first.png\r\n0,second.png\r\r\n" + row), 0);
  EXPECT_EQ(imagePaths, (std::vector<std::string>{"first.png", "second.png\r", "a\rb.png"}));
}

TEST_F(TrackerDataTest, IsReadAsBytes) {
  const std::string path = std::string("a\x1A") + '\0' + "b.png";
  EXPECT_EQ(Read("0," + path + ",1\n" + kRow), 0);
  EXPECT_EQ(imagePaths, (std::vector<std::string>{path, "shot.png"}));
}

TEST_F(TrackerDataTest, IsEchoedToTheConsoleOnly) {
  const std::string console = ConsoleOf([&] { Read("\xEF\xBB\xBFTime,\r\n" + kRow); });
  EXPECT_EQ(console, "str_line:Time,\nstr_line:" + kRow + "\n");
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(TrackerDataTest, MayHaveMoreRowsThanAreReserved) {
  std::string content = kHeader;
  for (int i = 0; i < 5100; ++i) {
    content += kRow + "\n";
  }
  ConsoleOf([&] { EXPECT_EQ(Read(content), 0); });
  EXPECT_EQ(records.size(), 5100u);
}

TEST_F(TrackerDataTest, ThatCannotBeOpenedIsCodeOne) {
  EXPECT_EQ(ReadTrackerData(log, folder.File("missing.csv"), imagePaths, records), 1);
  EXPECT_EQ(LogLines(),
            std::vector<std::string>{"Error code 1 : The raw data csv file path is wrong."});
  EXPECT_TRUE(imagePaths.empty());
}

TEST_F(TrackerDataTest, ThatIsAFolderIsCodeOne) {
  EXPECT_EQ(ReadTrackerData(log, folder.Path().u8string(), imagePaths, records), 1);
}

TEST_F(TrackerDataTest, WhosePathIsNotUtf8IsRefused) {
  EXPECT_THROW(ReadTrackerData(log, "caf\xE9.csv", imagePaths, records), std::range_error);
}

TEST_F(TrackerDataTest, RecordsOfAnotherLengthAreCodeFifteen) {
  TrackerRecord record(14, 1.0);
  EXPECT_EQ(AppendRecord(log, record, records), 15);
  EXPECT_TRUE(records.empty());
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{
                "Tracker data format error!", "Detect the tracker data size : 14",
                "Error code 15 : Tracker data format error in csv file. Please re-calibration "
                "again!"}));
}

TEST_F(TrackerDataTest, RecordsOfFifteenNumbersMoveToTheList) {
  TrackerRecord record = kRecord;
  EXPECT_EQ(AppendRecord(log, record, records), 0);
  EXPECT_TRUE(record.empty());
  EXPECT_EQ(records, std::vector<TrackerRecord>{kRecord});
}

}  // namespace
}  // namespace trackedcam
