// How a row is written: one that is written otherwise than the library reads has no figure to
// check.

#pragma once

#include <string_view>

#include "host/input/data_file.h"

namespace trackedcam::host {

struct RowForm {
  bool isBlank = false;
  bool isHeader = false;
  char separator = ',';
  bool hasQuotes = false;
  bool hasDecimalCommas = false;
  bool hasExtraColumn = false;  // before the photograph

  /// The library finds each field where it looks for it.
  bool IsPlain() const {
    return !isBlank && !isHeader && separator == ',' && !hasQuotes && !hasDecimalCommas &&
           !hasExtraColumn;
  }
};

RowForm FormOf(const DataRow& row);

/// A row but for its first letter, as a time such as T0.5 makes it.
bool IsSkippedRow(std::string_view line);

}  // namespace trackedcam::host
