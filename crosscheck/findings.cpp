#include "crosscheck/findings.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "crosscheck/comparison.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kRejected = 0.001;  // a test below this speaks
constexpr double kWorthMm = 1;       // a word, and
constexpr double kWorthDegrees = 0.1;
constexpr double kGraveMm = 2;  // an error
constexpr double kGraveDegrees = 0.2;
constexpr double kFarBeyondLimit = 2;  // times the limit at which a photograph is left out
constexpr double kFarMm = 2;           // of a single photograph, and
constexpr double kFarDegrees = 0.2;
constexpr double kManyBad = 0.3;  // share of the photographs
constexpr double kNoisyMm = 2;
constexpr double kNoisyDegrees = 0.2;
constexpr double kHopelessMm = 20;  // such noise is no noise
constexpr double kHopelessDegrees = 2;
constexpr double kLittleTurning = 5;  // amplification
constexpr double kWorthSquare = 0.01;
constexpr double kSquareSpread = 0.05;  // metres that the chart must have moved

bool IsWorth(double mm, double degrees) {
  return mm >= kWorthMm || degrees >= kWorthDegrees;
}

class Collector {
 public:
  Collector(const CrossCheck& check, const Evidence& evidence, const Grounds& grounds)
      : check_(check), evidence_(evidence), grounds_(grounds) {}

  std::vector<Finding> Collect() {
    if (grounds_.reading) {
      const Reading& reading = *grounds_.reading;
      Add(FindingId::kReading, Severity::kError,
          {{"times", reading.times},
           {"asReadMm", reading.asReadMm},
           {"fittedMm", reading.fittedMm}})
          .detail = reading.id;
    } else if (!Agrees()) {
      Add(FindingId::kNoAgreement, Severity::kError,
          {{"photographs", static_cast<double>(check_.photographs)},
           {"used", static_cast<double>(check_.used)},
           {"mm", check_.solved ? check_.trackerNoiseMm : std::nan("")},
           {"degrees", check_.solved ? check_.trackerNoiseDegrees : std::nan("")}});
      TooLittleTurning();
    } else {
      TooLittleTurning();
      TrackerMoved();
      BadPhotographs();
      MountingOff();
      LibraryApart();
      SquareSize();
      HalvesDiffer();
      LensUncertain();
      TrackersNoisy();
    }
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const auto& a, const auto& b) { return a.severity < b.severity; });
    return std::move(findings_);
  }

 private:
  Finding& Add(FindingId id, Severity severity,
               std::vector<std::pair<std::string, double>> numbers) {
    findings_.push_back({id, severity, std::move(numbers), {}, ""});
    return findings_.back();
  }

  bool Agrees() const {
    return check_.solved && (2 * check_.used >= check_.photographs || check_.step) &&
           check_.trackerNoiseMm < kHopelessMm && check_.trackerNoiseDegrees < kHopelessDegrees;
  }

  bool Turns() const { return check_.diversity.amplification <= kMostAmplification; }

  void TooLittleTurning() {
    const double amplification = check_.diversity.amplification;
    if (!(amplification > kLittleTurning)) {
      return;
    }
    const Diversity& diversity = check_.diversity;
    const Eigen::Vector3d& axis = diversity.turnAboutInChart;
    Add(FindingId::kTooLittleTurning,
        amplification > kMostAmplification ? Severity::kError : Severity::kWarning,
        {{"amplification", amplification},
         {"turnDegrees", diversity.turnDegrees},
         {"axisX", axis.x()},
         {"axisY", axis.y()},
         {"axisZ", axis.z()},
         {"axes", static_cast<double>(diversity.axesToTurnAbout)}});
  }

  void TrackerMoved() {
    if (!check_.step) {
      return;
    }
    const Step& step = *check_.step;
    Finding& finding = Add(FindingId::kTrackerMoved, Severity::kError,
                           {{"before", static_cast<double>(step.before)},
                            {"mm", step.mm},
                            {"degrees", step.degrees},
                            {"gain", step.gain}});
    finding.photographs = {step.before};
    finding.detail = Name(step.tracker);
  }

  void BadPhotographs() {
    const Solution& solution = grounds_.withStep ? *grounds_.withStep : *grounds_.solution;
    std::vector<std::size_t> bad;
    for (std::size_t i = 0; i < evidence_.loops.size(); ++i) {
      const std::size_t photograph = evidence_.loops[i].photograph;
      const PerPhotograph& figures = check_.perPhotograph[photograph];
      if (!solution.used[i] && solution.disagreement[i] > kFarBeyondLimit * DisagreementLimit() &&
          (figures.mm >= kFarMm || figures.degrees >= kFarDegrees)) {
        bad.push_back(photograph);
      }
    }
    for (std::size_t i = 0; i < check_.photographs; ++i) {
      const auto& why = check_.perPhotograph[i].why;
      if (why == "notNumbers" || why == "noPose") {
        bad.push_back(i);
      }
    }
    if (bad.empty()) {
      return;
    }
    // What is not a number is worst of all.
    const auto badness = [this](std::size_t i) {
      const PerPhotograph& figures = check_.perPhotograph[i];
      return std::isfinite(figures.mm) ? figures.mm / kFarMm + figures.degrees / kFarDegrees
                                       : HUGE_VAL;
    };
    std::stable_sort(bad.begin(), bad.end(),
                     [&](std::size_t a, std::size_t b) { return badness(a) > badness(b); });
    const double share = static_cast<double>(bad.size()) / static_cast<double>(check_.photographs);
    const PerPhotograph& worst = check_.perPhotograph[bad.front()];
    Add(FindingId::kBadPhotographs, share > kManyBad ? Severity::kError : Severity::kWarning,
        {{"share", share}, {"worstMm", worst.mm}, {"worstDegrees", worst.degrees}})
        .photographs = bad;
  }

  void MountingOff() {
    if (!check_.nominalMounting || !grounds_.result || check_.step || !Turns()) {
      return;
    }
    const NominalMounting& stated = *check_.nominalMounting;
    const Offset& result = *grounds_.result;
    if (stated.p < kRejected && stated.pScaleFree < kRejected &&
        IsWorth(result.offMm, result.offDegrees)) {
      const bool isGrave = result.offMm >= kGraveMm || result.offDegrees >= kGraveDegrees;
      Add(FindingId::kMountingOff, isGrave ? Severity::kError : Severity::kNote,
          {{"offMm", stated.offMm},
           {"offDegrees", stated.offDegrees},
           {"resultOffMm", result.offMm},
           {"resultOffDegrees", result.offDegrees},
           {"p", stated.p},
           {"pScaleFree", stated.pScaleFree}})
          .detail = stated.perhaps.value_or("");
    }
  }

  bool Has(FindingId id) const {
    return std::any_of(findings_.begin(), findings_.end(),
                       [id](const Finding& finding) { return finding.id == id; });
  }

  void LibraryApart() {
    // Without a stated mounting, or with a wrong one, it is apart for that reason.
    if (!check_.library || !check_.nominalMounting || check_.step || !Turns() ||
        Has(FindingId::kMountingOff)) {
      return;
    }
    const Offset& library = *check_.library;
    if (library.p < kRejected && IsWorth(library.offMm, library.offDegrees)) {
      Add(FindingId::kLibraryApart, Severity::kWarning,
          {{"offMm", library.offMm}, {"offDegrees", library.offDegrees}, {"p", library.p}});
    }
  }

  void SquareSize() {
    const crosscheck::SquareSize& square = check_.square;
    if (square.p < kRejected && std::abs(square.factor - 1) >= kWorthSquare &&
        grounds_.chartSpreadMetres >= kSquareSpread && !check_.step) {
      Add(FindingId::kSquareSize, Severity::kWarning,
          {{"factor", square.factor}, {"standardError", square.standardError}, {"p", square.p}});
    }
  }

  void HalvesDiffer() {
    if (!check_.halves || check_.step) {
      return;
    }
    const Offset& halves = *check_.halves;
    if (halves.p < kRejected && IsWorth(halves.offMm, halves.offDegrees)) {
      Add(FindingId::kHalvesDiffer, Severity::kWarning,
          {{"offMm", halves.offMm}, {"offDegrees", halves.offDegrees}, {"p", halves.p}});
    }
  }

  void LensUncertain() {
    const Solution& solution = *grounds_.solution;
    const Pose& pose = solution.Transform_Cam_Tc;
    const Eigen::MatrixXd carried =
        solution.byLens * evidence_.lensCovariance * solution.byLens.transpose();
    const StandardError lens = StandardErrorOfLeftTwist(carried.topLeftCorner<6, 6>(), pose);
    const StandardError rest =
        StandardErrorOfLeftTwist(solution.covariance.topLeftCorner<6, 6>(), pose);
    const double mm = check_.t95 * lens.shiftMm.maxCoeff();
    const double degrees = check_.t95 * lens.turnDegrees.maxCoeff();
    const bool shifts = mm >= kWorthMm && lens.shiftMm.norm() > rest.shiftMm.norm();
    const bool turns =
        degrees >= kWorthDegrees && lens.turnDegrees.norm() > rest.turnDegrees.norm();
    if (shifts || turns) {
      Add(FindingId::kLensUncertain, Severity::kWarning,
          {{"mm", mm},
           {"degrees", degrees},
           {"pixels", grounds_.atChart ? grounds_.atChart->fromLens : std::nan("")},
           {"distanceMetres", grounds_.atChart ? grounds_.atChart->distanceMetres : std::nan("")}});
    }
  }

  void TrackersNoisy() {
    // A tracker that moved, or squares of another size, look like noise where they are not solved
    // for.
    const bool isNoise = !check_.step && !Has(FindingId::kSquareSize);
    if (isNoise &&
        (check_.trackerNoiseMm > kNoisyMm || check_.trackerNoiseDegrees > kNoisyDegrees)) {
      Add(FindingId::kTrackersNoisy, Severity::kWarning,
          {{"mm", check_.trackerNoiseMm}, {"degrees", check_.trackerNoiseDegrees}});
    }
  }

  const CrossCheck& check_;
  const Evidence& evidence_;
  const Grounds& grounds_;
  std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const Grounds& grounds) {
  return Collector(check, evidence, grounds).Collect();
}

}  // namespace trackedcam::crosscheck
