#include "compound/KELStStorageDirEntry.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

// The values of the type field.
constexpr unsigned char kStorage = 1;
constexpr unsigned char kStream = 2;
constexpr unsigned char kRoot = 5;

}  // namespace

bool KELStStorageDirEntry::operator==(const KELStStorageDirEntry& other) const {
  if (name.compareTo(other.name) == 0) return true;
  return nameLength == other.nameLength && type == other.type && bFlag == other.bFlag &&
         leftSib == other.leftSib && rightSib == other.rightSib && child == other.child &&
         size == other.size;
}

bool KELStStorageDirEntry::isRoot() const { return type == kRoot; }

bool KELStStorageDirEntry::isStorage() const { return type == kStorage; }

bool KELStStorageDirEntry::isStream() const { return type == kStream; }

bool KELStStorageDirEntry::isNameValid() const {
  if (nameLength < 1 || nameLength > kNameBytes) return false;
  return std::ranges::any_of(std::span(rawName).first(nameLength),
                             [](unsigned char byte) { return byte != 0; });
}

bool KELStStorageDirEntry::isValid() const {
  return type >= kStorage && type <= kRoot && isNameValid() && bFlag <= 1;
}

void KELStStorageDirEntry::setName(unsigned char* bytes) {
  std::copy_n(bytes, kNameBytes, rawName);
  std::array<unsigned short, kNameBytes / 2 + 1> characters{};
  for (std::size_t i = 0; i < kNameBytes / 2; ++i) characters[i] = rawName[2 * i];
  name = KELXString(characters.data());
}

void KELStStorageDirEntry::setClsID(unsigned char* value) {
  std::copy_n(value, kClassIdBytes, clsID);
}

void KELStStorageDirEntry::setTime(tagFILETIME* times) {
  if (times == nullptr) return;
  createTime = times[0];
  modifyTime = times[1];
}
