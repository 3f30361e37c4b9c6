// Reads run logs and compares their lines.

#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace trackedcam::test {

/// The messages of a log file; none if the file does not exist. A line that does not begin with a
/// time stamp and a tab is a test failure.
std::vector<std::string> ReadLogLines(const std::string& path);

/// The path of the only log in a folder; empty if there is none or more than one.
std::string OnlyLogIn(const std::string& folder);

/// The numbers in the nth line (from 0) that begins with the label and in the lines after it, in
/// `lines` lines together.
std::vector<double> NumbersBehind(const std::vector<std::string>& log, const std::string& label,
                                  int nth, int lines);

/// An expected line of a log. Its text must be equal and its numbers within the tolerance. "#" is
/// any number with six decimals, inf or nan.
struct ExpectedLine {
  ExpectedLine(const char* line) : text(line) {}
  ExpectedLine(std::string line, double within = 0) : text(std::move(line)), tolerance(within) {}

  std::string text;
  double tolerance = 0;
};

bool LineReads(const std::string& line, const ExpectedLine& expected);

/// Whether the log has exactly the expected lines, in this order.
testing::AssertionResult LogReads(const std::vector<std::string>& lines,
                                  const std::vector<ExpectedLine>& expected);

}  // namespace trackedcam::test
