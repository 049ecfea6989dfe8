#include <set>
#include <vector>

#include "compound/SectorChain.h"
#include "storage/KELIStorage.h"
#include "storage/KELXQuickSort.h"
#include "storage/NameIndexes.h"

namespace {

/// The highest value of a sibling link that names an entry.
constexpr unsigned int kLastSiblingLink = 0xFFFFFFFD;

/// A set of directory indexes. Those inside the directory cost one bit each. The others stand in a
/// tree: links can be chosen so that all of them meet in one place of a hash table.
class IndexSet {
 public:
  explicit IndexSet(int directorySize) : inside_(static_cast<std::size_t>(directorySize)) {}

  /// Whether `index` was not in the set before.
  bool Insert(unsigned long index) {
    if (index >= inside_.size()) return outside_.insert(index).second;
    const bool isNew = !inside_[index];
    inside_[index] = true;
    return isNew;
  }

 private:
  std::vector<bool> inside_;
  std::set<unsigned long> outside_;
};

}  // namespace

void KELIStorage::getColleagueIndexArray(unsigned long index,
                                         KELXDynamicArray<unsigned long>& indices) {
  if (!image_) return;
  const KELXDynamicArray<KELStStorageDirEntry> directory = image_->getDirArray();
  IndexSet listed(directory.Count());
  for (const unsigned long present : indices) listed.Insert(present);
  IndexSet walked(directory.Count());
  std::vector<unsigned long> pending{index};
  const auto follow = [&pending](unsigned int link) {
    if (link <= kLastSiblingLink) pending.push_back(link);
  };
  while (!pending.empty()) {
    const unsigned long current = pending.back();
    pending.pop_back();
    if (listed.Insert(current)) indices.Add(current);
    if (current >= static_cast<unsigned long>(directory.Count()) || !walked.Insert(current)) {
      continue;
    }
    const KELStStorageDirEntry& entry = *directory.At(static_cast<int>(current));
    follow(entry.getLeftSib());
    follow(entry.getRightSib());  // taken from the stack first
  }
}

int KELIStorage::enumElements(KELXDynamicArray<KELStStorageDirEntry>& elements) {
  if (elements_.Count() == 0) {
    const unsigned int child = entry_.getChild();
    if (child >= kelx::internal::kFirstMark) return -1;
    FillElements(child);
  }
  elements = elements_;
  return elements_.Count() > 0 ? 0 : -1;
}

void KELIStorage::FillElements(unsigned int child) {
  KELXDynamicArray<unsigned long> indices;
  getColleagueIndexArray(child, indices);
  if (indices.Count() == 0) return;
  qsort(indices, 0, indices.Count() - 1);
  const KELXDynamicArray<KELStStorageDirEntry> directory = image_->getDirArray();
  elements_.Reserve(indices.Count());
  for (const unsigned long index : std::as_const(indices)) {
    if (index >= static_cast<unsigned long>(directory.Count())) break;
    elements_.Add(*directory.At(static_cast<int>(index)));
  }
}

const KELIStorage::NameIndexes& KELIStorage::Names() {
  if (elements_.Count() == 0) enumElements(elements_);
  if (!names_ || names_->count != elements_.Count()) {
    names_ = std::make_unique<NameIndexes>(elements_);
  }
  return *names_;
}
