#include "core/result_code.h"

#include <string>
#include <utility>
#include <vector>

#include "core/version.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

using ResultCodeTest = test::StageTest;

const std::vector<std::pair<ResultCode, std::string>> kMessages = {
    {0, "No error"},
    {1, "The raw data csv file path is wrong."},
    {2, "The amount of Tracker data and images do not match."},
    {3, "Encountered Gimbal lock."},
    {4, "Amount of valid images < 12."},
    {5, "Camera calibration failed, reporjection too large. (> 1.5 pixel)"},
    {6, "Camera tracker calibration failed, Translation STD too large. (> 1.5cm)"},
    {7, "Data size is not same in Cal_Reproj_Error."},
    {8, "Data size is not same in Calculate_Transform_Cam_Tc."},
    {9, "Norm_Vec size is not correct."},
    {10, "Dot_Vec size is not correct."},
    {11, "RT_Filt_Outlier output size is not same."},
    {12, "Data size is not same in Calculate_Transform_Chart_Tr"},
    {13, "Filtered data not enough (<2)"},
    {14, "Reprojection error too large (>18 pixel in 1080p)"},
    {15, "Tracker data format error in csv file. Please re-calibration again!"},
    {99, "Recalibration is recommended."},
    {100, "DoF Near calculation error, Near > ObjectDistance."},
};

TEST_F(ResultCodeTest, HaveTheirFixedMessages) {
  for (const auto& [code, message] : kMessages) {
    EXPECT_EQ(LookupResultMessage(code), message);
  }
}

TEST_F(ResultCodeTest, WithoutAMessageAreEmpty) {
  for (int round = 0; round < 2; ++round) {
    for (const ResultCode code : {16, 17, 50, 98, 101, -1}) {
      EXPECT_EQ(LookupResultMessage(code), "") << code;
    }
  }
}

TEST_F(ResultCodeTest, AreNoMoreThanTheTableLists) {
  std::size_t messages = 0;
  for (ResultCode code = -1000; code <= 1000; ++code) {
    messages += LookupResultMessage(code).empty() ? 0 : 1;
  }
  EXPECT_EQ(messages, kMessages.size());
}

TEST_F(ResultCodeTest, AreLoggedWithTheirDigitsAndReturned) {
  EXPECT_EQ(LogError(log, 4), 4);
  EXPECT_EQ(LogError(log, 99), 99);
  EXPECT_EQ(LogError(log, 16), 16);
  EXPECT_EQ(LogError(log, 10, " Rot_Cam_Tc_vec"), 10);
  EXPECT_EQ(LogLines(), (std::vector<std::string>{
                            "Error code 4: Amount of valid images < 12.",
                            "Error code 99: Recalibration is recommended.", "Error code 16: ",
                            "Error code 10: Dot_Vec size is not correct. Rot_Cam_Tc_vec"}));
}

TEST_F(ResultCodeTest, OfSomeStagesHaveABlankBeforeTheColon) {
  for (const ResultCode code : {1, 2, 3, 15}) {
    LogError(log, code);
    EXPECT_EQ(LogLines().back(),
              "Error code " + std::to_string(code) + " : " + LookupResultMessage(code));
  }
}

TEST(Version, IsTheTextThatEveryCallLogs) {
  EXPECT_EQ(LibraryVersion, "v" TRACKEDCAM_VERSION);
}

}  // namespace
}  // namespace trackedcam
