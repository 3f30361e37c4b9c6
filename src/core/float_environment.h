// How the processor rounds, what it traps and what it does with the tiniest numbers.

#pragma once

#include <cfenv>

namespace trackedcam {

/// While it lives, the thread computes as a program does that never asked for anything else: rounds
/// to nearest, traps nothing, keeps subnormal numbers. Afterwards all is as the host had it, the
/// flags of exceptions included. Without it a host that traps would die of a figure that is not a
/// number, and one that rounds otherwise would get other figures.
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
