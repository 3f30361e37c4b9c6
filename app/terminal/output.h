#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "host/run/run_log.h"

namespace trackedcam::app {

/// A line of the summary: a label on the left and figures in columns on the right.
void PrintRow(std::ostream& out, const std::string& label, const std::vector<std::string>& figures);

// What the program says names files of shoots that others made, and their names may hold anything.

/// While it lives, a stream writes what would command a terminal, turn the direction of the text
/// around or break it as visible text: \u001b for the escape character, \u202e for the mark from
/// right to left, \xff for a byte that is no text. Line feeds, form feeds and tabs pass. Within
/// JSON these are the escapes of JSON itself.
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
  std::string waiting_;  // the beginning of a character
};

/// Where the stream writes to without escapes: for a line that is drawn over and over.
std::streambuf* PlainOutput(std::ostream& stream);

/// The text of the bar: the stage and, where it goes through the photographs, how many are done.
std::string ProgressText(const host::Progress& progress);

/// One line on a terminal that is written over and over, and cleared at the end.
class ProgressBar {
 public:
  explicit ProgressBar(std::ostream& terminal) : terminal_(terminal) {}
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(const host::Progress& progress) { Draw(ProgressText(progress)); }

 private:
  void Draw(const std::string& text);

  std::ostream& terminal_;
  std::size_t width_ = 0;
};

}  // namespace trackedcam::app
