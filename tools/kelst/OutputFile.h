#pragma once

#include <string>
#include <string_view>

#include <CLI/App.hpp>

#include "tools/kelst/Report.h"

namespace kelst {

/// The path that -o gives, and the file that it must not replace.
struct OutputPlace {
  std::string path;
  std::string input;
};

/// The last component of a path: what the file is called wherever it goes.
std::string FileNameOf(const std::string& path);

/// Adds the required option -o to a command.
void AddOutputOption(CLI::App& command, std::string& path);

/// Writes `text` to the file that -o names; "-" stands for standard output. A file comes to stand
/// under its name when it is complete, in the place of what stood there; a device or a pipe is
/// written to. What goes wrong is reported.
void WriteResult(const OutputPlace& place, std::string_view text, Report& report);

}  // namespace kelst
