#include "export/Quillon.h"
#include "exports/Groups.h"

using namespace quillon_status;

namespace {

constexpr StatusMeaning kVersionRows[] = {{kVersion, cause::kDone, "the version of the interface"}};

constexpr StatusMeaning kCreateFolder[] = {
    {kOk, cause::kDone, "the folder was created"},
    {kFailed, cause::kNullArgument | cause::kTargetNotWritten | cause::kDiskFull,
     "the folder was not created: it exists, its parent folder does not, writing is not allowed, "
     "or the disk is full"}};

constexpr StatusMeaning kGetPublicFolder[] = {
    {kPublicFolderCopied, cause::kDone, "the folder's path was copied"},
    {kNoPublicFolder, cause::kNullArgument | cause::kSourceNotOpened | cause::kNoMemory,
     "this machine has no such folder, or there is too little memory"}};

constexpr StatusMeaning kFolderNotOpened{
    kFailed, cause::kNullArgument | cause::kSourceNotOpened | cause::kNoMemory,
    "the folder cannot be opened, or there is too little memory"};

constexpr StatusMeaning kCheckFolder[] = {{kOk, cause::kDone, "the folder can be opened"},
                                          kFolderNotOpened};

constexpr StatusMeaning kOpenFolder[] = {{kOk, cause::kDone, "the folder is open for GetFile"},
                                         kFolderNotOpened};

constexpr StatusMeaning kGetFile[] = {
    {kOk, cause::kDone, "the next entry of the open folder"},
    {kListingExhausted, cause::kNothingOpen | cause::kReadFailed,
     "no entry is left, or the folder cannot be read any further"},
    {kFailed, cause::kNullArgument | cause::kNothingOpen,
     "no folder is open (OpenFolder and GetFile need one process)"}};

constexpr StatusMeaning kCloseFolder[] = {{kOk, cause::kDone, "the listing is closed"},
                                          {kFailed, cause::kNothingOpen, "no folder is open"}};

constexpr StatusMeaning kEmptyFolder[] = {
    {kOk, cause::kDone | cause::kSourceNotWritable | cause::kReadFailed,
     "the folder's files were deleted, as far as that is allowed"},
    kFolderNotOpened};

constexpr StatusMeaning kFileDelete[] = {
    {kOk, cause::kDone, "the file was deleted"},
    {kFailed, cause::kNullArgument | cause::kSourceNotOpened | cause::kSourceNotWritable,
     "the file was not deleted: there is none, it is a folder with entries, or deleting is not "
     "allowed"}};

constexpr StatusMeaning kFileCopyTo[] = {
    {kOk, cause::kDone | cause::kReadFailed, "the file was copied"},
    {kFailed,
     cause::kNullArgument | cause::kSourceNotOpened | cause::kTargetNotWritten | cause::kDiskFull,
     "the file was not copied: the source cannot be opened, the target cannot be written, or the "
     "disk is full"}};

constexpr StatusMeaning kFileRename[] = {
    {kOk, cause::kDone, "the file was renamed"},
    {kFailed, cause::kNullArgument | cause::kSourceNotOpened | cause::kTargetNotWritten,
     "the file was not renamed: there is none, or the new path is on another disk, in a folder "
     "that is not there, or not allowed"}};

constexpr StatusMeaning kGetString[] = {{kOk, cause::kDone, "the text was copied"},
                                        {kFailed, cause::kNullArgument, ""}};

constexpr Interruption kEmptied{
    .sentence = "Some of the entries are deleted, others not yet. A second call deletes the rest."};

constexpr Export kExports[] = {
    {.name = "Version",
     .purpose = "Returns the version of the interface.",
     .writes = "Nothing.",
     .statuses = kVersionRows,
     .example = "quillon call Version",
     .prints = {48.0f},
     .next = "It cannot fail. Another number comes from another library: check which one is "
             "loaded."},
    {.name = "CreateFolder",
     .purpose = "Creates a folder.",
     .text = "folder",
     .textUse = TextUse::kFolder,
     .writes = "The folder, empty. Its parent must be there already.",
     .interrupted = &interruption::kOneStep,
     .statuses = kCreateFolder,
     .example = "quillon call CreateFolder new",
     .next = "CheckFolder shows whether the folder is there already; create missing parents "
             "first, one call each."},
    {.name = "GetPublicFolder",
     .purpose = "Copies the path of the folder that contains the users' folders.",
     .buffer = BufferUse::kOutput,
     .bufferIs = "the users' folder",
     .writes = "The path goes to `buffer1`; it has no separator at its end.",
     .statuses = kGetPublicFolder,
     .example = "quillon call GetPublicFolder",
     .prints = {1.0f, "/home"},
     .next = "Success is 1 here and failure 0; in every other export 0 is no failure."},
    {.name = "CheckFolder",
     .purpose = "Returns whether a folder can be opened.",
     .text = "folder",
     .textUse = TextUse::kFolder,
     .writes = "Nothing. A listing that is open is closed.",
     .statuses = kCheckFolder,
     .example = "quillon call CheckFolder maps",
     .next = "See whether the path is a folder and not a file, and who may read it. A listing "
             "begun before must be opened again."},
    {.name = "OpenFolder",
     .purpose = "Opens a folder for listing.",
     .text = "folder",
     .textUse = TextUse::kFolder,
     .writes = "Nothing. A listing that is open is closed first.",
     .statuses = kOpenFolder,
     .example = "quillon call OpenFolder maps",
     .next = "See whether the path is a folder and not a file, and who may read it."},
    {.name = "GetFile",
     .purpose = "Copies the name of the next entry of the open folder.",
     .buffer = BufferUse::kOutput,
     .bufferIs = "an entry's name",
     .writes = "The entry's name without its folder goes to `buffer1`. Entries come in the file "
               "system's own order, \".\" and \"..\" among them.",
     .statuses = kGetFile,
     .example = "printf 'OpenFolder maps\\nGetFile\\nCloseFolder\\n' | quillon script -",
     .output = "OpenFolder              0  maps\n"
               "GetFile                 0  gives .\n"
               "CloseFolder             0\n",
     .next = "-3 is the end of every listing and not an error. -1 before it: OpenFolder failed, or "
             "CheckFolder or CloseFolder was called in between."},
    {.name = "CloseFolder",
     .purpose = "Ends a listing.",
     .writes = "Nothing.",
     .statuses = kCloseFolder,
     .example = "printf 'OpenFolder maps\\nCloseFolder\\n' | quillon script -",
     .output = "OpenFolder              0  maps\n"
               "CloseFolder             0\n",
     .next = "No listing was open: OpenFolder failed, or the listing was closed before. There is "
             "nothing to do."},
    {.name = "EmptyFolder",
     .purpose = "Deletes the files of a folder.",
     .text = "folder",
     .textUse = TextUse::kFolder,
     .writes = "Deletes every entry with a dot in its name behind the last `/` or `\\`, an empty "
               "sub-folder among them. An entry without one stays, and so does a path of more than "
               "255 bytes and what may not be deleted. Sub-folders are not entered. A folder that "
               "cannot be read to its end is emptied as far as it was read.",
     .interrupted = &kEmptied,
     .statuses = kEmptyFolder,
     .example = "quillon call EmptyFolder maps",
     .next = "CheckFolder shows whether the folder can be opened. 0 does not say that every file "
             "is gone: list the folder to be sure."},
    {.name = "FileDelete",
     .purpose = "Deletes a file or an empty folder.",
     .text = "file",
     .textUse = TextUse::kEither,
     .writes = "Deletes what `text` names.",
     .interrupted = &interruption::kOneStep,
     .statuses = kFileDelete,
     .example = "quillon call FileDelete filter.txt",
     .next = "See whether the file is there, and whether its folder may be written to. A folder "
             "must be empty."},
    {.name = "FileCopyTo",
     .purpose = "Copies a file.",
     .text = "source",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target. What had its path, a file or an empty folder, is deleted first, even "
               "when the source is not there; a file copied onto itself is gone. A source that "
               "cannot be read to its end is copied as far as it was read, with the status 0. A "
               "full disk leaves a part of the target.",
     .interrupted = &interruption::kWrittenAnew,
     .statuses = kFileCopyTo,
     .example = "quillon call FileCopyTo 1001.tif --buffer maps/all.tif",
     .next = "See whether the source is a file that may be read, whether the target's folder is "
             "there, and whether the disk is full. After 0 compare the sizes."},
    {.name = "FileRename",
     .purpose = "Renames or moves a file.",
     .text = "old path",
     .textUse = TextUse::kEither,
     .buffer = BufferUse::kPath,
     .bufferIs = "new path",
     .writes = "The file under its new path, in place of a file that had it. Two links to one file "
               "both stay, with the status 0.",
     .interrupted = &interruption::kOneStep,
     .statuses = kFileRename,
     .example = "quillon call FileRename 1001.tif --buffer maps/first.tif",
     .next = "See whether both folders are there and on one disk; between disks use FileCopyTo "
             "and FileDelete."},
    {.name = "GetString",
     .purpose = "Copies the rest of a text.",
     .text = "any text",
     .textUse = TextUse::kText,
     .value = "first byte, 0 to 10, else 5",
     .valueName = "start",
     .numbers = Numbers{.most = 10, .others = "replaced", .replacement = 5},
     .buffer = BufferUse::kOutput,
     .bufferIs = "the rest of the text",
     .writes = "The bytes from that one on go to `buffer1`; past the end of the text, none.",
     .statuses = kGetString,
     .example = "quillon call GetString abcdefgh --value 2",
     .prints = {0.0f, "cdefgh"},
     .next = "Pass both a text and a block. Bytes are counted, not letters: in UTF-8 a letter "
             "may take several."},
};

}  // namespace

const ExportGroup& folderExports() {
    static constexpr ExportGroup kGroup{
        "Folders and files",
        "0 is success, -1 failure or a missing argument; GetPublicFolder, GetFile and Version "
        "return other numbers, too.",
        kExports};
    return kGroup;
}
