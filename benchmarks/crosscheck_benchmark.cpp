// How long the cross-check of 25, 50 and 100 photographs takes. The best of nine runs, since other
// work on the machine only adds time.

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"

namespace {

using namespace trackedcam;

double Milliseconds(const crosscheck::Observations& observations) {
  const auto begin = std::chrono::steady_clock::now();
  Check(observations);
  return 1e3 * std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

int main() {
  for (const int photographs : {25, 50, 100}) {
    simulator::ShootOptions options = test::FortyNoisy(1);
    options.photographs = photographs;
    options.outliers = photographs / 10;
    test::KnownShoot shoot = test::MakeShoot(options, 0.05);
    shoot.observations.library = test::BelievingTheMounting(shoot).matrix();
    double best = Milliseconds(shoot.observations);
    for (int run = 1; run < 9; ++run) {
      best = std::min(best, Milliseconds(shoot.observations));
    }
    std::printf("%3d photographs: %.1f ms\n", photographs, best);
  }
}
