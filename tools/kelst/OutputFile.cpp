#include "tools/kelst/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <system_error>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/FileDescriptor.h"
#include "tools/kelst/Folder.h"

namespace kelst {

namespace {

std::span<const unsigned char> BytesOf(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

void WriteToDevice(const std::string& path, std::string_view text) {
  FileDescriptor device(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!device || !WriteAll(device.Get(), text) || !device.Close()) {
    throw std::system_error(errno, std::generic_category());
  }
}

/// A link is followed, so that what it leads to is replaced and not the link.
void ReplaceFile(const std::string& path, std::string_view text) {
  namespace fs = std::filesystem;
  const fs::path target = fs::is_symlink(path) ? fs::canonical(path) : fs::path(path);
  const std::string parent = target.parent_path().string();
  const Folder folder = Folder::Open(parent.empty() ? "." : parent);
  NewFile file(folder);
  file.Write(BytesOf(text));
  file.Keep(target.filename().string(), true);
}

void WriteToFile(const OutputPlace& place, std::string_view text) {
  struct stat there {};
  struct stat input {};
  const bool exists = stat(place.path.c_str(), &there) == 0;
  if (exists && stat(place.input.c_str(), &input) == 0 && there.st_dev == input.st_dev &&
      there.st_ino == input.st_ino) {
    throw std::runtime_error("is the compound file itself; name another file with -o");
  }
  if (exists && S_ISDIR(there.st_mode)) throw std::system_error(EISDIR, std::generic_category());
  const bool isDevice = exists && !S_ISREG(there.st_mode);
  isDevice ? WriteToDevice(place.path, text) : ReplaceFile(place.path, text);
}

}  // namespace

std::string FileNameOf(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

void AddOutputOption(CLI::App& command, std::string& path) {
  AddText(command, "-o,--output", path,
          "File to write, replaced if there, but never FILE; - is standard output")
      ->required()
      ->type_name("OUTPUT");
}

void WriteResult(const OutputPlace& place, std::string_view text, Report& report) {
  if (place.path == "-") return report.Out().Write(text);
  const auto fail = [&](const std::string& reason) {
    report.Fail(ExitCode::kFailed, Printable(place.path) + ": " + reason);
  };
  try {
    WriteToFile(place, text);
  } catch (const std::system_error& error) {
    fail(error.code().message());
  } catch (const std::runtime_error& error) {
    fail(error.what());
  }
}

}  // namespace kelst
