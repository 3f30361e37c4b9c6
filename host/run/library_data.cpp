#include "host/run/library_data.h"

#include <algorithm>
#include <system_error>

#include "host/run/reprojected_images.h"
#include "host/text/file_text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

std::string AbsolutePath(const std::string& photograph, const fs::path& workingFolder) {
  std::error_code error;
  const fs::path path = workingFolder / fs::u8path(photograph);
  const fs::path canonical = fs::weakly_canonical(path, error);
  return (error ? path.lexically_normal() : canonical).u8string();
}

bool WorksIn(const fs::path& folder) {
  std::error_code error;
  return fs::equivalent(fs::current_path(), folder, error);
}

std::string NameForLibrary(const DataRow& row, const fs::path& workingFolder, bool worksThere) {
  const std::string& photograph = row.photograph;
  if (photograph.empty()) {
    return photograph;
  }
  try {
    const bool serves = fs::u8path(photograph).is_absolute() || worksThere;
    return serves && StaysInFolder(photograph) ? photograph
                                               : AbsolutePath(photograph, workingFolder);
  } catch (const std::exception&) {  // what is no path on this system names no photograph
    return photograph;
  }
}

}  // namespace

LibraryData PrepareData(const fs::path& data, const std::vector<DataRow>& rows,
                        const fs::path& workingFolder, const fs::path& runFolder) {
  LibraryData prepared = {data, {}};
  const bool worksThere = WorksIn(workingFolder);
  bool serves = rows == ReadDataFile(data);
  std::string copy = "Time,photograph,and both trackers\n";
  for (const DataRow& row : rows) {
    prepared.photographs.push_back(NameForLibrary(row, workingFolder, worksThere));
    serves = serves && prepared.photographs.back() == row.photograph;
    copy += WithPhotograph(row, prepared.photographs.back()) + '\n';
  }
  if (!serves) {
    prepared.file = runFolder / kConvertedData;
    WriteFile(prepared.file, copy);
  }
  return prepared;
}

}  // namespace trackedcam::host
