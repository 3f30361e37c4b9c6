#include "host/input/shoot_data.h"

#include <algorithm>
#include <utility>

#include "host/findings/finding_text.h"
#include "host/input/continued_data.h"
#include "host/input/data_checks.h"
#include "host/input/excluded.h"
#include "host/input/input_error.h"

namespace trackedcam::host {
namespace {

std::string Sentence(const Finding& finding) {
  return Text(finding) + ' ' + Advice(finding);
}

// If no photograph can be read from the rows, that is the error, and not the name.
std::vector<std::size_t> Excluded(const std::string& content, const std::vector<DataRow>& rows,
                                  const std::vector<std::string>& exclude) {
  std::vector<std::string> photographs;
  photographs.reserve(rows.size());
  for (const DataRow& row : rows) {
    photographs.push_back(row.photograph);
  }
  try {
    return FindExcluded(photographs, exclude);
  } catch (const InputError&) {
    const std::vector<Finding> findings = CheckData(content, rows).findings;
    if (!findings.empty() && findings.front().severity == Severity::kError) {
      throw InputError(Sentence(findings.front()));
    }
    throw;
  }
}

ShootData ShootDataOf(const std::string& content, const std::filesystem::path& file,
                      const TrackerFrame& frame, const std::vector<std::string>& exclude) {
  ShootData shoot;
  shoot.rows = InReportedAxes(ReadRows(content), frame);
  shoot.excluded = Excluded(content, shoot.rows, exclude);
  std::vector<DataRow> checked;
  std::vector<std::size_t> indices;  // of the checked ones among all
  for (std::size_t i = 0; i < shoot.rows.size(); ++i) {
    if (!std::binary_search(shoot.excluded.begin(), shoot.excluded.end(), i)) {
      checked.push_back(shoot.rows[i]);
      indices.push_back(i);
    }
  }
  DataChecks checks = CheckData(content, checked);
  shoot.findings = std::move(checks.findings);
  for (const std::size_t index : checks.leaveOut) {
    shoot.leaveOut.push_back(indices[index]);
  }
  if (shoot.rows.empty()) {
    throw InputError(shoot.findings.empty()
                         ? file.u8string() +
                               " has no rows: record one row of tracker data for each photograph"
                         : Sentence(shoot.findings.front()));
  }
  return shoot;
}

}  // namespace

ShootData ReadShootData(const std::filesystem::path& file, const TrackerFrame& frame,
                        const std::vector<std::string>& exclude) {
  return ShootDataOf(ReadDataContent(file), file, frame, exclude);
}

ShootData ReadShootData(const Inputs& inputs) {
  return ShootDataOf(ContinuedContent(inputs), inputs.data, inputs.trackerFrame, inputs.exclude);
}

}  // namespace trackedcam::host
