#include "core/float_environment.h"

#if defined(__SSE2__) || defined(_M_X64)
#define TRACKEDCAM_HAS_SSE
#include <xmmintrin.h>
#endif

namespace trackedcam {
namespace {

// Runtimes disagree about which parts of the vector unit's control register belong to fenv_t, so
// the register is saved and restored as a whole. Processors without SSE need only fenv_t.
#if defined(TRACKEDCAM_HAS_SSE)
constexpr unsigned int kVectorUnitDefault = 0x1F80;  // no traps, round to nearest, no flush to zero
unsigned int VectorUnit() {
  return _mm_getcsr();
}
void SetVectorUnit(unsigned int control) {
  _mm_setcsr(control);
}
#else
constexpr unsigned int kVectorUnitDefault = 0;
unsigned int VectorUnit() {
  return kVectorUnitDefault;
}
void SetVectorUnit(unsigned int /*control*/) {}
#endif

}  // namespace

DefaultFloatEnvironment::DefaultFloatEnvironment() : hostVectorUnit_(VectorUnit()) {
  std::fegetenv(&host_);
  std::fesetenv(FE_DFL_ENV);
  SetVectorUnit(kVectorUnitDefault);
}

DefaultFloatEnvironment::~DefaultFloatEnvironment() {
  std::fesetenv(&host_);
  SetVectorUnit(hostVectorUnit_);
}

}  // namespace trackedcam
