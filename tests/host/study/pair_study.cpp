// How accurately the delay of a recording is found, and whether its intervals hold. The table of
// docs/from-a-film-and-a-recording.md is its output.
//
// Usage: pair_study [RECORDINGS], of each row; 200 where nothing is said

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"
#include "host/known_recording.h"

namespace {

using namespace trackedcam;
using simulator::RecordingOptions;

struct StudyRow {
  std::string name;
  void (*change)(RecordingOptions&);
};

// Of one recording.
struct Outcome {
  double offMs = 0;
  double halfMs = 0;
  bool hasDrift = false;
  double mm = 0;         // by which the transform is off
  double mmAtTruth = 0;  // the same, with the true delay
};

// Transform_Cam_Tc, from frames 0.4 s apart with the poses of a clock.
std::optional<double> OffMm(const simulator::Recording& recording,
                            const std::vector<host::SeenFrame>& frames,
                            const host::PoseStream& camera, const host::PoseStream& chart,
                            const host::Clock& clock) {
  crosscheck::Observations observations = test::BoardOf(recording);
  for (const host::SeenFrame& frame : frames) {
    if (const auto relative = RelativeAt(camera, chart, clock.PoseTime(frame.seconds))) {
      observations.photographs.push_back(
          {"", relative->camera, relative->chart, frame.seconds, frame.corners});
    }
  }
  const auto solution = crosscheck::SolveShoot(crosscheck::Gather(observations));
  return solution ? std::optional(1e3 * (solution->Transform_Cam_Tc.translation() -
                                         recording.Transform_Cam_Tc.translation())
                                            .norm())
                  : std::nullopt;
}

std::optional<Outcome> Run(const RecordingOptions& options) {
  const simulator::Recording recording = simulator::SimulateRecording(options);
  const host::PoseStream camera(test::RecordingOf(recording.camera), options.firstStamp);
  const host::PoseStream chart(test::RecordingOf(recording.chart), options.firstStamp);
  const auto coarse = FindCoarseDelay(test::SeenIn(recording, 2), camera, chart);
  const std::vector<host::SeenFrame> frames = test::SeenIn(recording, 10);
  const auto clock =
      coarse ? FitClock(frames, camera, chart, test::BoardOf(recording), coarse->seconds)
             : std::nullopt;
  if (!clock) {
    return std::nullopt;
  }
  host::Clock truth = *clock;
  truth.delay = StampAt(options, clock->meanSeconds) - options.firstStamp - clock->meanSeconds;
  truth.drift = 1e-6 * options.driftPpm;
  const auto off = OffMm(recording, frames, camera, chart, *clock);
  const auto atTruth = OffMm(recording, frames, camera, chart, truth);
  if (!off || !atTruth) {
    return std::nullopt;
  }
  return Outcome{1e3 * (clock->delay - truth.delay), 1e3 * clock->delayHalf, clock->drift != 0,
                 *off, *atTruth};
}

void Print(const StudyRow& row, int recordings) {
  int found = 0;
  int held = 0;
  int drifts = 0;
  double squares = 0;
  double halves = 0;
  double mm = 0;
  double mmAtTruth = 0;
  for (int i = 0; i < recordings; ++i) {
    RecordingOptions options = test::NoisyRecording(1000 + static_cast<std::uint64_t>(i));
    options.delayMs = 20 * (i % 9 - 4);
    row.change(options);
    if (const auto outcome = Run(options)) {
      ++found;
      held += std::abs(outcome->offMs) <= outcome->halfMs ? 1 : 0;
      drifts += outcome->hasDrift ? 1 : 0;
      squares += outcome->offMs * outcome->offMs;
      halves += outcome->halfMs;
      mm += outcome->mm * outcome->mm;
      mmAtTruth += outcome->mmAtTruth * outcome->mmAtTruth;
    }
  }
  std::printf("| %s | %d | %.2f | %.2f | %.1f %% | %.1f %% | %.2f | %.2f |\n", row.name.c_str(),
              found, std::sqrt(squares / found), halves / found, 100.0 * held / found,
              100.0 * drifts / found, std::sqrt(mm / found), std::sqrt(mmAtTruth / found));
  std::fflush(stdout);
}

}  // namespace

int main(int count, char** arguments) {
  const int recordings = count > 1 ? std::atoi(arguments[1]) : 200;
  std::printf(
      "| Recording | Found | Off, ms | Interval, +/- ms | Holds | Drift found | "
      "Transform off, mm | The same with the true delay |\n"
      "|---|---:|---:|---:|---:|---:|---:|---:|\n");
  const std::vector<StudyRow> rows = {
      {"handheld", [](RecordingOptions&) {}},
      {"tripod", [](RecordingOptions& o) { o.motion = simulator::Motion::kTripod; }},
      {"drift of 200 millionths", [](RecordingOptions& o) { o.driftPpm = 200; }},
      {"frames and poses at 12 and 120 Hz", [](RecordingOptions& o) { o.framesPerSecond = 12; }},
      {"10 % of the poses missing, stamps of 1 ms",
       [](RecordingOptions& o) {
         o.droppedFraction = 0.1;
         o.stampStepMs = 1;
       }},
      {"20 s", [](RecordingOptions& o) { o.seconds = 20; }},
  };
  for (const StudyRow& row : rows) {
    Print(row, recordings);
  }
}
