// A short form of the study: enough shoots to catch intervals that are half or twice as wide.

#include "crosscheck/kit/coverage.h"

#include <gtest/gtest.h>

namespace trackedcam::test {
namespace {

constexpr std::uint64_t kFirstSeed = 500;
constexpr int kShoots = 12;

TEST(CoverageTest, TheTruthLiesInTheIntervals) {
  int covered = 0;
  int loud = 0;
  for (const Cell& cell : CoverageCells()) {
    SCOPED_TRACE(cell.name + ", seeds from " + std::to_string(kFirstSeed));
    const Tally tally = RunCell(cell, kFirstSeed, kShoots);
    EXPECT_EQ(tally.solved, kShoots);
    EXPECT_EQ(tally.badOnesTaken, 0);
    loud += tally.loud;
    for (const int axis : tally.covered) {
      covered += axis;
    }
  }
  const double share = covered / (4.0 * kShoots * kAxes);
  EXPECT_GT(share, 0.91);
  EXPECT_LT(share, 0.985);
  EXPECT_LE(loud, 2);
}

TEST(CoverageTest, AMountingThatIsOffIsFound) {
  Cell shifted;
  shifted.mountingErrorMm = 5;
  EXPECT_EQ(RunCell(shifted, kFirstSeed, kShoots).Said("mountingOff"), kShoots);
  Cell turned;
  turned.mountingErrorDegrees = 1;
  EXPECT_EQ(RunCell(turned, kFirstSeed, kShoots).Said("mountingOff"), kShoots);
}

}  // namespace
}  // namespace trackedcam::test
