#include "host/input/shoot_data.h"

#include <utility>

#include "host/findings/finding_text.h"
#include "host/input/data_checks.h"
#include "host/input/input_error.h"

namespace trackedcam::host {

ShootData ReadShootData(const std::filesystem::path& file, const TrackerFrame& frame) {
  const std::string content = ReadDataContent(file);
  ShootData shoot = {InReportedAxes(ReadRows(content), frame), {}, {}};
  DataChecks checks = CheckData(content, shoot.rows);
  shoot.findings = std::move(checks.findings);
  shoot.leaveOut = std::move(checks.leaveOut);
  if (shoot.rows.empty()) {
    throw InputError(shoot.findings.empty()
                         ? file.u8string() +
                               " has no rows: record one row of tracker data for each photograph"
                         : Text(shoot.findings.front()) + ' ' + Advice(shoot.findings.front()));
  }
  return shoot;
}

}  // namespace trackedcam::host
