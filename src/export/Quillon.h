#ifndef QUILLON_EXPORT_QUILLON_H
#define QUILLON_EXPORT_QUILLON_H
/* Quillon: file services and map tools for Morvane's scripts.
 *
 * Morvane calls each export with the same seven arguments and takes a float, the status:
 *
 *   text      a path or another text, NUL-terminated UTF-8; only read
 *   value     a number from the script
 *   buffer1   a second path, only read, or the block that takes a text result
 *
 * The other four are the host's own and never read. A text result is copied with its terminating
 * NUL; the block must hold a full path, since its size is not checked.
 *
 * Where an export wants an integer, n below is `value` truncated toward zero, saturated at the ends
 * of the 32-bit range; NaN is 0.
 *
 * Order of calls for one map export: clearUVtilesOutput and, if there is a tile filter,
 * setUVtilesOutput; getUVTile; getUVs or getUVsMask; getUVString for each tile, then clearUVString;
 * the host renders a map per tile; mergeMapsTIF and the other image exports; EmptyFolder or
 * FileDelete. Between calls live only: the open folder, the tile filter and the list of tile names.
 * One thread calls one export at a time.
 *
 * Statuses. The boundary's own are below; any other comes from the operation and is in its
 * module's header (VemoOps.h, TiffOps.h, PsdOps.h, BmpOps.h, TargaOps.h, JpegOps.h, ExrLoader.h,
 * ExrRange.h). Nothing is thrown, with one exception: convertTIFF16. */

#ifdef __cplusplus
#define QUILLON_API extern "C" __attribute__((visibility("default")))
#else
#define QUILLON_API extern __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif
typedef float ExportFunction(const char* text, double value, char* buffer1, int buffer1Size,
                             char* buffer2, int buffer2Size, char** host);
#ifdef __cplusplus
}
#endif

/* Always 48: the version of this interface. */
QUILLON_API ExportFunction Version;

/* Folders and files. 0: done, -1: failed. */

/* Creates the folder `text`. -1 also when it exists or its parent does not. */
QUILLON_API ExportFunction CreateFolder;
/* Copies the path of the folder that holds the users' folders into `buffer1`. 1: copied, 0: there
 * is none, or `buffer1` is null. */
QUILLON_API ExportFunction GetPublicFolder;
/* Returns whether the folder `text` can be opened. Ends a listing that is open. */
QUILLON_API ExportFunction CheckFolder;
/* Opens the folder `text` for listing. Ends a listing that is open. */
QUILLON_API ExportFunction OpenFolder;
/* Copies the name of the next entry into `buffer1`, in the file system's own order, "." and ".."
 * included. -3: no entry is left, or the folder cannot be read further; -1: no folder is open, or
 * `buffer1` is null. */
QUILLON_API ExportFunction GetFile;
/* Ends the listing. -1: no folder is open. */
QUILLON_API ExportFunction CloseFolder;
/* Deletes the files in the folder `text`: entries with a dot in their name, an empty sub-folder
 * included. Other sub-folders stay, and so do paths of more than 255 bytes. 0 also when single files
 * could not be deleted, -1: the folder could not be opened. */
QUILLON_API ExportFunction EmptyFolder;
/* Deletes the file or the empty folder `text`. */
QUILLON_API ExportFunction FileDelete;
/* Copies the file `text` to `buffer1`. What is there, a file or an empty folder, is deleted first, also
 * when the copy then fails; a file copied onto itself is gone. */
QUILLON_API ExportFunction FileCopyTo;
/* Renames the file `text` to `buffer1`. Two links to one file both stay, with the status 0. */
QUILLON_API ExportFunction FileRename;
/* Copies `text` from byte n on into `buffer1`; from byte 5 on when `value` is not 0 to 10. Past the
 * end of `text` there is the empty text. */
QUILLON_API ExportFunction GetString;

/* Meshes. -9: a path or block is null, or memory runs out; some operations then return the status of a
 * file that cannot be opened. The naming mode is n, brought into 0 to 3. */

/* Forgets the tile filter. Always 0. */
QUILLON_API ExportFunction clearUVtilesOutput;
/* Reads the tile filter of naming mode 2 from the text file `text`. */
QUILLON_API ExportFunction setUVtilesOutput;
/* Returns the number of UV tiles of the mesh `text`; copies the last face's tile name into
 * `buffer1`. */
QUILLON_API ExportFunction getUVTile;
/* Returns the number of face groups of the mesh `text`. */
QUILLON_API ExportFunction getUVGroups;
/* Copies the name of tile n of the last getUVs or getUVsMask into `buffer1`. Always 0; nothing is
 * copied when there is no such tile or `buffer1` is null. */
QUILLON_API ExportFunction getUVString;
/* Forgets the tile names. Always 0. */
QUILLON_API ExportFunction clearUVString;
/* Writes the mesh `text` once per tile, with that tile's local UVs, to files named after `buffer1`.
 * Returns the number of tiles. */
QUILLON_API ExportFunction getUVs;
/* The same with the UVs left alone and a mask of each tile's vertices. */
QUILLON_API ExportFunction getUVsMask;
/* Appends the mesh `text` to the mesh `buffer1`. */
QUILLON_API ExportFunction mergeCrease;

/* Maps. -9: a path is null, `value` is not one that the export takes, or memory runs out. A null path
 * is -1 in convertTIFFSingle and CreateThumbnailBMP and -3 in OpenEXR. */

/* Folds the map `text` of one tile into the map `buffer1`. */
QUILLON_API ExportFunction mergeMapsTIF;
QUILLON_API ExportFunction mergeMapsPSD;
QUILLON_API ExportFunction mergeMapsBMP;
/* Changes the order of the colour channels of the map `text`; takes values above 0 and below 4. TIFF and
 * BMP files of another kind mostly stay as they are, with the status 0. */
QUILLON_API ExportFunction swapRGBTIF;
QUILLON_API ExportFunction swapRGBPSD;
QUILLON_API ExportFunction swapRGBBMP;
/* Converts the float map `text` to the 16-bit map `buffer1`: with "psd" or "PSD" behind the last dot of
 * the path a PSD, else a TIFF, which is valid only if the map's directory is at byte 8 and in the order
 * that docs/formats.md shows. Takes 1 (grey), 3 (colour, always a TIFF) and 4 (colour to grey). Without
 * any dot in `buffer1` std::out_of_range is thrown. */
QUILLON_API ExportFunction convertTIFF16;
/* Writes the first channel of the float map `text` to `buffer1`. A null path and lack of memory are
 * -1 here. */
QUILLON_API ExportFunction convertTIFFSingle;
/* Returns the scale of the displacement map `text`; takes 1 and 3, its channels. */
QUILLON_API ExportFunction getScale;
/* Writes the TIFF map `text` as the Targa file `buffer1`. */
QUILLON_API ExportFunction saveAsTarga;
/* Writes the BMP image `text` as the JPEG file `buffer1`. n is how much is left out: 0 gives the
 * finest picture and the largest file, 100 the smallest file; 50 when `value` is not 0 to 100. */
QUILLON_API ExportFunction saveAsJpeg;
/* Shrinks the BMP image `text` to n pixels along its longer side. -9 also for a top-down image that is
 * not narrower than that. */
QUILLON_API ExportFunction CreateThumbnailBMP;
/* Returns the range of values in the first channel of the OpenEXR file `text`. */
QUILLON_API ExportFunction OpenEXR;

#ifdef __cplusplus

/* What the boundary returns by itself. */
namespace quillon_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kFailed = -1.0f;           /* file services: failed, or a null argument */
inline constexpr float kListingExhausted = -3.0f; /* GetFile */
inline constexpr float kRefused = -9.0f;          /* a pointer is null, or a value is not taken */
inline constexpr float kPublicFolderCopied = 1.0f;
inline constexpr float kNoPublicFolder = 0.0f;
inline constexpr float kVersion = 48.0f;
}

/* The text from byte `start` on; not checked. */
__attribute__((visibility("default"))) char* get_substr(char* text, int start);

/* The library object, which a host can call to see that the library is there. */
class Quillon {
public:
    /* Writes the text and a line end to standard output at once. */
    __attribute__((visibility("default"))) void HelloWorld(const char* text);
};

class QuillonPriv {
public:
    __attribute__((visibility("default"))) void HelloWorldPriv(const char* text);
};

#endif
#endif
