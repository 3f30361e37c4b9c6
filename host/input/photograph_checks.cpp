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

#include "host/input/data_file.h"
#include "host/input/image_header.h"
#include "host/input/photograph_file.h"
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

// Data files of another system have its slashes.
std::string FileName(const std::string& photograph) {
  return photograph.substr(photograph.find_last_of("/\\") + 1);
}

bool IsIn(const fs::path& folder, const std::string& name) {
  std::error_code error;
  return !name.empty() && fs::is_regular_file(folder / fs::u8path(name), error);
}

// Empty if there is none.
fs::path FolderWith(const std::string& name, const std::vector<fs::path>& folders) {
  for (const fs::path& folder : folders) {
    if (IsIn(folder, name)) {
      return folder;
    }
  }
  return {};
}

// Further rows without a photograph are not given to the library: it logs two lines for each.
constexpr std::size_t kMostMissing = 10000;
constexpr double kAspectTolerance = 0.01;

struct Image {
  std::string photograph;
  PhotographHeader header;

  ImageSize Stored() const { return {header.width, header.height}; }

  // Not every decoder rotates a WebP image, and this one does not.
  ImageSize Decoded() const {
    const bool isRotated = header.IsRotated() && header.format != PhotographFormat::kWebp;
    return isRotated ? ImageSize{header.height, header.width} : Stored();
  }
};

struct Sorted {
  Names missing, noFile, unreadable, otherFormat, costly;
  std::vector<Image> huge;
  std::vector<Image> images;
  std::size_t without = 0;  // rows without an image
  std::size_t all = 0;
};

bool HasBytes(const fs::path& file) {
  std::error_code error;
  return fs::file_size(file, error) > 0 && !error;
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
    if (FormOf(row).IsPlain()) {  // otherwise the second field is not a path
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
  if (!header) {  // an image whose size is not known may be one of gigabytes
    (BeginsAsPhotograph(file) ? sorted.unreadable : sorted.otherFormat).push_back(name);
    return false;
  }
  if (IsHuge(*header)) {
    sorted.huge.push_back({name, *header});
    return false;
  }
  if (IsCostly(file, *header)) {
    sorted.costly.push_back(name);
    return false;
  }
  sorted.images.push_back({name, *header});
  return true;
}

// Adds a finding if there are such photographs.
template <class Kind>
void Add(std::vector<Finding>& findings, Severity severity, Kind kind, const Names& photographs) {
  if (!photographs.empty()) {
    const auto named = std::min(photographs.size(), kMostNamedPhotographs);
    kind.count = photographs.size();
    findings.push_back(
        {severity, std::move(kind),
         Names(photographs.begin(), photographs.begin() + static_cast<std::ptrdiff_t>(named))});
  }
}

Names NamesOf(const std::vector<Image>& images) {
  Names names;
  names.reserve(images.size());
  for (const Image& image : images) {
    names.push_back(image.photograph);
  }
  return names;
}

std::vector<ImageSize> StoredSizes(const std::vector<Image>& images) {
  std::vector<ImageSize> sizes;
  sizes.reserve(images.size());
  for (const Image& image : images) {
    sizes.push_back(image.Stored());
  }
  return sizes;
}

// Whether the first of them is there under a path that is written a little differently.
bool FindCause(const std::string& photograph, const fs::path& workingFolder,
               MissingPhotographs& missing) {
  using Cause = MissingPhotographs::Cause;
  const std::string trimmed(Trim(photograph));
  std::string slashes = trimmed;
  std::replace(slashes.begin(), slashes.end(), '\\', '/');
  for (const auto& [path, cause] :
       {std::pair(trimmed, Cause::kSpaces), std::pair(slashes, Cause::kBackslashes)}) {
    if (path != photograph && IsIn(workingFolder, path)) {
      missing.rightPath = path;
      missing.cause = cause;
      return true;
    }
  }
  return false;
}

// Where the first of them is.
MissingPhotographs SearchFor(const Names& missing, const Inputs& inputs) {
  MissingPhotographs found;
  const std::string& photograph = missing.front();
  if (FindCause(photograph, inputs.workingFolder, found)) {
    return found;
  }
  const std::vector<fs::path> folders = FoldersAround(inputs);
  if (fs::u8path(photograph).is_relative()) {
    found.folder = FolderWith(photograph, folders).u8string();
    found.nameInFolder = photograph;
    found.isWorkingFolder = !found.folder.empty();
  }
  if (found.folder.empty()) {
    found.nameInFolder = FileName(photograph);
    found.folder = FolderWith(found.nameInFolder, folders).u8string();
  }
  return found;
}

void AddFiles(const Sorted& sorted, const Inputs& inputs, std::vector<Finding>& findings) {
  const auto severity = [&](const auto& some) {
    return SeverityOfLeftOut(some.size(), sorted.all);
  };
  const auto add = [&](PhotographFault::Kind kind, const Names& names, Severity how) {
    Add(findings, how, PhotographFault{kind, 0, sorted.all}, names);
  };
  using Kind = PhotographFault::Kind;
  add(Kind::kNotAFile, sorted.noFile, severity(sorted.noFile));
  Add(findings, severity(sorted.huge), HugePhotographs{StoredSizes(sorted.huge), 0, sorted.all},
      NamesOf(sorted.huge));
  add(Kind::kCostly, sorted.costly, severity(sorted.costly));
  if (!sorted.missing.empty()) {
    MissingPhotographs missing = SearchFor(sorted.missing, inputs);
    missing.all = sorted.all;
    Add(findings, severity(sorted.missing), std::move(missing), sorted.missing);
  }
  add(Kind::kUnreadable, sorted.unreadable, severity(sorted.unreadable));
  add(Kind::kOtherFormat, sorted.otherFormat, severity(sorted.otherFormat));
}

// The size that most have; if several are equally common, the one that comes first.
template <class SizeOf>
ImageSize MostCommon(const std::vector<Image>& images, SizeOf sizeOf) {
  std::map<ImageSize, std::size_t> counts;
  for (const Image& image : images) {
    ++counts[sizeOf(image)];
  }
  const auto best = std::max_element(
      images.begin(), images.end(),
      [&](const Image& a, const Image& b) { return counts[sizeOf(a)] < counts[sizeOf(b)]; });
  return sizeOf(*best);
}

void AddSizes(const std::vector<Image>& images, std::vector<Finding>& findings) {
  const ImageSize common = MostCommon(images, std::mem_fn(&Image::Stored));
  std::vector<Image> others;
  std::copy_if(images.begin(), images.end(), std::back_inserter(others),
               [&](const Image& image) { return image.Stored() != common; });
  Add(findings, Severity::kError, PhotographSizes{common, StoredSizes(others), 0}, NamesOf(others));
}

void AddOrientation(const std::vector<Image>& images, std::vector<Finding>& findings) {
  Names rotated;
  bool isMixed = false;
  for (const Image& image : images) {
    if (image.header.orientation != 1) {
      rotated.push_back(image.photograph);
    }
    isMixed =
        isMixed || (image.Stored() == images[0].Stored() && image.Decoded() != images[0].Decoded());
  }
  Add(findings, isMixed ? Severity::kError : Severity::kWarning,
      OrientationTag{isMixed, 0, images.size()}, rotated);
}

void AddAspect(const std::vector<Image>& images, const std::array<double, 2>& sensorMm,
               std::vector<Finding>& findings) {
  const ImageSize size = MostCommon(images, std::mem_fn(&Image::Decoded));
  const auto [width, height] = sensorMm;
  const double aspect = static_cast<double>(size[0]) / static_cast<double>(size[1]);
  if (width > 0 && height > 0 && std::abs(aspect * height / width - 1) > kAspectTolerance) {
    findings.push_back({Severity::kNote, Aspect{size, sensorMm}, {}});
  }
}

}  // namespace

PhotographChecks CheckPhotographs(const std::vector<DataRow>& rows, const Inputs& inputs,
                                  const std::vector<std::size_t>& excluded) {
  PhotographChecks checks;
  Sorted sorted;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (std::binary_search(excluded.begin(), excluded.end(), i)) {
      continue;
    }
    const std::size_t before = sorted.without;
    const bool isNamed = !rows[i].photograph.empty();
    sorted.all += isNamed ? 1 : 0;
    const bool isTaken =
        isNamed ? Sort(rows[i], inputs.workingFolder, sorted) : ++sorted.without <= kMostMissing;
    if (!isTaken) {
      checks.leaveOut.push_back(i);
    }
    if (sorted.without > std::max(before, kMostMissing)) {
      checks.unlisted.push_back(i);
    }
  }
  AddFiles(sorted, inputs, checks.findings);
  if (!sorted.images.empty()) {
    AddSizes(sorted.images, checks.findings);
    AddOrientation(sorted.images, checks.findings);
    AddAspect(sorted.images, inputs.sensorMm, checks.findings);
  }
  SortFindings(checks.findings);
  return checks;
}

}  // namespace trackedcam::host
