// How the values of options are written.

#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/chart/paper.h"
#include "host/engines/engine.h"
#include "host/input/tracker_axes.h"

namespace trackedcam::app {

/// Each parser names the option in its error and says how to write the value.
/// @throws CLI::ValidationError when the text has another form.

/// "36x20.25": width and height in millimetres, both above 0.
std::array<double, 2> ParseSensor(const std::string& option, const std::string& text);

/// "1920x1080": width and height in pixels, both above 0.
std::array<int, 2> ParseImageSize(const std::string& option, const std::string& text);

/// "9x6": inner corners along a row and along a column, both at least 3.
std::array<int, 2> ParseBoard(const std::string& option, const std::string& text);

/// "12,-8,5": three numbers.
std::array<double, 3> ParseTriple(const std::string& option, const std::string& text);

/// "0.1,-0.05,0.02", which is metres, "10cm,-50mm,2cm" or "100,-50,20mm": three lengths in metres.
/// Without a unit none is above 3.
std::array<double, 3> ParseTranslation(const std::string& option, const std::string& text);

/// "1600,1600,955,545,-0.05,0.02": fx, fy, cx, cy in pixels, k1, k2.
std::array<double, 6> ParseLens(const std::string& option, const std::string& text);

/// "0.03", which is metres, "3cm" or "30mm": metres, above 0 and below 1.
double ParseSquare(const std::string& option, const std::string& text);

/// "299.2mm": a length above 0, in metres where it has no unit.
double ParseLength(const std::string& option, const std::string& text);

/// "A3": the name of a paper, in upper or lower case.
Paper ParsePaper(const std::string& option, const std::string& text);

/// "40": a whole number of at least 0.
int ParseCount(const std::string& option, const std::string& text);

/// "ue4": the name of an engine.
const host::Engine* ParseEngine(const std::string& option, const std::string& text);

/// "ue5,aximmetry": names of engines.
std::vector<const host::Engine*> ParseEngines(const std::string& option, const std::string& text);

/// "z,-x,y" or "z-forward": the axes of the camera's parent in an engine, kept as they are typed.
std::string ParseParentAxesText(const std::string& option, const std::string& text);

/// "unreal": the axes of the poses in a data file.
const host::TrackerAxes* ParseTrackerAxes(const std::string& option, const std::string& text);

/// "cm": the unit of the positions in a data file.
const host::TrackerUnit* ParseTrackerUnit(const std::string& option, const std::string& text);

/// "fixed" or "reported": true for the second.
bool ParseMountingAxes(const std::string& option, const std::string& text);

/// A check of an option: nothing when the path names a file, else what is wrong.
std::string RequireFile(const std::string& path);

}  // namespace trackedcam::app
