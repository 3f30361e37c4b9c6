#include "report/watch_page.h"

#include <nlohmann/json.hpp>

#include "report/embedded.h"
#include "report/template.h"

namespace trackedcam::report {

std::string WatchPage(const WatchView& view) {
  const std::vector<std::string> newestFirst(view.photographs.rbegin(), view.photographs.rend());
  return Render(kWatchHtml.Text(), {{"isRunning", view.isRunning},
                                    {"level", view.isEnough ? "enough" : "more"},
                                    {"progress", view.progress},
                                    {"photographs", newestFirst}});
}

}  // namespace trackedcam::report
