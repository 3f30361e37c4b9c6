#include "host/input/photograph_checks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/findings/row_words.h"
#include "host/input/data_file.h"
#include "host/input/image_header.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr int kLevelsUp = 3;
constexpr std::size_t kMostSubfolders = 100;

std::vector<fs::path> FoldersAround(const Inputs& inputs) {
  std::vector<fs::path> folders;
  for (fs::path folder : {inputs.data.parent_path(), inputs.workingFolder}) {
    for (int level = 0; level <= kLevelsUp && !folder.empty(); ++level) {
      folders.push_back(folder);
      folder = folder.parent_path();
    }
  }
  std::error_code error;
  fs::directory_iterator entry(inputs.data.parent_path(), error);
  for (std::size_t i = 0; !error && entry != fs::directory_iterator() && i < kMostSubfolders; ++i) {
    if (entry->is_directory(error)) {
      folders.push_back(entry->path());
    }
    entry.increment(error);
  }
  return folders;
}

// Rows of another system have its slashes.
std::string FileName(const std::string& photograph) {
  return photograph.substr(photograph.find_last_of("/\\") + 1);
}

// Empty where there is none.
fs::path FolderWith(const std::string& name, const std::vector<fs::path>& folders) {
  for (const fs::path& folder : folders) {
    std::error_code error;
    if (!name.empty() && fs::is_regular_file(folder / fs::u8path(name), error)) {
      return folder;
    }
  }
  return {};
}

using Size = std::array<std::uint64_t, 2>;  // width, height

constexpr std::uint64_t kMostPixels = 200000000;
constexpr std::uint64_t kLongestSide = 1 << 20;  // a longer one ends the decoder, and so the run

// Beyond, rows without a photograph are not given to the library: it says two lines of each.
constexpr std::size_t kMostMissing = 10000;
constexpr std::size_t kMostNamed = 100;
constexpr double kAspectTolerance = 0.01;

struct Picture {
  std::string photograph;
  PhotographHeader header;

  Size Stored() const { return {header.width, header.height}; }

  // Not every decoder turns a WebP picture, and this one does not.
  Size Decoded() const {
    const bool isTurned = header.IsRotated() && header.format != PhotographFormat::kWebp;
    return isTurned ? Size{header.height, header.width} : Stored();
  }
};

struct Sorted {
  Names missing, noFile, unreadable, unknown, otherFormat, huge;
  std::vector<Picture> pictures;
  std::size_t without = 0;  // rows that name no picture
  std::size_t all = 0;
};

std::string SizeText(const Size& size) {
  return std::to_string(size[0]) + " x " + std::to_string(size[1]);
}

bool IsHuge(const PhotographHeader& header) {
  return header.width > kMostPixels / header.height || header.width > kLongestSide ||
         header.height > kLongestSide;
}

bool HasBytes(const fs::path& file) {
  std::error_code error;
  return fs::file_size(file, error) > 0 && !error;
}

// A picture whose size is not known may be one of gigabytes. What is none, no decoder takes.
bool SortWithoutHeader(const fs::path& file, const std::string& name, Sorted& sorted) {
  switch (KindOfFile(file)) {
    case FileKind::kPhotograph:
      sorted.unreadable.push_back(name);
      return false;
    case FileKind::kOtherPicture:
      sorted.otherFormat.push_back(name);
      return false;
    case FileKind::kText:
      break;
  }
  sorted.unknown.push_back(name);
  return ++sorted.without <= kMostMissing;
}

// False for what the library must not be given.
bool Sort(const DataRow& row, const fs::path& workingFolder, Sorted& sorted) {
  if (!IsUtf8(row.photograph)) {
    return false;
  }
  const std::string& name = row.photograph;
  const fs::path file = workingFolder / fs::u8path(name);
  std::error_code error;
  const fs::file_type type = fs::status(file, error).type();
  if (type == fs::file_type::not_found) {
    if (FormOf(row).IsPlain()) {  // else the second field is no path
      sorted.missing.push_back(name);
    }
    return ++sorted.without <= kMostMissing;
  }
  if (type == fs::file_type::none || (type == fs::file_type::regular && !HasBytes(file))) {
    sorted.unreadable.push_back(name);
    return ++sorted.without <= kMostMissing;
  }
  if (type != fs::file_type::regular) {
    sorted.noFile.push_back(name);
    return false;
  }
  const auto header = ReadPhotographHeader(file);
  if (!header) {
    return SortWithoutHeader(file, name, sorted);
  }
  if (IsHuge(*header)) {
    sorted.huge.push_back(name + " (" + SizeText({header->width, header->height}) + ")");
    return false;
  }
  sorted.pictures.push_back({name, *header});
  return true;
}

Finding& Add(std::vector<Finding>& findings, const char* id, Severity severity,
             const std::string& text, const std::string& advice, const Names& photographs) {
  const auto count = static_cast<double>(photographs.size());
  const auto end =
      photographs.begin() + static_cast<std::ptrdiff_t>(std::min(photographs.size(), kMostNamed));
  return findings.emplace_back(Finding{
      id, severity, text, advice, {{"photographs", count}}, Names(photographs.begin(), end), ""});
}

void AddFiles(const Sorted& sorted, const Inputs& inputs, std::vector<Finding>& findings) {
  const auto words = [&](const Names& names) { return PhotographWords(names, sorted.all); };
  if (!sorted.noFile.empty()) {
    Add(findings, "notAFile", SeverityOfDropped(sorted.noFile.size(), sorted.all),
        "A pipe, a device or a folder stands where a photograph must, and is left out: " +
            words(sorted.noFile) + ".",
        "Name picture files in the second field.", sorted.noFile);
  }
  if (!sorted.huge.empty()) {
    Names names;
    for (const std::string& name : sorted.huge) {
      names.push_back(name.substr(0, name.rfind(" (")));
    }
    Add(findings, "hugePhotograph", SeverityOfDropped(sorted.huge.size(), sorted.all),
        "More than 200 megapixels are too many, and left out: " + words(sorted.huge) + ".",
        "Use the picture size of the video.", names);
  }
  if (!sorted.missing.empty()) {
    Add(findings, "missingPhotographs", SeverityOfDropped(sorted.missing.size(), sorted.all),
        "Photographs cannot be found: " + words(sorted.missing) + ".",
        AdviceOnMissing(sorted.missing.front(), inputs), sorted.missing);
  }
  if (!sorted.unreadable.empty()) {
    Add(findings, "unreadablePhotographs", SeverityOfDropped(sorted.unreadable.size(), sorted.all),
        "Photographs are empty or cannot be read: " + words(sorted.unreadable) + ".",
        "Copy them again.", sorted.unreadable);
  }
  if (!sorted.otherFormat.empty()) {
    Add(findings, "otherFormat", SeverityOfDropped(sorted.otherFormat.size(), sorted.all),
        "Pictures of a format that is not taken are left out: " + words(sorted.otherFormat) + ".",
        "Use JPEG, PNG, TIFF, BMP or WebP.", sorted.otherFormat);
  }
  if (!sorted.unknown.empty()) {
    Add(findings, "unknownFormat", Severity::kNote,
        "Files are no pictures of a known format, so their sizes are not checked: " +
            words(sorted.unknown) + ".",
        "Use JPEG, PNG, TIFF, BMP or WebP.", sorted.unknown);
  }
}

// The size that most have; of equals, the one that comes first.
template <class SizeOf>
Size MostCommon(const std::vector<Picture>& pictures, SizeOf sizeOf) {
  std::map<Size, std::size_t> counts;
  for (const Picture& picture : pictures) {
    ++counts[sizeOf(picture)];
  }
  const auto best = std::max_element(
      pictures.begin(), pictures.end(),
      [&](const Picture& a, const Picture& b) { return counts[sizeOf(a)] < counts[sizeOf(b)]; });
  return sizeOf(*best);
}

void AddSizes(const std::vector<Picture>& pictures, std::vector<Finding>& findings) {
  const Size common = MostCommon(pictures, std::mem_fn(&Picture::Stored));
  Names names;
  Names withSizes;
  for (const Picture& picture : pictures) {
    if (picture.Stored() != common) {
      names.push_back(picture.photograph);
      withSizes.push_back(picture.photograph + " (" + SizeText(picture.Stored()) + ")");
    }
  }
  if (!names.empty()) {
    Add(findings, "photographSizes", Severity::kError,
        "Photographs differ in size from the rest (" + SizeText(common) +
            " pixels): " + PhotographWords(withSizes, pictures.size() + 1) + ".",
        "Take them out, or photograph all in one format.", names);
  }
}

void AddOrientation(const std::vector<Picture>& pictures, std::vector<Finding>& findings) {
  Names turned;
  bool isMixed = false;
  for (const Picture& picture : pictures) {
    if (picture.header.orientation != 1) {
      turned.push_back(picture.photograph);
    }
    isMixed = isMixed || (picture.Stored() == pictures[0].Stored() &&
                          picture.Decoded() != pictures[0].Decoded());
  }
  if (turned.empty()) {
    return;
  }
  const std::string which = PhotographWords(turned, pictures.size());
  const std::string text =
      isMixed ? "An orientation tag turns some photographs and not the others, so their sizes "
                "differ: " +
                    which + "."
              : "An orientation tag makes decoders turn the pixels, so the result is not that of "
                "the camera: " +
                    which + ".";
  Add(findings, "orientationTag", isMixed ? Severity::kError : Severity::kWarning, text,
      "Remove the tags without turning the pixels, and switch off automatic rotation in the "
      "camera.",
      turned);
}

void AddAspect(const std::vector<Picture>& pictures, const std::array<double, 2>& sensorMm,
               std::vector<Finding>& findings) {
  const Size size = MostCommon(pictures, std::mem_fn(&Picture::Decoded));
  const auto [width, height] = sensorMm;
  const double aspect = static_cast<double>(size[0]) / static_cast<double>(size[1]);
  if (!(width > 0 && height > 0) || std::abs(aspect * height / width - 1) <= kAspectTolerance) {
    return;
  }
  const bool isWider = aspect > width / height;
  const auto rounded = [](double mm) { return Shortest(std::round(mm * 100) / 100); };
  const std::string part = isWider ? rounded(width) + 'x' + rounded(width / aspect)
                                   : rounded(height * aspect) + 'x' + rounded(height);
  Finding& finding =
      Add(findings, "aspect", Severity::kNote,
          "The pictures (" + SizeText(size) + " pixels) are of another shape than the sensor (" +
              rounded(width) + " x " + rounded(height) +
              " mm), so the focal length in millimetres is off.",
          "Give the part of the sensor that the picture uses: --sensor " + part +
              " if the pixels are square.",
          {});
  finding.numbers = {{"pictureAspect", aspect}, {"sensorAspect", width / height}};
}

}  // namespace

std::string AdviceOnMissing(const std::string& photograph, const Inputs& inputs) {
  const std::vector<fs::path> folders = FoldersAround(inputs);
  if (fs::u8path(photograph).is_relative()) {
    const fs::path begin = FolderWith(photograph, folders);
    if (!begin.empty()) {
      return "Say --working-folder " + begin.u8string() + ": " + photograph + " is there.";
    }
  }
  const std::string name = FileName(photograph);
  const fs::path folder = FolderWith(name, folders);
  if (!folder.empty()) {
    return name + " lies in " + folder.u8string() +
           ": correct the paths in the second field, or leave the names only and say "
           "--working-folder.";
  }
  return "Put the photographs where the data file says, or correct its second field.";
}

PhotographChecks CheckPhotographs(const std::vector<DataRow>& rows, const Inputs& inputs) {
  PhotographChecks checks;
  Sorted sorted;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].photograph.empty()) {
      if (++sorted.without > kMostMissing) {
        checks.leaveOut.push_back(i);
      }
      continue;
    }
    ++sorted.all;
    if (!Sort(rows[i], inputs.workingFolder, sorted)) {
      checks.leaveOut.push_back(i);
    }
  }
  AddFiles(sorted, inputs, checks.findings);
  if (!sorted.pictures.empty()) {
    AddSizes(sorted.pictures, checks.findings);
    AddOrientation(sorted.pictures, checks.findings);
    AddAspect(sorted.pictures, inputs.sensorMm, checks.findings);
  }
  SortFindings(checks.findings);
  return checks;
}

}  // namespace trackedcam::host
