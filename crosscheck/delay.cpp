#include "crosscheck/delay.h"

#include <cmath>

#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"
#include "crosscheck/statistics.h"
#include "crosscheck/tracker_flaws.h"

namespace trackedcam::crosscheck {

std::optional<Delay> FitDelay(const Observations& observations, const std::vector<Twist>& perSecond,
                              bool withDrift) {
  const Evidence evidence = Gather(observations);
  const std::optional<Solution> solution = SolveShoot(evidence);
  if (!solution) {
    return std::nullopt;
  }
  const Loops& loops = evidence.loops;
  Delay delay;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (solution->used[i]) {
      delay.meanSeconds += loops[i].seconds;
      ++delay.used;
    }
  }
  delay.meanSeconds /= static_cast<double>(delay.used);
  const auto columnsOf = [&](std::size_t i) {
    Columns columns(6, withDrift ? 2 : 1);
    columns.col(0) = Adjoint(solution->Transform_Cam_Tc) * perSecond.at(loops[i].photographs[0]);
    if (withDrift) {
      columns.col(1) = (loops[i].seconds - delay.meanSeconds) * columns.col(0);
    }
    return columns;
  };
  const ColumnFit fit = FitColumns(columnsOf, loops, *solution);
  if (!fit.isDetermined || !fit.value.allFinite() || !fit.covariance.allFinite()) {
    return std::nullopt;
  }
  delay.seconds = fit.value[0];
  delay.error = std::sqrt(fit.covariance(0, 0));
  if (withDrift) {
    delay.drift = fit.value[1];
    delay.driftError = std::sqrt(fit.covariance(1, 1));
  }
  delay.t95 = StudentHalfWidth95(Freedom(solution->Used()));
  delay.trackerNoiseMm = 1e3 * std::sqrt(solution->noise.translation);
  delay.trackerNoiseDegrees = std::sqrt(solution->noise.rotation) / kDegree;
  return delay;
}

}  // namespace trackedcam::crosscheck
