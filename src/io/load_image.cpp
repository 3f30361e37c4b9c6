#include "io/load_image.h"

#include <sstream>
#include <vector>

#include <opencv2/imgcodecs.hpp>

#include "core/console.h"
#include "core/platform.h"
#include "core/utf8.h"

namespace trackedcam {
namespace {

File OpenImage(const std::string& path) {
  const std::wstring widePath = WideFromUtf8(path);
  File file = OpenFile(widePath, "rb");
  if (!file) {
    // The address, because a narrow stream cannot print wide text.
    std::ostringstream text;
    text << "Failed to open " << static_cast<const void*>(widePath.c_str()) << '\n';
    Print(text.str());
  }
  return file;
}

}  // namespace

bool ImageOpens(const std::string& path) {
  return OpenImage(path) != nullptr;
}

cv::Mat LoadImage(const std::string& path) {
  const File file = OpenImage(path);
  if (!file) {
    return {};
  }
  std::fseek(file.get(), 0, SEEK_END);
  const long length = std::ftell(file.get());
  std::fseek(file.get(), 0, SEEK_SET);

  // If the file becomes shorter in the meantime, zeros remain at the end, and the decoder decides.
  std::vector<unsigned char> bytes(length > 0 ? static_cast<std::size_t>(length) : 0);
  [[maybe_unused]] const std::size_t read = std::fread(bytes.data(), 1, bytes.size(), file.get());
  return cv::imdecode(bytes, cv::IMREAD_COLOR);
}

cv::Mat LoadImageOrNone(const std::string& path) {
  try {
    return LoadImage(path);
  } catch (const cv::Exception&) {
    return {};
  }
}

}  // namespace trackedcam
