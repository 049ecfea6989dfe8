#include <KELXStStorage.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  KELIStorage* storage = KELStgOpenStorageRoot(KELXFilePath(argv[1]));
  KELXDynamicArray<KELXString> names;
  const bool listed = GetStreamNames(storage, names);
  for (const KELXString& name : names) std::puts(name.toUtf8().c_str());
  CloseStorage(storage);
  return listed && VANTREL_INTERNAL_KELXStStorage() == 1 ? 0 : 1;
}
