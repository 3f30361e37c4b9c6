// How often the intervals hold, and how often each finding is said, rightly and wrongly. The tables
// of docs/crosscheck.md are its output.
//
// Usage: crosscheck_study [SHOOTS], of each cell; 400 where nothing is said

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "crosscheck/kit/coverage.h"
#include "crosscheck/kit/shoot_flaws.h"

namespace {

using namespace trackedcam;
using test::Cell;
using test::KnownShoot;
using test::Tally;

constexpr std::uint64_t kFirstSeed = 1000;

double Percent(int count, int of) {
  return 100.0 * count / of;
}

std::vector<Cell> CellsOf(
    const std::vector<std::pair<const char*, std::function<void(simulator::ShootOptions&)>>>&
        flaws) {
  std::vector<Cell> cells;
  for (const auto& [name, options] : flaws) {
    cells.emplace_back();
    cells.back().name = name;
    cells.back().options = options;
  }
  return cells;
}

// What the model leaves out, at the sizes of docs/crosscheck.md.
std::vector<Cell> PhysicalFlaws() {
  using Options = simulator::ShootOptions;
  std::vector<Cell> cells = CellsOf({
      {"chart bowed by 0.5 mm", [](Options& o) { o.chart.bowMetres = 0.0005; }},
      {"chart bowed by 1 mm", [](Options& o) { o.chart.bowMetres = 0.001; }},
      {"print 0.5 % too wide", [](Options& o) { o.chart.stretch = 0.005; }},
      {"p1 = 0.001, 1280x720",
       [](Options& o) {
         o.imageWidth = 1280;
         o.imageHeight = 720;
         o.lens = simulator::DefaultLens(o.imageWidth, o.imageHeight);
         o.lens->p1 = 0.001;
       }},
      {"k3 = -0.3",
       [](Options& o) {
         o.lens = simulator::DefaultLens(o.imageWidth, o.imageHeight);
         o.lens->k3 = -0.3;
       }},
      {"trackers measure lengths 0.5 % wrong", [](Options& o) { o.trackerScale *= 1.005; }},
      {"trackers measure lengths 1 % wrong", [](Options& o) { o.trackerScale *= 1.01; }},
      {"mount sags by 3 mm", [](Options& o) { o.sagMm = 3; }},
      {"tracking volume bent by 3 mm", [](Options& o) { o.volumeBendMm = 3; }},
      {"tracker loose, seats 5 mm apart", [](Options& o) { o.looseMm = 5; }},
      {"poses 40 ms late, moving hands", [](Options& o) { o.delayMs = 40; }},
      {"noise of neighbours correlated by 0.7", [](Options& o) { o.noiseCorrelation = 0.7; }},
      {"noise of neighbours correlated by 0.9", [](Options& o) { o.noiseCorrelation = 0.9; }},
      {"poses held for four photographs", [](Options& o) { o.heldPoses = 4; }},
      {"the same, with repeated rows",
       [](Options& o) {
         o.heldPoses = 4;
         o.repeatedRows = true;
       }},
      {"turntable", [](Options& o) { o.turntable = true; }},
  });
  return cells;
}

constexpr double kFarther = 4;  // every second photograph of mixed distances

void Mix(Cell& cell) {
  cell.name += ", mixed distances";
  cell.before = [](simulator::Shoot& shoot) { test::MixDistances(shoot, kFarther); };
}

std::vector<Cell> FlawlessCells() {
  std::vector<Cell> cells;
  for (const int photographs : {12, 20, 40, 80}) {
    cells.emplace_back();
    cells.back().name = "no flaw, " + std::to_string(photographs);
    cells.back().photographs = photographs;
    cells.push_back(cells.back());
    Mix(cells.back());
  }
  for (const double factor : {6.0, 9.0}) {
    cells.emplace_back();
    cells.back().name = factor == 6 ? "no flaw, from 2.5 m" : "no flaw, from 3.7 m";
    cells.back().before = [factor](simulator::Shoot& shoot) { test::StepBack(shoot, factor); };
  }
  for (const int photographs : {12, 40}) {
    cells.emplace_back();
    cells.back().name = "heavy tails, " + std::to_string(photographs);
    cells.back().photographs = photographs;
    cells.back().before = test::FattenTails;
  }
  return cells;
}

// Those that have a size, near and from mixed distances.
std::vector<Cell> SizedFlaws() {
  constexpr std::size_t kSized = 10;
  std::vector<Cell> cells;
  for (const Cell& flaw : PhysicalFlaws()) {
    if (cells.size() == 2 * kSized) {
      break;
    }
    cells.push_back(flaw);
    cells.push_back(flaw);
    Mix(cells.back());
  }
  return cells;
}

std::vector<Cell> StructuredCells() {
  using Options = simulator::ShootOptions;
  std::vector<Cell> cells = CellsOf({
      {"no flaw", [](Options&) {}},
      {"errors that follow the pose, 1 mm and 0.05 degrees",
       [](Options& o) {
         o.poseErrorMm = 1;
         o.poseErrorDegrees = 0.05;
       }},
      {"tracking volume bent by 20 mm", [](Options& o) { o.volumeBendMm = 20; }},
  });
  return cells;
}

void PrintHalves(int shoots) {
  std::printf("\n| Shoots | random halves agree within 1.96, %% |\n|---|---|\n");
  for (const Cell& cell : StructuredCells()) {
    std::printf("| %s | %.1f |\n", cell.name.c_str(),
                100 * AgreementOfHalves(cell, kFirstSeed, shoots));
    std::fflush(stdout);
  }
}

void PrintCoverageOf(const Cell& cell, std::uint64_t seed, int shoots) {
  const Tally tally = RunCell(cell, seed, shoots);
  std::printf("| %s |", cell.name.c_str());
  for (std::size_t axis = 0; axis < test::kAxes; ++axis) {
    std::printf(" %.1f%s", Percent(tally.covered[axis], shoots), axis % 3 == 2 ? " |" : "");
  }
  std::printf(" %.1f %% |\n", Percent(tally.loud, shoots));
  std::fflush(stdout);
}

void PrintCoverage(int shoots) {
  std::printf(
      "| Shoots | Cam_Tc translation | Cam_Tc rotation | Tr_Chart translation | Tr_Chart rotation "
      "| warned |\n");
  std::printf("|---|---|---|---|---|---|\n");
  std::uint64_t seed = kFirstSeed;
  for (const Cell& cell : test::CoverageCells()) {
    PrintCoverageOf(cell, seed, shoots);
    seed += 10000;  // draws of their own for each cell
  }
  for (const Cell& cell : PhysicalFlaws()) {
    PrintCoverageOf(cell, kFirstSeed, shoots);
  }
}

// Of the shoots without a flaw, at the chart's distance, 2 m, 4 m and 10 m.
void PrintOnScreen(int shoots) {
  std::printf(
      "\n| Shoots | middle, px | middle, mm | worst corner, px | worst corner, mm |\n"
      "|---|---|---|---|---|\n");
  std::uint64_t seed = kFirstSeed;
  for (const Cell& cell : test::CoverageCells()) {
    const Tally tally = RunCell(cell, seed, shoots);
    seed += 10000;
    std::printf("| %s |", cell.name.c_str());
    for (const auto count : {&test::OnScreenTally::middlePixels, &test::OnScreenTally::middleMm,
                             &test::OnScreenTally::cornerPixels, &test::OnScreenTally::cornerMm}) {
      for (const test::OnScreenTally& at : tally.onScreen) {
        std::printf(" %.1f", Percent(at.*count, shoots));
      }
      std::printf(" |");
    }
    std::printf("\n");
    std::fflush(stdout);
  }
}

std::vector<Cell> FlawedCells() {
  std::vector<Cell> cells;
  const auto add = [&](const char* name) -> Cell& {
    cells.emplace_back();
    cells.back().name = name;
    return cells.back();
  };
  add("mounting 5 mm off").mountingErrorMm = 5;
  add("mounting 1 degree off").mountingErrorDegrees = 1;
  Cell& shaky = add("mounting 5 mm off, 1 mm and 0.1 degree of noise");
  shaky.mountingErrorMm = 5;
  shaky.trackerNoiseMm = 1;
  shaky.trackerNoiseDegrees = 0.1;
  add("mounting 2 mm off").mountingErrorMm = 2;
  Cell& noisy = add("mounting 27 mm, 1 degree off, 1 mm and 0.1 degree of noise");
  noisy.mountingErrorMm = 27;
  noisy.mountingErrorDegrees = 1;
  noisy.trackerNoiseMm = 1;
  noisy.trackerNoiseDegrees = 0.1;
  for (const double factor : {1.01, 1.03}) {
    add(factor > 1.02 ? "squares 3 % larger" : "squares 1 % larger").after =
        [factor](KnownShoot& shoot) { MisstateSquares(shoot, factor); };
  }
  add("camera's tracker moved 5 mm half way").after = [](KnownShoot& shoot) {
    MoveTracker(shoot, crosscheck::Tracker::kCamera, 20, 5, 0);
  };
  add("chart's tracker moved 1 degree half way").after = [](KnownShoot& shoot) {
    MoveTracker(shoot, crosscheck::Tracker::kChart, 20, 0, 1);
  };
  add("camera's tracker moved 5 mm, 1 degree before the last 6").after = [](KnownShoot& shoot) {
    MoveTracker(shoot, crosscheck::Tracker::kCamera, 34, 5, 1);
  };
  add("camera's tracker creeps by 2 mm").after = [](KnownShoot& shoot) { Creep(shoot, 2); };
  add("camera's tracker creeps by 4 mm").after = [](KnownShoot& shoot) { Creep(shoot, 4); };
  Cell& lens = add("lens from 12 photographs with 0.5 px of noise, 0.05 mm and 0.01 degrees");
  lens.photographs = 12;
  lens.cornerNoisePixels = 0.5;
  lens.trackerNoiseMm = 0.05;
  lens.trackerNoiseDegrees = 0.01;
  add("half the rotation").before = [](simulator::Shoot& shoot) { test::TurnLess(shoot, 0.5); };
  add("a quarter of the rotation").before = [](simulator::Shoot& shoot) {
    test::TurnLess(shoot, 0.25);
  };
  add("an eighth of the rotation").before = [](simulator::Shoot& shoot) {
    test::TurnLess(shoot, 0.125);
  };
  Cell& trackers = add("3 mm and 0.3 degrees of noise");
  trackers.trackerNoiseMm = 3;
  trackers.trackerNoiseDegrees = 0.3;
  return cells;
}

// The flaw that the shoots show at best, and what was found.
void PrintAtBest(int shoots) {
  constexpr int kLeast = 20;
  std::printf("\n| Shoots | standard errors at best |\n|---|---|\n");
  for (const Cell& cell : SizedFlaws()) {
    std::printf("| %s | %.1f |\n", cell.name.c_str(),
                StandardErrorsAtBest(cell, kFirstSeed, std::min(shoots, kLeast)));
    std::fflush(stdout);
  }
}

void PrintFindings(int shoots) {
  std::printf("\n| Shoots | Findings |\n|---|---|\n");
  std::vector<Cell> cells = FlawlessCells();
  for (const auto& more : {PhysicalFlaws(), FlawedCells()}) {
    cells.insert(cells.end(), more.begin(), more.end());
  }
  for (const Cell& cell : cells) {
    const Tally tally = RunCell(cell, kFirstSeed, shoots);
    std::printf("| %s |", cell.name.c_str());
    const char* separator = " ";
    for (const auto& [name, count] : tally.said) {
      std::printf("%s%s %d", separator, name.c_str(), count);
      separator = ", ";
    }
    std::printf(" |\n");
    std::fflush(stdout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int shoots = argc > 1 ? std::atoi(argv[1]) : 400;
  if (shoots < 1) {
    std::fprintf(stderr, "usage: crosscheck_study [SHOOTS]\n");
    return 2;
  }
  PrintCoverage(shoots);
  PrintOnScreen(shoots);
  PrintAtBest(shoots);
  PrintFindings(shoots);
  PrintHalves(shoots);
}
