// How small a change a verification finds, how often it names the right one, and how often it
// raises a false alarm. The tables of docs/check-it-again.md are its output.
//
// Usage: verify_study [SHOOTS], of each cell; 400 where nothing is said

#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/later_shoot.h"
#include "crosscheck/verify.h"

namespace {

using namespace trackedcam;
using crosscheck::Answer;
using crosscheck::Verification;
using test::Between;

constexpr std::uint64_t kFirstSeed = 1000;
constexpr double kCornerNoise = 0.05;  // pixels

struct StudyCell {
  std::string name;
  int later = 5;
  double cameraMm = 0, cameraDegrees = 0, chartMm = 0, chartDegrees = 0;
  double noiseFactor = 1;
  std::function<void(simulator::Lens&)> lens;
  Answer right = Answer::kHolds;
};

struct Outcome {
  std::map<std::string, int> answers;
  double mm = 0, degrees = 0;  // mean of what would be found
};

struct Calibrated {
  simulator::ShootOptions options;
  std::optional<crosscheck::Calibration> calibration;
};

std::vector<Calibrated> Calibrate(int shoots) {
  std::vector<Calibrated> all;
  for (int i = 0; i < shoots; ++i) {
    Calibrated shoot;
    shoot.options = test::FortyPhotographs(kFirstSeed + static_cast<std::uint64_t>(i));
    shoot.options.trackerNoiseMm = 0.1;
    shoot.options.trackerNoiseDegrees = 0.02;
    shoot.calibration =
        crosscheck::Check(test::MakeShoot(shoot.options, kCornerNoise).observations).calibration;
    all.push_back(shoot);
  }
  return all;
}

Outcome Run(const StudyCell& cell, const std::vector<Calibrated>& shoots) {
  Outcome outcome;
  for (const Calibrated& shoot : shoots) {
    if (!shoot.calibration) {
      ++outcome.answers["no calibration"];
      continue;
    }
    Between between;
    between.later = cell.later;
    between.noiseFactor = cell.noiseFactor;
    between.cameraMove = test::DrawMove(shoot.options.seed, cell.cameraMm, cell.cameraDegrees);
    between.chartMove = test::DrawMove(shoot.options.seed + 1, cell.chartMm, cell.chartDegrees);
    between.lens = cell.lens;
    const Verification found = crosscheck::Verify(
        *shoot.calibration, test::LaterPhotographs(shoot.options, kCornerNoise, between));
    ++outcome.answers[Name(found.answer)];
    outcome.mm += found.cameraDetectable.mm / static_cast<double>(shoots.size());
    outcome.degrees += found.cameraDetectable.degrees / static_cast<double>(shoots.size());
  }
  return outcome;
}

void Print(const StudyCell& cell, const std::vector<Calibrated>& calibrated) {
  const Outcome outcome = Run(cell, calibrated);
  const auto shoots = static_cast<int>(calibrated.size());
  const auto count = [&](Answer answer) {
    const auto found = outcome.answers.find(Name(answer));
    return found == outcome.answers.end() ? 0 : found->second;
  };
  std::printf("| %s | %d | %.1f %% | %.1f %% | %.2f mm, %.3f° |", cell.name.c_str(), cell.later,
              100.0 * (shoots - count(Answer::kHolds)) / shoots, 100.0 * count(cell.right) / shoots,
              outcome.mm, outcome.degrees);
  const char* separator = " ";
  for (const auto& [name, times] : outcome.answers) {
    std::printf("%s%s %d", separator, name.c_str(), times);
    separator = ", ";
  }
  std::printf(" |\n");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int shoots = argc > 1 ? std::atoi(argv[1]) : 400;
  if (shoots < 1) {
    std::fprintf(stderr, "usage: verify_study [SHOOTS]\n");
    return 2;
  }
  std::printf(
      "| Change | photographs | alarms | right answer | found at 95 %% power | answers |\n"
      "|---|---|---|---|---|---|\n");
  const std::vector<Calibrated> calibrated = Calibrate(shoots);
  for (const int later : {3, 5}) {
    const bool isThree = later == 3;
    StudyCell none;
    none.name = "none";
    none.later = later;
    Print(none, calibrated);
    for (const double times : {1.0, 2.0}) {
      StudyCell cell;
      cell.later = later;
      const auto with = [&](const char* name, Answer right, double mm, double degrees,
                            bool isCamera) {
        char text[100];
        std::snprintf(text, sizeof text, "%s %.1f mm, %.2f°", name, mm, degrees);
        cell.name = text;
        cell.right = right;
        cell.cameraMm = isCamera ? mm : 0;
        cell.cameraDegrees = isCamera ? degrees : 0;
        cell.chartMm = isCamera ? 0 : mm;
        cell.chartDegrees = isCamera ? 0 : degrees;
        Print(cell, calibrated);
      };
      const double mm = times * (isThree ? 1.9 : 1.5);
      const double degrees = times * (isThree ? 0.25 : 0.19);
      with("camera's tracker", Answer::kCameraTrackerMoved, mm, 0, true);
      with("camera's tracker", Answer::kCameraTrackerMoved, 0, degrees, true);
      with("chart's tracker", Answer::kChartTrackerMoved, mm, 0, false);
      with("chart's tracker", Answer::kChartTrackerMoved, 0, degrees, false);
    }
    StudyCell lens;
    lens.later = later;
    lens.right = Answer::kLensChanged;
    lens.name = "focal length 1 % longer";
    lens.lens = [](simulator::Lens& l) { l.fx *= 1.01, l.fy *= 1.01; };
    Print(lens, calibrated);
    lens.name = "principal point 10 px off";
    lens.lens = [](simulator::Lens& l) { l.cx += 8, l.cy += 6; };
    Print(lens, calibrated);
    StudyCell both;
    both.later = later;
    both.name = "both trackers, 10 mm, 1°";
    both.right = Answer::kBothTrackersMoved;
    both.cameraMm = both.chartMm = 10;
    both.cameraDegrees = both.chartDegrees = 1;
    Print(both, calibrated);
    StudyCell noisy;
    noisy.later = later;
    noisy.name = "none, trackers twice as noisy";
    noisy.noiseFactor = 2;
    Print(noisy, calibrated);
  }
}
