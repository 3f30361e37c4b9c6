// A row of the tracker data file, field by field.

#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace trackedcam::host {

constexpr std::size_t kFields = 16;  // that the library reads: time, path, twice seven numbers
constexpr std::size_t kPathField = 1;
constexpr std::size_t kFirstPoseField = 2;

/// All fields, be they more or fewer than the library reads.
std::vector<std::string_view> SplitFields(std::string_view row, char separator = ',');

enum class FieldKind { kEmpty, kNumber, kNotFinite, kText };

/// Blanks around a number and a plus sign before it do not count.
FieldKind KindOf(std::string_view field);

/// 0 for what is no number, as the library takes it.
double NumberIn(std::string_view field);

/// Position x, y, z in metres, quaternion w, x, y, z.
using TrackerPose = std::array<double, 7>;

/// That of the camera's tracker, then that of the chart's; a field that is missing reads as 0.
std::array<TrackerPose, 2> PosesIn(const std::vector<std::string_view>& fields);

// The tracker data file as the library reads it: which rows, and which photographs.

struct DataRow {
  std::size_t line = 0;    // counted from 1
  std::string text;        // without the line's end
  std::string photograph;  // the second field as written; empty where there is none
};

/// The lines that the library takes for rows.
std::vector<DataRow> ReadRows(const std::string& content);

/// The whole file.
/// @throws InputError when the file cannot be read, is none, is far larger than any shoot's or has
///         more than a million lines.
std::string ReadDataContent(const std::filesystem::path& data);

/// The row with another path in its second field.
std::string WithPhotograph(const DataRow& row, const std::string& photograph);

// How a row is written: one that is written otherwise than the library reads has no figure to
// check.

struct RowForm {
  bool isBlank = false;
  bool isHeader = false;
  char separator = ',';
  bool hasQuotes = false;
  bool hasDecimalCommas = false;
  bool hasExtraColumn = false;  // before the photograph

  /// The library finds each field where it looks for it.
  bool IsPlain() const {
    return !isBlank && !isHeader && separator == ',' && !hasQuotes && !hasDecimalCommas &&
           !hasExtraColumn;
  }
};

RowForm FormOf(const DataRow& row);

/// A row but for its first letter, as a time such as T0.5 makes it.
bool IsSkippedRow(std::string_view line);

// A shoot that a host holds in memory, as a data file.

/// One photograph and both trackers at that moment, in whichever axes and unit the shoot is.
struct RecordedRow {
  double timeSeconds = 0;
  std::string photograph;
  TrackerPose camera = {};  // of the tracker on the camera
  TrackerPose chart = {};   // of the tracker on the chart
};

/// @throws InputError for a name that cannot stand in a data file: one that is empty or holds a
///         comma, a line's end or a zero.
void RequireName(const std::string& photograph);

/// The content of a data file; every number in it reads back as the same one.
std::string DataText(const std::vector<RecordedRow>& rows);

}  // namespace trackedcam::host
