#include "host/findings/run_findings.h"

#include <algorithm>
#include <string>
#include <system_error>

#include "host/findings/row_words.h"
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
  const std::vector<std::string>& lost = run.missingImages;
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

constexpr std::size_t kFewPhotographs = 8;

std::size_t Seen(const RunRecord& record) {
  return static_cast<std::size_t>(
      std::count_if(record.photographs.begin(), record.photographs.end(),
                    [](const Photograph& photograph) { return photograph.raw.has_value(); }));
}

// The filter alone may leave next to nothing of a shoot, and the library call it a success.
Finding FewUsed(std::size_t used, std::size_t seen) {
  return {"fewUsed",
          Severity::kWarning,
          "The result rests on " + std::to_string(used) + " of " + std::to_string(seen) +
              " photographs in which the board was found.",
          "Shoot more photographs, at least 24, with camera and chart at rest.",
          {{"used", static_cast<double>(used)}, {"seen", static_cast<double>(seen)}},
          {},
          ""};
}

Finding BoardNowhere(const BoardRecord& board) {
  const auto size = [&](int more) {
    return std::to_string(board.columns + more) + 'x' + std::to_string(board.rows + more);
  };
  return {
      "boardNowhere",
      Severity::kError,
      "No board of " + size(0) + " inner corners was found in any photograph.",
      "Count inner corners, not squares: a chart of " + size(0) + " squares has " + size(-1) +
          " of them.",
      {{"columns", static_cast<double>(board.columns)}, {"rows", static_cast<double>(board.rows)}},
      {},
      ""};
}

}  // namespace

std::vector<Finding> LossesOf(const LibraryRun& run) {
  std::vector<Finding> losses;
  if (run.code && !IsWhole(run)) {
    losses.push_back(LogLost(run));
  }
  if (!run.missingImages.empty()) {
    losses.push_back(ImagesLost(run));
  }
  return losses;
}

bool IsLoss(const Finding& finding) {
  return finding.id == kLog || finding.id == kImages || finding.id == "notRefined";
}

std::vector<Finding> FindingsOf(const LibraryRun& run) {
  std::vector<Finding> findings;
  const RunRecord& record = run.record;
  const std::size_t used = UsedPhotographs(record).size();
  const std::size_t seen = Seen(record);
  if (IsUsable(run) && (used < kFewPhotographs || 3 * used < seen)) {
    findings.push_back(FewUsed(used, seen));
  }
  if (run.code == kTooFewPhotographs && record.board && IsBoardNowhere(record)) {
    findings.push_back(BoardNowhere(*record.board));
  }
  return findings;
}

}  // namespace trackedcam::host
