#include "host/verdict/run_findings.h"

#include <gmock/gmock.h>

#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A run with this many photographs in which the board was found, and this many of them used.
LibraryRun RunWith(std::size_t seen, std::size_t used) {
  LibraryRun run;
  run.code = 0;
  run.record.isSuccessful = true;
  run.outputs.transformCamTc.assign(16, 0.5);
  for (std::size_t i = 0; i < seen; ++i) {
    run.record.photographs.push_back(
        {"p", i < used ? std::nullopt : std::optional(DropReason::kOutlier), RawData{}});
  }
  return run;
}

std::optional<crosscheck::CrossCheck> CheckWith(std::size_t agree) {
  crosscheck::CrossCheck check;
  check.solved = true;
  check.used = agree;
  return check;
}

TEST(RunFindings, ReportFewUsedPhotographs) {
  EXPECT_THAT(FindingsOf(RunWith(20, 8), CheckWith(20)), IsEmpty());
  EXPECT_THAT(FindingsOf(RunWith(24, 8), CheckWith(24)), IsEmpty());
  for (const auto& [seen, used] : {std::pair(14, 2), {14, 7}, {25, 8}}) {
    const std::vector<Finding> findings = FindingsOf(RunWith(seen, used), CheckWith(seen));
    ASSERT_THAT(findings, SizeIs(1));
    EXPECT_EQ(findings[0].severity, Severity::kWarning);
    EXPECT_EQ(std::get<FewUsed>(findings[0].kind).used, used);
    EXPECT_EQ(std::get<FewUsed>(findings[0].kind).seen, seen);
    EXPECT_EQ(std::get<FewUsed>(findings[0].kind).agree, seen);
  }
}

// The filter leaves four of fourteen by chance, if all agree.
TEST(RunFindings, AreAnErrorIfLessThanHalfAgree) {
  const auto severity = [](std::size_t used, const std::optional<crosscheck::CrossCheck>& check) {
    return FindingsOf(RunWith(14, used), check).at(0).severity;
  };
  EXPECT_EQ(severity(4, CheckWith(14)), Severity::kWarning);
  EXPECT_EQ(severity(4, CheckWith(10)), Severity::kWarning);
  EXPECT_EQ(severity(4, CheckWith(9)), Severity::kError);
  EXPECT_EQ(severity(4, std::nullopt), Severity::kError);
  EXPECT_EQ(severity(7, std::nullopt), Severity::kWarning);
}

TEST(RunFindings, CountNothingIfTheLogIsIncomplete) {
  LibraryRun run = RunWith(14, 4);
  run.record.isSuccessful = false;
  EXPECT_THAT(FindingsOf(run, std::nullopt), IsEmpty());
}

TEST(RunFindings, ReportABoardThatWasFoundNowhere) {
  LibraryRun run;
  run.code = 4;
  run.record.board = BoardRecord{10, 7, 0.03};
  run.record.photographs = {{"a", DropReason::kBoardNotFound, std::nullopt}};
  const std::vector<Finding> findings = FindingsOf(run, std::nullopt);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_EQ(findings[0].severity, Severity::kError);
  EXPECT_EQ(std::get<BoardNowhere>(findings[0].kind).columns, 10);
  EXPECT_EQ(std::get<BoardNowhere>(findings[0].kind).rows, 7);
  run.record.photographs.push_back({"b", std::nullopt, RawData{}});
  EXPECT_THAT(FindingsOf(run, std::nullopt), IsEmpty());
}

class OutputErrors : public testing::Test {
 protected:
  OutputErrors() {
    run.log = folder.Path() / "log.txt";
    run.record.isSuccessful = true;
    test::WriteFile(folder.File("log.txt"), "log");
  }

  test::TemporaryFolder folder;
  LibraryRun run = RunWith(20, 12);
};

TEST_F(OutputErrors, AreNoneOfACompleteRun) {
  EXPECT_THAT(OutputErrorsOf(run), IsEmpty());
  run.record.isSuccessful = false;
  run.code = 13;
  run.record.errorCode = 13;
  EXPECT_THAT(OutputErrorsOf(run), IsEmpty());
  run.code = -1;
  EXPECT_THAT(OutputErrorsOf(run), IsEmpty());
}

TEST_F(OutputErrors, AreOfALogWithoutItsLastLineOrFile) {
  run.record.isSuccessful = false;
  const std::vector<Finding> findings = OutputErrorsOf(run);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_FALSE(std::get<LogIncomplete>(findings[0].kind).isCrossCheckable);
  run.record.isSuccessful = true;
  run.record.lens = LensRecord{};
  run.log = folder.Path() / "none.txt";
  ASSERT_THAT(OutputErrorsOf(run), SizeIs(1));
  EXPECT_TRUE(std::get<LogIncomplete>(OutputErrorsOf(run)[0].kind).isCrossCheckable);
}

TEST_F(OutputErrors, AreOfImagesThatAreMissing) {
  run.missingImages = {"a.jpg", "b.jpg"};
  run.images = {"Reproject_c.jpg"};
  const std::vector<Finding> findings = OutputErrorsOf(run);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_EQ(findings[0].severity, Severity::kWarning);
  EXPECT_THAT(findings[0].photographs, ElementsAre("a.jpg", "b.jpg"));
  EXPECT_EQ(std::get<ImagesMissing>(findings[0].kind).count, 2U);
  EXPECT_EQ(std::get<ImagesMissing>(findings[0].kind).all, 3U);
}

}  // namespace
}  // namespace trackedcam::host
