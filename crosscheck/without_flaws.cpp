#include "crosscheck/without_flaws.h"

#include "crosscheck/chart_pose.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

// With the poses of the chart that the library saw, by its lens and a flat board.
Loops AsTheLibrarySaw(const Observations& observations, const Evidence& evidence) {
  Loops loops = evidence.loops;
  if (evidence.corners.flaws.empty()) {
    return loops;
  }
  const std::vector<Eigen::Vector3d> flat =
      Board{observations.boardColumns, observations.boardRows, observations.square, {}}.Points();
  for (Loop& loop : loops) {
    const std::size_t photograph = loop.photographs.front();
    const Pose& found = evidence.corners.poses[photograph]->Transform_Cam_Chart;
    if (const auto seen = RefineChartPose(found, evidence.libraryLens, flat,
                                          observations.photographs[photograph].corners)) {
      loop.Transform_Cam_Chart =
          seen->Transform_Cam_Chart * found.inverse() * loop.Transform_Cam_Chart;
    }
  }
  return loops;
}

Loops WithoutFlaw(Loops loops, const TrackerFlawTest& flaw) {
  for (std::size_t i = 0; i < loops.size(); ++i) {
    loops[i].Transform_Cam_Chart = Exp(-flaw.byLoop[i]) * loops[i].Transform_Cam_Chart;
  }
  return loops;
}

// Transform_Cam_Tc with the stated mounting, which the library believes.
std::optional<Pose> Believing(const std::optional<Mounting>& mounting, const Loops& loops,
                              const Solution& solution) {
  Solution from = solution;
  if (mounting) {
    from.unknowns.mounting = false;
    from.Transform_Tr_Chart = TransformOf(*mounting);
  }
  SolveOptions options;
  options.first = solution.used;
  options.isFixed = true;
  const auto solved = Solve(loops, from, options);
  return solved ? std::optional<Pose>(solved->Transform_Cam_Tc) : std::nullopt;
}

}  // namespace

WithoutFlaws TakeFlawsAway(const Observations& observations, const Evidence& evidence,
                           const Solution& solution, const std::optional<TrackerFlawTest>& flaw,
                           const std::optional<Pose>& library) {
  Solution without = solution;
  Eigen::MatrixXd covariance = FullCovariance(solution, evidence);
  Loops loops = evidence.loops;
  if (flaw) {
    without.Transform_Cam_Tc = Exp(flaw->moved.head<6>()) * without.Transform_Cam_Tc;
    without.Transform_Tr_Chart = without.Transform_Tr_Chart * Exp(flaw->moved.segment<6>(6));
    covariance += flaw->covarianceOfMoved;
    loops = WithoutFlaw(loops, *flaw);
  }
  WithoutFlaws rest;
  if (observations.mounting) {
    rest.pMounting =
        CompareTrChart(without, covariance.block<6, 6>(6, 6), TransformOf(*observations.mounting))
            .p;
  }
  if (!library) {
    return rest;
  }
  rest.pLibrary = 0;
  const auto saw =
      Believing(observations.mounting, AsTheLibrarySaw(observations, evidence), solution);
  const auto wouldHaveSeen = Believing(observations.mounting, loops, solution);
  if (saw && wouldHaveSeen) {
    rest.pLibrary = CompareCamTc(without, covariance.topLeftCorner<6, 6>(),
                                 *wouldHaveSeen * saw->inverse() * *library)
                        .p;
  }
  return rest;
}

}  // namespace trackedcam::crosscheck
