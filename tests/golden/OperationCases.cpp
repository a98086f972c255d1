#include "golden/OperationCases.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "bmp/BmpWriter.h"
#include "bytes/Bytes.h"
#include "bytes/Numbers.h"
#include "encoders/ExrCheck.h"
#include "encoders/ExrLoader.h"
#include "encoders/JpegBitmap.h"
#include "encoders/JpegBlocks.h"
#include "encoders/JpegDct.h"
#include "encoders/JpegOps.h"
#include "encoders/JpegSegments.h"
#include "encoders/PizBlock.h"
#include "export/Quillon.h"
#include "files/File.h"
#include "files/FileOps.h"
#include "golden/Inputs.h"
#include "golden/Record.h"
#include "mesh/CornerPiece.h"
#include "mesh/ObjText.h"
#include "mesh/TileFilter.h"
#include "mesh/UVTiles.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"
#include "pixels/LevelSet.h"
#include "pixels/Pixels.h"
#include "pixels/Planes.h"
#include "pixels/Samples.h"
#include "psd/PsdImage.h"
#include "psd/PsdOps.h"
#include "support/CaptureStdout.h"
#include "support/TempDir.h"
#include "tiff/FloatMap.h"
#include "tiff/TiffHeader.h"
#include "tiff/TiffOps.h"
#include "tiff/TiffScale.h"
#include "tiff/TiffStrip.h"
#include "tiff/TiffTemplates.h"

namespace {

constexpr int kCases = 240;

std::uint64_t seedOf(std::string_view name) {
    Digest digest;
    digest.add(name);
    return ~digest.value();
}

// What a case works with, and what it found.
class Case {
public:
    Case(const char* name, int caseNumber)
        : random(seedOf(name) + static_cast<std::uint64_t>(caseNumber)), number(caseNumber) {}

    Random random;
    const int number;  // from 0
    Record result;

    // A path in the case's folder, which is there once it was asked for.
    std::string path(std::string_view name) { return folder().path(name); }
    std::string write(std::string_view name, const ByteList& bytes) {
        return folder().write(name, bytes);
    }
    void noteFiles() { files_ = " files=" + shownFolder(folder().path()); }

    std::string line() const { return shown(result.bytes()) + files_; }

private:
    const TempDir& folder() {
        if (!folder_) folder_.emplace();
        return *folder_;
    }

    std::optional<TempDir> folder_;
    std::string files_;
};

// Numbers in memory.

void bytesLoad(Case& test) {
    const ByteList bytes = randomBytes(test.random, 8);
    test.result.add(loadLe16(bytes.data())).add(loadLe32(bytes.data())).add(loadLe64(bytes.data()));
    test.result.add(loadBe16(bytes.data()))
        .add(loadBe32(bytes.data()))
        .add(loadLeFloat(bytes.data()));
    ByteList stored(20);
    storeLe16(stored.data(), loadBe16(bytes.data()));
    storeBe16(stored.data() + 2, loadBe16(bytes.data() + 2));
    storeLe32(stored.data() + 4, loadBe32(bytes.data()));
    storeBe32(stored.data() + 8, loadBe32(bytes.data() + 4));
    storeLeFloat(stored.data() + 12, test.random.number());
    test.result.add(stored);
}

void bytesBounds(Case& test) {
    const ByteList data = randomBytes(test.random, test.random.below(12));
    Bytes bytes{data.data(), data.size()};
    const std::uint64_t at = test.random.oneIn(4) ? test.random.next() : test.random.below(14);
    test.result.add(bytes.u8(at)).add(bytes.overran).add(bytes.le16(at)).add(bytes.be16(at));
    test.result.add(bytes.le32(at)).add(bytes.be32(at)).add(bytes.overran);
    const std::uint64_t count = test.random.oneIn(4) ? test.random.next() : test.random.below(14);
    test.result.add(bytes.holds(at, count, 1 + test.random.below(16)));
}

void saturated(Case& test) {
    test.result.add(saturatedInt(test.random.scriptNumber()));
    test.result.add(saturatedInt(static_cast<double>(test.random.number())));
    test.result.add(saturatedInt(std::bit_cast<double>(test.random.next())));
}

// Pixels.

void fillingBackground(Case& test) {
    const auto pixelBytes = test.random.pick<std::size_t>({1, 2, 3, 4, 6, 12});
    const std::size_t pixels = test.random.below(70);
    ByteList row = paintedBytes(test.random, pixels * pixelBytes);
    const ByteList source = paintedBytes(test.random, pixels * pixelBytes);
    ByteList background = paintedBytes(test.random, pixelBytes);
    if (pixels > 0 && !test.random.oneIn(4))
        background.assign(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(pixelBytes));
    fillBackground(row.data(), source.data(), background.data(), pixels, pixelBytes);
    test.result.add(row);
}

void exchanging(Case& test) {
    const std::size_t pixels = test.random.below(70);
    ByteList row = randomBytes(test.random, 3 * pixels);
    const std::size_t first = test.random.below(3);
    exchangeSamples(row.data(), pixels, {first, test.random.below(3)});
    test.result.add(row);
}

void copyingReversed(Case& test) {
    const std::size_t pixels = test.random.below(70);
    const ByteList row = randomBytes(test.random, 3 * pixels);
    ByteList copy(row.size());
    copyReversed(copy.data(), row.data(), pixels);
    test.result.add(copy);
    greyToColour(copy.data(), row.data(), pixels);
    test.result.add(copy);
}

std::vector<float> numbers(Random& random, std::size_t count) {
    std::vector<float> made(count);
    for (float& number : made)
        number = random.oneIn(2) ? random.number() : random.unit();
    return made;
}

void takingFirstSamples(Case& test) {
    const std::size_t pixels = test.random.below(40);
    const std::vector<float> samples = numbers(test.random, 3 * pixels);
    ByteList taken(4 * pixels);
    takeFirstSamples(taken.data(), samples.data(), pixels);
    test.result.add(taken);
}

void levels(Case& test) {
    for (const float sample : numbers(test.random, 64))
        test.result.add(levelOf(sample));
}

void quantising(Case& test) {
    const std::size_t count = test.random.below(60);
    const std::size_t step = test.random.oneIn(2) ? 1 : 3;
    const std::vector<float> samples = numbers(test.random, count * step);
    ByteList written(2 * count);
    quantise16(written.data(), samples.data(), count, step,
               test.random.oneIn(2) ? ByteOrder::kLittle : ByteOrder::kBig);
    test.result.add(written);
}

void markingLevels(Case& test) {
    LevelSet marked;
    const std::vector<float> samples = numbers(test.random, test.random.below(60));
    marked.addSamples(samples.data(), samples.size());
    for (std::uint32_t level = 0; level < 65536; ++level) {
        if (marked.test(static_cast<std::uint16_t>(level)))
            test.result.add(static_cast<std::uint16_t>(level));
    }
}

Rgb colour(Random& random) {
    const ByteList parts = paintedBytes(random, 3);
    return {parts[0], parts[1], parts[2]};
}

Rgb firstPixel(const ByteList& planes, std::size_t pixels) {
    return {planes[0], planes[pixels], planes[2 * pixels]};
}

void layingOver(Case& test) {
    const std::size_t pixels = 1 + test.random.below(70);
    ByteList planes = paintedBytes(test.random, 3 * pixels);
    const ByteList source = paintedBytes(test.random, 3 * pixels);
    const Rgb background = test.random.oneIn(3) ? colour(test.random) : firstPixel(planes, pixels);
    const std::uint8_t* from = source.data();
    std::uint8_t* to = planes.data();
    layOverPlanes({to, to + pixels, to + 2 * pixels}, {from, from + pixels, from + 2 * pixels},
                  background, pixels);
    test.result.add(planes);
}

void layingOverShorts(Case& test) {
    const std::size_t samples = 1 + test.random.below(70);
    ByteList plane = paintedBytes(test.random, 2 * samples);
    const ByteList source = paintedBytes(test.random, 2 * samples);
    const ByteList background(plane.begin(), plane.begin() + 2);
    layOverShorts(plane.data(), source.data(), background.data(), samples);
    test.result.add(plane);
}

void replacing(Case& test) {
    const std::size_t pixels = 1 + test.random.below(70);
    ByteList planes = paintedBytes(test.random, 3 * pixels);
    const Rgb from = test.random.oneIn(3) ? colour(test.random) : firstPixel(planes, pixels);
    const Rgb to = colour(test.random);
    replaceInPlanes(planes.data(), from, to, test.random.oneIn(2), pixels);
    test.result.add(planes);
}

void greying(Case& test) {
    const std::size_t pixels = 1 + test.random.below(200);
    ByteList planes = randomBytes(test.random, 3 * pixels);
    std::array<std::uint8_t, 256> tones;
    for (std::uint8_t& tone : tones)
        tone = test.random.byte();
    greyPlanes(planes.data(), tones, pixels);
    test.result.add(planes);
}

void picking(Case& test) {
    const ByteList from = randomBytes(test.random, 1 + test.random.below(90));
    std::vector<std::size_t> places(test.random.below(90));
    for (std::size_t& place : places)
        place = test.random.below(static_cast<std::uint32_t>(from.size()));
    ByteList to(places.size());
    pickBytes(to.data(), from.data(), places.data(), places.size());
    test.result.add(to);
}

// TIFF.

void readingTiff(Case& test) {
    const std::string path = test.write("map.tif", tiffMap(test.random, tiffShape(test.random)));
    const TiffRules rules{.floatOnly = test.random.oneIn(3),
                          .directoryAnywhere = test.random.oneIn(2)};
    const TiffHeader header = readTiffHeader(path.c_str(), -10.0f, rules);
    const TiffInfo& info = header.info;
    test.result.add(header.refused)
        .add(info.width)
        .add(info.length)
        .add(info.channels)
        .add(info.bitsPerSample);
    test.result.add(info.stripOffset).add(info.stripByteCount);
    for (const TiffEntry& entry : header.entries)
        test.result.add(entry.tag).add(entry.count).add(entry.value).add(entry.valueOffset);
}

void placingStrips(Case& test) {
    TiffInfo info;
    for (std::int32_t* part : {&info.width, &info.length, &info.stripOffset})
        *part = test.random.oneIn(4) ? static_cast<std::int32_t>(test.random.word())
                                     : test.random.between(-2, 90);
    const std::size_t pixelBytes = 1 + test.random.below(12);
    const Strip strip = stripOf(info, pixelBytes);
    const Strip whole = wholeRowsWithin(strip, info, test.random.below(9000));
    for (const Strip& one : {strip, whole})
        test.result.add(one.offset).add(one.pixels).add(one.pixelBytes);
}

void openingFloatMaps(Case& test) {
    const std::string path =
        test.write("map.tif", tiffMap(test.random, floatTiffShape(test.random)));
    const std::size_t channels = test.random.oneIn(2) ? 1 : 3;
    const FloatMap map =
        openFloatMap(path.c_str(), channels, {.floatOnly = true}, File::openForReading);
    test.result.add(map.refused);
    if (map.refused != 0.0f) return;
    const PieceBuffer buffer;
    const auto pixels = static_cast<std::size_t>(map.strip.pixels);
    const float* const samples = readSamples(map, map.strip.offset, pixels, buffer);
    if (samples == nullptr) return;
    for (std::size_t i = 0; i < pixels * channels; ++i)
        test.result.add(samples[i]);
}

// All of the level counts there are, a part of them in each case.
void scales(Case& test) {
    for (std::size_t count = 1 + static_cast<std::size_t>(test.number); count <= 65536;
         count += kCases)
        test.result.add(scaleOfLevels(count));
}

void templates(Case& test) {
    test.result.add(greyTiffHeader16()).add(rgbTiffHeader16()).add(greyPsdHeader16());
    const std::uint32_t width = test.random.word();
    test.result.add(greyTiffHeaderFloat(width, test.random.word(), 0));
}

void swappingTiff(Case& test) {
    const std::string path = test.write("map.tif", tiffMap(test.random, tiffShape(test.random)));
    test.result.add(swapChannels(path.c_str(), test.random.between(-2, 6)));
    test.noteFiles();
}

void convertingTiff(Case& test) {
    const std::string path =
        test.write("map.tif", tiffMap(test.random, floatTiffShape(test.random)));
    const int mode = test.random.pick({1, 3, 4});
    test.result.add(
        convertTiff(path.c_str(), test.path("out").c_str(), mode, test.random.between(0, 1)));
    test.noteFiles();
}

// PSD.

void readingPsd(Case& test) {
    const std::string path = test.write("map.psd", psdMap(test.random, psdShape(test.random)));
    test.result.add(loadPSD(path.c_str())).add(offst);
    test.result.add(fHeader.signature)
        .add(fHeader.version)
        .add(fHeader.channels)
        .add(fHeader.height)
        .add(fHeader.width);
    test.result.add(fHeader.depth)
        .add(fHeader.colourMode)
        .add(fHeader.colourTableBytes)
        .add(fHeader.resourceBytes);
    test.result.add(fHeader.layerBytes).add(fHeader.compression);
    const std::size_t at = test.random.below(static_cast<std::uint32_t>(img.size()) + 3);
    test.result.add(readShort(at)).add(readLong(at)).add(readFloat(at)).add(readFloatLE(at));
    test.result.add(writeShort(at, static_cast<int>(test.random.word())));
    test.result.add(writeLong(at, test.random.word()));
    const ImgInUse emptied;
    test.result.add(ByteList(img.begin(), img.end()));
}

void mergingSeamlessly(Case& test) {
    const auto large = [](Random& random) {
        PsdShape shape = psdShape(random);
        shape.grey16 = false;
        shape.width = 100 + random.below(24);
        shape.height = 100 + random.below(24);
        return shape;
    };
    const PsdShape first = test.random.oneIn(6) ? psdShape(test.random) : large(test.random);
    PsdShape second = perhapsAnother<PsdShape>(test.random, first, psdShape);
    const std::string shifted = test.write("shifted.psd", psdMap(test.random, first));
    const std::string plain = test.write("plain.psd", psdMap(test.random, second));
    test.result.add(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), test.random.oneIn(2)));
    test.noteFiles();
}

void greyingPsd(Case& test) {
    const std::string path = test.write("map.psd", psdMap(test.random, psdShape(test.random)));
    const std::int32_t level = test.random.oneIn(4) ? static_cast<std::int32_t>(test.random.word())
                                                    : test.random.between(-5, 260);
    test.result.add(GrayscalePSD(path.c_str(), test.path("out.psd").c_str(), level));
    test.noteFiles();
}

void recolouringPsd(Case& test) {
    const ByteList map = psdMap(test.random, psdShape(test.random));
    const std::string path = test.write("map.psd", map);
    float from = test.random.oneIn(2) ? test.random.number()
                                      : static_cast<float>(test.random.below(1 << 24));
    if (map.size() > 42 && test.random.oneIn(2)) from = static_cast<float>(map[40] * 0x10101);
    const float to = test.random.oneIn(4) ? test.random.number()
                                          : static_cast<float>(test.random.below(1 << 24));
    test.result.add(convertPSD(path.c_str(), from, to, test.random.oneIn(2)));
    test.noteFiles();
}

void shrinkingPsd(Case& test) {
    const std::string path = test.write("map.psd", psdMap(test.random, psdShape(test.random)));
    test.result.add(createThumb(path.c_str(), test.random.oneIn(6) ? test.random.between(-1, 200)
                                                                   : test.random.between(1, 30)));
    test.noteFiles();
}

void swappingPsd(Case& test) {
    const std::string path = test.write("map.psd", psdMap(test.random, psdShape(test.random)));
    test.result.add(swapChannelsPSD(path.c_str(), test.random.between(-1, 5)));
    test.noteFiles();
}

// BMP.

void readingBmp(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const EmptyBmpVAtEnd emptied;
    test.result.add(test.random.oneIn(2) ? loadBMPHead(path.c_str(), -1.0f)
                                         : loadWholeBMP(path.c_str(), -1.0f));
    test.result.add(bmpHdr.firstByte)
        .add(bmpHdr.secondByte)
        .add(bmpHdr.fileSize)
        .add(bmpHdr.pixelOffset)
        .add(bmpHdr.width);
    test.result.add(bmpHdr.height)
        .add(bmpHdr.bitsPerPixel)
        .add(bmpHdr.imageSize)
        .add(bmpHdr.rowStride);
    const std::uint32_t at = test.random.below(120);
    writeSignedInt(at, test.random.word());
    test.result.add(readSigned(at)).add(readShortInt(at + 1));
    test.result.add(writeShortInt(at + 1, static_cast<std::int32_t>(test.random.word())))
        .add(readSigned(at));
}

void paddingRows(Case& test) {
    const std::int32_t width = test.random.oneIn(2) ? static_cast<std::int32_t>(test.random.word())
                                                    : test.random.between(-9, 99);
    const NewImage image = newImage(width, test.random.between(-9, 99));
    test.result.add(getPadding(width))
        .add(image.rows)
        .add(image.pixelsPerRow)
        .add(image.padding)
        .add(image.pixelBytes);
}

void croppingBmp(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const std::int32_t offset = test.random.between(-4, 60);
    test.result.add(
        cropBMP(path.c_str(), test.path("out.bmp").c_str(), offset, test.random.between(-2, 24)));
    test.noteFiles();
}

void swappingBmp(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    test.result.add(swapChannelsBMP(path.c_str(), test.random.between(-1, 5)));
    test.noteFiles();
}

void shrinkingBmp(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    test.result.add(createBMPthumb(path.c_str(), test.random.between(-1, 24)));
    test.noteFiles();
}

// JPEG.

void colouring(Case& test) {
    const ByteList pixels = paintedBytes(test.random, 8 * 24);
    PictureBlock block;
    load_data_units(pixels.data(), 24, block);
    for (const DataUnit* unit : {&block.YDU, &block.CbDU, &block.CrDU})
        test.result.add(ByteList(unit->begin(), unit->end()));
}

DataUnit dataUnit(Random& random) {
    DataUnit unit;
    const ByteList bytes = paintedBytes(random, unit.size());
    std::copy(bytes.begin(), bytes.end(), unit.begin());
    return unit;
}

QuantTable quantisers(Random& random) {
    QuantTable table;
    for (std::uint8_t& entry : table)
        entry = static_cast<std::uint8_t>(1 + random.below(255));
    return table;
}

void transforming(Case& test) {
    const DivisorTable divisors = prepare_quant_table(quantisers(test.random));
    for (const float divisor : divisors)
        test.result.add(divisor);
    Coefficients coefficients;
    fdct_and_quantization(dataUnit(test.random), divisors, coefficients);
    for (const std::int16_t coefficient : coefficients)
        test.result.add(coefficient);
}

void rounding(Case& test) {
    test.result.add(quantised(test.random.number()));
    test.result.add(quantised(static_cast<float>(test.random.between(-40000, 40000)) / 2.0f));
}

void codingBlocks(Case& test) {
    const QuantSegment segment = set_DQTinfo(test.random.between(0, 255));
    const Divisors divisors{prepare_quant_table(segment.luminance()),
                            prepare_quant_table(segment.chrominance())};
    const std::size_t blocks = 1 + test.random.below(3);
    const std::size_t rowBytes = 24 * blocks;
    const ByteList pixels = paintedBytes(test.random, 8 * rowBytes + kBytesBehindRow);
    Means means{};
    for (std::int32_t& mean : means)
        mean = test.random.between(-1024, 1023);
    ByteList coded(blocks * kMostBlockBytes + BitWriter::kSpare);
    BitWriter bits(coded.data());
    codeBlocks(pixels.data(), static_cast<std::ptrdiff_t>(rowBytes), blocks, divisors, means, bits);
    bits.fillLastByte();
    coded.resize(static_cast<std::size_t>(bits.next() - coded.data()));
    for (const std::int32_t mean : means)
        test.result.add(mean);
    ByteList written(2 * coded.size());
    written.resize(static_cast<std::size_t>(stuffed(coded.data(), coded.size(), written.data()) -
                                            written.data()));
    test.result.add(coded).add(written);
}

void packingBits(Case& test) {
    ByteList packed(600 + BitWriter::kSpare);
    BitWriter bits(packed.data());
    const std::uint32_t codes = test.random.below(60);
    for (std::uint32_t i = 0; i < codes; ++i) {
        const std::uint32_t length = test.random.below(33);
        const std::uint64_t ones = (std::uint64_t{1} << length) - 1;
        bits.put(
            static_cast<std::uint32_t>((test.random.oneIn(3) ? ones : test.random.next()) & ones),
            length);
    }
    bits.fillLastByte();
    packed.resize(static_cast<std::size_t>(bits.next() - packed.data()));
    test.result.add(packed);
}

void scalingTables(Case& test) {
    std::array<std::uint8_t, 64> scaled;
    const QuantTable table = quantisers(test.random);
    set_quant_table(table, test.random.byte(), scaled);
    test.result.add(ByteList(scaled.begin(), scaled.end()));
    const QuantSegment segment = set_DQTinfo(static_cast<int>(test.random.word()));
    test.result.add(ByteList(segment.bytes.begin(), segment.bytes.end()));
}

void writingSegments(Case& test) {
    const std::uint32_t length = test.random.oneIn(8) ? 2100 : test.random.below(40);
    const auto height = static_cast<std::uint16_t>(test.random.word());
    const auto width = static_cast<std::uint16_t>(test.random.word());
    {
        JpegStream stream(test.path("segments.jpg").c_str());
        write_SOI(stream);
        write_APP0info(stream);
        write_comment(stream, std::string(length, 'c').c_str());
        write_DQTinfo(stream, set_DQTinfo(test.random.between(0, 255)));
        write_SOF0info(stream, {.height = height, .width = width});
        write_DHTinfo(stream);
        write_SOSinfo(stream);
        write_EOI(stream);
        stream.flush();
    }
    test.noteFiles();
}

void categories(Case& test) {
    for (int i = 0; i < 20; ++i) {
        const bitstring code = bitcode(test.random.between(-32767, 32767));
        test.result.add(code.length).add(code.value);
    }
}

void loadingRows(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    JpegBitmap bitmap;
    const float status = bitmap.load_bitmap(path.c_str());
    test.result.add(status);
    if (status != 0.0f || bitmap.height() > 200 || bitmap.width() > 200) return;
    ByteList stage(8 * bitmap.stagedRowBytes());
    ByteList rows(8 * bitmap.rowBytes());
    for (std::size_t first = 0; first < bitmap.height(); first += 8) {
        test.result.add(bitmap.hasRows(first, first + 8));
        bitmap.loadRows(first, first + 8, stage.data(), rows.data());
        test.result.add(rows);
    }
}

void encoding(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const int scale =
        test.random.oneIn(4) ? static_cast<int>(test.random.word()) : test.random.between(0, 255);
    test.result.add(convertToJPEG(path.c_str(), test.path("out.jpg").c_str(), scale));
    test.noteFiles();
}

// OpenEXR.

ByteList exrSeed(Random& random) {
    const char* seed = random.pick<const char*>({"piz-half.exr", "piz-float.exr", "zip-half.exr"});
    return readBytes(std::string(QUILLON_GOLDEN_SEEDS "/") + seed);
}

void loadingExr(Case& test) {
    const ByteList file = test.random.oneIn(3) ? perhapsDamaged(test.random, exrSeed(test.random))
                                               : exrPicture(test.random);
    const std::string path = test.write("map.exr", file);
    ExrSize size{};
    std::vector<float> shown;
    const int status =
        LoadMultiChannelEXRFromFile(path.c_str(), size, [&](std::span<const float> samples) {
            shown.insert(shown.end(), samples.begin(), samples.end());
        });
    test.result.add(status).add(size.width).add(size.height);
    for (const float sample : shown)
        test.result.add(sample);
}

void checkingExr(Case& test) {
    ByteList file = test.random.oneIn(3) ? exrSeed(test.random) : exrPicture(test.random);
    // Damaged in the header and the table of offsets, mostly, behind what names the file's kind.
    for (std::uint32_t i = test.random.below(3); i > 0 && file.size() > 8; --i) {
        const std::uint32_t reach = std::min(static_cast<std::uint32_t>(file.size()), 420u) - 8;
        file[8 + test.random.below(reach)] = test.random.byte();
    }
    if (file.size() < 8) return;
    ExrLayout layout;
    test.result.add(checkExr(file, layout)).add(layout.tiled).add(layout.increasingRows);
    test.result.add(layout.width)
        .add(layout.height)
        .add(layout.tileWidth)
        .add(layout.tileHeight)
        .add(layout.firstPixelType);
}

// The data of the first chunk of the smaller PIZ file. The table of its two offsets is found by what it
// says: the first chunk follows it at once.
ByteList pizBlock() {
    const ByteList file = readBytes(QUILLON_GOLDEN_SEEDS "/piz-half.exr");
    std::size_t table = 8;
    while (loadLe32(&file[table]) != table + 16)
        ++table;
    const auto data = file.begin() + static_cast<std::ptrdiff_t>(table) + 24;
    return {data, data + static_cast<std::ptrdiff_t>(loadLe32(&file[table + 20]))};
}

void checkingPiz(Case& test) {
    ByteList block = pizBlock();
    const std::uint32_t patches = test.random.below(4);
    for (std::uint32_t i = 0; i < patches; ++i)
        block[test.random.below(static_cast<std::uint32_t>(block.size()))] = test.random.byte();
    if (test.random.oneIn(8))
        block.resize(test.random.below(static_cast<std::uint32_t>(block.size())));
    test.result.add(isSoundPizBlock({block.data(), block.size()}));
}

// Meshes.

void placing(Case& test) {
    for (int i = 0; i < 24; ++i) {
        const TilePlace place = placeOf(test.random.number());
        test.result.add(place.tile).add(place.local);
    }
}

void namingTiles(Case& test) {
    for (int mode = 0; mode < 4; ++mode) {
        const std::int32_t u = test.random.oneIn(3) ? static_cast<std::int32_t>(test.random.word())
                                                    : test.random.between(-20, 99);
        const std::int32_t v = test.random.oneIn(3) ? static_cast<std::int32_t>(test.random.word())
                                                    : test.random.between(-20, 99);
        test.result.add(tileName(u, v, mode)).add(" ");
    }
}

void filteringTiles(Case& test) {
    TileFilter filter;
    for (std::uint32_t i = test.random.below(3); i > 0; --i) {
        const ByteList text = filterText(test.random);
        filter.add({reinterpret_cast<const char*>(text.data()), text.size()});
    }
    test.result.add(filter.isEmpty());
    for (int name = 990; name < 1060; ++name)
        test.result.add(filter.contains(std::to_string(name)));
}

void findingTiles(Case& test) {
    const VemoFile vemo = loadVemo(test.write("mesh.Vemo", vemoMesh(test.random)).c_str());
    const auto uvs =
        findElements(vemo.loaded(), kFaceUvChunk, ZeroLength::kCountsAs16, kFaceUvBytes);
    if (!uvs) return;
    const TileFilter all;
    TileFinder finder(test.random.between(0, 3), all);
    finder.add(vemo.file.data.get() + uvs->offset, uvs->count);
    const TilesFound found = std::move(finder).found();
    for (const UV_tile& tile : found.tiles)
        test.result.add(tile.name).add(tile.u).add(tile.v);
    test.result.add(found.lastName);
}

void seeingCorners(Case& test) {
    const std::size_t corners = test.random.below(60);
    ByteList bytes(corners * kCornerBytes);
    for (std::size_t at = 0; at < bytes.size(); at += 4) {
        const bool near = !test.random.oneIn(6);
        storeLeFloat(&bytes[at], near ? test.random.unit() * 3.0f - 1.0f : test.random.number());
    }
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(bytes.data(), corners, static_cast<std::uint64_t>(test.number));
    for (std::int32_t u = -2; u <= 2; ++u) {
        const std::uint8_t* seen = piece->seenFrom({u, test.random.between(-2, 2)});
        test.result.add(ByteList(seen, seen + bytes.size()));
    }
}

void walkingChunks(Case& test) {
    const VemoFile vemo = loadVemo(test.write("mesh.Vemo", vemoMesh(test.random)).c_str());
    const auto rule = test.random.oneIn(2) ? ZeroLength::kCountsAs16 : ZeroLength::kEndsSearch;
    for (const std::uint32_t id :
         {kVertexChunk, kFaceChunk, kFaceUvChunk, kVertexColourChunk, kFaceGroupChunk, 0u}) {
        const auto chunk = findChunk(vemo.loaded(), id, kFirstChunk, rule);
        test.result.add(chunk.value_or(0xFFFFFFFF));
        if (!chunk) continue;
        const auto elements = chunkElements(vemo.loaded(), *chunk, 1 + test.random.below(32));
        test.result.add(elements ? elements->count : 0xFFFFFFFF);
    }
}

void readingVemoValues(Case& test) {
    char b[4];
    for (char& byte : b)
        byte = static_cast<char>(test.random.byte());
    test.result.add(readUnInt(b[0], b[1], b[2], b[3])).add(readaFloat(b[0], b[1], b[2], b[3]));
    test.result.add(readShort(b[0], b[1])).add(readanInt(b[2]));
}

void writingNumbers(Case& test) {
    {
        ObjText text(test.path("text.obj").c_str());
        for (int i = 0; i < 40; ++i) {
            text.addFloat(test.random.oneIn(2) ? std::bit_cast<float>(test.random.word())
                                               : test.random.number());
            text.add(" ");
            text.addInteger(static_cast<std::int64_t>(test.random.next()));
            text.add("\n");
        }
        const std::uint32_t colours = test.random.below(100);
        text.addColourBlock(randomBytes(test.random, std::size_t{4} * colours).data(), colours);
    }
    test.noteFiles();
}

void writingColours(Case& test) {
    const std::string path = test.write("mesh.Vemo", vemoMeshStartingWith(test.random, 35001));
    test.result.add(ReadVertColorVemo(path.c_str(), test.path("out.txt").data()));
    test.noteFiles();
}

void writingObj(Case& test) {
    const std::string base = test.write("base.Vemo", vemoMeshStartingWith(test.random, 20001));
    const std::string path = test.write("mesh.Vemo", vemoMeshStartingWith(test.random, 10001));
    const double level =
        test.random.oneIn(4) ? test.random.scriptNumber() : test.random.between(1, 3);
    test.result.add(GetFaceIDsVemo(base.c_str(), level));
    test.result.add(writeOBJfromVemo(path.c_str(), test.path("out.obj").data()));
    test.noteFiles();
}

// Files.

std::string somePath(Random& random) {
    std::string path;
    for (std::uint32_t i = random.below(14); i > 0; --i)
        path += random.pick<const char*>({"a", "bc", ".", "/", "\\", "ö", " ", "psd"});
    return path;
}

void splittingPaths(Case& test) {
    const std::string path = somePath(test.random);
    test.result.add(IsDirectory(path.c_str()));
    for (int mode = -1; mode < 8; ++mode) {
        try {
            test.result.add(FileNameExtract(path, mode)).add("|");
        } catch (const std::out_of_range&) {
            test.result.add("out of range|");
        }
    }
}

void movingFiles(Case& test) {
    const std::string path = test.write("old", randomBytes(test.random, test.random.below(300)));
    const std::size_t spare = test.random.below(20);
    const FileBytes loaded = loadFile(path.c_str(), spare);
    test.result.add(ByteList(loaded.data.get(), loaded.data.get() + loaded.size + spare));
    {
        const File file = File::openForRewriting(path.c_str());
        const ByteList written = randomBytes(test.random, test.random.below(60));
        test.result.add(file.writeAt(test.random.below(400), written.data(), written.size()));
        ByteList read(test.random.below(200));
        test.result.add(file.readAt(test.random.below(400), read.data(), read.size()))
            .add(read)
            .add(file.size());
    }
    {
        FileWriter writer(File::create(test.path("new").c_str()));
        for (std::uint32_t i = test.random.below(5); i > 0; --i) {
            const ByteList part = randomBytes(test.random, test.random.below(40));
            test.result.add(writer.append(part.data(), part.size()));
        }
    }
    test.noteFiles();
}

// What the library offers with C++ names.
void mangledExports(Case& test) {
    const ByteList bytes = randomBytes(test.random, 40);
    std::string text(bytes.begin(), bytes.end());
    std::replace(text.begin(), text.end(), '\0', '0');
    test.result.add(get_substr(text.data(), test.random.between(0, 40)));
    const CaptureStdout captured;
    Quillon().HelloWorld(text.c_str());
    test.result.add(captured.text());
}

struct Operation {
    const char* name;
    void (*runCase)(Case& test);
};

constexpr Operation kOperations[] = {
    {"Bytes.load", bytesLoad},
    {"Bytes.holds", bytesBounds},
    {"saturatedInt", saturated},
    {"fillBackground", fillingBackground},
    {"exchangeSamples", exchanging},
    {"copyReversed", copyingReversed},
    {"takeFirstSamples", takingFirstSamples},
    {"levelOf", levels},
    {"quantise16", quantising},
    {"markLevels", markingLevels},
    {"layOverPlanes", layingOver},
    {"layOverShorts", layingOverShorts},
    {"replaceInPlanes", replacing},
    {"greyPlanes", greying},
    {"pickBytes", picking},
    {"readTiffHeader", readingTiff},
    {"stripOf", placingStrips},
    {"openFloatMap", openingFloatMaps},
    {"scaleOfLevels", scales},
    {"tiffTemplates", templates},
    {"swapChannels", swappingTiff},
    {"convertTiff", convertingTiff},
    {"readPSDHeader", readingPsd},
    {"mergeSeamlessPSD", mergingSeamlessly},
    {"GrayscalePSD", greyingPsd},
    {"convertPSD", recolouringPsd},
    {"createThumb", shrinkingPsd},
    {"swapChannelsPSD", swappingPsd},
    {"readBMPHeader", readingBmp},
    {"getPadding", paddingRows},
    {"cropBMP", croppingBmp},
    {"swapChannelsBMP", swappingBmp},
    {"createBMPthumb", shrinkingBmp},
    {"load_data_units", colouring},
    {"fdct_and_quantization", transforming},
    {"quantised", rounding},
    {"process_DU", codingBlocks},
    {"BitWriter", packingBits},
    {"set_quant_table", scalingTables},
    {"jpegSegments", writingSegments},
    {"bitcode", categories},
    {"JpegBitmap", loadingRows},
    {"convertToJPEG", encoding},
    {"LoadMultiChannelEXRFromFile", loadingExr},
    {"checkExr", checkingExr},
    {"isSoundPizBlock", checkingPiz},
    {"placeOf", placing},
    {"tileName", namingTiles},
    {"TileFilter", filteringTiles},
    {"TileFinder", findingTiles},
    {"CornerPiece", seeingCorners},
    {"findChunk", walkingChunks},
    {"readUnInt", readingVemoValues},
    {"ObjText", writingNumbers},
    {"ReadVertColorVemo", writingColours},
    {"writeOBJfromVemo", writingObj},
    {"FileNameExtract", splittingPaths},
    {"File", movingFiles},
    {"get_substr", mangledExports},
};

}  // namespace

void writeOperationCases(std::ostream& lines) {
    for (const auto& [name, runCase] : kOperations) {
        for (int number = 0; number < kCases; ++number) {
            Case test(name, number);
            runCase(test);
            lines << name << ' ' << number << ' ' << test.line() << '\n';
        }
    }
}
