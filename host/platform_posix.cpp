#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
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
  // A file system without flushing returns EINVAL or ENOTSUP; there is nothing to wait for.
  return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP ? std::error_code() : LastError();
}

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

bool MayWrite(const fs::path& file) {
  return access(file.c_str(), W_OK) == 0;
}

bool IsSystemFolder(const fs::path& folder) {
  const auto first = std::next(folder.begin());  // after the root
  return first != folder.end() && (*first == "dev" || *first == "proc" || *first == "sys");
}

bool IsDevice(const fs::path& /*file*/) {
  return false;  // devices are in folders of the system
}

int StdoutDescriptor() {
  return fcntl(STDOUT_FILENO, F_GETFD) < 0 ? -1 : STDOUT_FILENO;
}

int OpenNowhere() {
  return open("/dev/null", O_WRONLY | O_CLOEXEC);
}

int DuplicateDescriptor(int descriptor) {
  return dup(descriptor);
}

bool ReplaceDescriptor(int descriptor, int by) {
  return dup2(by, descriptor) >= 0;
}

void CloseDescriptor(int descriptor) {
  if (descriptor >= 0) {
    close(descriptor);
  }
}

}  // namespace trackedcam::host
