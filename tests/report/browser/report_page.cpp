// Writes the page of a result file: report_page RESULT THUMBNAILS OUT
//
// THUMBNAILS is a folder with names.json, which says which file is of which photograph.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "report/page.h"

namespace {

namespace fs = std::filesystem;

std::string Bytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error(path.string() + " cannot be read");
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<trackedcam::report::Thumbnail> Thumbnails(const fs::path& folder) {
  std::vector<trackedcam::report::Thumbnail> thumbnails;
  const auto names = nlohmann::json::parse(Bytes(folder / "names.json"));
  for (const auto& [photograph, file] : names.items()) {
    thumbnails.push_back({photograph, Bytes(folder / file.get<std::string>())});
  }
  return thumbnails;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 4) {
      throw std::runtime_error("usage: report_page RESULT THUMBNAILS OUT");
    }
    const fs::path out = argv[3];
    std::ofstream(out, std::ios::binary)
        << trackedcam::report::Page(Bytes(argv[1]), Thumbnails(argv[2]), out.parent_path());
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "report_page: " << error.what() << '\n';
    return 1;
  }
}
