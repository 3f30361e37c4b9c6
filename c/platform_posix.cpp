#include <dlfcn.h>
#include <pthread.h>

#include "c/platform.h"

namespace trackedcam::c {

void StayLoaded() {
  Dl_info info = {};
  if (dladdr(reinterpret_cast<void*>(&StayLoaded), &info) != 0) {
    dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
  }
}

const bool kThreadsOutliveExit = true;

void AroundForks(void (*before)(), void (*inParent)(), void (*inChild)()) {
  pthread_atfork(before, inParent, inChild);
}

}  // namespace trackedcam::c
