#include "crosscheck/verify.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "crosscheck/corner_flaws.h"
#include "crosscheck/evidence.h"
#include "crosscheck/on_screen.h"
#include "crosscheck/statistics.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kNotKnown = std::numeric_limits<double>::quiet_NaN();

// One false alarm in a thousand verifications: each of three tests errs with a third of it.
constexpr double kFalseAlarmsOfVerify = 0.001;
constexpr double kTestsOfVerify = 3;
// A photograph is left out, or the trackers are noisier, below these.
constexpr double kBadPhotograph = 0.0005;
constexpr double kNoisier = 0.05;
// From this noise on, against that of the calibration, nothing that the model has explains it.
constexpr double kUnrelatedNoise = 6;
constexpr double kUnrelated = 1e-6;
// A cause is certain if it is this many times as likely as any other: 95 against 5 of 100.
constexpr double kTimesLikelier = 19;
constexpr double kZoomPercent = 3;  // a focus changes the focal length by less

constexpr Freed kNothing = {};
constexpr Freed kCamera = {true, false, false, false, false};
constexpr Freed kChart = {false, true, false, false, false};
constexpr Freed kTrackers = {true, true, false, false, false};
constexpr Freed kLens = {false, false, true, true, true};
constexpr Freed kEverything = {true, true, true, true, true};

// How much better a fit is than another that frees less, with a price for what it frees more.
double Score(const ShootFit& fit, std::size_t photographs) {
  return -fit.squares - fit.freed.Count() * std::log(6.0 * static_cast<double>(photographs));
}

class Verifier {
 public:
  Verifier(const Calibration& calibration, const std::vector<Photograph>& photographs,
           const VerifyOptions& options)
      : shoot_(calibration, photographs, options.otherBoard), options_(options) {}

  Verification Run() {
    Verification found;
    found.usable = shoot_.Usable().size();
    used_ = shoot_.Usable();
    freedom_ = shoot_.Old().freedom;
    std::optional<ShootFit> kept;
    if (used_.size() < kLeastToVerify) {
      kept = shoot_.NothingFreed();
    } else {
      kept = Decide(found);
    }
    found.used = used_.size();
    Describe(*kept, found);
    return found;
  }

 private:
  // With the chart's tracker free as well if its mounting is not known.
  std::optional<ShootFit> Fit(Freed freed) const {
    freed.chart = freed.chart || options_.chartRemounted;
    return shoot_.Fit(used_, freed, noise_);
  }

  // Sets the noise; leaves a photograph out if it alone contradicts the others.
  std::optional<ShootFit> FitEverything(bool& isUnrelated) {
    isUnrelated = false;
    for (;;) {
      noise_ = 1;
      const std::optional<ShootFit> all = Fit(kEverything);
      if (!all) {
        return std::nullopt;
      }
      const double p = HotellingTail(all->loopSquares, all->loopFreedom, freedom_);
      if (!(p < kNoisier)) {
        return all;
      }
      if (LeaveOutTheWorst(*all)) {
        continue;
      }
      noise_ = all->loopSquares / all->loopFreedom;
      if (noise_ > kUnrelatedNoise * kUnrelatedNoise && p < kUnrelated) {
        isUnrelated = true;
        return all;
      }
      freedom_ = all->loopFreedom;
      return Fit(kEverything);
    }
  }

  bool LeaveOutTheWorst(const ShootFit& all) {
    if (used_.size() <= kLeastToVerify) {
      return false;
    }
    const auto photographs = static_cast<double>(used_.size());
    std::optional<std::vector<std::size_t>> best;
    double least = all.loopSquares;
    double left = 0;
    for (std::size_t i = 0; i < used_.size(); ++i) {
      std::vector<std::size_t> others = used_;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
      const std::optional<ShootFit> fit = shoot_.Fit(others, kEverything, 1);
      if (fit && fit->loopSquares < least) {
        least = fit->loopSquares;
        left = fit->loopFreedom;
        best = others;
      }
    }
    if (!best || HotellingTail(least, left, freedom_) < kNoisier ||
        HotellingTail(all.loopSquares - least, 6, freedom_) > kBadPhotograph / photographs) {
      return false;
    }
    used_ = *best;
    return true;
  }

  std::optional<ShootFit> Decide(Verification& found) {
    bool isUnrelated = false;
    const std::optional<ShootFit> everything = FitEverything(isUnrelated);
    const std::optional<ShootFit> nothing = everything ? Fit(kNothing) : std::nullopt;
    if (!everything || !nothing || isUnrelated) {
      found.answer = Answer::kUnrelated;
      found.p = 0;
      return everything && nothing ? nothing : shoot_.NothingFreed();
    }
    found.noiseFactor = std::sqrt(noise_);
    MeasurePower(*nothing, found);
    const Calibration& old = shoot_.Old();
    for (const double distance : DistancesOf(options_.atMetres, shoot_.OldLoops())) {
      found.onScreen.push_back(
          OnScreenAt(distance, old.lens, CovarianceOfCamera(old), old.freedom));
    }
    double least = 1;
    for (const Freed& freed : {kCamera, kChart, kLens}) {
      const std::optional<ShootFit> fit = Fit(freed);
      const int more = fit ? fit->freed.Count() - nothing->freed.Count() : 0;
      if (more > 0) {
        least = std::min(
            least, HotellingTail(std::max(0.0, nothing->squares - fit->squares), more, freedom_));
      }
    }
    found.p = std::min(1.0, kTestsOfVerify * least);
    if (found.p >= kFalseAlarmsOfVerify) {
      found.answer = Answer::kHolds;
      return nothing;
    }
    return NameCause(*everything, found);
  }

  // Explains the photographs as well as if everything were free.
  bool IsEnough(const ShootFit& fit, const ShootFit& everything) const {
    const int more = everything.freed.Count() - fit.freed.Count();
    return more <= 0 || HotellingTail(std::max(0.0, fit.squares - everything.squares), more,
                                      freedom_) >= kFalseAlarmsOfVerify;
  }

  struct Cause {
    Answer answer;
    ShootFit fit;
  };

  // The best ways to free something that explain the photographs, the likeliest first; one for
  // each answer.
  std::vector<Cause> Explaining(const std::vector<std::pair<Answer, Freed>>& ways,
                                const ShootFit& everything) const {
    std::vector<Cause> causes;
    for (const auto& [answer, freed] : ways) {
      const std::optional<ShootFit> fit = Fit(freed);
      if (!fit || !IsEnough(*fit, everything)) {
        continue;
      }
      const Answer wanted = answer;
      const auto same = std::find_if(causes.begin(), causes.end(),
                                     [&](const Cause& cause) { return cause.answer == wanted; });
      if (same == causes.end()) {
        causes.push_back({answer, *fit});
      } else if (Score(*fit, used_.size()) > Score(same->fit, used_.size())) {
        same->fit = *fit;
      }
    }
    std::sort(causes.begin(), causes.end(), [&](const Cause& a, const Cause& b) {
      return Score(a.fit, used_.size()) > Score(b.fit, used_.size());
    });
    return causes;
  }

  std::optional<ShootFit> NameCause(const ShootFit& everything, Verification& found) const {
    using Ways = std::vector<std::pair<Answer, Freed>>;
    Ways one = {{Answer::kCameraTrackerMoved, kCamera}};
    Ways two = {{Answer::kLensAndTracker, {true, false, true, true, true}}};
    if (!options_.chartRemounted) {
      one.emplace_back(Answer::kChartTrackerMoved, kChart);
      two.emplace_back(Answer::kLensAndTracker, Freed{false, true, true, true, true});
      two.emplace_back(Answer::kBothTrackersMoved, kTrackers);
    }
    for (const bool focal : {false, true}) {
      for (const bool centre : {false, true}) {
        for (const bool distortion : {false, true}) {
          if (focal || centre || distortion) {
            one.emplace_back(Answer::kLensChanged, Freed{false, false, focal, centre, distortion});
          }
        }
      }
    }
    for (const Ways& ways : {one, two}) {
      const std::vector<Cause> causes = Explaining(ways, everything);
      if (causes.empty()) {
        continue;
      }
      found.answer = causes.front().answer;
      for (const Cause& cause : causes) {
        const double behind =
            Score(causes.front().fit, used_.size()) - Score(cause.fit, used_.size());
        if (behind < 2 * std::log(kTimesLikelier)) {
          found.candidates.push_back(cause.answer);
        }
      }
      if (found.candidates.size() > 1) {
        found.answer = Answer::kUnclear;
      } else {
        found.candidates.clear();
      }
      return causes.front().fit;
    }
    found.answer = Answer::kUnclear;
    return everything;
  }

  // In the worst direction, with what is freed besides.
  Detectable DetectableMove(Freed freed, Eigen::Index first) const {
    const std::optional<ShootFit> fit = Fit(freed);
    if (!fit) {
      return {kNotKnown, kNotKnown};
    }
    const Matrix6d covariance = fit->covariance.block<6, 6>(first, first);
    const Matrix6d information = covariance.ldlt().solve(Matrix6d::Identity());
    const double needed = HotellingPower95(kFalseAlarmsOfVerify / kTestsOfVerify, 6, freedom_);
    const auto worst = [&](Eigen::Index begin) {
      const Eigen::Matrix3d block = information.block<3, 3>(begin, begin);
      const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(block, Eigen::EigenvaluesOnly);
      return std::sqrt(needed / solver.eigenvalues()[0]);
    };
    return {1e3 * worst(3), worst(0) / kDegree};
  }

  void MeasurePower(const ShootFit& nothing, Verification& found) const {
    found.cameraDetectable = DetectableMove(kCamera, 0);
    found.chartDetectable =
        nothing.freed.chart ? Detectable{kNotKnown, kNotKnown} : DetectableMove(kChart, 0);
    const std::optional<ShootFit> lens = Fit(kLens);
    found.focalDetectablePercent = kNotKnown;
    if (lens) {
      const Eigen::MatrixXd covariance = lens->covariance.bottomRightCorner<5, 5>();
      const Eigen::MatrixXd information = covariance.ldlt().solve(Eigen::MatrixXd::Identity(5, 5));
      const double needed = HotellingPower95(kFalseAlarmsOfVerify / kTestsOfVerify, 5, freedom_);
      found.focalDetectablePercent = 100 * std::sqrt(needed / information(0, 0));
    }
  }

  MountMove MoveOf(const Pose& moved, const Matrix6d& covariance) const {
    const Twist twist = Log(moved);
    const Eigen::Matrix<double, 6, 1> half =
        StudentHalfWidth95(freedom_) * covariance.diagonal().cwiseSqrt();
    return {1e3 * moved.translation(), twist.head<3>() / kDegree, 1e3 * half.tail<3>(),
            half.head<3>() / kDegree, moved};
  }

  LensChange LensChangeOf(const ShootFit& fit) const {
    LensChange change;
    Eigen::Index next = fit.covariance.rows() - fit.freed.LensCount();
    const double t95 = StudentHalfWidth95(freedom_);
    const auto read = [&](double value, double unit, ChangedValue& changed) {
      changed = {unit * value, unit * t95 * std::sqrt(fit.covariance(next, next))};
      ++next;
    };
    change.hasFocal = fit.freed.focal;
    change.hasCentre = fit.freed.centre;
    change.hasDistortion = fit.freed.distortion;
    if (change.hasFocal) {
      read(fit.lensChange[0], 100, change.focalPercent);
    }
    if (change.hasCentre) {
      read(fit.lensChange[1], 1, change.cx);
      read(fit.lensChange[2], 1, change.cy);
    }
    if (change.hasDistortion) {
      read(fit.lensChange[3], 1, change.k1);
      read(fit.lensChange[4], 1, change.k2);
    }
    const bool isZoomed = std::abs(change.focalPercent.change) >= kZoomPercent;
    if (change.hasFocal && isZoomed) {
      change.cause = LensCause::kZoom;
    } else if (!change.hasCentre) {
      change.cause = LensCause::kFocus;
    } else if (!change.hasFocal && !change.hasDistortion) {
      change.cause = LensCause::kStabilisation;
    }
    return change;
  }

  void Describe(const ShootFit& fit, Verification& found) const {
    const Calibration& old = shoot_.Old();
    if (found.answer != Answer::kHolds && found.answer != Answer::kChartTrackerMoved) {
      found.onScreen.clear();
    }
    const bool isKnown = found.answer != Answer::kUnrelated && found.answer != Answer::kTooFew;
    if (isKnown) {
      Eigen::Index next = 0;
      if (fit.freed.camera) {
        found.camera = MoveOf(fit.cameraMove, fit.covariance.block<6, 6>(next, next));
        next += 6;
      }
      if (fit.freed.chart) {
        found.chart = MoveOf(fit.chartMove, fit.covariance.block<6, 6>(next, next));
      }
      if (fit.freed.LensCount() > 0) {
        found.lens = LensChangeOf(fit);
      }
    }
    found.Transform_Cam_Tc = old.Transform_Cam_Tc * fit.cameraMove;
    found.Transform_Tr_Chart = fit.chartMove * old.Transform_Tr_Chart;
    found.newLens = shoot_.LensWith(fit.lensChange);
    found.cornerNoisePixels = shoot_.CornerNoise();
    found.photographs = shoot_.Compare(fit, used_);
    Solution solution;
    solution.used.assign(shoot_.OldLoops().size(), true);
    if (!shoot_.OldLoops().empty()) {
      found.diversity = DiversityOf(shoot_.OldLoops(), solution);
    }
  }

  NewShoot shoot_;
  VerifyOptions options_;
  std::vector<std::size_t> used_;  // indices of the photographs
  double noise_ = 1;               // variance of the trackers against that of the calibration
  double freedom_ = 0;
};

// Tested as in a calibration.
std::optional<LensModel> FindLensModel(const CornerModel& old,
                                       const std::vector<Photograph>& photographs,
                                       const Verification& verification) {
  std::vector<std::vector<Eigen::Vector2d>> corners;
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    if (verification.photographs[i].used) {
      corners.push_back(photographs[i].corners);
    }
  }
  const CornerFit fit = FitCorners(old, corners);
  const bool isOfLens = std::any_of(fit.flaws.begin(), fit.flaws.end(), [](CornerFlaw flaw) {
    return flaw == CornerFlaw::kTangential || flaw == CornerFlaw::kSixthOrder;
  });
  if (!isOfLens) {
    return std::nullopt;
  }
  const Lens& lens = fit.model.lens;
  double squares = 0;
  double count = 0;
  for (const std::optional<ChartPose>& pose : fit.poses) {
    for (const Eigen::Vector3d& point : pose ? fit.board : std::vector<Eigen::Vector3d>()) {
      const Eigen::Vector3d seen = pose->Transform_Cam_Chart * point;
      squares += (Project(lens, seen) - Project(verification.newLens, seen)).squaredNorm();
      ++count;
    }
  }
  return LensModel{lens.p1,  lens.p2, lens.k3, kNotKnown, kNotKnown, std::sqrt(squares / count),
                   kNotKnown};
}

}  // namespace

const char* Name(Answer answer) {
  switch (answer) {
    case Answer::kHolds:
      return "holds";
    case Answer::kCameraTrackerMoved:
      return "cameraTrackerMoved";
    case Answer::kChartTrackerMoved:
      return "chartTrackerMoved";
    case Answer::kBothTrackersMoved:
      return "bothTrackersMoved";
    case Answer::kLensChanged:
      return "lensChanged";
    case Answer::kLensAndTracker:
      return "lensAndTracker";
    case Answer::kUnclear:
      return "unclear";
    case Answer::kUnrelated:
      return "unrelated";
    case Answer::kTooFew:
      return "tooFew";
  }
  return "";
}

const char* Name(LensCause cause) {
  switch (cause) {
    case LensCause::kZoom:
      return "zoom";
    case LensCause::kFocus:
      return "focus";
    case LensCause::kStabilisation:
      return "stabilisation";
    case LensCause::kSeveral:
      return "several";
  }
  return "";
}

Verification Verify(const Calibration& calibration, const std::vector<Photograph>& photographs,
                    const VerifyOptions& options) {
  Verification found = Verifier(calibration, photographs, options).Run();
  if (found.answer != Answer::kTooFew && found.answer != Answer::kUnrelated) {
    found.lensModel = FindLensModel(
        {calibration.lens, options.otherBoard.value_or(calibration.board)}, photographs, found);
  }
  return found;
}

}  // namespace trackedcam::crosscheck
