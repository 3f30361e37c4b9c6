#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <mutex>
#include <system_error>
#include <unistd.h>

#include "host/platform.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostAtOnce = 1 << 30;
constexpr mode_t kModeBeforeMask = 0666;

std::error_code LastError() {
  return {errno, std::generic_category()};
}

std::error_code WriteAll(int file, const std::string& content) {
  for (std::size_t done = 0; done < content.size();) {
    const std::size_t count = std::min(content.size() - done, kMostAtOnce);
    const ssize_t written = write(file, content.data() + done, count);
    if (written < 0 && errno != EINTR) {
      return LastError();
    }
    done += written < 0 ? 0 : static_cast<std::size_t>(written);
  }
  // Some file systems know no flushing, and have nothing to flush.
  return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP ? std::error_code() : LastError();
}

int Checked(int result) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot redirect standard output");
  }
  return result;
}

// What waits in the streams' buffers belongs to where standard output leads now.
void FlushStreams() {
  std::cout.flush();
  std::fflush(stdout);
}

std::mutex mutex;
int living = 0;
int original = -1;

}  // namespace

std::error_code WriteNewFile(const fs::path& file, const std::string& content) {
  const int opened =
      open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kModeBeforeMask);
  if (opened < 0) {
    return LastError();
  }
  std::error_code error = WriteAll(opened, content);
  if (close(opened) != 0 && !error && errno != EINTR) {
    error = LastError();
  }
  if (error) {
    unlink(file.c_str());
  }
  return error;
}

void FlushFolder(const fs::path& folder) {
  const int opened =
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened >= 0) {
    fsync(opened);
    close(opened);
  }
}

// A process whose standard output is closed has nothing to silence.
SilencedStdout::SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (living == 0 && fcntl(STDOUT_FILENO, F_GETFD) >= 0) {
    FlushStreams();
    original = Checked(dup(STDOUT_FILENO));
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0) {
      close(original);
      original = -1;
      Checked(-1);
    }
    close(nowhere);
  }
  ++living;
}

SilencedStdout::~SilencedStdout() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (--living == 0 && original >= 0) {
    FlushStreams();
    dup2(original, STDOUT_FILENO);
    close(original);
    original = -1;
  }
}

}  // namespace trackedcam::host
