// How long the cross-check of 25 to 800 photographs takes. It has one thread, so the time of
// the processor is its time; the best of nine runs, since other work on the machine only adds to
// it.

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"

namespace {

using namespace trackedcam;

double Milliseconds(const crosscheck::Observations& observations) {
  const std::clock_t begin = std::clock();
  Check(observations);
  return 1e3 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

}  // namespace

int main() {
  for (const int photographs : {25, 50, 100, 200, 400, 800}) {
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
