#include "simulator/config_text.h"

#include "simulator/number_text.h"

namespace trackedcam::simulator {
namespace {

std::string Triple(const Eigen::Vector3d& numbers) {
  return ToShortestText(numbers.x()) + ',' + ToShortestText(numbers.y()) + ',' +
         ToShortestText(numbers.z());
}

std::string Line(const std::string& key, const std::string& value) {
  return key + " = " + value + '\n';
}

std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}

}  // namespace

std::string ConfigText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const Chart& chart = options.chart;
  const Mounting& mounting = shoot.nominalMounting;
  const std::string sensor =
      ToShortestText(options.sensorWidthMm) + 'x' + ToShortestText(options.sensorHeightMm);
  const std::string board = ToShortestText(chart.cols) + 'x' + ToShortestText(chart.rows);
  return "# A simulated shoot. Run it with: trackedcam calibrate --config shoot.toml\n"
         "[calibrate]\n" +
         Line("data", Quoted("tracker_data.csv")) + Line("sensor", Quoted(sensor)) +
         Line("board", Quoted(board)) + Line("square", ToShortestText(chart.squareMetres)) +
         Line("chart-rotation", Quoted(Triple(mounting.anglesDegrees))) +
         Line("chart-translation", Quoted(Triple(mounting.translationMetres))) +
         Line("invert-tracker-quaternions", options.invertedQuaternions ? "true" : "false") +
         Line("log-folder", Quoted("log")) + Line("result", Quoted("result.json")) +
         Line("truth", Quoted("truth.json"));
}

}  // namespace trackedcam::simulator
