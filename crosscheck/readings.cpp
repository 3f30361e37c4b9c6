#include "crosscheck/readings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "crosscheck/start.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kTimesBetter = 4;
constexpr int kSamples = 24;
// A fit needs no more photographs to show what it is worth.
constexpr std::size_t kEnough = 30;
// Nothing is misread where the boards lie as near as this; metres.
constexpr double kSurelyRight = 2e-4;

struct Attempt {
  const char* id;
  Meaning meaning;
  int shift;  // of the row that belongs to a photograph
};

constexpr std::array<Attempt, 11> kAttempts = {{
    {"quaternionsInverted", Meaning::kQuaternionsInverted, 0},
    {"orderXyzw", Meaning::kOrderXyzw, 0},
    {"trackersExchanged", Meaning::kTrackersExchanged, 0},
    {"rowsLate", Meaning::kAsRead, 1},
    {"rowsEarly", Meaning::kAsRead, -1},
    {"millimetres", Meaning::kMillimetres, 0},
    {"centimetres", Meaning::kCentimetres, 0},
    {"leftHanded", Meaning::kLeftHanded, 0},
    {"mirroredX", Meaning::kMirroredX, 0},
    {"mirroredY", Meaning::kMirroredY, 0},
    {"mirroredZ", Meaning::kMirroredZ, 0},
}};

// NaN where there is no fit.
double MedianMetres(const Observations& observations, const Evidence& evidence,
                    const Attempt& attempt) {
  const auto& photographs = observations.photographs;
  const std::size_t stride = (photographs.size() + kEnough - 1) / kEnough;
  Loops loops;
  for (std::size_t i = 0; i < photographs.size(); i += std::max<std::size_t>(stride, 1)) {
    const auto row = static_cast<std::ptrdiff_t>(i) + attempt.shift;
    if (!evidence.chartPoses[i] || row < 0 ||
        row >= static_cast<std::ptrdiff_t>(photographs.size())) {
      continue;
    }
    const auto Transform_Tc_Tr =
        TransformOfRow(photographs[static_cast<std::size_t>(row)],
                       observations.invertTrackerQuaternions, attempt.meaning);
    if (Transform_Tc_Tr) {
      Loop loop;
      loop.photograph = i;
      loop.Transform_Cam_Chart = evidence.chartPoses[i]->Transform_Cam_Chart;
      loop.Transform_Tc_Tr = *Transform_Tc_Tr;
      loops.push_back(loop);
    }
  }
  // With six or fewer almost anything fits.
  const auto start =
      loops.size() > 6 ? FindStart(loops, BoardDistance(evidence), kSamples) : std::nullopt;
  return start ? start->medianMetres : std::nan("");
}

}  // namespace

std::optional<Reading> FindReading(const Observations& observations, const Evidence& evidence) {
  const double asRead = MedianMetres(observations, evidence, {"", Meaning::kAsRead, 0});
  if (asRead < kSurelyRight) {
    return std::nullopt;
  }
  Reading best;
  double smallest = HUGE_VAL;
  for (const Attempt& attempt : kAttempts) {
    const double median = MedianMetres(observations, evidence, attempt);
    if (median < smallest) {
      smallest = median;
      best = {attempt.id, asRead / median, asRead * 1e3, median * 1e3};
    }
  }
  // Rows that cannot be read as they stand compare with nothing: any fit is better.
  const bool fits = std::isnan(asRead) ? std::isfinite(smallest) && smallest < 0.02
                                       : smallest * kTimesBetter < asRead;
  return fits ? std::optional(best) : std::nullopt;
}

}  // namespace trackedcam::crosscheck
