#include "host/input/data_checks.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "host/input/data_fields.h"
#include "host/input/input_error.h"
#include "host/input/pose_checks.h"
#include "host/input/row_form.h"
#include "host/input/row_words.h"
#include "host/text/utf8.h"

namespace trackedcam::host {
namespace {

// With fewer the library gives up; the same photograph twice it counts twice.
constexpr std::size_t kLeastPhotographs = 12;

// The rows of each fault; one row may have several.
struct FaultyRows {
  RowList blank, header, semicolons, tabs, bars, quotes, decimalCommas, extraColumn;
  RowList pathEncoding, missing, notFinite, tooLarge, text, repeated;
  // Where the first of each stands: " (field 5 of row 4, photos/a.jpg)".
  std::string firstNotFinite, firstTooLarge, firstText;
};

bool IsUtf16(std::string_view content) {
  const std::string_view begin = content.substr(0, 4096);
  const auto zeros = static_cast<std::size_t>(std::count(begin.begin(), begin.end(), '\0'));
  return begin.size() >= 4 && zeros * 4 >= begin.size();
}

template <class Has>
std::vector<DataRow> LinesThat(const std::string& content, Has has) {
  std::vector<DataRow> lines;
  std::size_t number = 0;
  for (const std::string_view line : SplitFields(content, '\n')) {
    ++number;
    if (has(line)) {
      lines.push_back({number, std::string(line), ""});
    }
  }
  return lines;
}

RowList ListOf(const std::vector<DataRow>& rows) {
  RowList list;
  for (const DataRow& row : rows) {
    list.push_back(&row);
  }
  return list;
}

void SortByForm(const DataRow& row, const RowForm& form, FaultyRows& faulty) {
  const auto add = [&](bool has, RowList& rows) {
    if (has) {
      rows.push_back(&row);
    }
  };
  add(form.separator == ';', faulty.semicolons);
  add(form.separator == '\t', faulty.tabs);
  add(form.separator == '|', faulty.bars);
  add(form.hasQuotes, faulty.quotes);
  add(form.hasDecimalCommas, faulty.decimalCommas);
  add(form.hasExtraColumn, faulty.extraColumn);
}

// The time is only echoed, so it may be anything.
bool HasMissingFields(const std::vector<std::string_view>& fields) {
  const auto isEmpty = [](std::string_view field) { return KindOf(field) == FieldKind::kEmpty; };
  return fields.size() < kFields ||
         std::any_of(fields.begin() + kPathField, fields.begin() + kFields, isEmpty);
}

// Metres, millimetres, or a part of a quaternion.
bool IsTooLarge(double figure) {
  constexpr double kLargest = 1e9;
  return figure > kLargest || figure < -kLargest;
}

std::string Place(const DataRow& row, std::size_t field) {
  return " (field " + std::to_string(field + 1) + " of row " + std::to_string(row.line) + ", " +
         row.photograph + ')';
}

// True when every figure of the poses is a number.
bool SortByFields(const DataRow& row, FaultyRows& faulty) {
  const auto fields = SplitFields(row.text);
  bool isNumeric = true;
  const auto add = [&](RowList& rows) {
    isNumeric = false;
    if (rows.empty() || rows.back() != &row) {
      rows.push_back(&row);
    }
  };
  const auto addAt = [&](std::size_t field, RowList& rows, std::string& first) {
    first = rows.empty() ? Place(row, field) : first;
    add(rows);
  };
  if (HasMissingFields(fields)) {
    add(faulty.missing);
  }
  for (std::size_t i = kFirstPoseField; i < std::min(kFields, fields.size()); ++i) {
    const FieldKind kind = KindOf(fields[i]);
    if (kind == FieldKind::kNotFinite) {
      addAt(i, faulty.notFinite, faulty.firstNotFinite);
    } else if (kind == FieldKind::kText) {
      addAt(i, faulty.text, faulty.firstText);
    } else if (IsTooLarge(NumberIn(fields[i]))) {
      addAt(i, faulty.tooLarge, faulty.firstTooLarge);
    }
  }
  return isNumeric;
}

void AddForms(const FaultyRows& faulty, std::size_t all, std::vector<Finding>& findings) {
  const auto add = [&](const RowList& rows, const FaultWords& words) {
    if (!rows.empty()) {
      findings.push_back(RowFinding(words, rows, all));
    }
  };
  constexpr const char* kSave = "Save the file with commas between the fields.";
  add(faulty.semicolons, {"separator", "Semicolons stand between the fields in ",
                          ", not commas, so no field is found.", kSave});
  add(faulty.tabs, {"separator", "Tabs stand between the fields in ",
                    ", not commas, so no field is found.", kSave});
  add(faulty.bars, {"separator", "Bars stand between the fields in ",
                    ", not commas, so no field is found.", kSave});
  add(faulty.decimalCommas,
      {"decimalComma", "Numbers have a decimal comma in ", ", and a comma ends the field.",
       "Save the file with decimal points: 1.25, not 1,25."});
  add(faulty.quotes, {"quotedFields", "Fields stand in quotes in ",
                      "; a number in quotes reads as 0, and a path in quotes names no photograph.",
                      "Save the file without quotes."});
  add(faulty.extraColumn,
      {"extraColumn", "A column too many stands before the photograph in ",
       ", so every number is read from the wrong field.",
       "Remove it: a row is the time, the photograph, then seven numbers for each tracker."});
}

void AddFields(const FaultyRows& faulty, std::size_t all, std::vector<Finding>& findings) {
  const auto add = [&](const RowList& rows, const FaultWords& words) -> Finding* {
    return rows.empty() ? nullptr : &findings.emplace_back(RowFinding(words, rows, all));
  };
  add(faulty.pathEncoding,
      {"pathEncoding", "The path of the photograph is not UTF-8 in ", ", so it cannot be opened.",
       "Save the file as UTF-8, or give the photographs names of plain letters."});
  const auto addSpoiling = [&](const char* id, const char* before, const RowList& rows,
                               const std::string& first) {
    const std::string after = first + "; one such row can spoil the whole result.";
    if (Finding* finding =
            add(rows, {id, before, after.c_str(),
                       "Take these rows out of the file: the tracker gave no pose."})) {
      finding->severity = Severity::kError;
    }
  };
  addSpoiling("noNumber", "A figure is nan or infinite in ", faulty.notFinite,
              faulty.firstNotFinite);
  addSpoiling("tooLarge", "A figure is far larger than any pose has in ", faulty.tooLarge,
              faulty.firstTooLarge);
  const std::string afterText = faulty.firstText + ", which reads as 0 or in part.";
  add(faulty.text, {"noNumber", "Text stands where a number must in ", afterText.c_str(),
                    "Write plain numbers, such as -1.25 or 1.5e-3, or take these rows out."});
  add(faulty.missing, {"missingFields", "Fields are missing or empty in ", "; each reads as 0.",
                       "A row has 16 fields: time, photograph, then x, y, z, qw, qx, qy, qz of the "
                       "camera's tracker and of the chart's."});
}

void AddNotes(const FaultyRows& faulty, std::vector<Finding>& findings) {
  const auto add = [&](const RowList& rows, const FaultWords& words) {
    if (!rows.empty()) {
      findings.push_back(RowFinding(words, rows, 0));
      findings.back().severity = Severity::kNote;
    }
  };
  add(faulty.blank,
      {"blankLines", "There is nothing in ", "; a blank line counts as a row without a photograph.",
       "Delete the blank lines."});
  add(faulty.header, {"header", "The header in ",
                      " does not begin with \"Time,\", so it counts as a row without a photograph.",
                      "Let the first line begin with \"Time,\"."});
}

void AddRepeated(const RowList& repeated, std::size_t different, std::size_t all,
                 std::vector<Finding>& findings) {
  if (repeated.empty()) {
    return;
  }
  Finding finding =
      RowFinding({"repeatedRows", "A photograph that an earlier row names is named again in ",
                  ", and counts each time.", "Keep one row for each photograph."},
                 repeated, all);
  const bool areTooFew = different < kLeastPhotographs && all >= kLeastPhotographs;
  finding.severity = areTooFew ? Severity::kError : Severity::kWarning;
  finding.numbers.emplace_back("different", static_cast<double>(different));
  findings.push_back(finding);
}

// What the rows themselves cannot tell: lines that are skipped, and text of another encoding.
void AddLines(const std::string& content, const FaultyRows& faulty, std::size_t rows,
              std::vector<Finding>& findings) {
  const std::vector<DataRow> skipped = LinesThat(content, IsSkippedRow);
  if (!skipped.empty()) {
    findings.push_back(
        RowFinding({"timesBeginWithT", "The time begins with T in ",
                    ", and such a line is skipped.", "Write times that begin with a digit."},
                   ListOf(skipped), rows + skipped.size()));
  }
  if (faulty.pathEncoding.empty() && !IsUtf8(content)) {
    const auto odd = LinesThat(content, [](std::string_view line) { return !IsUtf8(line); });
    Finding finding = RowFinding({"encoding", "There are letters that are not UTF-8 in ",
                                  ", but in no path of a photograph.", "Save the file as UTF-8."},
                                 ListOf(odd), 0);
    finding.severity = Severity::kNote;
    findings.push_back(finding);
  }
}

}  // namespace

std::vector<Finding> CheckData(const std::string& content, const std::vector<DataRow>& rows) {
  if (IsUtf16(content)) {
    Finding finding;
    finding.id = "encoding";
    finding.severity = Severity::kError;
    finding.text = "The data file is UTF-16 text, so no row of it can be read.";
    finding.advice = "Save it as UTF-8, with commas between the fields.";
    return {finding};
  }
  FaultyRows faulty;
  std::vector<PoseRow> poses;
  std::unordered_set<std::string_view> photographs;
  std::size_t all = 0;
  for (const DataRow& row : rows) {
    const RowForm form = FormOf(row);
    if (form.isBlank || form.isHeader) {
      (form.isBlank ? faulty.blank : faulty.header).push_back(&row);
      continue;
    }
    ++all;
    SortByForm(row, form, faulty);
    if (!form.IsPlain()) {
      continue;
    }
    if (!IsUtf8(row.photograph)) {
      faulty.pathEncoding.push_back(&row);
    }
    if (!row.photograph.empty() && !photographs.insert(row.photograph).second) {
      faulty.repeated.push_back(&row);
    }
    if (SortByFields(row, faulty)) {
      poses.push_back({&row, PosesIn(SplitFields(row.text))});
    }
  }
  std::vector<Finding> findings;
  AddForms(faulty, all, findings);
  AddLines(content, faulty, all, findings);
  AddFields(faulty, all, findings);
  for (Finding& finding : CheckPoses(poses)) {
    findings.push_back(std::move(finding));
  }
  AddRepeated(faulty.repeated, photographs.size(), all, findings);
  AddNotes(faulty, findings);
  SortFindings(findings);
  return findings;
}

void RequireData(const std::filesystem::path& data) {
  const std::string content = ReadDataContent(data);
  const std::vector<DataRow> rows = ReadRows(content);
  if (rows.empty()) {
    const std::vector<Finding> findings = CheckData(content, rows);
    if (!findings.empty()) {
      throw InputError(findings.front().text + ' ' + findings.front().advice);
    }
  }
  RequireRows(data, rows);
}

}  // namespace trackedcam::host
