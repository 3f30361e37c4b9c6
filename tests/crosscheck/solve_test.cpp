#include "crosscheck/solve.h"

#include <cmath>

#include <gmock/gmock.h>

#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/start.h"
#include "simulator/random.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::FortyNoisy;
using test::FortyPhotographs;
using test::IsNear;
using test::IsTransformNear;
using test::KnownShoot;
using test::MakeShoot;

Solution Around(const KnownShoot& shoot, double radians, double metres) {
  Solution solution;
  const Twist off = (Twist() << radians, -radians, radians, metres, metres, -metres).finished();
  solution.Transform_Cam_Tc = Exp(off) * shoot.Transform_Cam_Tc;
  solution.Transform_Tr_Chart = shoot.Transform_Tr_Chart * Exp(-off);
  return solution;
}

SolveOptions All(std::size_t count) {
  SolveOptions options;
  options.first.assign(count, true);
  return options;
}

TEST(SolveTest, APerfectShootHasNoResidualAtTheTruth) {
  const KnownShoot shoot = MakeShoot(FortyPhotographs(31));
  const Solution truth = Around(shoot, 0, 0);
  for (const Loop& loop : Gather(shoot.observations).loops) {
    EXPECT_LT(Residual(loop, 0, truth).norm(), 1e-9);
  }
}

TEST(SolveTest, AWrongStartEndsAtTheTruth) {
  const KnownShoot shoot = MakeShoot(FortyPhotographs(32));
  const Loops loops = Gather(shoot.observations).loops;
  const auto solved = Solve(loops, Around(shoot, 0.2, 0.1), All(loops.size()));
  ASSERT_TRUE(solved);
  EXPECT_THAT(solved->Transform_Cam_Tc.matrix(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 1e-7, 1e-5));
  EXPECT_THAT(solved->Transform_Tr_Chart.matrix(),
              IsTransformNear(shoot.Transform_Tr_Chart.matrix(), 1e-7, 1e-5));
}

// By differences of the prediction itself, unknown after unknown.
TEST(SolveTest, TheDesignIsTheDerivativeOfThePrediction) {
  const KnownShoot shoot = MakeShoot(FortyPhotographs(33));
  const Loop loop = Gather(shoot.observations).loops.front();
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    Solution solution = Around(shoot, 0, 0);
    solution.unknowns.squareSize = true;
    solution.unknowns.step = tracker;
    solution.unknowns.before = 5;
    const Design design = DesignOf(loop, 5, solution);
    ASSERT_EQ(design.cols(), 19);
    for (int k = 0; k < 19; ++k) {
      const double step = 1e-6;
      Solution moved = solution;
      if (k < 6) {
        moved.Transform_Cam_Tc = Exp(step * Twist::Unit(k)) * solution.Transform_Cam_Tc;
      } else if (k < 12) {
        moved.Transform_Tr_Chart = solution.Transform_Tr_Chart * Exp(step * Twist::Unit(k - 6));
      } else if (k == 12) {
        moved.squareFactor += step;
      } else {
        moved.step = Exp(step * Twist::Unit(k - 13));
      }
      // The residual falls by what the prediction gains.
      const Twist difference = -Residual(loop, 5, moved) / step;
      EXPECT_THAT(design.col(k), IsNear(difference, 1e-5)) << "unknown " << k;
    }
    EXPECT_TRUE(DesignOf(loop, 4, solution).rightCols<6>().isZero());
  }
}

// Many draws of both trackers' noise, through the loop.
TEST(SolveTest, TheCovarianceIsThatOfDrawnResiduals) {
  const KnownShoot shoot = MakeShoot(FortyPhotographs(34));
  const Loop exact = Gather(shoot.observations).loops.front();
  Solution truth = Around(shoot, 0, 0);
  truth.noise.rotation = 1e-6;
  truth.noise.translation = 4e-6;
  simulator::Random random(34, simulator::Draw::kTrackers);
  Matrix6d sum = Matrix6d::Zero();
  constexpr int kDraws = 20000;
  for (int i = 0; i < kDraws; ++i) {
    const auto noise = [&] {
      return (Twist() << 1e-3 * random.NormalVector(), 2e-3 * random.NormalVector()).finished();
    };
    Loop loop = exact;
    const Twist camera = noise();
    loop.Transform_Tc_Tr = Exp(camera).inverse() * exact.Transform_Tc_Tr * Exp(noise());
    const Twist residual = Residual(loop, 0, truth);
    sum += residual * residual.transpose() / kDraws;
  }
  Loop noCorners = exact;
  noCorners.cornerCovariance.setZero();
  const Matrix6d expected = CovarianceOf(noCorners, truth, truth.noise);
  for (int k = 0; k < 6; ++k) {
    EXPECT_NEAR(sum(k, k) / expected(k, k), 1, 0.05);
  }
  EXPECT_LT((sum - expected).norm(), 0.05 * expected.norm());
}

TEST(SolveTest, TheNoiseIsFoundWithoutBias) {
  double rotation = 0;
  double translation = 0;
  constexpr int kShoots = 12;
  for (std::uint64_t seed = 60; seed < 60 + kShoots; ++seed) {
    simulator::ShootOptions options = FortyNoisy(seed);
    options.trackerNoiseMm = 1;
    options.trackerNoiseDegrees = 0.2;
    options.photographs = 20;
    const KnownShoot shoot = MakeShoot(options);
    const Loops loops = Gather(shoot.observations).loops;
    const auto solved = Solve(loops, Around(shoot, 0, 0), All(loops.size()));
    ASSERT_TRUE(solved) << "seed " << seed;
    rotation += solved->noise.rotation / kShoots;
    translation += solved->noise.translation / kShoots;
  }
  const double radians = 0.2 * kDegree;
  EXPECT_NEAR(rotation / (radians * radians), 1, 0.15);
  EXPECT_NEAR(translation / 1e-6, 1, 0.15);
}

TEST(SolveTest, BadLoopsLeaveAndTheOthersStay) {
  simulator::ShootOptions shootOptions = FortyNoisy(36);
  shootOptions.outliers = 6;
  const simulator::Shoot simulated = simulator::SimulateShoot(shootOptions);
  const KnownShoot shoot = MakeShoot(simulated);
  const Loops loops = Gather(shoot.observations).loops;
  const auto start = FindStart(loops, BoardDistance(Gather(shoot.observations)), 60);
  ASSERT_TRUE(start);
  SolveOptions options;
  options.first = start->closest;
  Solution from;
  from.Transform_Cam_Tc = start->Transform_Cam_Tc;
  from.Transform_Tr_Chart = start->Transform_Tr_Chart;
  const auto solved = Solve(loops, from, options);
  ASSERT_TRUE(solved);
  for (std::size_t i = 0; i < loops.size(); ++i) {
    EXPECT_EQ(solved->used[i], simulated.photographs[i].flaw == simulator::Flaw::kNone)
        << "photograph " << i;
  }
}

TEST(SolveTest, LoopsThatDoNotDetermineTheUnknownsGiveNothing) {
  const KnownShoot shoot = MakeShoot(FortyPhotographs(37));
  Loops loops = Gather(shoot.observations).loops;
  loops.assign(10, loops.front());
  EXPECT_FALSE(Solve(loops, Around(shoot, 0, 0), All(loops.size())));
  EXPECT_FALSE(Solve(loops, Around(shoot, 0, 0), All(0)));
}

TEST(StartTest, AFirstSolutionIsExactOnPerfectShoots) {
  const KnownShoot shoot = MakeShoot(FortyPhotographs(38));
  const Evidence evidence = Gather(shoot.observations);
  const auto start = FindStart(evidence.loops, BoardDistance(evidence), 5);
  ASSERT_TRUE(start);
  EXPECT_THAT(start->Transform_Cam_Tc.matrix(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 1e-5, 1e-3));
  EXPECT_LT(start->medianMetres, 1e-5);
}

TEST(StartTest, FortyPercentOfBadPhotographsDoNotReachIt) {
  simulator::ShootOptions options = FortyNoisy(39);
  options.outliers = 16;
  const KnownShoot shoot = MakeShoot(options);
  const Evidence evidence = Gather(shoot.observations);
  const auto start = FindStart(evidence.loops, BoardDistance(evidence), 60);
  ASSERT_TRUE(start);
  EXPECT_THAT(start->Transform_Cam_Tc.matrix(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 0.02, 1));
  EXPECT_FALSE(FindStart({}, BoardDistance(evidence), 60));
}

TEST(StartTest, TheDistanceOfBoardsIsThatOfTheirCorners) {
  const Evidence evidence = Gather(MakeShoot(FortyPhotographs(40)).observations);
  const Pose& a = evidence.loops[0].Transform_Cam_Chart;
  const Pose& b = evidence.loops[1].Transform_Cam_Chart;
  double squares = 0;
  for (const std::size_t corner : {0U, 8U, 45U, 53U}) {
    squares +=
        0.25 *
        (a * evidence.corners.board[corner] - b * evidence.corners.board[corner]).squaredNorm();
  }
  EXPECT_NEAR(BoardDistance(evidence).Squared(a, b), squares, 1e-12);
}

}  // namespace
}  // namespace trackedcam::crosscheck
