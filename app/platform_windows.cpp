#include <atomic>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

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

namespace {

std::atomic<bool> hasInterruptCome = false;

BOOL WINAPI NoteInterrupt(DWORD event) {
  hasInterruptCome = true;
  return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? TRUE : FALSE;
}

}  // namespace

Interrupts::Interrupts() {
  hasInterruptCome = false;
  SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

Interrupts::~Interrupts() {
  SetConsoleCtrlHandler(NoteInterrupt, FALSE);
}

bool Interrupts::HasCome() {
  return hasInterruptCome;
}

void HoldBlasToOneThread() {}  // the OpenBLAS of the DLL is built without threads

}  // namespace trackedcam::app
