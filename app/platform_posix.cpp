#include <dlfcn.h>
#include <unistd.h>

#include "app/platform.h"

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) == 1;
}

void HoldBlasToOneThread() {
  // Which BLAS stands behind the image library is the machine's choice: this one has the function.
  using SetThreads = void (*)(int);
  if (auto* const set =
          reinterpret_cast<SetThreads>(dlsym(RTLD_DEFAULT, "openblas_set_num_threads"))) {
    set(1);
  }
}

}  // namespace trackedcam::app
