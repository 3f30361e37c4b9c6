#include "host/input/excluded.h"

#include <algorithm>
#include <set>

#include "host/findings/sentences.h"
#include "host/input/data_file.h"
#include "host/input/input_error.h"

namespace trackedcam::host {
namespace {

// Data files of another system have its slashes.
std::string WithSlashes(std::string_view path) {
  std::string text(Trim(path));
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

std::string WithoutEnding(const std::string& path) {
  const std::size_t name = path.find_last_of('/') + 1;  // 0 if there is no folder
  const std::size_t dot = path.find_last_of('.');
  return dot == std::string::npos || dot <= name ? path : path.substr(0, dot);
}

// From a folder on.
bool IsEndOf(const std::string& path, const std::string& end) {
  return path.size() >= end.size() &&
         path.compare(path.size() - end.size(), end.size(), end) == 0 &&
         (path.size() == end.size() || path[path.size() - end.size() - 1] == '/');
}

// The paths that a name means. A whole path means that photograph alone.
std::set<std::string> Meant(const std::string& name, const std::vector<std::string>& photographs) {
  const std::string wanted = WithSlashes(name);
  std::set<std::string> meant;
  for (const std::string& photograph : photographs) {
    const std::string path = WithSlashes(photograph);
    if (path.empty()) {
      continue;
    }
    if (path == wanted) {
      return {photograph};
    }
    if (IsEndOf(path, wanted) || IsEndOf(WithoutEnding(path), wanted)) {
      meant.insert(photograph);
    }
  }
  return meant;
}

void RequireOne(const std::string& name, const std::set<std::string>& meant,
                const std::vector<std::string>& photographs) {
  if (meant.size() > 1) {
    throw InputError("cannot leave out " + name + ", which is the name of " +
                     List({meant.begin(), meant.end()}, meant.size()) + ": write more of the path");
  }
  if (meant.empty()) {
    const auto first = std::find_if(photographs.begin(), photographs.end(),
                                    [](const std::string& path) { return !path.empty(); });
    throw InputError("cannot leave out " + name + ": no photograph of the shoot has that name" +
                     (first == photographs.end() ? "" : "; the first is " + *first));
  }
}

}  // namespace

std::vector<std::size_t> FindExcluded(const std::vector<std::string>& photographs,
                                      const std::vector<std::string>& names) {
  std::set<std::string> excluded;
  for (const std::string& name : names) {
    const std::set<std::string> meant = Meant(name, photographs);
    RequireOne(name, meant, photographs);
    excluded.insert(*meant.begin());
  }
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    if (excluded.count(photographs[i]) != 0) {
      indices.push_back(i);
    }
  }
  return indices;
}

std::string ShortestName(const std::string& photograph,
                         const std::vector<std::string>& photographs) {
  const std::string path = WithSlashes(photograph);
  const std::string file = path.substr(path.find_last_of('/') + 1);
  for (const std::string& name : {WithoutEnding(file), file}) {
    if (!name.empty() && Meant(name, photographs) == std::set<std::string>{photograph}) {
      return name;
    }
  }
  return photograph;
}

}  // namespace trackedcam::host
