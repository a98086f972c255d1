#pragma once
// JpegBlocks: from pixels to coded blocks. A block of a picture is three data units, luminance, Cb
// and Cr.

#include <cstddef>
#include <cstdint>

#include "encoders/JpegDct.h"
#include "encoders/JpegStream.h"
#include "encoders/JpegTables.h"

struct PictureBlock {
    DataUnit YDU;
    DataUnit CbDU;
    DataUnit CrDU;
};

// Converts a block of 8 x 8 pixels, each blue, green and red.
//
//   pixels    the top left pixel; rows are `rowBytes` apart, the top one first
//   block     all three components centred on 0
void load_data_units(const std::uint8_t* pixels, std::size_t rowBytes, PictureBlock& block);

// What the data units of a component are coded with.
struct ComponentCoding {
    const DivisorTable& fdtbl;
    const HuffmanTable& HTDC;
    const HuffmanTable& HTAC;
};

// Transforms, quantises and codes a data unit.
//
//   DC       the mean of the component's unit before this one, 0 before the first; receives this
//            one's
//   bits     has room for 420 bytes
void process_DU(const DataUnit& ComponentDU, const ComponentCoding& coding, std::int16_t& DC,
                BitWriter& bits);
