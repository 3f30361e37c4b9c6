#include "host/verdict/exclusion.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <variant>

#include "host/input/excluded.h"

namespace trackedcam::host {
namespace {

using NameSet = std::set<std::string>;

// Whether a result can rest on it.
bool HasBoard(const PhotographEntry& entry) {
  return entry.state == PhotographState::kUsed || entry.state == PhotographState::kNotUsed ||
         entry.state == PhotographState::kLeftOutByFilter;
}

std::size_t CountWithBoard(const PhotographList& list, const NameSet& without) {
  return static_cast<std::size_t>(
      std::count_if(list.begin(), list.end(), [&](const PhotographEntry& entry) {
        return HasBoard(entry) && without.count(entry.name) == 0;
      }));
}

// The side of the move with fewer photographs in which the board was found.
NameSet SmallerPart(const PhotographList& list, const std::string& firstAfter) {
  NameSet before;
  NameSet after;
  bool isAfter = false;
  for (const PhotographEntry& entry : list) {
    isAfter = isAfter || entry.name == firstAfter;
    if (HasBoard(entry)) {
      (isAfter ? after : before).insert(entry.name);
    }
  }
  return before.size() < after.size() ? before : after;
}

// Of a finding that names some of its photographs only, none.
template <class Kind>
NameSet AllOf(const Finding& finding, const Kind& kind) {
  return kind.count == finding.photographs.size()
             ? NameSet(finding.photographs.begin(), finding.photographs.end())
             : NameSet();
}

NameSet AskedFor(const Finding& finding, const PhotographList& list) {
  if (std::holds_alternative<BadPhotographs>(finding.kind)) {
    return {finding.photographs.begin(), finding.photographs.end()};
  }
  if (const auto* sizes = std::get_if<PhotographSizes>(&finding.kind)) {
    return AllOf(finding, *sizes);
  }
  if (const auto* unsharp = std::get_if<UnsharpPhotographs>(&finding.kind)) {
    return AllOf(finding, *unsharp);
  }
  if (std::holds_alternative<crosscheck::TrackerMoved>(finding.kind)) {
    return SmallerPart(list, finding.photographs.at(0));
  }
  return {};
}

}  // namespace

std::vector<std::string> PhotographsToExclude(const PhotographList& list,
                                              const std::vector<Finding>& findings) {
  NameSet asked;
  for (const Finding& finding : findings) {
    if (NothingFits(finding)) {
      return {};  // what contradicts the others is not known
    }
    if (finding.severity != Severity::kNote) {
      asked.merge(AskedFor(finding, list));
    }
  }
  std::vector<std::string> photographs;
  NameSet exclude;
  for (const PhotographEntry& entry : list) {
    photographs.push_back(entry.name);
    if (entry.state == PhotographState::kLeftOutByUser) {
      exclude.insert(entry.name);
    }
  }
  if (asked.empty() || CountWithBoard(list, asked) < kLeastPhotographs) {
    return {};
  }
  exclude.merge(asked);
  std::vector<std::string> names;
  for (const PhotographEntry& entry : list) {
    if (exclude.erase(entry.name) != 0) {
      names.push_back(ShortestName(entry.name, photographs));
    }
  }
  return names;
}

}  // namespace trackedcam::host
