#include "host/engines/origin.h"

#include <algorithm>
#include <string_view>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

// A name of a photograph may have anything in it, and not every reader takes more than ASCII.
std::string Printable(const std::string& text) {
  std::string printable;
  for (std::size_t i = 0; i < text.size();) {
    const bool isPlain = text[i] >= ' ' && text[i] <= '~';
    printable += isPlain ? text[i] : '?';
    i += std::max<std::size_t>(CharacterLength(std::string_view(text).substr(i)), 1);
  }
  return printable;
}

std::string Listed(const std::vector<double>& numbers, int decimals) {
  std::string list;
  for (const double number : numbers) {
    list += (list.empty() ? "" : ", ") + Fixed(number, decimals);
  }
  return list;
}

}  // namespace

std::vector<std::string> OriginLines(const Origin& origin) {
  std::vector<std::string> lines = {std::string(kWrittenBy) + TRACKEDCAM_VERSION};
  if (!origin.time.empty()) {
    lines.push_back("Calibrated " + Printable(origin.time));
  }
  lines.push_back(std::string("Verdict ") + Name(origin.level) + ": " + Printable(origin.message));
  const std::vector<double>& lens = origin.lensErrors;
  if (lens.size() == 6) {
    lines.push_back("Standard errors of the lens: fx, fy, cx, cy " +
                    Listed({lens[0], lens[1], lens[2], lens[3]}, 3) + " px; k1, k2 " +
                    Listed({lens[4], lens[5]}, 6));
  }
  if (!origin.positionErrorsMm.empty()) {
    lines.push_back("Standard errors of the camera's pose: x, y, z " +
                    Listed(origin.positionErrorsMm, 3) + " mm; about them " +
                    Listed(origin.rotationErrorsDegrees, 4) + " deg");
  }
  return lines;
}

std::string NotExportedText(const std::string& permission) {
  return "The result is not exported. Calibrate again, or export it with " + permission + ".";
}

std::string RefusalOf(const Origin& origin, const std::string& permission) {
  return origin.level == Level::kWrong ? origin.message + ' ' + NotExportedText(permission) : "";
}

std::string DoubtOf(const Origin& origin) {
  return origin.level == Level::kGood ? "" : origin.message;
}

}  // namespace trackedcam::host
