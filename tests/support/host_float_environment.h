// Floating-point settings that a host may have when it calls the library.

#pragma once

#include <cfenv>
#include <ostream>

#if defined(__SSE2__) || defined(_M_X64)
#define TRACKEDCAM_TESTS_HAVE_SSE
#include <xmmintrin.h>
#endif

namespace trackedcam::test {

enum class FloatHabit { kTrapsExceptions, kRoundsUp, kRoundsToZero, kFlushesTinyNumbers };

inline std::ostream& operator<<(std::ostream& out, FloatHabit habit) {
  const char* const names[] = {"traps", "rounds up", "rounds to zero", "flushes tiny numbers"};
  return out << names[static_cast<int>(habit)];
}

/// During its lifetime the thread has this habit. A habit that the processor does not support has
/// no effect.
class HostFloatEnvironment {
 public:
  explicit HostFloatEnvironment(FloatHabit habit) {
    std::fegetenv(&before_);
#if defined(TRACKEDCAM_TESTS_HAVE_SSE)
    vectorUnitBefore_ = _mm_getcsr();
#endif
    std::feclearexcept(FE_ALL_EXCEPT);
    if (habit == FloatHabit::kRoundsUp) {
      std::fesetround(FE_UPWARD);
    } else if (habit == FloatHabit::kRoundsToZero) {
      std::fesetround(FE_TOWARDZERO);
    }
#if defined(TRACKEDCAM_TESTS_HAVE_SSE)
    constexpr unsigned int kMasks = 0x0E80;     // invalid, division by zero, overflow, underflow
    constexpr unsigned int kFlushing = 0x8040;  // of results and of arguments
    if (habit == FloatHabit::kTrapsExceptions) {
      _mm_setcsr(_mm_getcsr() & ~kMasks);
    } else if (habit == FloatHabit::kFlushesTinyNumbers) {
      _mm_setcsr(_mm_getcsr() | kFlushing);
    }
#endif
  }
  ~HostFloatEnvironment() {
    std::fesetenv(&before_);
#if defined(TRACKEDCAM_TESTS_HAVE_SSE)
    _mm_setcsr(vectorUnitBefore_);
#endif
  }
  HostFloatEnvironment(const HostFloatEnvironment&) = delete;
  HostFloatEnvironment& operator=(const HostFloatEnvironment&) = delete;

  /// The settings as one number, to compare.
  static unsigned int Settings() {
    auto settings = static_cast<unsigned int>(std::fegetround());
#if defined(TRACKEDCAM_TESTS_HAVE_SSE)
    constexpr unsigned int kFlags = 0x3F;
    settings ^= (_mm_getcsr() & ~kFlags) << 16;
#endif
    return settings;
  }

  /// The exception flags that are set.
  static int Flags() {
    return std::fetestexcept(FE_ALL_EXCEPT);
  }

 private:
  std::fenv_t before_ = {};
  unsigned int vectorUnitBefore_ = 0;
};

}  // namespace trackedcam::test
