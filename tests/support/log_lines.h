// Run logs as the tests compare them.

#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace trackedcam::test {

/// The messages of a log file. A line without a time stamp and a tab in front is a test failure.
/// A file that does not exist holds none.
std::vector<std::string> ReadLogLines(const std::string& path);

/// The path of the only log in a folder; empty when there is none or more than one.
std::string OnlyLogIn(const std::string& folder);

/// The numbers in the n-th line, counted from 0, that begins with the label, and in those after it.
std::vector<double> NumbersBehind(const std::vector<std::string>& log, const std::string& label,
                                  int nth, int lines);

/// A log line as it should read. Text must be equal; a number must be met to within the tolerance;
/// "#" stands for any number with six decimals, infinite ones and what is not a number included.
struct ExpectedLine {
  ExpectedLine(const char* line) : text(line) {}
  ExpectedLine(std::string line, double within = 0) : text(std::move(line)), tolerance(within) {}

  std::string text;
  double tolerance = 0;
};

bool LineReads(const std::string& line, const ExpectedLine& expected);

/// Every line reads as expected, in order and without any left over.
testing::AssertionResult LogReads(const std::vector<std::string>& lines,
                                  const std::vector<ExpectedLine>& expected);

}  // namespace trackedcam::test
