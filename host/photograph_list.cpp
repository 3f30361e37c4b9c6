#include "host/photograph_list.h"

#include <algorithm>
#include <array>

#include "host/findings/finding_text.h"

namespace trackedcam::host {
namespace {

PhotographState StateOf(const RunRecord& record, const Photograph& photograph) {
  if (!photograph.dropped) {
    return IsUsed(record, photograph) ? PhotographState::kUsed : PhotographState::kNotUsed;
  }
  switch (*photograph.dropped) {
    case DropReason::kNotLoaded:
      return PhotographState::kNotLoaded;
    case DropReason::kBoardNotFound:
      return PhotographState::kBoardNotFound;
    case DropReason::kOutlier:
      return PhotographState::kLeftOutByFilter;
  }
  return PhotographState::kNotReached;
}

const char* Describe(PhotographState state) {
  switch (state) {
    case PhotographState::kUsed:
      return "";
    case PhotographState::kLeftOutByFilter:
      return "left out by the library's outlier filter";
    case PhotographState::kLeftOutByCrossCheck:
      return "contradicts the others";
    case PhotographState::kBoardNotFound:
      return "board not found";
    case PhotographState::kNotLoaded:
      return "missing or not an image";
    case PhotographState::kLeftOutByUser:
      return "left out by the user";
    case PhotographState::kLeftOutBeforeTheRun:
      return "not given to the library";
    case PhotographState::kNotReached:
      return "the run ended before it";
    case PhotographState::kNotUsed:
      return "the run failed";
    case PhotographState::kUnknown:
      return "the log is incomplete";
  }
  return "";
}

// After a number of photographs, in the order of a shoot's fate.
struct CountName {
  PhotographState state;
  const char* text;
};
constexpr std::array<CountName, 8> kCountNames = {
    {{PhotographState::kLeftOutByUser, "left out by the user"},
     {PhotographState::kLeftOutBeforeTheRun, "left out before the run"},
     {PhotographState::kNotLoaded, "missing or not an image"},
     {PhotographState::kBoardNotFound, "without the board"},
     {PhotographState::kLeftOutByCrossCheck, "left out because they contradict the others"},
     {PhotographState::kLeftOutByFilter, "left out by the outlier filter"},
     {PhotographState::kNotReached, "not reached by the run"},
     {PhotographState::kNotUsed, "not used because the run failed"}}};

}  // namespace

const char* Name(PhotographState state) {
  switch (state) {
    case PhotographState::kUsed:
      return "used";
    case PhotographState::kLeftOutByFilter:
      return "leftOutByFilter";
    case PhotographState::kLeftOutByCrossCheck:
      return "leftOutByCrossCheck";
    case PhotographState::kBoardNotFound:
      return "boardNotFound";
    case PhotographState::kNotLoaded:
      return "notLoaded";
    case PhotographState::kLeftOutByUser:
      return "leftOutByUser";
    case PhotographState::kLeftOutBeforeTheRun:
      return "leftOutBeforeTheRun";
    case PhotographState::kNotReached:
      return "notReached";
    case PhotographState::kNotUsed:
      return "notUsed";
    case PhotographState::kUnknown:
      return "unknown";
  }
  return "";
}

PhotographList ListPhotographs(const std::vector<DataRow>& rows,
                               const std::vector<std::size_t>& unlisted) {
  PhotographList list;
  list.reserve(rows.size() - unlisted.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!std::binary_search(unlisted.begin(), unlisted.end(), i)) {
      PhotographEntry entry;
      entry.row = rows[i].line;
      entry.index = i;
      entry.name = rows[i].photograph;
      list.push_back(std::move(entry));
    }
  }
  return list;
}

PhotographList ListPhotographs(const RunRecord& record) {
  PhotographList list(record.photographs.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    list[i].index = i;
    list[i].name = record.photographs[i].path;
  }
  return list;
}

std::vector<std::size_t> ToRun(const PhotographList& list) {
  std::vector<std::size_t> given;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (list[i].state == PhotographState::kNotReached) {
      given.push_back(i);
    }
  }
  return given;
}

void EnterRun(const LibraryRun& run, const std::vector<std::size_t>& given, PhotographList& list) {
  const std::vector<Photograph>& photographs = run.record.photographs;
  std::size_t checked = 0;
  for (std::size_t i = 0; i < std::min(given.size(), photographs.size()); ++i) {
    PhotographEntry& entry = list[given[i]];
    entry.inRun = i;
    entry.state = photographs[i].dropped || HasCompleteRecord(run)
                      ? StateOf(run.record, photographs[i])
                      : PhotographState::kUnknown;
    if (photographs[i].raw) {
      entry.checked = checked++;
    }
  }
  for (PhotographEntry& entry : list) {
    if (entry.state == PhotographState::kNotReached && !HasCompleteRecord(run)) {
      entry.state = PhotographState::kUnknown;
    }
    entry.reason = entry.reason.empty() ? Describe(entry.state) : entry.reason;
  }
}

void LeaveOut(const std::vector<std::size_t>& excluded, PhotographList& list) {
  for (PhotographEntry& entry : list) {
    if (std::binary_search(excluded.begin(), excluded.end(), entry.index)) {
      entry.state = PhotographState::kLeftOutByUser;
      entry.reason = Describe(entry.state);
    }
  }
}

void EnterCrossCheck(const crosscheck::CrossCheck& check, PhotographList& list) {
  const std::vector<std::string> names = CheckedNames(list);
  for (PhotographEntry& entry : list) {
    if (entry.checked && !check.perPhotograph.at(*entry.checked).used) {
      const std::string why = ReasonText(check.perPhotograph[*entry.checked], names);
      entry.reason = why.empty() ? Describe(PhotographState::kLeftOutByCrossCheck) : why;
    }
  }
}

std::vector<std::string> CheckedNames(const PhotographList& list) {
  std::vector<std::string> names;
  for (const PhotographEntry& entry : list) {
    if (entry.checked) {
      names.push_back(entry.name);
    }
  }
  return names;
}

std::size_t CountInState(const PhotographList& list, PhotographState state) {
  return static_cast<std::size_t>(
      std::count_if(list.begin(), list.end(),
                    [&](const PhotographEntry& entry) { return entry.state == state; }));
}

bool IsCounted(const PhotographList& list) {
  return CountInState(list, PhotographState::kUnknown) == 0;
}

std::string OthersText(const PhotographList& list) {
  std::string text;
  for (const CountName& name : kCountNames) {
    if (const std::size_t count = CountInState(list, name.state)) {
      text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + name.text;
    }
  }
  return text;
}

std::string CountText(const PhotographList& list) {
  if (!IsCounted(list)) {
    return std::to_string(list.size()) + ", and the log does not say which were used";
  }
  const std::string others = OthersText(list);
  return std::to_string(CountInState(list, PhotographState::kUsed)) + " of " +
         std::to_string(list.size()) + " used" + (others.empty() ? "" : ": " + others);
}

}  // namespace trackedcam::host
