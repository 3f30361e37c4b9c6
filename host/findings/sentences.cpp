#include "host/findings/sentences.h"

namespace trackedcam::host {

std::string List(const Names& names, std::size_t count) {
  // A fourth is shorter by its name than by "1 more".
  const std::size_t named = count <= kNamed + 1 ? count : kNamed;
  std::string text;
  for (std::size_t i = 0; i < named; ++i) {
    const bool isLast = i + 1 == count;
    text += (i == 0 ? "" : isLast ? " and " : ", ") + names.at(i);
  }
  return named == count ? text : text + " and " + std::to_string(count - named) + " more";
}

std::string PhotographNames(const Names& photographs, std::size_t count, std::size_t all) {
  return count > 1 && count == all ? "all " + std::to_string(all) + " photographs"
                                   : List(photographs, count);
}

}  // namespace trackedcam::host
