#include "host/verdict/run_findings.h"

#include <algorithm>
#include <string>

#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

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
