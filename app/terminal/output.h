// How the program writes to a terminal: rows of tables, names that could control the terminal, and
// the progress.

#pragma once

#include <optional>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "host/run/run_log_reader.h"

namespace trackedcam::app {

/// A row of a table: a label on the left, values in columns on the right.
void PrintRow(std::ostream& out, const std::string& label, const std::vector<std::string>& values);
void PrintRow(std::ostream& out, const std::string& label, const std::vector<double>& values,
              int decimals);

/// While it exists, a stream shows what could control the terminal, change the direction of the
/// text or break lines as escapes: \u001b for the escape character, \u202e for the right-to-left
/// mark, \xff for a byte that is not UTF-8. The program prints names of files, which may have any
/// of these. Line feeds, form feeds and tabs are not changed. Within JSON these are JSON's own
/// escapes.
class EscapedOutput : private std::streambuf {
 public:
  explicit EscapedOutput(std::ostream& stream);
  ~EscapedOutput() override;
  EscapedOutput(const EscapedOutput&) = delete;
  EscapedOutput& operator=(const EscapedOutput&) = delete;

 private:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* text, std::streamsize length) override;
  int sync() override;
  bool Write(bool isEnd);

  std::ostream& stream_;
  std::streambuf* plain_;
  std::string waiting_;  // the first bytes of a character
};

/// The stream's buffer without escapes: for the progress bar.
std::streambuf* PlainOutput(std::ostream& stream);

/// How long a stage still takes, from the mean time of its photographs so far. Later stages are not
/// in it: how long the solve takes depends on what it finds.
class TimeLeft {
 public:
  /// @param now Seconds from any origin.
  /// @returns Nothing before five photographs and one second, or without photographs to come.
  std::optional<double> At(const host::Progress& progress, double now);

 private:
  std::string stage_;
  double begin_ = 0;
  std::size_t done_ = 0;
};

/// The text of the bar, at most 79 columns: the stage and, if it goes through the photographs, how
/// many are done, the one in work and the seconds left. What could control the terminal is shown as
/// escapes.
std::string ProgressText(const host::Progress& progress,
                         const std::optional<double>& secondsLeft = {});

/// One line on a terminal, which is overwritten by each step and cleared at the end.
class ProgressBar {
 public:
  explicit ProgressBar(std::ostream& terminal) : terminal_(terminal) {}
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(const host::Progress& progress);

 private:
  void Draw(const std::string& text);

  std::ostream& terminal_;
  std::size_t width_ = 0;  // columns
  TimeLeft left_;
};

}  // namespace trackedcam::app
