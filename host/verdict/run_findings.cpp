#include "host/verdict/run_findings.h"

#include <algorithm>
#include <system_error>

#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

constexpr std::size_t kFewPhotographs = 8;

bool IsLogComplete(const LibraryRun& run) {
  std::error_code error;
  return HasCompleteRecord(run) && std::filesystem::is_regular_file(run.log, error);
}

std::size_t Seen(const RunRecord& record) {
  return static_cast<std::size_t>(
      std::count_if(record.photographs.begin(), record.photographs.end(),
                    [](const Photograph& photograph) { return photograph.raw.has_value(); }));
}

}  // namespace

std::vector<Finding> FindingsOf(const LibraryRun& run,
                                const std::optional<crosscheck::CrossCheck>& check) {
  std::vector<Finding> findings;
  const RunRecord& record = run.record;
  const std::size_t used = UsedPhotographs(record).size();
  const std::size_t seen = Seen(record);
  // The filter alone may leave almost nothing of a shoot, which is still a success to the library.
  if (IsUsable(run) && HasCompleteRecord(run) && (used < kFewPhotographs || 3 * used < seen)) {
    FewUsed few = {used, seen, {}};
    if (check && check->solved) {
      few.agree = check->used;
    }
    // Of photographs that all agree the filter leaves half, and by chance a third.
    const bool doMostDisagree = used + few.agree.value_or(used) < seen;
    findings.push_back({doMostDisagree ? Severity::kError : Severity::kWarning, few, {}});
  }
  if (run.code == kTooFewPhotographs && record.board && IsBoardNowhere(record)) {
    findings.push_back(
        {Severity::kError, BoardNowhere{record.board->columns, record.board->rows}, {}});
  }
  return findings;
}

std::vector<Finding> OutputErrorsOf(const LibraryRun& run) {
  std::vector<Finding> findings;
  if (run.code && !IsLogComplete(run)) {
    findings.push_back({Severity::kWarning, LogIncomplete{run.record.lens.has_value()}, {}});
  }
  const std::vector<std::string>& missing = run.missingImages;
  if (!missing.empty()) {
    const auto written = static_cast<std::size_t>(
        std::count_if(run.images.begin(), run.images.end(),
                      [](const std::filesystem::path& image) { return !image.empty(); }));
    findings.push_back(
        {Severity::kWarning, ImagesMissing{missing.size(), missing.size() + written}, missing});
  }
  return findings;
}

}  // namespace trackedcam::host
