#include "host/findings/row_words.h"

#include <algorithm>

namespace trackedcam::host {
namespace {

constexpr std::size_t kNamed = 3;
constexpr std::size_t kMostPhotographs = 100;  // in a finding's list
constexpr double kTooMany = 0.3;               // of all rows

std::string Joined(const std::vector<std::string>& names, std::size_t count) {
  // One more is shorter by its name than by "1 more".
  const std::size_t named = count <= kNamed + 1 ? count : kNamed;
  std::string text;
  for (std::size_t i = 0; i < named; ++i) {
    const bool isLast = i + 1 == count;
    text += (i == 0 ? "" : isLast ? " and " : ", ") + names[i];
  }
  return named == count ? text : text + " and " + std::to_string(count - named) + " more";
}

}  // namespace

std::string RowWords(const RowList& rows, std::size_t all) {
  if (rows.size() > 1 && rows.size() == all) {
    return "all " + std::to_string(all) + " rows";
  }
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < std::min(rows.size(), kNamed + 1); ++i) {
    lines.push_back(std::to_string(rows[i]->line));
  }
  return (rows.size() == 1 ? "row " : "rows ") + Joined(lines, rows.size());
}

std::string PhotographWords(const std::vector<std::string>& photographs, std::size_t all) {
  return photographs.size() > 1 && photographs.size() == all
             ? "all " + std::to_string(all) + " photographs"
             : Joined(photographs, photographs.size());
}

Severity SeverityOf(std::size_t some, std::size_t all) {
  return static_cast<double>(some) > kTooMany * static_cast<double>(all) ? Severity::kError
                                                                         : Severity::kWarning;
}

Severity SeverityOfDropped(std::size_t some, std::size_t all) {
  return SeverityOf(some, all) == Severity::kError ? Severity::kError : Severity::kNote;
}

Finding RowFinding(const FaultWords& words, const RowList& rows, std::size_t all) {
  Finding finding;
  finding.id = words.id;
  finding.severity = SeverityOf(rows.size(), all);
  finding.text = words.before + RowWords(rows, all) + words.after;
  finding.advice = words.advice;
  finding.numbers = {{"rows", static_cast<double>(rows.size())},
                     {"firstRow", static_cast<double>(rows.front()->line)}};
  for (const DataRow* row : rows) {
    if (!row->photograph.empty() && finding.photographs.size() < kMostPhotographs) {
      finding.photographs.push_back(row->photograph);
    }
  }
  return finding;
}

void SortFindings(std::vector<Finding>& findings) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return a.severity < b.severity;  // error, warning, note
  });
}

}  // namespace trackedcam::host
