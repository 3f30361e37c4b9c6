#include "core/float_environment.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "support/host_float_environment.h"

namespace trackedcam {
namespace {

using test::FloatHabit;
using test::HostFloatEnvironment;

class FloatEnvironment : public testing::TestWithParam<FloatHabit> {};

TEST_P(FloatEnvironment, IsTheDefaultInside) {
  volatile double one = 1;
  volatile double tiny = std::numeric_limits<double>::min();
  volatile double tenth = 0;
  volatile double half = 0;
  volatile double infinite = 0;
  {
    const HostFloatEnvironment host(GetParam());
    const DefaultFloatEnvironment environment;
    tenth = -one / 10;
    half = tiny / 2;
    infinite = std::sqrt(-one) / (one - one);
  }
  EXPECT_EQ(tenth, -0x1.999999999999ap-4);  // ends in 9 if rounded up or to zero
  EXPECT_EQ(half, 0x1p-1023);
  EXPECT_TRUE(std::isnan(infinite));
}

TEST_P(FloatEnvironment, IsTheHostsAgainAfterwards) {
  const HostFloatEnvironment host(GetParam());
  std::feraiseexcept(FE_INEXACT);
  const unsigned int before = HostFloatEnvironment::Settings();
  ASSERT_EQ(HostFloatEnvironment::Flags(), FE_INEXACT);
  volatile double zero = 0;
  {
    const DefaultFloatEnvironment environment;
    zero = std::sqrt(1 / zero);
  }
  const unsigned int afterReturn = HostFloatEnvironment::Settings();
  try {
    const DefaultFloatEnvironment environment;
    throw std::runtime_error("from underneath");
  } catch (const std::runtime_error&) {
  }
  const unsigned int afterException = HostFloatEnvironment::Settings();
  EXPECT_EQ(HostFloatEnvironment::Flags(), FE_INEXACT);
  EXPECT_EQ(afterReturn, before);
  EXPECT_EQ(afterException, before);
}

INSTANTIATE_TEST_SUITE_P(Of, FloatEnvironment,
                         testing::Values(FloatHabit::kTrapsExceptions, FloatHabit::kRoundsUp,
                                         FloatHabit::kRoundsToZero,
                                         FloatHabit::kFlushesTinyNumbers));

}  // namespace
}  // namespace trackedcam
