#include <io.h>

#include "app/platform.h"

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

void PrepareForWriting() {}  // not needed: writes fail, and files get no numbers of streams

void HoldBlasToOneThread() {}  // the OpenBLAS of the DLL is built without threads

}  // namespace trackedcam::app
