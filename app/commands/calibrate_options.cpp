#include "app/commands/calibrate_options.h"

#include <string>

#include "app/options/add_path.h"
#include "app/options/add_value.h"
#include "app/options/option_values.h"

namespace trackedcam::app {
namespace {

std::string RequireFolder(const std::string& path) {
  return std::filesystem::is_directory(std::filesystem::u8path(path))
             ? ""
             : "there is no folder " + path;
}

}  // namespace

void AddCalibrateOptions(CLI::App& command, CalibrateOptions& options) {
  AddPath(command, "--data", options.inputs.data, "FILE",
          "Tracker data file: a row for each photograph")
      ->required()
      ->check(RequireFile)
      ->group("Shoot");
  AddPath(command, "--working-folder", options.inputs.workingFolder, "FOLDER",
          "Where relative paths of photographs begin;\nelse the data file's folder")
      ->check(RequireFolder)
      ->group("Shoot");
  AddValue(command, "--expected-records", options.inputs.expectedRecords, ParseCount, "N",
           "Rows that were recorded; else those of the file")
      ->group("Shoot");
  command
      .add_flag("--invert-tracker-quaternions", options.inputs.invertTrackerQuaternions,
                "The trackers' quaternions give the inverse rotation")
      ->group("Shoot");
  AddValue(command, "--tracker-axes", options.inputs.trackerFrame.axes, ParseTrackerAxes, "AXES",
           "Whose poses the data file holds: reported (the\ntracking system's), or those of a "
           "component of\nunreal or a transform of unity, which are converted")
      ->group("Shoot");
  AddValue(command, "--tracker-units", options.inputs.trackerFrame.unit, ParseTrackerUnit, "UNIT",
           "Of positions in the data file: m, cm or mm;\nelse cm of unreal, m of the others")
      ->group("Shoot");

  AddValue(command, "--sensor", options.inputs.sensorMm, ParseSensor, "WxH",
           "Size of the camera's sensor, millimetres")
      ->required()
      ->group("Camera");

  AddValue(command, "--board", options.inputs.board, ParseBoard, "COLSxROWS",
           "Inner corners along a row and along a column:\none less than the squares")
      ->required()
      ->group("Chart");
  AddValue(command, "--square", options.inputs.squareMetres, ParseSquare, "METRES",
           "Edge of one square, metres")
      ->required()
      ->group("Chart");
  AddMountingOptions(command, options.mounting, "Chart");
  command
      .add_flag("--refine-mounting", options.inputs.refineMounting,
                "Where the cross-check finds another mounting or\nbad photographs: calibrate again "
                "with it and\nwithout them")
      ->group("Chart");

  AddPath(command, "--log-folder", options.inputs.logFolder, "FOLDER",
          "For the log and the reprojected images: each run\ngets a folder of its own in it")
      ->required()
      ->group("Output");
  AddPath(command, "--result", options.result, "FILE.json", "Write every figure as JSON")
      ->group("Output");
  CLI::Option* report = AddPath(command, "--report", options.report, "FILE.html",
                                "Write the page there; else report.html beside the log")
                            ->group("Output");
  command.add_flag("--no-report", options.withoutReport, "Write no page")
      ->excludes(report)
      ->group("Output");
  AddValue(
      command, "--export", options.exports, ParseEngines, "ENGINES",
      "Hand the result to engines as well: a list of\nunreal, unity, ue4, ue5, ue5-xn, aximmetry")
      ->group("Output");
  AddValue(command, "--parent-axes", options.parentAxes, ParseParentAxesText, "X,Y,Z",
           "Of the camera's parent in unreal or unity, in\nreported axes, such as z,-x,y")
      ->group("Output");
  AddPath(command, "--truth", options.truth, "FILE.json",
          "Compare with the truth of a simulated shoot")
      ->check(RequireFile)
      ->group("Output");
  command.add_flag("--verbose", options.verbose, "Show the library's own lines")->group("Output");
}

}  // namespace trackedcam::app
