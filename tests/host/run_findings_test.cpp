#include "host/findings/run_findings.h"

#include <gtest/gtest.h>

namespace trackedcam::host {
namespace {

// So many photographs in which the board was found, and so many of them used.
LibraryRun RunWith(std::size_t seen, std::size_t used) {
  LibraryRun run;
  run.code = 0;
  run.outputs.transformCamTc.assign(16, 0.5);
  for (std::size_t i = 0; i < seen; ++i) {
    run.record.photographs.push_back(
        {"p", i < used ? std::nullopt : std::optional(DropReason::kOutlier), RawData{}});
  }
  return run;
}

TEST(RunFindings, TellOfFewUsedPhotographs) {
  EXPECT_TRUE(FindingsOf(RunWith(20, 8)).empty());
  EXPECT_TRUE(FindingsOf(RunWith(24, 8)).empty());
  for (const LibraryRun& run : {RunWith(14, 2), RunWith(14, 7), RunWith(25, 8)}) {
    const std::vector<Finding> findings = FindingsOf(run);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].id, "fewUsed");
    EXPECT_EQ(findings[0].severity, Severity::kWarning);
  }
  EXPECT_EQ(FindingsOf(RunWith(14, 2))[0].text,
            "The result rests on 2 of 14 photographs in which the board was found.");
}

TEST(RunFindings, TellWhenTheBoardIsNowhere) {
  LibraryRun run;
  run.code = 4;
  run.record.board = BoardRecord{10, 7, 0.03};
  run.record.photographs = {{"a", DropReason::kBoardNotFound, std::nullopt}};
  const std::vector<Finding> findings = FindingsOf(run);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].id, "boardNowhere");
  EXPECT_EQ(findings[0].advice,
            "Count inner corners, not squares: a chart of 10x7 squares has 9x6 of them.");
  run.record.photographs.push_back({"b", std::nullopt, RawData{}});
  EXPECT_TRUE(FindingsOf(run).empty());
}

}  // namespace
}  // namespace trackedcam::host
