#pragma once

#include <cstdio>

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXFilePath.h"
#include "base/KELXString.h"
#include "storage/KELXStStorageElement.h"

class KELIStorage;
class KELIStream;

/// @file
/// The simple interface: open a compound file, list it, read its streams, close it.
///
/// Storages and streams that an opening function returns belong to the caller, who gives them back
/// with CloseStorage and CloseStream, or delete, in any order. Null storages and streams are
/// accepted everywhere and answered with null or false, by the closing functions with true; nothing
/// else is touched then. Sizes and positions are in bytes.
///
/// Names are those of direct children, as the listing functions give them; there are no paths.

/// Opens the file at `path` as a root storage. 0, or -1 with `*storage` null when it cannot be
/// opened or is no compound file. KELStStorageFileInfo::checkHeader lists what is tested.
KELXSTSTORAGE_API int KELStgOpenStorage(const KELXFilePath& path, KELIStorage** storage);

/// The root storage of the file at `path`; null when it cannot be opened or is no compound file.
/// KELXFilePath::OpenFile tells one from the other. What is no regular file is opened as well, and
/// a pipe keeps the caller waiting.
KELXSTSTORAGE_API KELIStorage* KELStgOpenStorageRoot(const KELXFilePath& path);

/// Whether the file at `path` can be opened as a compound file. It is loaded for that.
KELXSTSTORAGE_API bool IsStorageFile(const KELXFilePath& path);

/// The same as KELStgOpenStorageRoot; `second` is not used.
KELXSTSTORAGE_API KELIStorage* OpenStorage(const KELXFilePath& path, KELXFilePath& second);

/// The child storage `name`, letter case included; null when there is none.
KELXSTSTORAGE_API KELIStorage* OpenStorage(KELIStorage* storage, const KELXString& name);

/// The child stream `name`, letter case ignored; null when there is none or it cannot be read. A
/// stream of 0 bytes cannot be opened: KELIStorage::enumElements tells the sizes.
KELXSTSTORAGE_API KELIStream* OpenStream(KELIStorage* storage, const KELXString& name);

/// Appends the names of the child storages, the child streams, or all children to `names`, and
/// sorts the whole of it by code point, names that it held before included. True, also when no
/// child is of that kind; false, with `names` untouched, when the storage has no children at all.
/// @{
KELXSTSTORAGE_API bool GetStorageNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names);
KELXSTSTORAGE_API bool GetStreamNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names);
KELXSTSTORAGE_API bool GetStreamStorageNames(KELIStorage* storage,
                                             KELXDynamicArray<KELXString>& names);
/// @}

/// Appends a record for each child to `elements`, in directory order. Whether `elements` then
/// holds any record, those that it held before included.
KELXSTSTORAGE_API bool GetChildElements(KELIStorage* storage,
                                        KELXDynamicArray<KELXStStorageElement>& elements);

/// Stores the size that the stream's directory entry states in `size`, below 2^32. A damaged stream
/// can hold fewer bytes: do not make a buffer of a size that a stranger's file states, but read in
/// pieces.
KELXSTSTORAGE_API bool GetStreamSize(KELIStream* stream, unsigned long& size);

/// Reads `count` bytes from the position on into `buffer`. False when fewer are left: they are
/// copied and the position moves past them all the same, but only KELIStream::Read tells how many
/// they were.
/// @{
KELXSTSTORAGE_API bool ReadStream(KELIStream* stream, char* buffer, unsigned long count);
KELXSTSTORAGE_API bool ReadStream(KELIStream* stream, unsigned char* buffer, unsigned long count);
/// @}

/// Moves the position of the stream forward by `position` bytes. `position` is only read: whatever
/// the name says, no operation tells the position. False for a null stream only.
KELXSTSTORAGE_API bool TellStream(KELIStream* stream, unsigned long& position);

/// Sets the position of the stream to `origin + offset`; `origin` is a position, not a code: 0 for
/// the begin. The position may lie past the end. False for a null stream only.
KELXSTSTORAGE_API bool SeekStream(KELIStream* stream, long offset, int origin);

/// Writes `size` bytes of the stream, from its position on, to the file at `path`, which is made
/// or emptied; 0 stands for the size that the directory entry states. False when the file cannot
/// be opened, or when the stream has fewer bytes left: the bytes are written in pieces of 1024,
/// and the piece that falls short is left out. Whether the file takes the bytes is not looked at.
KELXSTSTORAGE_API bool WriteStreamToFile(KELIStream* stream, KELXFilePath& path,
                                         unsigned long size);

/// The same into `file`, open for writing, which stays open and the caller's; false when it is
/// null.
KELXSTSTORAGE_API bool WriteStreamToFile(KELIStream* stream, std::FILE* file, unsigned long size);

/// Deletes the stream, the storage. Always true.
/// @{
KELXSTSTORAGE_API bool CloseStream(KELIStream* stream);
KELXSTSTORAGE_API bool CloseStorage(KELIStorage* storage);
/// @}

/// Returns 1, which tells a program that loads the library at run time that it has found it.
extern "C" KELXSTSTORAGE_API int VANTREL_INTERNAL_KELXStStorage();
