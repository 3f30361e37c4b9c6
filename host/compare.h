// Two results side by side: what they differ by in the image, in the transform and in the lens, and
// whether that is by chance.

#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>
#include <nlohmann/json_fwd.hpp>

#include "crosscheck/calibration.h"
#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::host {

/// What is compared of a result file.
struct ComparedResult {
  std::string file;
  std::string verdict;            // its message
  bool isWrong = false;           // certainly, by its verdict
  std::array<int, 2> board = {};  // inner corners
  double squareMetres = 0;
  crosscheck::Lens lens;
  crosscheck::Pose Transform_Cam_Tc;
  /// Of the cross-check, with its uncertainty; nothing if the shoot does not determine it.
  std::optional<crosscheck::Calibration> calibration;
  double chartMetres = 0;                // distance of the chart, median; NaN if not known
  std::vector<std::string> photographs;  // the corners found in each, as text
};

/// @throws InputError if the file holds no result, or that of a failed calibration.
ComparedResult ReadComparedResult(const std::filesystem::path& file);

/// Values of the second result minus those of the first. p is the probability of a difference this
/// large by chance; it and byChance are NaN if they are not known.
struct Comparison {
  struct Transform {
    std::array<double, 3> mm = {};       // along the first camera's axes
    std::array<double, 3> degrees = {};  // about them
    double offMm = 0;
    double offDegrees = 0;
    double p = 0;
  };
  struct LensValue {
    const char* name = "";
    double first = 0;
    double second = 0;
    double p = 0;
  };
  struct OnScreen {
    double distanceMetres = 0;
    double rmsPixels = 0;    // over the image
    double worstPixels = 0;  // in the image
    double byChance = 0;     // rmsPixels of two results of the same camera, on average
  };
  Transform transform;
  std::array<LensValue, 6> lens = {};
  std::vector<OnScreen> onScreen;  // the chart's distance first, then others
  std::size_t shared = 0;          // photographs that both results are from
  double p = 0;                    // of transform and lens together
  bool isSame = false;             // equal to the last digit
  std::vector<std::string> wrong;  // files of results that are certainly wrong by their verdicts
};

/// Tests the solutions of both cross-checks, because the uncertainty is theirs. Results that share
/// photographs share errors: what is certain for independent ones is certain for them too; every
/// other p, and byChance, is NaN.
/// @throws InputError if the results have different image sizes or charts.
Comparison Compare(const ComparedResult& first, const ComparedResult& second);

/// Whether they differ, and why that cannot be told if it cannot; and which of them is wrong.
std::string Conclusion(const Comparison& comparison);

nlohmann::ordered_json ComparisonJson(const ComparedResult& first, const ComparedResult& second,
                                      const Comparison& comparison);

}  // namespace trackedcam::host
