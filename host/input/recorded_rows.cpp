#include "host/input/recorded_rows.h"

#include "host/input/input_error.h"
#include "host/text/number_text.h"

namespace trackedcam::host {

void RequireName(const std::string& photograph) {
  if (photograph.empty()) {
    throw InputError("a photograph has no name");
  }
  if (photograph.find_first_of(std::string(",\r\n\0", 4)) != std::string::npos) {
    throw InputError("the photograph " + photograph +
                     " has a comma or a line's end in its name, which cannot stand in a data file");
  }
}

std::string DataText(const std::vector<RecordedRow>& rows) {
  std::string text = "Time,photograph,camera x,y,z,camera w,x,y,z,chart x,y,z,chart w,x,y,z\n";
  for (const RecordedRow& row : rows) {
    text += Shortest(row.timeSeconds) + ',' + row.photograph;
    for (const TrackerPose* pose : {&row.camera, &row.chart}) {
      for (const double number : *pose) {
        text += ',' + Shortest(number);
      }
    }
    text += '\n';
  }
  return text;
}

}  // namespace trackedcam::host
