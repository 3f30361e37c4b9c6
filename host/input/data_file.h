// The tracker data file: its rows as the library reads them, and the fields of a row.

#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace trackedcam::host {

struct DataRow {
  std::size_t line = 0;    // counted from 1
  std::string text;        // without the line ending
  std::string photograph;  // the second field as written; empty if there is none
};

/// The whole file as text.
/// @throws InputError if the file cannot be read, is not a regular file, is a spreadsheet, is far
///         larger than any shoot's or has more than a million lines.
std::string ReadDataContent(const std::filesystem::path& data);

/// The lines that the library takes for rows.
std::vector<DataRow> ReadRows(const std::string& content);

/// The row with another path in its second field.
std::string WithPhotograph(const DataRow& row, const std::string& photograph);

constexpr std::size_t kFields = 16;  // the library reads time, path and seven numbers per tracker
constexpr std::size_t kPathField = 1;
constexpr std::size_t kFirstPoseField = 2;

/// All fields, even if they are more or fewer than the library reads.
std::vector<std::string_view> SplitFields(std::string_view row, char separator = ',');

/// Without blanks around it.
std::string_view Trim(std::string_view text);

enum class FieldKind { kEmpty, kNumber, kNotFinite, kText };

/// Blanks around a number and a plus sign before it are ignored.
FieldKind KindOf(std::string_view field);

/// 0 for text, as the library reads it.
double NumberIn(std::string_view field);

/// Position x, y, z in metres, quaternion w, x, y, z.
using TrackerPose = std::array<double, 7>;

/// The pose of the camera's tracker, then of the chart's; a missing field reads as 0.
std::array<TrackerPose, 2> PosesIn(const std::vector<std::string_view>& fields);

/// How a row is written. The values of a row that the library cannot read are not checked.
struct RowForm {
  bool isBlank = false;
  bool isHeader = false;
  char separator = ',';
  bool hasQuotes = false;
  bool hasDecimalCommas = false;
  bool hasExtraColumn = false;  // before the photograph
  bool hasPathFirst = false;    // the photograph before the time, or without one

  /// The library finds each field where it expects it.
  bool IsPlain() const {
    return !isBlank && !isHeader && separator == ',' && !hasQuotes && !hasDecimalCommas &&
           !hasExtraColumn && !hasPathFirst;
  }
};

RowForm FormOf(const DataRow& row);

/// A row that the library skips because its time begins with T, such as T0.5.
bool IsSkippedRow(std::string_view line);

/// One photograph and both trackers at that moment, of a shoot that a host holds in memory.
struct RecordedRow {
  double timeSeconds = 0;
  std::string photograph;
  TrackerPose camera = {};  // of the tracker on the camera, in the axes and unit of the shoot
  TrackerPose chart = {};   // of the tracker on the chart
};

/// @throws InputError if the name is empty or contains a comma, a line ending or a zero byte, which
///         a data file cannot hold.
void RequireName(const std::string& photograph);

/// The rows as the text of a data file; every number in it reads back as the same one.
std::string DataText(const std::vector<RecordedRow>& rows);

}  // namespace trackedcam::host
