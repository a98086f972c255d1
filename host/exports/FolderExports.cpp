#include "export/Quillon.h"
#include "exports/Groups.h"

using namespace quillon_status;

namespace {

constexpr StatusMeaning kVersionAnswers[] = {{kVersion, true, "the version of the interface"}};

constexpr StatusMeaning kCreateFolder[] = {
    {kOk, true, "the folder was created"},
    {kFailed, false,
     "the folder was not created: it exists, its parent folder does not, or writing is not "
     "allowed"}};

constexpr StatusMeaning kGetPublicFolder[] = {
    {kPublicFolderCopied, true, "the folder's path was copied"},
    {kNoPublicFolder, false, "this machine has no such folder"}};

constexpr StatusMeaning kCheckFolder[] = {{kOk, true, "the folder can be opened"},
                                          {kFailed, false, "the folder cannot be opened"}};

constexpr StatusMeaning kOpenFolder[] = {{kOk, true, "the folder is open for GetFile"},
                                         {kFailed, false, "the folder cannot be opened"}};

constexpr StatusMeaning kGetFile[] = {
    {kOk, true, "the next entry of the open folder"},
    {kListingExhausted, false, "no entry is left"},
    {kFailed, false, "no folder is open (OpenFolder and GetFile need one process)"}};

constexpr StatusMeaning kCloseFolder[] = {{kOk, true, "the listing is closed"},
                                          {kFailed, false, "no folder is open"}};

constexpr StatusMeaning kEmptyFolder[] = {
    {kOk, true, "the folder's files were deleted, as far as that is allowed"},
    {kFailed, false, "the folder cannot be opened"}};

constexpr StatusMeaning kFileDelete[] = {
    {kOk, true, "the file was deleted"},
    {kFailed, false, "the file was not deleted: there is none, or it is not allowed"}};

constexpr StatusMeaning kFileCopyTo[] = {
    {kOk, true, "the file was copied"},
    {kFailed, false,
     "the file was not copied: the source cannot be opened or the target not be written"}};

constexpr StatusMeaning kFileRename[] = {
    {kOk, true, "the file was renamed"},
    {kFailed, false,
     "the file was not renamed: there is none, or the new path is on another disk or not "
     "allowed"}};

constexpr StatusMeaning kGetString[] = {{kOk, true, "the text was copied"},
                                        {kFailed, false, "refused: a text or block is missing"}};

constexpr Export kExports[] = {
    {.name = "Version",
     .purpose = "Tells the version of the interface.",
     .writes = "Nothing.",
     .statuses = kVersionAnswers,
     .example = "quillon call Version",
     .output = "status   48\n"
               "meaning  success: the version of the interface\n",
     .next = "It cannot fail. Another number is another library: see which one is loaded."},
    {.name = "CreateFolder",
     .purpose = "Creates a folder.",
     .text = "folder",
     .writes = "The folder, empty. Its parent must be there already.",
     .statuses = kCreateFolder,
     .example = "quillon call CreateFolder new",
     .output = "status   0\n"
               "meaning  success: the folder was created\n",
     .next = "CheckFolder tells whether the folder is there already; create missing parents "
             "first, one call each."},
    {.name = "GetPublicFolder",
     .purpose = "Tells where the users' folders lie.",
     .buffer = BufferUse::kOutput,
     .bufferIs = "the users' folder",
     .writes = "The path goes to `buffer1`; it has no separator at its end.",
     .statuses = kGetPublicFolder,
     .example = "quillon call GetPublicFolder",
     .output = "status   1\n"
               "meaning  success: the folder's path was copied\n"
               "text     /home\n",
     .next = "Success is 1 here and failure 0, the other way round than everywhere else."},
    {.name = "CheckFolder",
     .purpose = "Tells whether a folder can be opened.",
     .text = "folder",
     .writes = "Nothing. A listing that is open is closed.",
     .statuses = kCheckFolder,
     .example = "quillon call CheckFolder maps",
     .output = "status   0\n"
               "meaning  success: the folder can be opened\n",
     .next = "See whether the path is a folder and not a file, and who may read it. A listing "
             "begun before must be opened again."},
    {.name = "OpenFolder",
     .purpose = "Opens a folder for listing.",
     .text = "folder",
     .writes = "Nothing. A listing that is open is closed first.",
     .statuses = kOpenFolder,
     .example = "quillon call OpenFolder maps",
     .output = "status   0\n"
               "meaning  success: the folder is open for GetFile\n",
     .next = "See whether the path is a folder and not a file, and who may read it."},
    {.name = "GetFile",
     .purpose = "Tells the next entry of the open folder.",
     .buffer = BufferUse::kOutput,
     .bufferIs = "an entry's name",
     .writes = "The entry's name without its folder goes to `buffer1`. Entries come in the file "
               "system's own order, \".\" and \"..\" among them.",
     .statuses = kGetFile,
     .example = "printf 'OpenFolder maps\\nGetFile\\nCloseFolder\\n' | quillon script -",
     .output = "OpenFolder              0  maps\n"
               "GetFile                 0  gives .\n"
               "CloseFolder             0\n",
     .next = "-3 is the end of every listing, no fault. -1 before it: OpenFolder failed, or "
             "CheckFolder or CloseFolder came between."},
    {.name = "CloseFolder",
     .purpose = "Ends a listing.",
     .writes = "Nothing.",
     .statuses = kCloseFolder,
     .example = "printf 'OpenFolder maps\\nCloseFolder\\n' | quillon script -",
     .output = "OpenFolder              0  maps\n"
               "CloseFolder             0\n",
     .next = "Nothing was open, so there is nothing to mend: OpenFolder failed, or the listing "
             "was closed before."},
    {.name = "EmptyFolder",
     .purpose = "Deletes the files of a folder.",
     .text = "folder",
     .writes = "Deletes every entry with a dot in its name; entries without one, sub-folders as a "
               "rule, stay and are not entered.",
     .statuses = kEmptyFolder,
     .example = "quillon call EmptyFolder maps",
     .output = "status   0\n"
               "meaning  success: the folder's files were deleted, as far as that is allowed\n",
     .next = "CheckFolder tells whether the folder can be opened. 0 does not say that every file "
             "is gone: list the folder to be sure."},
    {.name = "FileDelete",
     .purpose = "Deletes a file or an empty folder.",
     .text = "file",
     .writes = "Deletes what `text` names.",
     .statuses = kFileDelete,
     .example = "quillon call FileDelete filter.txt",
     .output = "status   0\n"
               "meaning  success: the file was deleted\n",
     .next = "See whether the file is there, and whether its folder may be written to. A folder "
             "must be empty."},
    {.name = "FileCopyTo",
     .purpose = "Copies a file.",
     .text = "source",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target. An earlier one is deleted first, also when the copy then fails; a "
               "file copied onto itself is gone.",
     .statuses = kFileCopyTo,
     .example = "quillon call FileCopyTo 1001.tif --buffer maps/all.tif",
     .output = "status   0\n"
               "meaning  success: the file was copied\n",
     .next = "See whether the source is a file that may be read, whether the target's folder is "
             "there, and whether the disk is full: then a part of the target is left."},
    {.name = "FileRename",
     .purpose = "Renames or moves a file.",
     .text = "old path",
     .buffer = BufferUse::kPath,
     .bufferIs = "new path",
     .writes = "The file under its new path, in place of a file that had it.",
     .statuses = kFileRename,
     .example = "quillon call FileRename 1001.tif --buffer maps/first.tif",
     .output = "status   0\n"
               "meaning  success: the file was renamed\n",
     .next = "See whether both folders are there and on one disk; between disks use FileCopyTo "
             "and FileDelete."},
    {.name = "GetString",
     .purpose = "Copies the rest of a text.",
     .text = "any text",
     .value = "first byte, 0 to 10, else 5",
     .valueName = "start",
     .buffer = BufferUse::kOutput,
     .bufferIs = "the rest of the text",
     .writes = "The bytes from that one on go to `buffer1`; past the end of the text, none.",
     .statuses = kGetString,
     .example = "quillon call GetString abcdefgh --value 2",
     .output = "status   0\n"
               "meaning  success: the text was copied\n"
               "text     cdefgh\n",
     .next = "Pass both a text and a block. Bytes are counted, not letters: in UTF-8 a letter "
             "may take several."},
};

}  // namespace

const ExportGroup& folderExports() {
    static constexpr ExportGroup kGroup{
        "Folders and files",
        "0 is done, -1 failed or not given what it needs; GetPublicFolder, GetFile and Version "
        "have numbers of their own.",
        kExports};
    return kGroup;
}
