#include "host/input/data_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <optional>
#include <system_error>

#include "host/input/input_error.h"
#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using Fields = std::vector<std::string_view>;

std::optional<double> Parse(std::string_view trimmed) {
  const bool hasPlus = trimmed.size() > 1 && trimmed[0] == '+' && trimmed[1] != '-';
  return ParseNumber(hasPlus ? trimmed.substr(1) : trimmed);
}

// A hundred thousand rows are 30 MB.
constexpr std::uintmax_t kMostBytes = 256 << 20;
constexpr std::size_t kMostRows = 1000000;

struct Line {
  std::string text;
  bool isEnded;  // by a line feed; only then a carriage return is part of the end
};

std::vector<Line> SplitLines(const std::string& content) {
  std::vector<Line> lines;
  for (std::size_t begin = 0; begin < content.size();) {
    const std::size_t end = content.find('\n', begin);
    const bool isEnded = end != std::string::npos;
    lines.push_back({content.substr(begin, isEnded ? end - begin : end), isEnded});
    begin = isEnded ? end + 1 : content.size();
  }
  return lines;
}

// Every byte-order mark in use has two to four bytes.
void RemoveByteOrderMark(std::string& firstLine) {
  const std::size_t header = firstLine.find("Time,");
  if (header >= 2 && header <= 4) {
    firstLine.erase(0, header);
  }
}

std::string PhotographIn(const std::string& row) {
  const std::size_t comma = row.find(',');
  if (comma == std::string::npos) {
    return {};
  }
  return row.substr(comma + 1, row.find(',', comma + 1) - comma - 1);
}

void RequirePlainFile(const fs::path& data) {
  std::error_code error;
  if (!fs::exists(data, error)) {
    throw InputError("tracker data file not found: " + data.u8string());
  }
  if (!fs::is_regular_file(data, error)) {
    throw InputError(data.u8string() + " is not a regular file, expected the tracker data file");
  }
  if (fs::file_size(data, error) > kMostBytes) {
    throw InputError(data.u8string() + " is larger than " + std::to_string(kMostBytes >> 20) +
                     " MB, more than the tracker data of any shoot");
  }
}

// The beginnings of both kinds of spreadsheets that are in use.
void RequireText(const fs::path& data, const std::string& content) {
  constexpr std::array<std::string_view, 2> kSpreadsheets = {"PK\x03\x04", "\xD0\xCF\x11\xE0"};
  for (const std::string_view begin : kSpreadsheets) {
    if (content.compare(0, begin.size(), begin) == 0) {
      throw InputError(data.u8string() +
                       " is a spreadsheet, not text: save it as CSV (UTF-8), with commas between "
                       "the fields and decimal points");
    }
  }
}

// Checked before the lines are split, which takes many times the memory of the file.
void RequireFewLines(const fs::path& data, const std::string& content) {
  const auto lines = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
  if (lines > kMostRows) {
    throw InputError(data.u8string() + " has more than " + std::to_string(kMostRows) +
                     " rows, more than any shoot");
  }
}

constexpr std::size_t kNumbers = 14;  // after the path

// A decimal comma in most of the numbers adds as many fields.
constexpr std::size_t kFieldsWithDecimalCommas = 24;

char SeparatorOf(std::string_view row) {
  for (const char separator : {';', '\t', '|'}) {
    if (static_cast<std::size_t>(std::count(row.begin(), row.end(), separator)) >= kNumbers) {
      return separator;
    }
  }
  return ',';
}

bool IsNumber(std::string_view field) {
  return KindOf(field) == FieldKind::kNumber;
}

bool IsText(std::string_view field) {
  return KindOf(field) == FieldKind::kText;
}

bool IsQuoted(std::string_view field) {
  const std::size_t begin = field.find_first_not_of(" \t");
  return begin != std::string_view::npos && field[begin] == '"';
}

// "1,25"
bool IsDecimalCommaNumber(std::string_view field) {
  const std::size_t comma = field.find(',');
  return comma != std::string_view::npos && IsNumber(field.substr(0, comma)) &&
         IsNumber(field.substr(comma + 1));
}

bool HasDecimalCommas(const Fields& fields, char separator) {
  if (separator != ',') {
    return std::any_of(fields.begin(), fields.end(), IsDecimalCommaNumber);
  }
  return fields.size() >= kFieldsWithDecimalCommas &&
         std::none_of(fields.begin(), fields.end(), [](std::string_view field) {
           return IsNumber(field) && field.find('.') != std::string_view::npos;
         });
}

bool HasExtraColumn(const Fields& fields) {
  return fields.size() > kFields && IsNumber(fields[kPathField]) && IsText(fields[kPathField + 1]);
}

// A time of day has no letters.
bool HasPathFirst(const Fields& fields) {
  const auto isLetter = [](char character) {
    return std::isalpha(static_cast<unsigned char>(character)) != 0;
  };
  return fields.size() > kPathField && IsText(fields[0]) && IsNumber(fields[kPathField]) &&
         std::any_of(fields[0].begin(), fields[0].end(), isLetter);
}

bool HasNumberFrom(const Fields& fields, std::size_t first) {
  return fields.size() > first &&
         std::any_of(
             fields.begin() + static_cast<std::ptrdiff_t>(first), fields.end(),
             [](std::string_view field) { return IsNumber(field) || IsDecimalCommaNumber(field); });
}

// Titles from the third field on. A row whose numbers are nan has no titles.
bool IsHeader(const DataRow& row, const Fields& fields) {
  return row.line == 1 && fields.size() > kFirstPoseField && IsText(fields[kFirstPoseField]) &&
         !IsNumber(fields[0]) && !HasNumberFrom(fields, kFirstPoseField);
}

}  // namespace

std::string_view Trim(std::string_view text) {
  constexpr const char* kBlanks = " \t\r\v\f";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::vector<std::string_view> SplitFields(std::string_view row, char separator) {
  std::vector<std::string_view> fields;
  fields.reserve(kFields);
  for (;;) {
    const std::size_t end = row.find(separator);
    fields.push_back(row.substr(0, end));
    if (end == std::string_view::npos) {
      return fields;
    }
    row.remove_prefix(end + 1);
  }
}

FieldKind KindOf(std::string_view field) {
  const std::string_view text = Trim(field);
  if (text.empty()) {
    return FieldKind::kEmpty;
  }
  const auto number = Parse(text);
  if (!number) {
    return FieldKind::kText;
  }
  return std::isfinite(*number) ? FieldKind::kNumber : FieldKind::kNotFinite;
}

double NumberIn(std::string_view field) {
  return Parse(Trim(field)).value_or(0);
}

std::array<TrackerPose, 2> PosesIn(const std::vector<std::string_view>& fields) {
  std::array<TrackerPose, 2> poses = {};
  std::size_t field = kFirstPoseField;
  for (TrackerPose& pose : poses) {
    for (double& number : pose) {
      number = field < fields.size() ? NumberIn(fields[field]) : 0;
      ++field;
    }
  }
  return poses;
}

std::vector<DataRow> ReadRows(const std::string& content) {
  std::vector<DataRow> rows;
  std::size_t number = 0;
  for (Line& line : SplitLines(content)) {
    std::string& text = line.text;
    if (line.isEnded && !text.empty() && text.back() == '\r') {
      text.pop_back();
    }
    if (++number == 1) {
      RemoveByteOrderMark(text);
    }
    if (text.empty() || text.front() != 'T') {
      rows.push_back({number, text, PhotographIn(text)});
    }
  }
  return rows;
}

std::string ReadDataContent(const fs::path& data) {
  RequirePlainFile(data);
  try {
    std::string content = ReadFile(data);
    RequireText(data, content);
    RequireFewLines(data, content);
    return content;
  } catch (const InputError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw InputError(error.what());
  }
}

std::string WithPhotograph(const DataRow& row, const std::string& photograph) {
  const std::size_t begin = row.text.find(',');
  if (begin == std::string::npos) {
    return row.text;
  }
  const std::size_t end = row.text.find(',', begin + 1);
  const std::string rest = end == std::string::npos ? "" : row.text.substr(end);
  return row.text.substr(0, begin + 1) + photograph + rest;
}

RowForm FormOf(const DataRow& row) {
  RowForm form;
  form.separator = SeparatorOf(row.text);
  const Fields fields = SplitFields(row.text, form.separator);
  const auto isEmpty = [](std::string_view field) { return KindOf(field) == FieldKind::kEmpty; };
  form.isBlank = std::all_of(fields.begin(), fields.end(), isEmpty);
  form.isHeader = IsHeader(row, fields);
  form.hasQuotes = std::any_of(fields.begin(), fields.end(), IsQuoted);
  form.hasDecimalCommas = !form.hasQuotes && HasDecimalCommas(fields, form.separator);
  form.hasExtraColumn =
      form.separator == ',' && !form.hasQuotes && !form.hasDecimalCommas && HasExtraColumn(fields);
  form.hasPathFirst = form.separator == ',' && !form.hasQuotes && !form.isHeader &&
                      !form.hasDecimalCommas && HasPathFirst(fields);
  return form;
}

bool IsSkippedRow(std::string_view line) {
  if (line.empty() || line.front() != 'T') {
    return false;
  }
  const Fields fields = SplitFields(line, SeparatorOf(line));
  return fields.size() >= kFields && HasNumberFrom(fields, kFirstPoseField);
}

void RequireName(const std::string& photograph) {
  if (photograph.empty()) {
    throw InputError("the name of a photograph is empty");
  }
  if (photograph.find_first_of(std::string(",\r\n\0", 4)) != std::string::npos) {
    throw InputError("the name of the photograph " + photograph +
                     " contains a comma or a line ending, which a data file cannot hold");
  }
}

std::string DataText(const std::vector<RecordedRow>& rows) {
  std::string text = "Time,photograph,camera x,y,z,camera w,x,y,z,chart x,y,z,chart w,x,y,z\n";
  for (const RecordedRow& row : rows) {
    text += Shortest(row.timeSeconds) + ',' + row.photograph;
    for (const TrackerPose* pose : {&row.camera, &row.chart}) {
      for (const double number : *pose) {
        text += ',' + Shortest(number);
      }
    }
    text += '\n';
  }
  return text;
}

}  // namespace trackedcam::host
