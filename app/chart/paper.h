#pragma once

#include <array>
#include <string_view>

namespace trackedcam::app {

/// A sheet, whichever way it is turned.
struct Paper {
  std::string_view name;
  double shortSide;  // millimetres
  double longSide;   // millimetres
};

constexpr std::array<Paper, 7> kPapers = {{{"A0", 841, 1189},
                                           {"A1", 594, 841},
                                           {"A2", 420, 594},
                                           {"A3", 297, 420},
                                           {"A4", 210, 297},
                                           {"Letter", 215.9, 279.4},
                                           {"Tabloid", 279.4, 431.8}}};

}  // namespace trackedcam::app
