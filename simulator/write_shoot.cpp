#include "simulator/write_shoot.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>

#include "simulator/config_text.h"
#include "simulator/photograph_renderer.h"
#include "simulator/tracker_data_text.h"
#include "simulator/truth_text.h"

namespace trackedcam::simulator {
namespace {

namespace fs = std::filesystem;

// Binary, so that line ends stay as they are.
void WriteFile(const fs::path& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary);
  file << content;
  file.close();
  if (!file) {
    throw std::runtime_error("Cannot write " + path.u8string() +
                             ": check the folder's permissions and the space on the disk.");
  }
}

// Encoded in memory: the image library cannot open every path.
std::string Jpeg(const cv::Mat& picture, int quality) {
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", picture, bytes, {cv::IMWRITE_JPEG_QUALITY, quality});
  return {bytes.begin(), bytes.end()};
}

void WritePhotograph(const Shoot& shoot, const PhotographRenderer& renderer, int index,
                     const fs::path& folder) {
  const Photograph& photograph = shoot.photographs[index];
  const fs::path path = folder / fs::u8path(photograph.path);
  switch (photograph.flaw) {
    case Flaw::kMissing:
      fs::remove(path);
      break;
    case Flaw::kNotAnImage:
      WriteFile(path, "This file has the name of a photograph but is none.\n");
      break;
    default:
      WriteFile(path, Jpeg(renderer.Render(index), shoot.options.jpegQuality));
  }
}

}  // namespace

void WriteShoot(const Shoot& shoot, const fs::path& folder,
                const std::function<void(int done, int all)>& progress) {
  fs::create_directories(folder / "photos");
  // By these two a folder is known as a simulated shoot, also when the rest could not be written.
  WriteFile(folder / "truth.json", TruthText(shoot));
  WriteFile(folder / "shoot.toml", ConfigText(shoot));
  WriteFile(folder / "tracker_data.csv", TrackerDataText(shoot));

  const PhotographRenderer renderer(shoot);
  const int all = static_cast<int>(shoot.photographs.size());
  for (int i = 0; i < all; ++i) {
    WritePhotograph(shoot, renderer, i, folder);
    if (progress) {
      progress(i + 1, all);
    }
  }
}

}  // namespace trackedcam::simulator
