#include "report/template.h"

#include <stdexcept>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/html.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
using Scopes = std::vector<const Json*>;  // from the outermost to the innermost

const Json* Member(const Json& value, std::string_view path) {
  const Json* member = &value;
  while (!path.empty()) {
    const std::size_t dot = path.find('.');
    const std::string key(path.substr(0, dot));
    if (member->is_array() && key == "0" && !member->empty()) {
      member = &member->front();
    } else if (member->is_object() && member->contains(key)) {
      member = &member->at(key);
    } else {
      return nullptr;
    }
    path = dot == std::string_view::npos ? std::string_view() : path.substr(dot + 1);
  }
  return member;
}

const Json* LookUp(const Scopes& scopes, std::string_view name) {
  if (name == ".") {
    return scopes.back();
  }
  for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
    if (const Json* found = Member(**scope, name)) {
      return found;
    }
  }
  return nullptr;
}

bool IsNothing(const Json* value) {
  return value == nullptr || value->is_null() || *value == false ||
         (value->is_string() && value->get_ref<const std::string&>().empty()) ||
         (value->is_array() && value->empty());
}

std::string TextOf(const Json* value) {
  if (value == nullptr || value->is_null()) {
    return {};
  }
  return value->is_string() ? value->get<std::string>() : value->dump();
}

struct Tag {
  std::size_t begin;
  std::size_t end;
  char kind;  // '#', '^', '/', '{' or ' ' for a plain one
  std::string_view name;
};

/// The first tag from `from` on; begins at npos where there is none.
Tag NextTag(std::string_view text, std::size_t from) {
  const std::size_t begin = text.find("{{", from);
  if (begin == std::string_view::npos) {
    return {begin, begin, ' ', {}};
  }
  const char first = begin + 2 < text.size() ? text[begin + 2] : ' ';
  const bool isMarked = first == '#' || first == '^' || first == '/' || first == '{';
  const std::string_view close = first == '{' ? "}}}" : "}}";
  const std::size_t name = begin + (isMarked ? 3 : 2);
  const std::size_t end = text.find(close, name);
  if (end == std::string_view::npos) {
    throw std::invalid_argument("A tag of the template does not end.");
  }
  return {begin, end + close.size(), isMarked ? first : ' ', text.substr(name, end - name)};
}

/// The tag that ends the section.
Tag EndOf(std::string_view text, const Tag& section) {
  int depth = 1;
  for (Tag tag = NextTag(text, section.end); tag.begin != std::string_view::npos;
       tag = NextTag(text, tag.end)) {
    if (tag.name == section.name && (tag.kind == '#' || tag.kind == '^')) {
      ++depth;
    }
    if (tag.name == section.name && tag.kind == '/' && --depth == 0) {
      return tag;
    }
  }
  throw std::invalid_argument("Section " + std::string(section.name) + " does not end.");
}

void Fill(std::string_view text, Scopes& scopes, std::string& out);

void FillSection(std::string_view inside, const Tag& tag, Scopes& scopes, std::string& out) {
  const Json* value = LookUp(scopes, tag.name);
  if (IsNothing(value)) {
    if (tag.kind == '^') {
      Fill(inside, scopes, out);
    }
    return;
  }
  if (tag.kind == '^') {
    return;
  }
  const auto fillWith = [&](const Json& element) {
    scopes.push_back(&element);
    Fill(inside, scopes, out);
    scopes.pop_back();
  };
  if (value->is_array()) {
    for (const Json& element : *value) {
      fillWith(element);
    }
  } else {
    fillWith(*value);
  }
}

void Fill(std::string_view text, Scopes& scopes, std::string& out) {
  std::size_t done = 0;
  for (Tag tag = NextTag(text, 0); tag.begin != std::string_view::npos; tag = NextTag(text, done)) {
    out += text.substr(done, tag.begin - done);
    done = tag.end;
    if (tag.kind == '#' || tag.kind == '^') {
      const Tag end = EndOf(text, tag);
      FillSection(text.substr(tag.end, end.begin - tag.end), tag, scopes, out);
      done = end.end;
    } else if (tag.kind == '{') {
      out += TextOf(LookUp(scopes, tag.name));
    } else if (tag.kind == '/') {
      throw std::invalid_argument("Section " + std::string(tag.name) + " does not begin.");
    } else {
      out += EscapeHtml(TextOf(LookUp(scopes, tag.name)));
    }
  }
  out += text.substr(done);
}

}  // namespace

std::string Render(std::string_view text, const Json& values) {
  std::string out;
  Scopes scopes = {&values};
  Fill(text, scopes, out);
  return out;
}

}  // namespace trackedcam::report
