#include "core/float_environment.h"

#if defined(__SSE2__) || defined(_M_X64)
#define TRACKEDCAM_HAS_SSE
#include <xmmintrin.h>
#endif

namespace trackedcam {
namespace {

// The runtimes disagree about which parts of the vector unit's register belong to fenv_t, so it is
// read and written as a whole. Elsewhere fenv_t is all there is.
#if defined(TRACKEDCAM_HAS_SSE)
constexpr unsigned int kVectorUnitDefault = 0x1F80;  // nothing trapped, to nearest, no flushing
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
