#pragma once
// PizBlock: the inner layout of a chunk of PIZ-compressed samples, little-endian.
//
//   0   2  first and               then, from there on:
//   2   2  last byte in use, of      0   4  lowest and
//          a bitmap of 8192          4   4  highest symbol; the highest is the run code
//   4      these bytes, if any       8   4  not read
//       4  length of the rest       12   4  bits of coded samples
//                                   16   4  not read
//                                   20      code lengths, 6 bits each, or runs of unused symbols;
//                                           from the next whole byte on the coded samples

#include "bytes/Bytes.h"

// Whether a chunk can be decoded without leaving it, in a time that its length bounds. The
// loader looks at none of this, and searches codes of more than 14 bits one by one.
bool isSoundPizBlock(Bytes block);
