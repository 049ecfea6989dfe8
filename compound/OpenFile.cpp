#include "compound/OpenFile.h"

namespace kelx::internal {

OwnedFile OpenForReading(const KELXFilePath& path) {
  OwnedFile file(path.OpenFile("rb"));
  if (file) static_cast<void>(std::setvbuf(file.get(), nullptr, _IONBF, 0));
  return file;
}

}  // namespace kelx::internal
