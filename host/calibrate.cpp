#include "host/calibrate.h"

#include "host/run/run_folder.h"

namespace trackedcam::host {

Report Calibrate(const Inputs& inputs, const ProgressListener& listener) {
  const std::vector<DataRow> rows = InReportedAxes(ReadDataFile(inputs.data), inputs.trackerFrame);
  Report report;
  report.inputs = inputs;
  report.run = RunLibrary(inputs, rows, inputs.mounting.value_or(Mounting{}),
                          CreateRunFolder(inputs.logFolder), listener);
  return report;
}

}  // namespace trackedcam::host
