#include "report/template.h"

#include <stdexcept>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

TEST(Render, InsertsTextEscapedOrUnchanged) {
  const Json values = {{"name", "<b>"}, {"count", 3}, {"nothing", nullptr}};
  EXPECT_EQ(Render("{{name}} {{{name}}} {{count}} [{{nothing}}{{missing}}]", values),
            "&lt;b&gt; <b> 3 []");
}

TEST(Render, NeverReadsAValueAsATemplate) {
  EXPECT_EQ(Render("{{name}}", {{"name", "{{secret}}"}, {"secret", 1}}), "{{secret}}");
}

TEST(Render, RepeatsASectionForEachElement) {
  const Json values = {{"rows", {{{"a", 1}}, {{"a", 2}}}}, {"b", "!"}, {"words", {"x", "y"}}};
  EXPECT_EQ(Render("{{#rows}}{{a}}{{b}}{{/rows}} {{#words}}{{.}};{{/words}}", values), "1!2! x;y;");
}

TEST(Render, ShowsASectionIfThereIsAValue) {
  const Json values = {{"yes", true}, {"no", false},           {"null", nullptr},
                       {"text", ""},  {"list", Json::array()}, {"object", Json::object()}};
  EXPECT_EQ(Render("{{#yes}}1{{/yes}}{{#no}}2{{/no}}{{#null}}3{{/null}}{{#text}}4{{/text}}"
                   "{{#list}}5{{/list}}{{#object}}6{{/object}}{{#missing}}7{{/missing}}",
                   values),
            "16");
  EXPECT_EQ(Render("{{^yes}}1{{/yes}}{{^no}}2{{/no}}{{^null}}3{{/null}}{{^text}}4{{/text}}"
                   "{{^list}}5{{/list}}{{^object}}6{{/object}}{{^missing}}7{{/missing}}",
                   values),
            "23457");
}

TEST(Render, LooksNamesUpFromInsideOut) {
  const Json values = {{"a", {{"b", {{"c", "deep"}}}, {"name", "inner"}}}, {"name", "outer"}};
  EXPECT_EQ(Render("{{a.b.c}} {{#a}}{{name}} {{b.c}}{{/a}} {{name}}", values),
            "deep inner deep outer");
}

TEST(Render, ShowsTheInnerValueEvenIfItIsNothing) {
  const Json values = {{"rows", {{{"a", nullptr}}, {{"a", ""}}, {{"a", false}}}}, {"a", "outer"}};
  EXPECT_EQ(Render("{{#rows}}[{{a}}{{#a}}x{{/a}}]{{/rows}}", values), "[][][]");
}

TEST(Render, ReplacesControlCharacters) {
  EXPECT_EQ(Render("{{name}}", {{"name", std::string("a\0b\x1B", 4)}}), "a\uFFFDb\uFFFD");
}

TEST(Render, NestsSectionsOfOneName) {
  const Json values = {{"a", {{"a", {{"b", 1}}}}}};
  EXPECT_EQ(Render("{{#a}}[{{#a}}{{b}}{{/a}}]{{/a}}", values), "[1]");
}

TEST(Render, RejectsAMalformedTemplate) {
  EXPECT_THROW(Render("{{#a}}", {{"a", 1}}), std::invalid_argument);
  EXPECT_THROW(Render("{{/a}}", {{"a", 1}}), std::invalid_argument);
  EXPECT_THROW(Render("{{a", {{"a", 1}}), std::invalid_argument);
}

}  // namespace
}  // namespace trackedcam::report
