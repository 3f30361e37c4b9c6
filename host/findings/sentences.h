// What the sentences about findings share.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace trackedcam::host {

struct Sentences {
  const char* id;
  std::string text;
  std::string advice;
};

using Names = std::vector<std::string>;

constexpr std::size_t kNamed = 3;  // of a long list

/// "a", "a and b", "a, b, c and d", "a, b, c and 9 more".
/// @param names At least the first of them.
std::string List(const Names& names, std::size_t count);

/// "a.jpg, b.jpg, c.jpg and 9 more", "all 40 photographs".
std::string PhotographNames(const Names& photographs, std::size_t count, std::size_t all);

}  // namespace trackedcam::host
