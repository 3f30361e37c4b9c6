#include "crosscheck/flaw_findings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "crosscheck/clusters.h"
#include "crosscheck/on_screen.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

// From these on, a flaw matters, if it is not small beside the interval as well.
constexpr double kLeastMm = 0.5;
constexpr double kLeastDegrees = 0.05;
constexpr double kLeastShareOfInterval = 0.5;

constexpr double kFalseAlarms = 0.01;  // of all tests of the trackers together
constexpr int kTests = 7;
constexpr std::size_t kLeastUsed = 12;  // photographs
// Less is not noise but the rounding of rows.
constexpr double kLeastNoiseMm = 0.01;
constexpr double kLeastNoiseDegrees = 0.001;
constexpr double kWorkDistance = 4;  // metres at which pixels are given

Offset Moved(const Twist& twist, const Solution& solution) {
  return Between(Exp(twist) * solution.Transform_Cam_Tc, solution.Transform_Cam_Tc);
}

Severity SeverityOf(const Offset& moved, const CrossCheck& check) {
  if (moved.offMm >= kGraveMm || moved.offDegrees >= kGraveDegrees) {
    return Severity::kError;
  }
  const StandardError& error = check.standardErrorCamTc;
  const bool isFar =
      moved.offMm >=
          std::max(kLeastMm, kLeastShareOfInterval * check.t95 * error.translationMm.norm()) ||
      moved.offDegrees >=
          std::max(kLeastDegrees, kLeastShareOfInterval * check.t95 * error.rotationDegrees.norm());
  return isFar ? Severity::kWarning : Severity::kNote;
}

// Few photographs show no pattern, and less than the rounding of rows is none.
bool AreShown(const CrossCheck& check, const Solution& solution) {
  return solution.Used() >= kLeastUsed &&
         (check.trackerNoiseMm >= kLeastNoiseMm || check.trackerNoiseDegrees >= kLeastNoiseDegrees);
}

// The largest sag of the middle behind both ends, along a row, a column or a diagonal.
double LargestBow(const BoardShape& shape) {
  const double both = shape.bowAlongRows + shape.bowAlongColumns;
  double largest = 0;
  for (const double bow :
       {both - shape.warp, both + shape.warp, shape.bowAlongRows, shape.bowAlongColumns}) {
    largest = std::abs(bow) > std::abs(largest) ? bow : largest;
  }
  return largest;
}

// The lens that fits the corners without the flaw.
Lens LensWithout(const CornerFit& corners, const Eigen::VectorXd& change) {
  CornerModel model = corners.model;
  CornerVector values = model.Parameters();
  values(corners.parameters) += change;
  model.SetParameters(values);
  return model.lens;
}

}  // namespace

std::vector<Finding> CornerFindings(const CrossCheck& check, const Evidence& evidence,
                                    const Solution& solution) {
  const CornerFit& corners = evidence.corners;
  const Lens& lens = corners.model.lens;
  const auto parameters = static_cast<Eigen::Index>(corners.parameters.size());
  std::vector<Finding> findings;
  std::optional<Finding> ofLens;
  Eigen::VectorXd lensChange = Eigen::VectorXd::Zero(parameters);
  for (const CornerFlaw flaw : corners.flaws) {
    const Eigen::VectorXd change = ChangeWithout(corners, flaw);
    const auto movedBy = [&](const Eigen::VectorXd& values) {
      return Moved(solution.byNuisances.topRows<6>().leftCols(parameters) * values, solution);
    };
    const Offset moved = movedBy(change);
    switch (flaw) {
      case CornerFlaw::kNotFlat:
        findings.push_back(
            {SeverityOf(moved, check), ChartNotFlat{1e3 * LargestBow(corners.model.board.shape),
                                                    moved.offMm, moved.offDegrees}});
        break;
      case CornerFlaw::kStretched:
        findings.push_back(
            {SeverityOf(moved, check),
             ChartStretched{corners.model.board.shape.stretch, moved.offMm, moved.offDegrees}});
        break;
      case CornerFlaw::kTangential:
      case CornerFlaw::kSixthOrder: {
        lensChange += change;
        const Offset both = movedBy(lensChange);
        const Pose without =
            Exp(solution.byNuisances.topRows<6>().leftCols(parameters) * lensChange) *
            solution.Transform_Cam_Tc;
        ofLens = {SeverityOf(both, check),
                  LensModel{lens.p1, lens.p2, lens.k3, both.offMm, both.offDegrees,
                            PixelsApart(kWorkDistance, evidence, solution,
                                        LensWithout(corners, lensChange), without),
                            kWorkDistance}};
        break;
      }
    }
  }
  if (ofLens) {
    findings.push_back(*ofLens);
  }
  return findings;
}

std::optional<TrackerFlawTest> ClearestFlaw(const CrossCheck& check, const Evidence& evidence,
                                            const Solution& solution) {
  if (!AreShown(check, solution)) {
    return std::nullopt;
  }
  // One cause shows in several tests: the clearest names it.
  std::optional<TrackerFlawTest> clearest;
  for (TrackerFlawTest& test : TestTrackers(evidence.loops, solution)) {
    if (test.p < kFalseAlarms / kTests && (!clearest || test.p < clearest->p)) {
      clearest = std::move(test);
    }
  }
  return clearest;
}

std::optional<Finding> TrackerFinding(const CrossCheck& check, const Evidence& evidence,
                                      const Solution& solution,
                                      const std::optional<TrackerFlawTest>& flaw) {
  if (flaw) {
    const Offset moved = Moved(flaw->moved.head<6>(), solution);
    Severity severity = SeverityOf(moved, check);
    // Large errors are a doubt even if the transform does not show them.
    if (severity == Severity::kNote &&
        (flaw->mm >= kNotableMm || flaw->degrees >= kNotableDegrees)) {
      severity = Severity::kWarning;
    }
    return Finding{severity, TrackerErrors{flaw->flaw, flaw->p, flaw->delaySeconds, flaw->mm,
                                           flaw->degrees, moved.offMm, moved.offDegrees}};
  }
  if (!AreShown(check, solution)) {
    return std::nullopt;
  }
  double p = 1;
  for (const Clusters& clusters :
       {ClustersInTime(solution), ClustersInPose(evidence.loops, solution)}) {
    p = std::min(p, ChanceOfClusters(evidence.loops, solution, clusters));
  }
  if (!(p < kFalseAlarms / kTests)) {
    return std::nullopt;
  }
  constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
  return Finding{Severity::kNote,
                 TrackerErrors{std::nullopt, p, 0, kUnknown, kUnknown, kUnknown, kUnknown}};
}

}  // namespace trackedcam::crosscheck
