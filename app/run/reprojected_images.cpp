#include "app/run/reprojected_images.h"

#include <system_error>

namespace trackedcam::app {

namespace fs = std::filesystem;

fs::path ReprojectedImage(const fs::path& logFolder, const std::string& photograph) {
  const std::string name = photograph.substr(photograph.find_last_of('\\') + 1);
  return logFolder / fs::u8path("Reproject_" + name);
}

void CreateReprojectedImageFolders(const fs::path& logFolder,
                                   const std::vector<std::string>& photographs) {
  for (const std::string& photograph : photographs) {
    try {
      fs::create_directories(ReprojectedImage(logFolder, photograph).parent_path());
    } catch (const std::system_error&) {
      // Nor can every name be a path on every system.
    }
  }
}

std::vector<fs::path> FindReprojectedImages(const fs::path& logFolder,
                                            const std::vector<std::string>& photographs) {
  std::vector<fs::path> images;
  for (const std::string& photograph : photographs) {
    const fs::path image = ReprojectedImage(logFolder, photograph);
    std::error_code ignored;
    if (fs::is_regular_file(image, ignored)) {
      images.push_back(image);
    }
  }
  return images;
}

}  // namespace trackedcam::app
