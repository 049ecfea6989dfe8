#include <KELXStStorage.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr int kMostDepth = 64;

/// The name in printable ASCII, fit for a terminal: the names in a file are a stranger's.
std::string Shown(const KELXString& name) {
  std::string text = name.toUtf8();
  const auto isUnfit = [](char byte) { return byte < ' ' || byte > '~'; };
  std::ranges::replace_if(text, isUnfit, '?');
  return text;
}

/// Prints size and path of every stream in `storage` and the storages below it. False when the file
/// is damaged: in a sound one each entry is met once, so that `entriesLeft` is never used up.
bool ListStreams(KELIStorage& storage, const std::string& path, int depth, int& entriesLeft) {
  KELXDynamicArray<KELStStorageDirEntry> children;
  storage.enumElements(children);
  entriesLeft -= children.Count();
  if (entriesLeft < 0 || depth > kMostDepth) return false;
  for (const KELStStorageDirEntry& child : children) {
    const std::string childPath = path + Shown(child.getName());
    if (child.isStream()) std::cout << child.getSize() << '\t' << childPath << '\n';
    if (!child.isStorage()) continue;
    const std::unique_ptr<KELIStorage> opened(OpenStorage(&storage, child.getName()));
    if (!opened || !ListStreams(*opened, childPath + '/', depth + 1, entriesLeft)) return false;
  }
  return true;
}

}  // namespace

/// Lists the streams of a compound file: list_streams report.doc
int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(argv[1])));
  if (!root) {
    std::cerr << argv[1] << ": cannot be opened, or is no compound file\n";
    return 1;
  }
  int entriesLeft = root->getStStorageFileInfo()->getDirArray().Count();
  if (ListStreams(*root, "", 0, entriesLeft)) return 0;
  std::cerr << argv[1] << ": damaged\n";
  return 1;
}
