// What became of each photograph: one entry for each row of the data file, in its order. Terminal,
// page and result file read this list; a second run keeps rows and places.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "crosscheck/result.h"
#include "host/input/data_file.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

enum class PhotographState {
  kUsed,                 // the library's result rests on it
  kLeftOutByFilter,      // by the library's outlier filter
  kLeftOutByCrossCheck,  // not given to the second run: it contradicts the others
  kBoardNotFound,
  kNotLoaded,            // missing or not an image
  kLeftOutByUser,        // not given to the library, or only to the library if a log is checked
  kLeftOutBeforeTheRun,  // not given to the library
  kNotReached,           // the run ended before it
  kNotUsed,              // the board was found, but the run failed
  kUnknown,              // the log that would say it is incomplete
};

/// used, leftOutByFilter, ...
const char* Name(PhotographState state);

struct PhotographEntry {
  std::size_t row = 0;    // line of the data file, from 1; 0 if only a log is known
  std::size_t index = 0;  // in the rows of the shoot
  std::string name;       // as the data file has it
  PhotographState state = PhotographState::kNotReached;
  std::string reason;                  // why it is not used, or contradicts the others; or empty
  std::optional<std::size_t> inRun;    // its index in LibraryRun::images and ::record.photographs
  std::optional<std::size_t> checked;  // its index in CrossCheck::perPhotograph
};

using PhotographList = std::vector<PhotographEntry>;

/// Before a run: nothing is reached.
/// @param unlisted Indices of rows, ascending, that get no entry.
PhotographList ListPhotographs(const std::vector<DataRow>& rows,
                               const std::vector<std::size_t>& unlisted = {});

/// Of a log alone.
PhotographList ListPhotographs(const RunRecord& record);

/// Indices of the entries that can be given to the library: those that nothing has left out.
std::vector<std::size_t> ToRun(const PhotographList& list);

/// Enters what the run of these entries says.
/// @param given Indices of the entries, in the order of the rows that the library was given.
void EnterRun(const LibraryRun& run, const std::vector<std::size_t>& given, PhotographList& list);

/// Leaves photographs out of a list, before or after a run.
/// @param excluded Indices in the rows of the shoot, ascending.
void LeaveOut(const std::vector<std::size_t>& excluded, PhotographList& list);

/// Enters why photographs contradict the others.
void EnterCrossCheck(const crosscheck::CrossCheck& check, PhotographList& list);

/// The names of the photographs that the cross-check takes, in its order.
std::vector<std::string> CheckedNames(const PhotographList& list);

std::size_t CountInState(const PhotographList& list, PhotographState state);

/// Whether it is known for each photograph if the result rests on it.
bool IsCounted(const PhotographList& list);

/// What became of those that are not used, with their numbers: "8 left out because they contradict
/// the others, 13 left out by the outlier filter".
std::string OthersText(const PhotographList& list);

/// "19 of 40 used: 8 left out because ..."
std::string CountText(const PhotographList& list);

}  // namespace trackedcam::host
