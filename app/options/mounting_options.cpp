#include "app/options/mounting_options.h"

#include <string>

#include "app/options/add_value.h"
#include "app/options/option_values.h"
#include "host/input/mounting_axes.h"

namespace trackedcam::app {

void AddMountingOptions(CLI::App& command, MountingOptions& options, const std::string& group) {
  AddValue(command, "--chart-rotation", options.rotation, ParseTriple, "X,Y,Z",
           "Mounting of the chart's tracker, degrees; left\nout, it is found from the shoot. The "
           "chart is turned\nby Rx * Ry * Rz in the tracker's axes after the\naxis fix: reported "
           "x, y, z count as -x, -z, -y")
      ->group(group);
  AddValue(command, "--chart-translation", options.translation, ParseTranslation, "X,Y,Z",
           "Mounting of the chart's tracker, metres: the\nfirst inner corner in the same axes")
      ->group(group);
  AddValue(command, "--mounting-axes", options.isReported, ParseMountingAxes, "AXES",
           "Of the two options above: fixed, or reported\nwhere they count in the reported axes")
      ->group(group);
}

std::optional<host::Mounting> MountingOf(const MountingOptions& options) {
  if (options.rotation.has_value() != options.translation.has_value()) {
    throw CLI::ValidationError(options.rotation ? "--chart-translation" : "--chart-rotation",
                               "is missing: a mounting is stated by both, or left out");
  }
  if (!options.rotation) {
    return std::nullopt;
  }
  const host::Mounting mounting = {*options.rotation, *options.translation};
  return options.isReported ? host::FromReportedAxes(mounting) : mounting;
}

}  // namespace trackedcam::app
