#include "host/verdict/losses.h"

#include <string>
#include <system_error>

#include "host/input/row_words.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

constexpr const char* kLog = "logLost";
constexpr const char* kImages = "imagesLost";
constexpr const char* kAdvice =
    "Check the space and the permissions of the log folder, and calibrate again.";

// The last line tells of every run that came to its end how it ended.
bool IsWhole(const LibraryRun& run) {
  const bool tellsAll = *run.code == kSuccess ? run.record.isSuccessful
                                              : *run.code < 0 || run.record.errorCode == run.code;
  std::error_code error;
  return tellsAll && std::filesystem::is_regular_file(run.log, error);
}

Finding LogLost(const LibraryRun& run) {
  Finding finding;
  finding.id = kLog;
  finding.severity = Severity::kWarning;
  finding.text = "The log of the run was not written whole" +
                 std::string(run.record.lens ? "." : ", so the result cannot be cross-checked.");
  finding.advice = kAdvice;
  return finding;
}

Finding ImagesLost(const LibraryRun& run) {
  const std::vector<std::string>& lost = run.lostImages;
  const std::size_t all = lost.size() + run.images.size();
  Finding finding;
  finding.id = kImages;
  finding.severity = Severity::kWarning;
  finding.text =
      "Reprojected images were not written whole: those of " + PhotographWords(lost, all) + '.';
  finding.advice = kAdvice;
  finding.numbers = {{"images", static_cast<double>(lost.size())}};
  finding.photographs = lost;
  return finding;
}

}  // namespace

std::vector<Finding> LossesOf(const LibraryRun& run) {
  std::vector<Finding> losses;
  if (run.code && !IsWhole(run)) {
    losses.push_back(LogLost(run));
  }
  if (!run.lostImages.empty()) {
    losses.push_back(ImagesLost(run));
  }
  return losses;
}

bool IsLoss(const Finding& finding) {
  return finding.id == kLog || finding.id == kImages || finding.id == "notRefined";
}

}  // namespace trackedcam::host
