// Findings that name rows or photographs: the first few, and how many more.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

using RowList = std::vector<const DataRow*>;

/// "row 3", "rows 3 and 4", "rows 3, 4, 5 and 9 more", "all 40 rows".
std::string RowWords(const RowList& rows, std::size_t all);

/// "a.jpg", "a.jpg and b.jpg", "a.jpg, b.jpg, c.jpg and 9 more", "all 40 photographs".
std::string PhotographWords(const std::vector<std::string>& photographs, std::size_t all);

/// Warning for what a few rows have: they drop out or are outvoted. Error for what so many have
/// that the result cannot be right.
Severity SeverityOf(std::size_t some, std::size_t all);

/// Of photographs that drop out before they can do harm: a note for a few of them.
Severity SeverityOfDropped(std::size_t some, std::size_t all);

/// What is said of a fault: "<before>rows 3 and 4<after>".
struct FaultWords {
  const char* id;
  const char* before;
  const char* after;
  const char* advice;
};

/// @param rows Those with the fault; the finding counts them all and names the first.
/// @param all How many rows there are.
Finding RowFinding(const FaultWords& words, const RowList& rows, std::size_t all);

/// The worst first; what is equally bad stays in order.
void SortFindings(std::vector<Finding>& findings);

}  // namespace trackedcam::host
