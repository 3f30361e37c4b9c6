// The floating-point settings of the calling thread: rounding, traps, subnormal numbers.

#pragma once

#include <cfenv>

namespace trackedcam {

/// During its lifetime the thread rounds to nearest, traps nothing and keeps subnormal numbers. The
/// destructor restores the host's settings and exception flags. Without it, a host that traps would
/// crash on a NaN, and a host with another rounding mode would get other results.
class DefaultFloatEnvironment {
 public:
  DefaultFloatEnvironment();
  ~DefaultFloatEnvironment();
  DefaultFloatEnvironment(const DefaultFloatEnvironment&) = delete;
  DefaultFloatEnvironment& operator=(const DefaultFloatEnvironment&) = delete;

 private:
  std::fenv_t host_ = {};
  unsigned int hostVectorUnit_;
};

}  // namespace trackedcam
