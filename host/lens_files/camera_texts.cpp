#include "host/lens_files/camera_texts.h"

#include <vector>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

std::string Comments(const Origin& origin) {
  std::string comments;
  for (const std::string& line : OriginLines(origin)) {
    comments += "# " + line + '\n';
  }
  return comments;
}

// A number that is read exactly. Not every reader of YAML takes 1e-05 for one.
std::string NumberText(double number) {
  std::string text = Shortest(number);
  const std::size_t exponent = text.find('e');
  if (exponent != std::string::npos && text.find('.') == std::string::npos) {
    text.insert(exponent, ".0");
  }
  return text;
}

std::string Joined(const std::vector<double>& numbers, const std::string& separator) {
  std::string text;
  for (const double number : numbers) {
    text += (text.empty() ? "" : separator) + NumberText(number);
  }
  return text;
}

std::vector<double> CameraMatrix(const LensModel& lens) {
  return {lens.focal.x(), 0, lens.centre.x(), 0, lens.focal.y(), lens.centre.y(), 0, 0, 1};
}

std::vector<double> Distortion(const LensModel& lens) {
  return {lens.k1, lens.k2, lens.p1, lens.p2, lens.k3};
}

// A matrix as a YAML mapping.
std::string Matrix(const std::string& head, const std::string& indent, int rows, int columns,
                   const std::string& type, const std::vector<double>& numbers) {
  return head + '\n' + indent + "rows: " + std::to_string(rows) + '\n' + indent +
         "cols: " + std::to_string(columns) + '\n' + type + indent + "data: [ " +
         Joined(numbers, ", ") + " ]\n";
}

std::string SizeText(const LensModel& lens) {
  return "image_width: " + std::to_string(lens.width) +
         "\nimage_height: " + std::to_string(lens.height) + '\n';
}

}  // namespace

std::string OpenCvText(const LensModel& lens, const Origin& origin) {
  const auto matrix = [](const std::string& name, int rows, int columns,
                         const std::vector<double>& numbers) {
    return Matrix(name + ": !!opencv-matrix", "   ", rows, columns, "   dt: d\n", numbers);
  };
  return "%YAML:1.0\n---\n" + Comments(origin) + SizeText(lens) +
         matrix("camera_matrix", 3, 3, CameraMatrix(lens)) +
         matrix("distortion_coefficients", 1, 5, Distortion(lens));
}

std::string RosText(const LensModel& lens, const Origin& origin) {
  const auto matrix = [](const std::string& name, int rows, int columns,
                         const std::vector<double>& numbers) {
    return Matrix(name + ':', "  ", rows, columns, "", numbers);
  };
  const std::vector<double> projection = {lens.focal.x(),
                                          0,
                                          lens.centre.x(),
                                          0,  //
                                          0,
                                          lens.focal.y(),
                                          lens.centre.y(),
                                          0,  //
                                          0,
                                          0,
                                          1,
                                          0};
  return Comments(origin) + SizeText(lens) + "camera_name: camera\n" +
         matrix("camera_matrix", 3, 3, CameraMatrix(lens)) + "distortion_model: plumb_bob\n" +
         matrix("distortion_coefficients", 1, 5, Distortion(lens)) +
         matrix("rectification_matrix", 3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1}) +
         matrix("projection_matrix", 3, 4, projection);
}

std::string ColmapText(const LensModel& lens, const Origin& origin) {
  constexpr double kHalfAPixel = 0.5;
  const Eigen::Vector2d centre = lens.centre.array() + kHalfAPixel;
  std::vector<double> parameters = {lens.focal.x(), lens.focal.y(), centre.x(), centre.y(),
                                    lens.k1,        lens.k2,        lens.p1,    lens.p2};
  const bool isFull = lens.k3 != 0;  // OPENCV ends with p2
  if (isFull) {
    parameters.insert(parameters.end(), {lens.k3, 0, 0, 0});
  }
  return Comments(origin) + "# CAMERA_ID, MODEL, WIDTH, HEIGHT, PARAMS[]\n1 " +
         (isFull ? "FULL_OPENCV " : "OPENCV ") + std::to_string(lens.width) + ' ' +
         std::to_string(lens.height) + ' ' + Joined(parameters, " ") + '\n';
}

}  // namespace trackedcam::host
