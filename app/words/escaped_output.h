// What the program says names files of shoots that others made, and their names may hold anything.

#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace trackedcam::app {

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

}  // namespace trackedcam::app
