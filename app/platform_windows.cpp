#include <fcntl.h>
#include <io.h>

#include "app/platform.h"

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

BinaryOutput::BinaryOutput(std::FILE* stream) : stream_(stream) {
  std::fflush(stream_);
  _setmode(_fileno(stream_), _O_BINARY);
}

BinaryOutput::~BinaryOutput() {
  std::fflush(stream_);
  _setmode(_fileno(stream_), _O_TEXT);
}

void PrepareForWriting() {}  // not needed: writes fail, and files get no numbers of streams

void HoldBlasToOneThread() {}  // the OpenBLAS of the DLL is built without threads

}  // namespace trackedcam::app
