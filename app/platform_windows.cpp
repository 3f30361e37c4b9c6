#include <io.h>

#include "app/platform.h"

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

void PrepareForWriting() {}  // a write fails, and streams have no numbers that files could take

void HoldBlasToOneThread() {}  // the DLL's is built without threads

}  // namespace trackedcam::app
