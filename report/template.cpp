#include "report/template.h"

#include <kainjow/mustache.hpp>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "report/html.h"

namespace trackedcam::report {
namespace {

namespace mustache = kainjow::mustache;
using Json = nlohmann::ordered_json;

mustache::data DataOf(const Json& value) {
  if (value.is_object()) {
    mustache::data object;
    for (const auto& [key, member] : value.items()) {
      object[key] = DataOf(member);
    }
    return object;
  }
  if (value.is_array()) {
    mustache::data list(mustache::data::type::list);
    for (const Json& element : value) {
      list.push_back(DataOf(element));
    }
    return list;
  }
  if (value.is_string()) {
    const auto& text = value.get_ref<const std::string&>();
    return text.empty() ? mustache::data(false) : mustache::data(text);
  }
  return value.is_number() ? mustache::data(value.dump()) : mustache::data(value == true);
}

}  // namespace

std::string Render(const std::string& text, const Json& values) {
  mustache::mustache page(text);
  page.set_custom_escape(EscapeHtml);
  std::string rendered = page.render(DataOf(values));
  if (!page.is_valid()) {
    throw std::invalid_argument(page.error_message());
  }
  return rendered;
}

}  // namespace trackedcam::report
