#pragma once
// FileOps: folder and file services, and the path helpers that other modules use.
//
// Paths are NUL-terminated UTF-8 as the host passes them; both '/' and '\' separate folders
// wherever a path is searched for a separator.

#include <string>

// The longest joined path that ClearFolder removes, in bytes without the terminator.
inline constexpr std::size_t kLongestJoinedPath = 255;

// Whether a path looks like a folder: 1 when its last component holds no '.', else 0. The file
// system is not asked, so "a.b/c" is a folder and "sub.d" is not.
int IsDirectory(const char* path);

// A piece of a path. The mode chooses it:
//   1      the folder, last separator included; empty without a separator
//   2      the file name without its extension
//   3      everything before the last dot of the whole path, which may lie in a folder's name
//   4      the extension with its dot; throws std::out_of_range when the path has no dot
//   6      the file name with its extension
//   other  the whole path
std::string FileNameExtract(const std::string& path, int mode);

// Deletes the files of one folder; its sub-folders stay and are never entered.
//
// The name alone decides what counts as a file (IsDirectory): an entry without a dot stays, an empty
// folder with a dot in its name is removed. An entry whose joined path is longer than
// kLongestJoinedPath stays.
//
//   returns  1 if the folder could be opened, also when single removals failed; else 0. An empty
//            path is refused: it would name the root folder.
int ClearFolder(const std::string& path);

// Copies a file. The target is removed first, before the source is opened, so a failed copy still
// deletes the old target, and a file copied onto itself is gone.
//
//   returns  whether the source was opened and every byte of it written. A read error counts as
//            the end of the source.
bool copyFile(const char* source, const char* target);
