#pragma once

#include <string>
#include <utility>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// The layout of the help: room for long options, and one blank line between groups.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    column_width(38);
    label("SUBCOMMAND", "COMMAND");
    label("REQUIRED", "(required)");
  }

  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(Formatter::make_help(app, std::move(name), mode), "\n\n\n",
                                         "\n\n");
  }
};

}  // namespace trackedcam::app
