#include "tools/kelst/Arguments.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <string_view>

namespace kelst {

namespace {

constexpr char kMark = '\x01';

std::string Mark(const std::string& argument) {
  const bool isMistakable = !argument.empty() && (argument[0] == '[' || argument[0] == kMark);
  return isMistakable ? kMark + argument : argument;
}

std::string Unmark(const std::string& argument) {
  return !argument.empty() && argument[0] == kMark ? argument.substr(1) : argument;
}

template <typename Value>
CLI::Option* Add(CLI::App& command, const std::string& name, Value& value,
                 const std::string& description) {
  CLI::Option* const option = command.add_option(name, value, description);
  return option->transform(Unmark, "", "")->type_name("");
}

}  // namespace

const char* const kPathHelp =
    "PATH is what ls prints: names with / between them. In a name \\\\ stands for a backslash,\n"
    "\\x05 for a control character or a slash (\\x2F), \\u200B for another character that cannot\n"
    "be seen, \\empty for no name at all, and \\#12 at the end for the entry with directory index\n"
    "12, which tells entries of one name apart. Quote it in a shell. A stream is also found by a\n"
    "name in other letter case when no name fits exactly, and after that any entry by what its\n"
    "packed name means, which ls shows in brackets.\n";

CLI::Option* AddText(CLI::App& command, const std::string& name, std::string& value,
                     const std::string& description) {
  return Add(command, name, value, description);
}

CLI::Option* AddTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& description) {
  return Add(command, name, values, description);
}

CLI::Option* AddNumber(CLI::App& command, const std::string& name, std::uint64_t& value,
                       const std::string& description) {
  const auto parse = [name, &value](const std::string& argument) {
    std::string_view digits = argument;
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (isHexadecimal) digits.remove_prefix(2);
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, isHexadecimal ? 16 : 10);
    if (error != std::errc() || stop != end) {
      throw CLI::ConversionError(name + ": \"" + Unmark(argument) + "\" is not a number");
    }
  };
  return command.add_option_function<std::string>(name, parse, description)->type_name("N");
}

std::vector<std::string> ArgumentsOf(int argc, char** argv) {
  std::vector<std::string> arguments;
  for (int i = argc - 1; i > 0; --i)
    arguments.push_back(Mark(argv[i]));  // parse wants the last first
  return arguments;
}

}  // namespace kelst
