#include "support/log_lines.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "support/stage_test.h"

namespace trackedcam::test {
namespace {

namespace fs = std::filesystem;

const std::regex kNumber(R"(-?\d+\.\d{6}\b|#)");
const std::regex kAnyNumber(R"(-?(\d+\.\d{6}|nan|inf))");

}  // namespace

std::vector<std::string> ReadLogLines(const std::string& path) {
  std::vector<std::string> messages;
  std::ifstream file(fs::u8path(path));
  const std::regex stamp(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\t)");
  for (std::string line; std::getline(file, line);) {
    std::smatch match;
    const bool isStamped =
        std::regex_search(line, match, stamp, std::regex_constants::match_continuous);
    EXPECT_TRUE(isStamped) << line;
    messages.push_back(isStamped ? match.suffix().str() : line);
  }
  return messages;
}

std::string OnlyLogIn(const std::string& folder) {
  std::vector<std::string> logs;
  for (const auto& entry : fs::directory_iterator(fs::u8path(folder))) {
    if (entry.path().filename().u8string().rfind("log_", 0) == 0) {
      logs.push_back(entry.path().u8string());
    }
  }
  EXPECT_EQ(logs.size(), 1u);
  return logs.size() == 1 ? logs.front() : "";
}

bool LineReads(const std::string& line, const ExpectedLine& wanted) {
  const std::string& expected = wanted.text;
  auto rest = line.cbegin();
  auto expectedRest = expected.cbegin();
  const auto takeText = [&](std::size_t length) {
    const bool isEqual = static_cast<std::size_t>(line.cend() - rest) >= length &&
                         std::equal(rest, rest + static_cast<std::ptrdiff_t>(length), expectedRest);
    if (isEqual) {
      rest += static_cast<std::ptrdiff_t>(length);
    }
    return isEqual;
  };
  for (std::sregex_iterator number(expected.begin(), expected.end(), kNumber), end; number != end;
       ++number) {
    const auto numberBegin = expected.cbegin() + number->position();
    std::smatch actual;
    if (!takeText(static_cast<std::size_t>(numberBegin - expectedRest)) ||
        !std::regex_search(rest, line.cend(), actual, kAnyNumber,
                           std::regex_constants::match_continuous)) {
      return false;
    }
    if (number->str() != "#" &&
        !(std::abs(std::stod(actual.str()) - std::stod(number->str())) <= wanted.tolerance)) {
      return false;
    }
    rest += actual.length();
    expectedRest = numberBegin + number->length();
  }
  return takeText(static_cast<std::size_t>(expected.cend() - expectedRest)) && rest == line.cend();
}

testing::AssertionResult LogReads(const std::vector<std::string>& lines,
                                  const std::vector<ExpectedLine>& expected) {
  for (std::size_t i = 0; i < std::max(lines.size(), expected.size()); ++i) {
    const std::string& line = i < lines.size() ? lines[i] : "(the log has ended)";
    const std::string& wanted =
        i < expected.size() ? expected[i].text : "(the log should have ended)";
    if (i >= lines.size() || i >= expected.size() || !LineReads(line, expected[i])) {
      return testing::AssertionFailure()
             << "log line " << i + 1 << " reads\n  " << line << "\nand not\n  " << wanted;
    }
  }
  return testing::AssertionSuccess();
}

std::vector<double> NumbersBehind(const std::vector<std::string>& log, const std::string& label,
                                  int nth, int lines) {
  std::vector<double> numbers;
  for (auto line = log.begin(); line != log.end(); ++line) {
    if (line->rfind(label, 0) != 0 || nth-- > 0) {
      continue;
    }
    std::string text = line->substr(label.size());
    for (int i = 1; i < lines && ++line != log.end(); ++i) {
      text += *line;
    }
    for (char& character : text) {
      character =
          std::string("0123456789.-").find(character) == std::string::npos ? ' ' : character;
    }
    std::istringstream words(text);
    for (double number = 0; words >> number;) {
      numbers.push_back(number);
    }
    break;
  }
  return numbers;
}

}  // namespace trackedcam::test
