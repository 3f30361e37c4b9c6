#include "host/run/reprojected_images.h"

#include <algorithm>
#include <system_error>

#include "host/input/whole_picture.h"

namespace trackedcam::host {

namespace fs = std::filesystem;

fs::path ReprojectedImage(const fs::path& folder, const std::string& photograph) {
  const std::string name = photograph.substr(photograph.find_last_of('\\') + 1);
  return folder / fs::u8path("Reproject_" + name);
}

bool StaysInFolder(const std::string& photograph) {
  const fs::path image = ReprojectedImage({}, photograph);
  return std::find(image.begin(), image.end(), "..") == image.end();
}

void CreateReprojectedImageFolders(const fs::path& folder,
                                   const std::vector<std::string>& photographs) {
  for (const std::string& photograph : photographs) {
    try {
      fs::create_directories(ReprojectedImage(folder, photograph).parent_path());
    } catch (const std::system_error&) {
      // Nor can every name be a path on every system.
    }
  }
}

std::vector<fs::path> FindReprojectedImages(const fs::path& folder,
                                            const std::vector<std::string>& photographs) {
  std::vector<fs::path> images;
  for (const std::string& photograph : photographs) {
    const fs::path image = ReprojectedImage(folder, photograph);
    if (IsWholePicture(image)) {
      images.push_back(image);
    }
  }
  return images;
}

}  // namespace trackedcam::host
