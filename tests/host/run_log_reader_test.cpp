#include "host/run/run_log_reader.h"

#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using Lines = std::vector<std::string>;

const Lines kBoard = {"CALIBRATION BOARD INDEX START", "0.000000 0.000000 0",
                      "0.025400 0.000000 0",           "0.050800 0.000000 0",
                      "0.000000 0.025400 0",           "0.025400 0.025400 0",
                      "0.050800 0.025400 0",           "CALIBRATION BOARD INDEX END"};

// What the log holds of a photograph in which the board was found.
Lines RawDataOf(const std::string& path, const std::string& time = "1.000000") {
  std::string row = time;
  for (int i = 2; i <= 15; ++i) {
    row += ' ' + std::to_string(static_cast<double>(i));
  }
  return {path, row, "10.5 20.25", "11 20", "12 20", "10 21", "11 21", "12 21"};
}

class RunLogReaderTest : public testing::Test {
 protected:
  // One line of the log for each message.
  void Log(const Lines& messages) {
    for (const std::string& message : messages) {
      reader.Consume("2026-11-21 01:02:03\t" + message + '\n');
    }
  }

  void LogToThePhotographs() {
    Log({"Version : v1.2.3", "Flag_ModifyQuat : 0", "Camera Tracker Calibration start."});
    Log(kBoard);
    Log({"Start to read the csv file.", "Read the csv file successfully."});
  }

  void LogRawData(const Lines& paths) {
    Log({"Corner detection successful.", "RAW DATA START"});
    for (const std::string& path : paths) {
      Log(RawDataOf(path));
    }
    Log({"RAW DATA END", "Camera calibration start."});
  }

  void LogLens() {
    Log({"Fx : 1600.500000 pixel.", "Fy : 1601.000000 pixel.", "Cx : 959.000000 pixel.",
         "Cy : 539.000000 pixel.", "reprojection error : 0.250000",
         "Camera calibration successful.", "Image Width : 1920 pixel.",
         "Image Height : 1080 pixel.", "Norm F : (0.833333, 1.481481).",
         "Distortion (k1, k2, p1, p2, k3) : -0.050000, 0.020000, 0.000000, 0.000000, 0.000000",
         "Start OrganizeRT."});
  }

  Lines shown;
  RunLogReader reader{
      {"a", "b", "c"}, [this](const Progress& now) {
        shown.push_back(now.stage + ' ' + std::to_string(now.done) + '/' + std::to_string(now.all));
      }};
  const RunRecord& record = reader.Record();
};

TEST_F(RunLogReaderTest, ReadsWhatOpensTheLog) {
  Log({"Version : v1.2.3", "Flag_ModifyQuat : 1"});
  Log(kBoard);
  EXPECT_EQ(record.time, "2026-11-21 01:02:03");
  EXPECT_EQ(record.libraryVersion, "v1.2.3");
  EXPECT_TRUE(record.invertsQuaternions);
  ASSERT_TRUE(record.board);
  EXPECT_EQ(record.board->columns, 3);
  EXPECT_EQ(record.board->rows, 2);
  EXPECT_DOUBLE_EQ(record.board->square, 0.0254);
}

TEST_F(RunLogReaderTest, RecordsWhyPhotographsWereDropped) {
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "b Not exist!", "Process : c", "Read c Failed!"});
  LogRawData({"a"});
  ASSERT_EQ(record.photographs.size(), 3U);
  EXPECT_EQ(record.photographs[0].dropped, std::nullopt);
  EXPECT_EQ(record.photographs[1].dropped, DropReason::kNotLoaded);
  EXPECT_EQ(record.photographs[2].dropped, DropReason::kBoardNotFound);
  EXPECT_THAT(UsedPhotographs(record), ElementsAre("a"));
}

TEST_F(RunLogReaderTest, ReadsRowsAndCorners) {
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "Process : c"});
  LogRawData({"a", "b", "c"});
  for (const Photograph& photograph : record.photographs) {
    ASSERT_TRUE(photograph.raw) << photograph.path;
    EXPECT_EQ(photograph.raw->row[0], 1);
    EXPECT_EQ(photograph.raw->row[14], 15);
    ASSERT_EQ(photograph.raw->corners.size(), 6U);
    EXPECT_THAT(photograph.raw->corners[0], ElementsAre(10.5, 20.25));
    EXPECT_THAT(photograph.raw->corners[5], ElementsAre(12, 21));
  }
}

TEST_F(RunLogReaderTest, ReadsTheLensWhenItIsAccepted) {
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "Process : c"});
  LogRawData({"a", "b", "c"});
  EXPECT_FALSE(record.lens);
  LogLens();
  ASSERT_TRUE(record.lens);
  EXPECT_EQ(record.lens->width, 1920);
  EXPECT_EQ(record.lens->height, 1080);
  EXPECT_EQ(record.lens->fx, 1600.5);
  EXPECT_EQ(record.lens->cy, 539);
  EXPECT_EQ(record.lens->k1, -0.05);
  EXPECT_EQ(record.lens->k2, 0.02);
  EXPECT_EQ(record.lensError, 0.25);
}

TEST_F(RunLogReaderTest, ReadsTheSecondSolveAndTheValues) {
  LogToThePhotographs();
  Log({"Process : a"});
  LogRawData({"a"});
  LogLens();
  const Lines first = {"Mean_Transform_Cam_Tc : ", "[[1.000000, 0.000000, 0.000000, 9.000000],",
                       " [0.000000, 1.000000, 0.000000, 0.000000],",
                       " [0.000000, 0.000000, 1.000000, 0.000000],",
                       " [0.000000, 0.000000, 0.000000, 1.000000]]"};
  const Lines second = {"Mean_Transform_Cam_Tc : ", "[[0.000000, -1.000000, 0.000000, 0.100000],",
                        " [1.000000, 0.000000, 0.000000, 0.200000],",
                        " [0.000000, 0.000000, 1.000000, -0.300000],",
                        " [0.000000, 0.000000, 0.000000, 1.000000]]"};
  Log(first);
  Log({"Image 0 reprojection error : 9.000000 pixels.",
       "Average reprojection error : 2.500000 pixels."});
  EXPECT_TRUE(record.transformCamTc.empty());
  Log({"Mean_Transform_Chart_Tr : ", "[[1.000000, 0.000000, 0.000000, 5.000000],"});
  Log(second);
  Log({"Average reprojection error : 1.250000 pixels.", "Norm Reprojection error : 0.001000",
       "T_STD : 0.001000, 0.002000, 0.003000 meter.", "Max T_STD : 0.003000 meter."});
  EXPECT_FALSE(record.isSuccessful);
  Log({"Camera and Tracker Calibration successful."});
  EXPECT_THAT(record.transformCamTc,
              ElementsAre(0, -1, 0, 0.1, 1, 0, 0, 0.2, 0, 0, 1, -0.3, 0, 0, 0, 1));
  EXPECT_EQ(record.reprojectionError, 1.25);
  EXPECT_EQ(record.spread, 0.003);
  EXPECT_TRUE(record.isSuccessful);
}

TEST_F(RunLogReaderTest, ReadsValuesThatAreNotNumbers) {
  LogToThePhotographs();
  Log({"Process : a"});
  LogRawData({"a"});
  LogLens();
  Log({"Average reprojection error : -nan pixels.", "Max T_STD : inf meter."});
  EXPECT_TRUE(std::isnan(record.reprojectionError.value()));
  EXPECT_TRUE(std::isinf(record.spread.value()));
}

TEST_F(RunLogReaderTest, RemovesOutliersFromTheLastToTheFirst) {
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "Read b Failed!", "Process : c"});
  LogRawData({"a", "c"});
  LogLens();
  Log({"Remove outlier data number : 2", "Remove index : 1", "Remove name : c", "Remove index : 0",
       "Remove name : a"});
  EXPECT_EQ(record.photographs[0].dropped, DropReason::kOutlier);
  EXPECT_EQ(record.photographs[1].dropped, DropReason::kBoardNotFound);
  EXPECT_EQ(record.photographs[2].dropped, DropReason::kOutlier);
}

TEST_F(RunLogReaderTest, ReadsBothFormsOfTheErrorLine) {
  LogToThePhotographs();
  Log({"Error code 4: Amount of valid images < 12."});
  EXPECT_EQ(record.errorMessage, "Amount of valid images < 12.");
  EXPECT_EQ(record.errorCode, 4);
  Log({"Error code 15 : Tracker data format error in csv file."});
  EXPECT_EQ(record.errorMessage, "Tracker data format error in csv file.");
  EXPECT_EQ(record.errorCode, 15);
}

TEST_F(RunLogReaderTest, KeepsTheLastMessage) {
  Log({"Version : v1.2.3", "chartTrackerRotation has 2 elements, needs 3."});
  reader.Consume("no line of a log\n");
  EXPECT_EQ(record.lastMessage, "chartTrackerRotation has 2 elements, needs 3.");
}

TEST_F(RunLogReaderTest, ReadsPiecesOfAnyLength) {
  const std::string text = "2026-11-21 01:02:03\tVersion : v1\n2026-11-21 01:02:03\tend";
  for (const char character : text) {
    reader.Consume({&character, 1});
  }
  EXPECT_EQ(record.lastMessage, "Version : v1");
  reader.Consume("\n");
  EXPECT_EQ(record.lastMessage, "end");
}

TEST_F(RunLogReaderTest, ReadsLogsOfWindows) {
  reader.Consume("2026-11-21 01:02:03\tVersion : v1.2.3\r\n2026-11-21 01:02:03\tFlag : \r\r\n");
  EXPECT_EQ(record.libraryVersion, "v1.2.3");
  EXPECT_EQ(record.lastMessage, "Flag : \r");
}

TEST_F(RunLogReaderTest, TakesTheLastRunOfALog) {
  LogToThePhotographs();
  Log({"Process : a"});  // and an exception
  LogToThePhotographs();
  Log({"Process : b", "Process : c"});
  LogRawData({"b", "c"});
  EXPECT_EQ(record.libraryVersion, "v1.2.3");
  LogLens();
  Log({"Camera and Tracker Calibration successful.", "Version : v2"});
  EXPECT_EQ(record.libraryVersion, "v2");
  EXPECT_TRUE(record.photographs.empty());
}

TEST_F(RunLogReaderTest, ShowsStagesAndPhotographs) {
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "Read b Failed!", "Process : c"});
  LogRawData({"a", "c"});
  LogLens();
  Log({"Finish Calculate_Transform_Cam_Tc.", "Image 0 reprojection error : 1.000000 pixels.",
       "Remove index : 1", "Mean_Transform_Chart_Tr : ", "[[", " [", " [", " [",
       "Image 0 reprojection error : 1.000000 pixels."});
  EXPECT_THAT(shown, ElementsAre("Finding the board 0/3", "Finding the board 0/3",
                                 "Finding the board 1/3", "Finding the board 2/3",
                                 "Solving the lens 0/0", "Solving the transform 0/0",
                                 "Measuring the error 0/2", "Measuring the error 1/2",
                                 "Writing the images 0/1", "Writing the images 1/1"));
}

TEST_F(RunLogReaderTest, NamesThePhotographInWork) {
  Lines inWork;
  reader.~RunLogReader();
  new (&reader)
      RunLogReader({"a", "b", "c"}, [&](const Progress& now) { inWork.push_back(now.photograph); });
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "b Not exist!", "Process : c"});
  EXPECT_THAT(inWork, ElementsAre("", "a", "b", "c"));
  LogRawData({"a", "c"});
  LogLens();
  inWork.clear();
  Log({"Finish Calculate_Transform_Cam_Tc.", "Image 0 reprojection error : 1.000000 pixels.",
       "Image 1 reprojection error : 1.000000 pixels."});
  EXPECT_THAT(inWork, ElementsAre("", "c", ""));
}

// The first pass counts all, the second what the filter kept.
TEST_F(RunLogReaderTest, ReadsTheErrorOfEachPhotograph) {
  LogToThePhotographs();
  Log({"Process : a", "Process : b", "Process : c"});
  LogRawData({"a", "b", "c"});
  LogLens();
  Log({"Image 0 reprojection error : 1.500000 pixels.",
       "Image 1 reprojection error : 2.500000 pixels.",
       "Image 2 reprojection error : 3.500000 pixels.", "Remove index : 1",
       "Image 0 reprojection error : 0.250000 pixels.",
       "Image 1 reprojection error : 0.500000 pixels.",
       "Image 7 reprojection error : 9.000000 pixels."});
  EXPECT_EQ(record.photographs[0].errorPixels, 0.25);
  EXPECT_EQ(record.photographs[1].errorPixels, 2.5);
  EXPECT_EQ(record.photographs[2].errorPixels, 0.5);
}

TEST_F(RunLogReaderTest, KnowsWhenTheBoardIsNowhere) {
  LogToThePhotographs();
  Log({"Process : a", "a Not exist!"});
  EXPECT_FALSE(IsBoardNowhere(record));
  Log({"Process : b", "Read b Failed!"});
  EXPECT_TRUE(IsBoardNowhere(record));
  Log({"Process : c"});
  EXPECT_FALSE(IsBoardNowhere(record));
}

// Photographs may have any name, those of the log's own lines among them.
class HostileNames : public RunLogReaderTest, public testing::WithParamInterface<Lines> {};

TEST_P(HostileNames, ChangeNothingOfTheRecord) {
  const Lines& names = GetParam();
  // The second one is missing, whatever it is called.
  const Lines used = {names[0], names[2]};
  reader.~RunLogReader();
  new (&reader) RunLogReader(names);
  LogToThePhotographs();
  Log({"Process : " + names[0], "Process : " + names[1], names[1] + " Not exist!",
       "Process : " + names[2]});
  LogRawData(used);
  LogLens();
  EXPECT_EQ(UsedPhotographs(record), used);
  EXPECT_EQ(record.photographs.size(), names.size());
  EXPECT_EQ(record.errorMessage, "");
  EXPECT_TRUE(record.lens);
  EXPECT_EQ(record.libraryVersion, "v1.2.3");
}

INSTANTIATE_TEST_SUITE_P(
    RunLog, HostileNames,
    testing::Values(Lines{"RAW DATA END", "RAW DATA START", "Error code 9: x"},
                    Lines{"Process : x", "x", "x Not exist!"},
                    Lines{"Process : x", "x Not exist!", "y"},
                    Lines{"Version : v6", "Version : v7", "Camera calibration start."},
                    Lines{"Corner detection successful.", "Read the csv file successfully.",
                          "2026-11-21 01:02:03\tVersion : v8"},
                    Lines{"1.0 2.0", "Start OrganizeRT.", "Remove index : 0"},
                    Lines{"a\r", "", "0.000000 0.000000 0"}));

}  // namespace
}  // namespace trackedcam::host
