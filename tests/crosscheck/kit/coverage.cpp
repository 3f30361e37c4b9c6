#include "crosscheck/kit/coverage.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "crosscheck/kit/information.h"
#include "simulator/shoot.h"

namespace trackedcam::test {
namespace {

using crosscheck::CrossCheck;
using crosscheck::Finding;
using crosscheck::kDegree;
using crosscheck::Severity;

simulator::ShootOptions OptionsOf(const Cell& cell, std::uint64_t seed) {
  simulator::ShootOptions options;
  options.seed = seed;
  options.photographs = cell.photographs;
  options.trackerNoiseMm = cell.trackerNoiseMm;
  options.trackerNoiseDegrees = cell.trackerNoiseDegrees;
  options.outliers = cell.outliers;
  options.mountingErrorMm = cell.mountingErrorMm;
  options.mountingErrorDegrees = cell.mountingErrorDegrees;
  std::mt19937 random(static_cast<unsigned>(seed));
  options.trackerScale = std::normal_distribution(1.0, cell.scaleUncertainty)(random);
  if (cell.options) {
    cell.options(options);
  }
  return options;
}

void CountPhotographs(const CrossCheck& check, const simulator::Shoot& shoot, Tally& tally) {
  const auto isBad = [&](std::size_t i) {
    return shoot.photographs[i].flaw == simulator::Flaw::kSlippedTracker;
  };
  for (std::size_t i = 0; i < check.perPhotograph.size(); ++i) {
    tally.badOnesTaken += static_cast<int>(isBad(i) && check.perPhotograph[i].used);
  }
  for (const Finding& finding : check.findings) {
    if (const auto* bad = std::get_if<crosscheck::BadPhotographs>(&finding.kind)) {
      tally.goodOnesBlamed +=
          static_cast<int>(std::count_if(bad->photographs.begin(), bad->photographs.end(),
                                         [&](std::size_t i) { return !isBad(i); }));
    }
  }
}

// Few photographs of noisy trackers are uncertain, and 1 in 1000 good photographs looks bad.
bool CanBeRight(const Finding& finding) {
  return std::holds_alternative<crosscheck::BadPhotographs>(finding.kind) ||
         std::holds_alternative<crosscheck::LensUncertain>(finding.kind) ||
         std::holds_alternative<crosscheck::TrackersUncertain>(finding.kind);
}

void CountOnScreen(const CrossCheck& check, const KnownShoot& shoot,
                   const simulator::Lens& trueLens, Tally& tally) {
  const crosscheck::Lens& lens = shoot.observations.lens;
  const Eigen::Vector2d middle(0.5 * (lens.width - 1), 0.5 * (lens.height - 1));
  for (std::size_t i = 0; i < std::min(check.onScreen.size(), tally.onScreen.size()); ++i) {
    const crosscheck::OnScreen& at = check.onScreen[i];
    const auto inMiddle = TrueErrorAt(middle, at.distanceMetres, trueLens, shoot, check);
    const auto inCorner =
        TrueErrorAt(CornerPixel(at.worstCorner, lens), at.distanceMetres, trueLens, shoot, check);
    OnScreenTally& counts = tally.onScreen[i];
    counts.middlePixels += inMiddle.pixels <= at.middle.pixels ? 1 : 0;
    counts.middleMm += inMiddle.mm <= at.middle.mm ? 1 : 0;
    counts.cornerPixels += inCorner.pixels <= at.corner.pixels ? 1 : 0;
    counts.cornerMm += inCorner.mm <= at.corner.mm ? 1 : 0;
  }
}

void CountFindings(const CrossCheck& check, Tally& tally) {
  bool isLoud = false;
  for (const Finding& finding : check.findings) {
    ++tally.said[std::string(Name(finding.kind)) + " " + Name(finding.severity)];
    isLoud = isLoud || (finding.severity != Severity::kNote && !CanBeRight(finding));
  }
  tally.loud += static_cast<int>(isLoud);
}

}  // namespace

int Tally::Said(const std::string& id) const {
  int sum = 0;
  for (const auto& [name, count] : said) {
    sum += name.substr(0, name.find(' ')) == id ? count : 0;
  }
  return sum;
}

std::array<bool, kAxes> Covered(const CrossCheck& check, const KnownShoot& shoot) {
  // A turn's vector, in the frame that both transforms lead to.
  const auto turn = [](const Eigen::Matrix4d& found, const crosscheck::Pose& truth) {
    const Eigen::AngleAxisd between(
        Eigen::Matrix3d(found.topLeftCorner<3, 3>() * truth.linear().transpose()));
    return Eigen::Vector3d(between.angle() / kDegree * between.axis());
  };
  std::array<bool, kAxes> covered = {};
  std::size_t axis = 0;
  const auto add = [&](const Eigen::Vector3d& off, const Eigen::Vector3d& standardError) {
    for (int k = 0; k < 3; ++k) {
      covered[axis++] = std::abs(off[k]) <= check.t95 * standardError[k];
    }
  };
  const auto addBoth = [&](const Eigen::Matrix4d& found, const crosscheck::Pose& truth,
                           const crosscheck::StandardError& error) {
    add(1e3 * (found.topRightCorner<3, 1>() - truth.translation()), error.translationMm);
    add(turn(found, truth), error.rotationDegrees);
  };
  addBoth(check.Transform_Cam_Tc, shoot.Transform_Cam_Tc, check.standardErrorCamTc);
  addBoth(check.Transform_Tr_Chart, shoot.Transform_Tr_Chart, check.standardErrorTrChart);
  return covered;
}

crosscheck::PlaceError TrueErrorAt(const Eigen::Vector2d& pixel, double distanceMetres,
                                   const simulator::Lens& trueLens, const KnownShoot& shoot,
                                   const CrossCheck& check) {
  const auto onWall = [&](const Eigen::Vector2d& at) {
    return Eigen::Vector3d(distanceMetres * trueLens.Ray(at).homogeneous());
  };
  const crosscheck::Pose moved =
      crosscheck::Pose(check.Transform_Cam_Tc) * shoot.Transform_Cam_Tc.inverse();
  const crosscheck::Lens& lens = shoot.observations.lens;
  const simulator::Lens found = {lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2};
  const Eigen::Vector2d appears = found.Project(moved * onWall(pixel));
  return {(appears - pixel).norm(), 1e3 * (onWall(appears) - onWall(pixel)).norm()};
}

Eigen::Vector2d CornerPixel(crosscheck::ImagePart corner, const crosscheck::Lens& lens) {
  using crosscheck::ImagePart;
  const bool isRight = corner == ImagePart::kUpperRight || corner == ImagePart::kLowerRight;
  const bool isLower = corner == ImagePart::kLowerLeft || corner == ImagePart::kLowerRight;
  return {isRight ? lens.width - 1 : 0, isLower ? lens.height - 1 : 0};
}

Tally RunCell(const Cell& cell, std::uint64_t first, int shoots) {
  Tally tally;
  tally.shoots = shoots;
  for (int i = 0; i < shoots; ++i) {
    simulator::Shoot simulated =
        simulator::SimulateShoot(OptionsOf(cell, first + static_cast<std::uint64_t>(i)));
    if (cell.before) {
      cell.before(simulated);
    }
    KnownShoot shoot = MakeShoot(simulated, cell.cornerNoisePixels);
    if (cell.after) {
      cell.after(shoot);
    }
    shoot.observations.library = BelievingTheMounting(shoot).matrix();
    const CrossCheck check = Check(shoot.observations);
    CountFindings(check, tally);
    CountPhotographs(check, simulated, tally);
    if (!check.solved) {
      continue;
    }
    ++tally.solved;
    CountOnScreen(check, shoot, simulated.lens, tally);
    const std::array<bool, kAxes> covered = Covered(check, shoot);
    for (std::size_t axis = 0; axis < kAxes; ++axis) {
      tally.covered[axis] += static_cast<int>(covered[axis]);
    }
    const crosscheck::Pose off =
        crosscheck::Pose(check.Transform_Cam_Tc) * shoot.Transform_Cam_Tc.inverse();
    tally.worstMm = std::max(tally.worstMm, 1e3 * (check.Transform_Cam_Tc.topRightCorner<3, 1>() -
                                                   shoot.Transform_Cam_Tc.translation())
                                                      .norm());
    tally.worstDegrees = std::max(
        tally.worstDegrees, Eigen::AngleAxisd(Eigen::Matrix3d(off.linear())).angle() / kDegree);
  }
  return tally;
}

double AgreementOfHalves(const Cell& cell, std::uint64_t first, int shoots) {
  int axes = 0;
  int agreeing = 0;
  for (int i = 0; i < shoots; ++i) {
    const simulator::Shoot whole =
        simulator::SimulateShoot(OptionsOf(cell, first + static_cast<std::uint64_t>(i)));
    std::vector<simulator::Photograph> shuffled = whole.photographs;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(static_cast<unsigned>(i)));
    const auto middle = shuffled.begin() + static_cast<std::ptrdiff_t>(shuffled.size() / 2);
    std::vector<CrossCheck> checks;
    for (const auto& [begin, end] :
         {std::pair(shuffled.begin(), middle), std::pair(middle, shuffled.end())}) {
      simulator::Shoot half = whole;
      half.photographs.assign(begin, end);
      KnownShoot known = MakeShoot(half, cell.cornerNoisePixels);
      known.observations.scaleUncertainty = 0;  // both halves share it
      checks.push_back(Check(known.observations));
    }
    if (!checks[0].solved || !checks[1].solved) {
      continue;
    }
    const crosscheck::Pose one(checks[0].Transform_Cam_Tc);
    const crosscheck::Pose other(checks[1].Transform_Cam_Tc);
    const Eigen::Vector3d mm = 1e3 * (one.translation() - other.translation());
    const Eigen::AngleAxisd rotation(Eigen::Matrix3d(one.linear() * other.linear().transpose()));
    const Eigen::Vector3d degrees = rotation.angle() / kDegree * rotation.axis();
    const auto count = [&](const Eigen::Vector3d& difference, const Eigen::Vector3d& a,
                           const Eigen::Vector3d& b) {
      for (int k = 0; k < 3; ++k) {
        ++axes;
        agreeing += std::abs(difference[k]) <= 1.96 * std::hypot(a[k], b[k]) ? 1 : 0;
      }
    };
    const auto& of = [&](int half) -> const crosscheck::StandardError& {
      return checks[static_cast<std::size_t>(half)].standardErrorCamTc;
    };
    count(mm, of(0).translationMm, of(1).translationMm);
    count(degrees, of(0).rotationDegrees, of(1).rotationDegrees);
  }
  return axes > 0 ? static_cast<double>(agreeing) / axes : 0;
}

double StandardErrorsAtBest(const Cell& cell, std::uint64_t first, int shoots) {
  double squares = 0;
  for (int i = 0; i < shoots; ++i) {
    Cell without = cell;
    without.scaleUncertainty = 0;
    simulator::ShootOptions flawed = OptionsOf(without, first + static_cast<std::uint64_t>(i));
    flawed.trackerNoiseMm = flawed.trackerNoiseDegrees = 0;
    // With the image size and the distance of the flawed one, whose flaw of the lens may draw
    // others.
    without.options = nullptr;
    simulator::ShootOptions flawless = OptionsOf(without, flawed.seed);
    flawless.imageWidth = flawed.imageWidth;
    flawless.imageHeight = flawed.imageHeight;
    simulator::Shoot with = simulator::SimulateShoot(flawed);
    simulator::Shoot plain = simulator::SimulateShoot(flawless);
    if (cell.before) {
      cell.before(with);
      cell.before(plain);
    }
    squares += std::pow(StandardErrorsAtBest(with, plain, cell.cornerNoisePixels), 2);
  }
  return std::sqrt(squares / shoots);
}

std::array<Cell, 4> CoverageCells() {
  std::array<Cell, 4> cells;
  cells[0].name = "quiet, 40";
  cells[1].name = "noisy, 20";
  cells[1].photographs = 20;
  cells[1].trackerNoiseMm = 1;
  cells[1].trackerNoiseDegrees = 0.1;
  cells[2].name = "quiet, 20, soft corners";
  cells[2].photographs = 20;
  cells[2].cornerNoisePixels = 0.2;
  cells[3].name = "noisy, 40, soft corners, 4 slipped";
  cells[3].trackerNoiseMm = 1;
  cells[3].trackerNoiseDegrees = 0.1;
  cells[3].cornerNoisePixels = 0.2;
  cells[3].outliers = 4;
  return cells;
}

}  // namespace trackedcam::test
