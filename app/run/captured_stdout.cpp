#include "app/run/captured_stdout.h"

#include <array>
#include <utility>

namespace trackedcam::app {

CapturedStdout::CapturedStdout(Reader reader, bool passOn)
    : reader_(std::move(reader)), passOn_(passOn), thread_([this] { ReadAll(); }) {}

CapturedStdout::~CapturedStdout() {
  pipe_.Restore();
  thread_.join();
}

void CapturedStdout::ReadAll() {
  std::array<char, 4096> buffer = {};
  while (const std::size_t length = pipe_.Read(buffer.data(), buffer.size())) {
    const std::string_view piece(buffer.data(), length);
    if (passOn_) {
      pipe_.WriteToOriginal(piece);
    }
    reader_(piece);
  }
}

}  // namespace trackedcam::app
