#include "crosscheck/findings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "crosscheck/result.h"
#include "crosscheck/solve.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kGraveMm = 2;  // an error
constexpr double kGraveDegrees = 0.2;
constexpr double kHopelessMm = 20;  // such noise is no noise
constexpr double kHopelessDegrees = 2;

bool Agrees(const CrossCheck& check) {
  return check.solved && (2 * check.used >= check.photographs || check.step) &&
         check.trackerNoiseMm < kHopelessMm && check.trackerNoiseDegrees < kHopelessDegrees;
}

bool Turns(const CrossCheck& check) {
  return check.diversity.amplification <= kMostAmplification;
}

bool IsGrave(const Offset& offset) {
  return offset.offMm >= kGraveMm || offset.offDegrees >= kGraveDegrees;
}

Finding OtherReading(const Reading& reading) {
  return {
      FindingId::kReading,
      Severity::kError,
      {{"times", reading.times}, {"asReadMm", reading.asReadMm}, {"fittedMm", reading.fittedMm}},
      {},
      reading.id};
}

Finding NoAgreement(const CrossCheck& check) {
  return {FindingId::kNoAgreement,
          Severity::kError,
          {{"photographs", static_cast<double>(check.photographs)},
           {"used", static_cast<double>(check.used)},
           {"mm", check.solved ? check.trackerNoiseMm : std::nan("")},
           {"degrees", check.solved ? check.trackerNoiseDegrees : std::nan("")}},
          {},
          ""};
}

std::optional<Finding> MountingOff(const CrossCheck& check, const Grounds& grounds) {
  if (!check.nominalMounting || !grounds.result || check.step || !Turns(check)) {
    return std::nullopt;
  }
  const NominalMounting& stated = *check.nominalMounting;
  const Offset& result = *grounds.result;
  if (!(stated.p < kRejected && stated.pScaleFree < kRejected &&
        IsWorth(result.offMm, result.offDegrees))) {
    return std::nullopt;
  }
  return Finding{FindingId::kMountingOff,
                 IsGrave(result) ? Severity::kError : Severity::kNote,
                 {{"offMm", stated.offMm},
                  {"offDegrees", stated.offDegrees},
                  {"resultOffMm", result.offMm},
                  {"resultOffDegrees", result.offDegrees},
                  {"p", stated.p},
                  {"pScaleFree", stated.pScaleFree}},
                 {},
                 stated.perhaps.value_or("")};
}

std::optional<Finding> LibraryApart(const CrossCheck& check) {
  if (!check.library || check.step || !Turns(check)) {
    return std::nullopt;
  }
  const Offset& library = *check.library;
  if (!(library.p < kRejected && IsWorth(library.offMm, library.offDegrees))) {
    return std::nullopt;
  }
  // Where the mounting is not known it may be this far off; where it is right this is little.
  const bool isUnknown = !check.nominalMounting;
  return Finding{FindingId::kLibraryApart,
                 isUnknown && IsGrave(library) ? Severity::kError : Severity::kWarning,
                 {{"offMm", library.offMm}, {"offDegrees", library.offDegrees}, {"p", library.p}},
                 {},
                 isUnknown ? "mountingUnknown" : ""};
}

std::vector<Finding> FindingsInOrder(const CrossCheck& check, const Evidence& evidence,
                                     const Grounds& grounds) {
  if (grounds.reading) {
    return {OtherReading(*grounds.reading)};
  }
  std::vector<Finding> findings;
  // True where there is one.
  const auto add = [&](const std::optional<Finding>& finding) {
    if (finding) {
      findings.push_back(*finding);
    }
    return finding.has_value();
  };
  if (!Agrees(check)) {
    findings.push_back(NoAgreement(check));
    add(TooLittleTurning(check));
    return findings;
  }
  add(TooLittleTurning(check));
  add(TrackerMoved(check));
  add(BadPhotographs(check, evidence, grounds));
  // With a wrong mounting the result is apart for that reason.
  if (!add(MountingOff(check, grounds))) {
    add(LibraryApart(check));
  }
  const bool isSquareWrong = add(WrongSquareSize(check, grounds));
  add(HalvesDiffer(check));
  add(LensUncertain(check, evidence, grounds));
  // Squares of another size look like noise where they are not solved for, as does a tracker that
  // moved.
  if (!isSquareWrong) {
    add(TrackersNoisy(check));
  }
  return findings;
}

constexpr double kFarBeyondLimit = 2;  // times the limit at which a photograph is left out
constexpr double kFarMm = 2;           // of a single photograph, and
constexpr double kFarDegrees = 0.2;
constexpr double kManyBad = 0.3;  // share of the photographs
constexpr double kNoisyMm = 2;
constexpr double kNoisyDegrees = 0.2;
constexpr double kLittleTurning = 5;  // amplification
constexpr double kWorthSquare = 0.01;
constexpr double kSquareSpread = 0.05;  // metres that the chart must have moved

}  // namespace

const char* Name(FindingId id) {
  switch (id) {
    case FindingId::kNoAgreement:
      return "noAgreement";
    case FindingId::kReading:
      return "reading";
    case FindingId::kTooLittleTurning:
      return "tooLittleTurning";
    case FindingId::kTrackerMoved:
      return "trackerMoved";
    case FindingId::kMountingOff:
      return "mountingOff";
    case FindingId::kBadPhotographs:
      return "badPhotographs";
    case FindingId::kSquareSize:
      return "squareSize";
    case FindingId::kHalvesDiffer:
      return "halvesDiffer";
    case FindingId::kLensUncertain:
      return "lensUncertain";
    case FindingId::kTrackersNoisy:
      return "trackersNoisy";
    case FindingId::kLibraryApart:
      return "libraryApart";
  }
  return "";
}

const char* Name(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    case Severity::kNote:
      return "note";
  }
  return "";
}

const char* Name(Tracker tracker) {
  return tracker == Tracker::kCamera ? "camera" : "chart";
}

double Finding::Number(const std::string& name) const {
  for (const auto& [key, value] : numbers) {
    if (key == name) {
      return value;
    }
  }
  return std::numeric_limits<double>::quiet_NaN();
}

std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const Grounds& grounds) {
  std::vector<Finding> findings = FindingsInOrder(check, evidence, grounds);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const auto& a, const auto& b) { return a.severity < b.severity; });
  return findings;
}

std::optional<Finding> TooLittleTurning(const CrossCheck& check) {
  const double amplification = check.diversity.amplification;
  if (!(amplification > kLittleTurning)) {
    return std::nullopt;
  }
  const Diversity& diversity = check.diversity;
  const Eigen::Vector3d& axis = diversity.turnAboutInChart;
  return Finding{FindingId::kTooLittleTurning,
                 amplification > kMostAmplification ? Severity::kError : Severity::kWarning,
                 {{"amplification", amplification},
                  {"turnDegrees", diversity.turnDegrees},
                  {"axisX", axis.x()},
                  {"axisY", axis.y()},
                  {"axisZ", axis.z()},
                  {"axes", static_cast<double>(diversity.axesToTurnAbout)}},
                 {},
                 ""};
}

std::optional<Finding> TrackerMoved(const CrossCheck& check) {
  if (!check.step) {
    return std::nullopt;
  }
  const Step& step = *check.step;
  return Finding{FindingId::kTrackerMoved,
                 Severity::kError,
                 {{"before", static_cast<double>(step.before)},
                  {"mm", step.mm},
                  {"degrees", step.degrees},
                  {"gain", step.gain}},
                 {step.before},
                 Name(step.tracker)};
}

std::optional<Finding> BadPhotographs(const CrossCheck& check, const Evidence& evidence,
                                      const Grounds& grounds) {
  const Solution& solution = grounds.withStep ? *grounds.withStep : *grounds.solution;
  std::vector<std::size_t> bad;
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    const std::size_t photograph = evidence.loops[i].photograph;
    const PerPhotograph& figures = check.perPhotograph[photograph];
    if (!solution.used[i] && solution.disagreement[i] > kFarBeyondLimit * DisagreementLimit() &&
        (figures.mm >= kFarMm || figures.degrees >= kFarDegrees)) {
      bad.push_back(photograph);
    }
  }
  for (std::size_t i = 0; i < check.photographs; ++i) {
    const auto& why = check.perPhotograph[i].why;
    if (why == "notNumbers" || why == "noPose") {
      bad.push_back(i);
    }
  }
  if (bad.empty()) {
    return std::nullopt;
  }
  // What is not a number is worst of all.
  const auto badness = [&check](std::size_t i) {
    const PerPhotograph& figures = check.perPhotograph[i];
    return std::isfinite(figures.mm) ? figures.mm / kFarMm + figures.degrees / kFarDegrees
                                     : HUGE_VAL;
  };
  std::stable_sort(bad.begin(), bad.end(),
                   [&](std::size_t a, std::size_t b) { return badness(a) > badness(b); });
  const double share = static_cast<double>(bad.size()) / static_cast<double>(check.photographs);
  const PerPhotograph& worst = check.perPhotograph[bad.front()];
  return Finding{FindingId::kBadPhotographs,
                 share > kManyBad ? Severity::kError : Severity::kWarning,
                 {{"share", share}, {"worstMm", worst.mm}, {"worstDegrees", worst.degrees}},
                 bad,
                 ""};
}

std::optional<Finding> WrongSquareSize(const CrossCheck& check, const Grounds& grounds) {
  const SquareSize& square = check.square;
  if (square.p < kRejected && std::abs(square.factor - 1) >= kWorthSquare &&
      grounds.chartSpreadMetres >= kSquareSpread && !check.step) {
    return Finding{
        FindingId::kSquareSize,
        Severity::kWarning,
        {{"factor", square.factor}, {"standardError", square.standardError}, {"p", square.p}},
        {},
        ""};
  }
  return std::nullopt;
}

std::optional<Finding> HalvesDiffer(const CrossCheck& check) {
  if (!check.halves || check.step) {
    return std::nullopt;
  }
  const Offset& halves = *check.halves;
  if (halves.p < kRejected && IsWorth(halves.offMm, halves.offDegrees)) {
    return Finding{FindingId::kHalvesDiffer,
                   Severity::kWarning,
                   {{"offMm", halves.offMm}, {"offDegrees", halves.offDegrees}, {"p", halves.p}},
                   {},
                   ""};
  }
  return std::nullopt;
}

std::optional<Finding> LensUncertain(const CrossCheck& check, const Evidence& evidence,
                                     const Grounds& grounds) {
  const Solution& solution = *grounds.solution;
  const Pose& pose = solution.Transform_Cam_Tc;
  const Eigen::MatrixXd carried =
      solution.byLens * evidence.lensCovariance * solution.byLens.transpose();
  const StandardError lens = StandardErrorOfLeftTwist(carried.topLeftCorner<6, 6>(), pose);
  const StandardError rest =
      StandardErrorOfLeftTwist(solution.covariance.topLeftCorner<6, 6>(), pose);
  const double mm = check.t95 * lens.shiftMm.maxCoeff();
  const double degrees = check.t95 * lens.turnDegrees.maxCoeff();
  const bool shifts = mm >= kWorthMm && lens.shiftMm.norm() > rest.shiftMm.norm();
  const bool turns = degrees >= kWorthDegrees && lens.turnDegrees.norm() > rest.turnDegrees.norm();
  if (shifts || turns) {
    return Finding{
        FindingId::kLensUncertain,
        Severity::kWarning,
        {{"mm", mm},
         {"degrees", degrees},
         {"pixels", grounds.atChart ? grounds.atChart->fromLens : std::nan("")},
         {"distanceMetres", grounds.atChart ? grounds.atChart->distanceMetres : std::nan("")}},
        {},
        ""};
  }
  return std::nullopt;
}

std::optional<Finding> TrackersNoisy(const CrossCheck& check) {
  if (!check.step &&
      (check.trackerNoiseMm > kNoisyMm || check.trackerNoiseDegrees > kNoisyDegrees)) {
    return Finding{FindingId::kTrackersNoisy,
                   Severity::kWarning,
                   {{"mm", check.trackerNoiseMm}, {"degrees", check.trackerNoiseDegrees}},
                   {},
                   ""};
  }
  return std::nullopt;
}

}  // namespace trackedcam::crosscheck
