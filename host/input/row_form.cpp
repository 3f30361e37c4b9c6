#include "host/input/row_form.h"

#include <algorithm>

#include "host/input/data_fields.h"

namespace trackedcam::host {
namespace {

using Fields = std::vector<std::string_view>;

constexpr std::size_t kNumbers = 14;  // after the path

// A comma for most of the numbers; as many columns as a recorder adds have none of their own.
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

bool HasNumberFrom(const Fields& fields, std::size_t first) {
  return fields.size() > first &&
         std::any_of(
             fields.begin() + static_cast<std::ptrdiff_t>(first), fields.end(),
             [](std::string_view field) { return IsNumber(field) || IsDecimalCommaNumber(field); });
}

// Titles from the third field on; a row of lost numbers has none.
bool IsHeader(const DataRow& row, const Fields& fields) {
  return row.line == 1 && fields.size() > kFirstPoseField && IsText(fields[kFirstPoseField]) &&
         !IsNumber(fields[0]) && !HasNumberFrom(fields, kFirstPoseField);
}

}  // namespace

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
  return form;
}

bool IsSkippedRow(std::string_view line) {
  if (line.empty() || line.front() != 'T') {
    return false;
  }
  const Fields fields = SplitFields(line, SeparatorOf(line));
  return fields.size() >= kFields && HasNumberFrom(fields, kFirstPoseField);
}

}  // namespace trackedcam::host
