#pragma once
// CocoaFileBrowser: the three operations that each system offers in its own way. On macOS they go
// through Foundation and AppKit (CocoaFileBrowser.cpp); elsewhere through the file system
// (PosixFileBrowser.cpp). Texts are NUL-terminated UTF-8.

// Creates one folder.
//
//   returns  true if it was created; false when it exists already, when its parent does not exist
//            or when `path` is null
bool createFolder(const char* path);

// The folder that holds the users' folders: /Users on macOS, /home elsewhere.
//
//   returns  a new array that the caller releases with delete[], or null when there is none
char* getSharedFolder();

// Lets the user choose one file of the type "vws" or "VWS" in a modal dialog titled `title`. No
// export calls it.
//
//   returns  the chosen path in a new array that the caller releases with delete[]; null when the
//            user cancels or `title` is null, and on systems other than macOS
char* runCocoaOpenFileBrowser(const char* title);
