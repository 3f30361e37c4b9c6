// The tracker data file: library and program read the same rows, photographs and numbers.

#include <cmath>
#include <iostream>

#include "fuzz/fuzz.h"
#include "host/findings/finding_text.h"
#include "host/input/data_checks.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/input/reported_axes.h"
#include "io/tracker_data.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  std::cout.rdbuf(nullptr);  // the library echoes every line
  const std::string content(fuzz::TextOf(data, size));

  std::vector<std::string> paths;
  std::vector<TrackerRecord> records;
  const auto file = fuzz::FileWith(content, "data.csv");
  fuzz::Require(ReadTrackerData({}, file.string(), paths, records) == 0, "a file is refused");

  const std::vector<host::DataRow> rows = host::ReadRows(content);
  fuzz::Require(rows.size() == paths.size() && rows.size() == records.size(), "number of rows");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    fuzz::Require(rows[i].photograph == paths[i], "the photograph of a row");
    const auto poses = host::PosesIn(host::SplitFields(rows[i].text));
    for (std::size_t number = 0; number < 14; ++number) {
      const double read = records[i][number + 1];
      const double checked = poses[number / 7][number % 7];
      // The program accepts a field as a number only if all of it is one.
      fuzz::Require(read == checked || std::isnan(checked) == std::isnan(read) || checked == 0,
                    "a number of a row");
    }
  }
  const host::DataChecks checks = host::CheckData(content, rows);
  fuzz::Require(checks.leaveOut.empty() || checks.leaveOut.back() < rows.size(),
                "a row that is left out");
  for (const host::Finding& finding : checks.findings) {
    fuzz::Require(!host::Text(finding).empty() && !host::Advice(finding).empty(),
                  "text of a finding");
  }
  for (const host::TrackerAxes& axes : host::kTrackerAxes) {
    try {
      const host::TrackerFrame frame = {&axes, nullptr};
      fuzz::Require(host::InReportedAxes(rows, frame).size() == rows.size(),
                    "number of converted rows");
    } catch (const host::InputError&) {
      continue;  // refused, with the line in the message
    }
  }
  return 0;
}
