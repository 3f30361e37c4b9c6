#include "host/input/continued_data.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "crosscheck/statistics.h"
#include "host/findings/sentences.h"
#include "host/input/data_file.h"
#include "host/input/image_header.h"
#include "host/input/input_error.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

struct DataFile {
  std::string name;
  std::string content;
  std::string header;  // empty if it has none
  std::vector<DataRow> rows;
};

std::string FirstLine(const std::string& content) {
  return std::string(Trim(content.substr(0, content.find('\n'))));
}

DataFile ReadDataFile(const fs::path& file) {
  DataFile data = {file.u8string(), ReadDataContent(file), {}, {}};
  if (data.content.rfind(kByteOrderMark, 0) == 0) {
    data.content.erase(0, 3);
  }
  data.rows = ReadRows(data.content);
  const bool isSkipped = data.rows.empty() || data.rows.front().line > 1;
  if (isSkipped || FormOf(data.rows.front()).isHeader) {
    data.header = FirstLine(data.content);
    data.rows.erase(data.rows.begin(), data.rows.begin() + (isSkipped ? 0 : 1));
  }
  if (data.rows.empty()) {
    throw InputError(data.name + " has no rows");
  }
  return data;
}

[[noreturn]] void RefuseOther(const DataFile& first, const DataFile& other,
                              const std::string& reason) {
  throw InputError(other.name + " does not continue the shoot of " + first.name + ": " + reason);
}

std::size_t FieldsOf(const DataFile& data) {
  return SplitFields(data.rows.front().text, FormOf(data.rows.front()).separator).size();
}

// Median of both trackers.
double MetresApart(const DataFile& data) {
  std::vector<double> distances;
  for (const DataRow& row : data.rows) {
    const auto [camera, chart] = PosesIn(SplitFields(row.text));
    distances.push_back(
        std::hypot(camera[0] - chart[0], camera[1] - chart[1], camera[2] - chart[2]));
  }
  return crosscheck::Median(std::move(distances));
}

// Of the first photograph that can be read.
std::optional<PhotographHeader> HeaderIn(const DataFile& data, const fs::path& workingFolder) {
  for (const DataRow& row : data.rows) {
    if (!row.photograph.empty() && IsUtf8(row.photograph)) {
      const fs::path file = workingFolder / fs::u8path(row.photograph);
      std::error_code error;
      if (fs::is_regular_file(file, error)) {
        if (auto header = ReadPhotographHeader(file)) {
          return header;
        }
      }
    }
  }
  return std::nullopt;
}

void RequireSameSize(const DataFile& first, const DataFile& other, const fs::path& workingFolder) {
  const auto a = HeaderIn(first, workingFolder);
  const auto b = HeaderIn(other, workingFolder);
  const auto text = [](const PhotographHeader& header) {
    return std::to_string(header.width) + 'x' + std::to_string(header.height);
  };
  if (a && b && text(*a) != text(*b)) {
    RefuseOther(first, other,
                "its photographs are of " + text(*b) + " pixels, and not of " + text(*a) +
                    "; a lens is calibrated for one size");
  }
}

void RequireSameForm(const DataFile& first, const DataFile& other) {
  if (first.header != other.header) {
    const auto named = [](const std::string& header) {
      return header.empty() ? std::string("no header") : "the header \"" + header + '"';
    };
    RefuseOther(first, other, "it has " + named(other.header) + ", and not " + named(first.header));
  }
  if (FieldsOf(first) != FieldsOf(other)) {
    RefuseOther(first, other,
                "its rows have " + std::to_string(FieldsOf(other)) + " fields, and not " +
                    std::to_string(FieldsOf(first)));
  }
  constexpr double kOtherUnit = 20;  // an inch has 25.4 millimetres, a metre 39.4 inches
  const double ratio = MetresApart(other) / MetresApart(first);
  if (ratio > kOtherUnit || ratio < 1 / kOtherUnit) {
    RefuseOther(first, other,
                "its trackers are " + Fixed(ratio, ratio < 1 ? 3 : 0) +
                    " times as far apart, so its positions have another unit");
  }
}

// As one path each, however they are written.
std::set<std::string> PhotographsOf(const DataFile& data, const fs::path& workingFolder) {
  std::set<std::string> photographs;
  for (const DataRow& row : data.rows) {
    if (!row.photograph.empty() && IsUtf8(row.photograph)) {
      photographs.insert(
          (workingFolder / fs::u8path(row.photograph)).lexically_normal().u8string());
    }
  }
  return photographs;
}

void RequireOtherPhotographs(const DataFile& first, const DataFile& other,
                             const fs::path& workingFolder) {
  const std::set<std::string> known = PhotographsOf(first, workingFolder);
  std::vector<std::string> twice;
  for (const std::string& photograph : PhotographsOf(other, workingFolder)) {
    if (known.count(photograph) != 0) {
      twice.push_back(photograph);
    }
  }
  if (!twice.empty()) {
    RefuseOther(first, other, "both have " + List(twice, twice.size()));
  }
}

// The lines keep their numbers. A line that begins with T is not a row.
std::string WithoutHeader(const DataFile& data) {
  return data.header.empty() ? data.content : 'T' + data.content.substr(data.content.find('\n'));
}

}  // namespace

fs::path FolderOfData(const fs::path& data, const std::vector<fs::path>& moreData) {
  const fs::path folder = data.parent_path();
  for (const fs::path& other : moreData) {
    if (other.parent_path() != folder) {
      throw InputError(data.u8string() + " and " + other.u8string() +
                       " are in different folders: set the working folder, at which the relative "
                       "paths of photographs begin");
    }
  }
  return folder;
}

std::string ContinuedContent(const Inputs& inputs) {
  if (inputs.moreData.empty()) {
    return ReadDataContent(inputs.data);
  }
  std::vector<DataFile> files = {ReadDataFile(inputs.data)};
  std::string content = files.front().content;
  for (const fs::path& file : inputs.moreData) {
    DataFile other = ReadDataFile(file);
    RequireSameForm(files.front(), other);
    RequireSameSize(files.front(), other, inputs.workingFolder);
    for (const DataFile& earlier : files) {
      RequireOtherPhotographs(earlier, other, inputs.workingFolder);
    }
    content += (content.back() == '\n' ? "" : "\n") + WithoutHeader(other);
    files.push_back(std::move(other));
  }
  return content;
}

}  // namespace trackedcam::host
