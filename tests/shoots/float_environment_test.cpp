// Hosts with other floating-point settings get the same results and keep their settings.

#include <cstring>
#include <functional>
#include <stdexcept>

#include "shoots/calibrate_shoot.h"
#include "simulator/write_shoot.h"
#include "support/host_float_environment.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;

constexpr FloatHabit kHabits[] = {FloatHabit::kTrapsExceptions, FloatHabit::kRoundsUp,
                                  FloatHabit::kRoundsToZero, FloatHabit::kFlushesTinyNumbers};

TEST(FloatHabits, DoNotAffectACalibration) {
  sim::ShootOptions options = SmallShoot(13);
  options.missing = 1;
  options.trackerNoiseMm = 1;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  const TemporaryFolder folder;
  const Calibrated plain = CalibrateShoot(shoot, folder);
  ASSERT_EQ(plain.code, 0);
  for (const FloatHabit habit : kHabits) {
    SCOPED_TRACE(habit);
    const TemporaryFolder logFolder;
    HostArguments arguments = ArgumentsFor(shoot, folder);
    arguments.logFolder = logFolder.Path().u8string();
    Calibrated result;
    unsigned int before = 0;
    unsigned int after = 0;
    {
      const HostFloatEnvironment host(habit);
      before = HostFloatEnvironment::Settings();
      result = Calibrate(arguments);
      after = HostFloatEnvironment::Settings();
    }
    EXPECT_EQ(result.AllValues(), plain.AllValues());
    EXPECT_EQ(result.log, plain.log);
    EXPECT_EQ(after, before);
  }
}

TEST(FloatHabits, DoNotAffectExports) {
  const TemporaryFolder folder;
  const std::string log = folder.Path().u8string();
  using Export = std::function<void(const std::vector<double>&, std::vector<double>&)>;
  const Export exports[] = {
      [&](auto& transform, auto& out) { CamAxisToUE4(transform, out, out, log); },
      [&](auto& transform, auto& out) { CamAxisToUE5(transform, out, out, log); },
      [&](auto& transform, auto& out) { CamAxisToUE5_ExportxN(transform, out, out, log); },
      [&](auto& transform, auto& out) {
        CamAxisToAximmetry({0.7, 0.0}, {0.51, 1e-310}, transform, out, out, out, out, log);
      }};
  // A rigid transform, and a singular one.
  const std::vector<double> turned = {0.36, 0.48, -0.8, 0.1, -0.8, 0.6, 0, 1e-310,
                                      0.48, 0.64, 0.6,  0.3, 0,    0,   0, 1};
  const std::vector<double> singular(16, 0.0);
  for (const Export& run : exports) {
    for (const std::vector<double>& transform : {turned, singular}) {
      std::vector<double> plain;
      run(transform, plain);
      for (const FloatHabit habit : kHabits) {
        SCOPED_TRACE(habit);
        std::vector<double> values;
        unsigned int before = 0;
        unsigned int after = 0;
        int flags = -1;
        {
          const HostFloatEnvironment host(habit);
          before = HostFloatEnvironment::Settings();
          run(transform, values);
          after = HostFloatEnvironment::Settings();
          flags = HostFloatEnvironment::Flags();
        }
        EXPECT_EQ(flags, 0);
        EXPECT_EQ(after, before);
        ASSERT_EQ(values.size(), plain.size());
        EXPECT_EQ(std::memcmp(values.data(), plain.data(), plain.size() * sizeof(double)), 0);
      }
    }
  }
}

TEST(FloatHabits, AreRestoredWhenTheCallThrows) {
  const TemporaryFolder folder;
  HostArguments arguments = ArgumentsFor(sim::SimulateShoot(SmallShoot()), folder);
  arguments.dataPath += "\xE9";
  for (const FloatHabit habit : kHabits) {
    SCOPED_TRACE(habit);
    const HostFloatEnvironment host(habit);
    const unsigned int before = HostFloatEnvironment::Settings();
    EXPECT_THROW(Calibrate(arguments), std::range_error);
    EXPECT_EQ(HostFloatEnvironment::Settings(), before);
  }
}

}  // namespace
}  // namespace trackedcam::test
