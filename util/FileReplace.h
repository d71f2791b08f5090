// Replacing the whole content of a file: through a new file swapped in where
// that can be done, emptied and written in place where it cannot.
#pragma once

#include <cstddef>
#include <cstdio>

namespace ondutil {

// Writes size bytes of data as the whole content of the file at path, made
// if missing. Returns how many bytes reached the file; *complete tells
// whether it now holds exactly data.
//
// The bytes go to a new file beside it, which takes the old one's place only
// once complete (OsReplaceFile), so a write that fails midway leaves the old
// file as it was. Where no new file can be put in its place - the folder
// takes no new file, another program holds the file open, a new file would
// not be the same file to its users (another hard link, another owner) - the
// file is emptied and written in place, as a plain write does; a write that
// fails then leaves what got through. A file that exists but may not be
// written is left alone, as with a plain open.
size_t ReplaceFileContent(const char* path, const char* data, size_t size, bool* complete);

// Writes the bytes to f behind the test seam (util/FileReplaceSeam.h);
// returns how many were written.
size_t WriteFileBytes(FILE* f, const char* data, size_t size);

}  // namespace ondutil
