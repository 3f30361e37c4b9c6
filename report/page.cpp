#include "report/page.h"

#include <stdexcept>

#include <nlohmann/json.hpp>

#include "report/embedded.h"
#include "report/html.h"
#include "report/page_view.h"
#include "report/result_values.h"
#include "report/template.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

std::string Source(const EmbeddedFile& file) {
  return "'sha256-" + Base64(BytesOfHex(file.sha256)) + "'";
}

/// Nothing is loaded but photographs from their files, and only the scripts of the program run.
std::string Policy() {
  return "default-src 'none'; script-src " + Source(kThreeJs) + ' ' + Source(kOrbitControlsJs) +
         ' ' + Source(kChartJs) + ' ' + Source(kPageJs) + "; style-src " + Source(kPageCss) +
         "; img-src data: file:; base-uri 'none'; form-action 'none'";
}

// What a mail must carry.
std::string SizeText(std::size_t bytes) {
  return Fixed(static_cast<double>(bytes) / 1e6, 1) + " MB";
}

}  // namespace

std::string Page(const Json& result, const std::vector<Thumbnail>& thumbnails,
                 const std::filesystem::path& pageFolder, const UndistortedPhotograph& undistorted,
                 const Json& beside) {
  if (!result.is_object()) {
    throw std::invalid_argument("it is not a JSON object");
  }
  Json values = PageView(result, thumbnails, pageFolder, undistorted);
  values["beside"] = RunsView(beside);
  values["policy"] = Policy();
  values["style"] = kPageCss.Text();
  values["threeJs"] = kThreeJs.Text();
  values["orbitControlsJs"] = kOrbitControlsJs.Text();
  values["chartJs"] = kChartJs.Text();
  values["pageJs"] = kPageJs.Text();
  values["json"] = EscapeJson(result.dump(-1, ' ', false, Json::error_handler_t::replace));
  values["pageSize"] = SizeText(Render(kPageHtml.Text(), values).size());
  return Render(kPageHtml.Text(), values);
}

}  // namespace trackedcam::report
