#include "tools/kelst/Folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace kelst {

namespace {

constexpr mode_t kFolderMode = 0777;  // less what the umask takes away
constexpr mode_t kFileMode = 0666;

[[noreturn]] void ThrowError() { throw std::system_error(errno, std::generic_category()); }

void Require(bool isDone) {
  if (!isDone) ThrowError();
}

FileDescriptor OpenAt(int parent, const std::string& name, int flags) {
  FileDescriptor folder(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags));
  Require(static_cast<bool>(folder));
  return folder;
}

FileDescriptor OpenOrMakeAt(int parent, const std::string& name, int flags) {
  Require(mkdirat(parent, name.c_str(), kFolderMode) == 0 || errno == EEXIST);
  return OpenAt(parent, name, flags);
}

bool RenameUnlessTaken(int folder, const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
  if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
#endif
  return linkat(folder, from, folder, to, 0) == 0 && unlinkat(folder, from, 0) == 0;
}

}  // namespace

Folder Folder::Open(const std::string& path) { return Folder(OpenAt(AT_FDCWD, path, 0)); }

Folder Folder::OpenOrMake(const std::string& path) {
  return Folder(OpenOrMakeAt(AT_FDCWD, path, 0));
}

Folder Folder::OpenOrMakeInside(const std::string& name) const {
  return Folder(OpenOrMakeAt(Descriptor(), name, O_NOFOLLOW));
}

bool Folder::Has(const std::string& name) const {
  struct stat facts {};
  return fstatat(Descriptor(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0;
}

NewFile::NewFile(const Folder& folder) : folder_(folder) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  for (unsigned int number = 0; !descriptor_; ++number) {
    temporaryName_ = ".kelst-" + std::to_string(getpid()) + '-' + std::to_string(number) + ".part";
    descriptor_ =
        FileDescriptor(openat(folder.Descriptor(), temporaryName_.c_str(), kFlags, kFileMode));
    Require(descriptor_ || errno == EEXIST);
  }
}

NewFile::~NewFile() {
  if (!temporaryName_.empty()) unlinkat(folder_.Descriptor(), temporaryName_.c_str(), 0);
}

void NewFile::Write(std::span<const unsigned char> bytes) {
  Require(WriteAll(descriptor_.Get(), bytes));
}

void NewFile::Keep(const std::string& name, bool replace) {
  Require(descriptor_.Close());
  const int folder = folder_.Descriptor();
  const char* const temporary = temporaryName_.c_str();
  Require(replace ? renameat(folder, temporary, folder, name.c_str()) == 0
                  : RenameUnlessTaken(folder, temporary, name.c_str()));
  temporaryName_.clear();
}

}  // namespace kelst
