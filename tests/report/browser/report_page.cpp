// Writes the page of a result file: report_page RESULT THUMBNAILS OUT
//
// THUMBNAILS is a folder with 0.png, 1.png and so on: one for each entry of `photographs`.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "report/page.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

std::string Bytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error(path.string() + " cannot be read");
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<trackedcam::report::Thumbnail> Thumbnails(const Json& result, const fs::path& folder) {
  std::vector<trackedcam::report::Thumbnail> thumbnails;
  for (const Json& photograph : result.at("photographs")) {
    const std::string file = std::to_string(thumbnails.size()) + ".png";
    thumbnails.push_back({Bytes(folder / file), !photograph.at("reprojectedImage").is_null()});
  }
  return thumbnails;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 4) {
      throw std::runtime_error("usage: report_page RESULT THUMBNAILS OUT");
    }
    const Json result = Json::parse(Bytes(argv[1]));
    const fs::path out = argv[3];
    std::ofstream(out, std::ios::binary)
        << trackedcam::report::Page(result, Thumbnails(result, argv[2]), out.parent_path());
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "report_page: " << error.what() << '\n';
    return 1;
  }
}
