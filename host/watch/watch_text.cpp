#include "host/watch/watch_text.h"

#include "host/findings/finding_text.h"
#include "host/text/text.h"
#include "host/verdict/cross_check_adapter.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

constexpr std::size_t kManyPhotographs = 100;

std::string Count(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " photograph" : " photographs");
}

std::string Sizes(const Accuracy& accuracy, int decimals) {
  return Fixed(accuracy.mm, decimals) + " mm and " + Fixed(accuracy.degrees, decimals + 1) + " deg";
}

std::string FoundText(const ShootProgress& progress, const WatchedPhotograph& photograph) {
  const std::string text =
      photograph.isSharp ? "board found, sharp" : "board found, but the photograph is not sharp";
  if (!progress.check || !progress.check->solved || !photograph.checked) {
    return text;
  }
  const crosscheck::PerPhotograph& own = progress.check->perPhotograph.at(*photograph.checked);
  const std::string off = Sizes({own.mm, own.degrees}, 1);
  // Few photographs do not say which of them is the bad one.
  return text + (own.used || progress.withBoard < kLeastPhotographs
                     ? "; " + off + " from what all say"
                     : ", but it contradicts the others by " + off);
}

// The names that findings mention.
std::vector<std::string> NamesOfChecked(const ShootProgress& progress) {
  std::vector<std::string> names;
  for (const WatchedPhotograph& photograph : progress.photographs) {
    if (photograph.checked) {
      names.push_back(photograph.name);
    }
  }
  return names;
}

}  // namespace

std::string PhotographText(const ShootProgress& progress, std::size_t photograph) {
  const WatchedPhotograph& own = progress.photographs.at(photograph);
  const auto with = [&](const std::string& text) { return own.name + ": " + text; };
  switch (own.state) {
    case WatchedState::kAwaited:
      return with("waiting for it");
    case WatchedState::kBoardFound:
      return with(FoundText(progress, own));
    case WatchedState::kNoBoard:
      return with(own.isSharp
                      ? "no board found; the whole board with its white border must be in the "
                        "picture, evenly lit"
                      : "no board found, because the photograph is not sharp");
    case WatchedState::kUnreadable:
      return with("cannot be read as a photograph");
    case WatchedState::kOtherSize:
      return with("has another size than the photographs before it");
    case WatchedState::kNoPose:
      return with("its row has no pose of a tracker; was it in sight?");
  }
  return {};
}

std::vector<std::string> ProgressText(const ShootProgress& progress, const Accuracy& until) {
  std::vector<std::string> text;
  const std::string seen = Count(progress.withBoard) + " with the board";
  const auto& check = progress.check;
  if (check) {
    for (const Finding& finding : FindingsOf(*check, NamesOfChecked(progress))) {
      if (finding.severity == Severity::kError) {
        text.push_back(Text(finding) + ' ' + Advice(finding));
      }
    }
  }
  if (!progress.known) {
    text.insert(text.begin(), seen + '.');
    if (text.size() == 1 && progress.withBoard < kLeastPhotographs) {
      text.push_back("At least " + std::to_string(kLeastPhotographs) +
                     " are needed, with the chart rotated differently in each.");
    }
  } else if (IsEnough(progress)) {
    text.push_back(seen + ": the transform is known to " + Sizes(*progress.known, 1) + " (95 %).");
    text.push_back("Enough. End with Ctrl-C.");
    return text;
  } else {
    const std::size_t more = *progress.stillNeeded;
    text.push_back(seen + ": the transform is known to " + Sizes(*progress.known, 1) + " (95 %). " +
                   (more > kManyPhotographs ? "More than " + std::to_string(kManyPhotographs)
                                            : "About " + std::to_string(more)) +
                   " more like these for " + Shortest(until.mm) + " mm and " +
                   Shortest(until.degrees) + " deg.");
  }
  if (check && !check->suggestedViews.empty()) {
    crosscheck::SuggestedView next = check->suggestedViews.front();
    next.views = 1;
    text.push_back("Next: " + Text(next) + '.');
  }
  return text;
}

bool IsEnough(const ShootProgress& progress) {
  return progress.stillNeeded == std::size_t{0};
}

}  // namespace trackedcam::host
