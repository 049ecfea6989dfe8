#pragma once

#include "base/KELXExport.h"
#include "base/KELXFileTime.h"
#include "base/KELXString.h"

/// One entry of a compound file's directory: a storage, a stream, the root or an empty slot.
///
/// A value type; arrays may move it bytewise. An entry's identifier is its index in the directory;
/// the links to siblings and to the first child are such identifiers. Nothing is judged when an
/// entry is read: ask isValid. The class identifier, the state bits and the times are kept, but
/// nothing reads them out.
class KELXSTSTORAGE_API KELStStorageDirEntry {
 public:
  /// Every field zero, the name empty.
  KELStStorageDirEntry() = default;

  /// Whether the names are equal, case included, or else name length, type, colour, the three
  /// links and size are all equal. Either is enough.
  bool operator==(const KELStStorageDirEntry& other) const;

  /// The name as text, made of the first byte of each of its 16-bit characters in the file. That is
  /// the low one, but where a file of the opposite byte order stores names high byte first: there
  /// ASCII names come out empty. Characters beyond U+00FF come out wrong. The name ends where that
  /// byte is zero, after 32 characters at the latest.
  [[nodiscard]] KELXString getName() const { return name; }

  /// Identifiers of the siblings and of the top of the tree of children; 0xFFFFFFFF for none.
  /// @{
  [[nodiscard]] unsigned int getLeftSib() const { return leftSib; }
  [[nodiscard]] unsigned int getRightSib() const { return rightSib; }
  [[nodiscard]] unsigned int getChild() const { return child; }
  /// @}

  /// The first sector of the stream; of a small stream the first mini sector; of the root the
  /// first sector of the mini stream.
  [[nodiscard]] unsigned int getStartSect() const { return startSect; }

  /// The size of the stream in bytes, below 2^32 in entries read from a file.
  [[nodiscard]] unsigned long getSize() const { return size; }

  /// 0 empty slot, 1 storage, 2 stream, 5 root; other values as found in the file.
  [[nodiscard]] unsigned char getType() const { return type; }

  /// Whether the type is that one. The name and the other fields play no part.
  /// @{
  [[nodiscard]] bool isRoot() const;
  [[nodiscard]] bool isStorage() const;
  [[nodiscard]] bool isStream() const;
  /// @}

  /// Whether the name length is 1 to 64 bytes and one of so many bytes of the name is not zero.
  [[nodiscard]] bool isNameValid() const;

  /// Whether the type is 1 to 5, the name is valid and the colour is 0 or 1.
  [[nodiscard]] bool isValid() const;

  /// Takes the 64 bytes at `bytes`, UTF-16 as in the file, as the name. They are copied.
  void setName(unsigned char* bytes);

  /// The length of the name in bytes, its terminating zero included.
  void setNameLength(unsigned short value) { nameLength = value; }

  /// The type, as getType has it.
  void setType(unsigned char value) { type = value; }

  /// The colour in the tree of siblings, 0 or 1.
  void setBFlag(unsigned char value) { bFlag = value; }

  /// The links, as getLeftSib, getRightSib and getChild have them.
  /// @{
  void setLeftSib(unsigned int value) { leftSib = value; }
  void setRightSib(unsigned int value) { rightSib = value; }
  void setChild(unsigned int value) { child = value; }
  /// @}

  /// Copies the 16 bytes at `value`, as in the file, as the class identifier.
  void setClsID(unsigned char* value);

  /// The state bits.
  void setUserFlag(unsigned long value) { userFlag = value; }

  /// Keeps two time stamps: `times[0]` is the time of creation, `times[1]` that of the last
  /// change. Null is ignored.
  void setTime(tagFILETIME* times);

  /// The first sector, as getStartSect has it.
  void setStartSect(unsigned int value) { startSect = value; }

  /// The size in bytes.
  void setSize(unsigned long value) { size = value; }

  /// The two bytes after the size, of no known use.
  void setPropertyType(unsigned short value) { propertyType = value; }

 private:
  static constexpr int kNameBytes = 64;
  static constexpr int kClassIdBytes = 16;

  unsigned char rawName[kNameBytes] = {};
  KELXString name;
  unsigned short nameLength = 0;
  unsigned char type = 0;
  unsigned char bFlag = 0;
  unsigned int leftSib = 0;
  unsigned int rightSib = 0;
  unsigned int child = 0;
  unsigned char clsID[kClassIdBytes] = {};
  unsigned long userFlag = 0;
  tagFILETIME createTime = {};
  tagFILETIME modifyTime = {};
  unsigned int startSect = 0;
  unsigned long size = 0;
  unsigned short propertyType = 0;
};
