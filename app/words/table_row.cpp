#include "app/words/table_row.h"

#include <iomanip>

namespace trackedcam::app {
namespace {

constexpr int kLabelWidth = 30;
constexpr int kFigureWidth = 13;

}  // namespace

void PrintRow(std::ostream& out, const std::string& label,
              const std::vector<std::string>& figures) {
  out << "  " << std::left << std::setw(kLabelWidth) << label << std::right;
  for (const std::string& figure : figures) {
    out << std::setw(kFigureWidth) << figure;
  }
  out << '\n';
}

}  // namespace trackedcam::app
