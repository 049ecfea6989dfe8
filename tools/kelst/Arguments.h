#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace kelst {

/// What --help says about paths of entries, for commands that take one.
extern const char* const kPathHelp;

/// Adds an option or positional argument whose value is text, taken as it is.
CLI::Option* AddText(CLI::App& command, const std::string& name, std::string& value,
                     const std::string& description);
CLI::Option* AddTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& description);

/// Adds an option N whose value is a number in decimal, or in hexadecimal after 0x.
CLI::Option* AddNumber(CLI::App& command, const std::string& name, std::uint64_t& value,
                       const std::string& description);

/// The arguments of main, made ready for `CLI::App::parse`. The parser would take "[a,b]" for two
/// values; here it is marked, and the functions above take the mark off again.
std::vector<std::string> ArgumentsOf(int argc, char** argv);

}  // namespace kelst
