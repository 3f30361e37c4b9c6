#include "app/words/warning.h"

#include <string>

#include "host/verdict/losses.h"

namespace trackedcam::app {

using host::Level;

void PrintWarning(std::ostream& out, const host::Report& report) {
  const host::Verdict& verdict = report.verdict;
  for (const host::Finding& finding : report.findings) {
    if (host::IsLoss(finding) && verdict.words.find(finding.text) == std::string::npos) {
      out << "trackedcam: warning: " << finding.text << '\n';
    }
  }
  if (verdict.level == Level::kGood) {
    return;
  }
  const auto& code = report.run.code;
  const bool hasCode = verdict.level == Level::kFailed && code && *code != host::kSuccess;
  out << "trackedcam: " << (verdict.level == Level::kDoubtful ? "warning" : "error")
      << (hasCode ? ' ' + std::to_string(*code) : "") << ": " << verdict.words << '\n';
}

int ExitStatus(const host::Report& report) {
  switch (report.verdict.level) {
    case Level::kGood:
    case Level::kDoubtful:
      return 0;
    case Level::kWrong:
      return 3;
    case Level::kFailed:
      return 1;
  }
  return 1;
}

}  // namespace trackedcam::app
