"""Baseline JPEG files from the 24-bit BMP images that Morvane writes.

Huffman coded, 8 bits, three components, none of them subsampled. One scale factor for both standard
quantisation tables sets the quality. A code is kept as a string of the characters 0 and 1, most
significant bit first.
"""

import numpy as np

from world import check, create, le, load


def numbers(text):
    """A table of decimal numbers."""
    return [int(word) for word in text.split()]


# For each coefficient in row-major order its place in the zig-zag sequence.
ZIGZAG = numbers(
    """
     0  1  5  6 14 15 27 28
     2  4  7 13 16 26 29 42
     3  8 12 17 25 30 41 43
     9 11 18 24 31 40 44 53
    10 19 23 32 39 45 52 54
    20 22 33 38 46 51 55 60
    21 34 37 47 50 56 59 61
    35 36 48 49 57 58 62 63
    """
)

# The standard quantisation tables, row-major.
LUMINANCE = numbers(
    """
    16  11  10  16  24  40  51  61
    12  12  14  19  26  58  60  55
    14  13  16  24  40  57  69  56
    14  17  22  29  51  87  80  62
    18  22  37  56  68 109 103  77
    24  35  55  64  81 104 113  92
    49  64  78  87 103 121 120 101
    72  92  95  98 112 100 103  99
    """
)
CHROMINANCE = numbers(
    """
    17  18  24  47  99  99  99  99
    18  21  26  66  99  99  99  99
    24  26  56  99  99  99  99  99
    47  66  99  99  99  99  99  99
    """
) + 32 * [99]

# The symbols of the standard Huffman tables, in the order of their codes.
DC_SYMBOLS = bytes(range(12))
LUMINANCE_SYMBOLS = bytes.fromhex(
    """
    01 02 03 00 04 11 05 12 21 31 41 06 13 51 61 07 22 71 14 32 81 91 a1 08 23 42 b1 c1 15 52 d1 f0
    24 33 62 72 82 09 0a 16 17 18 19 1a 25 26 27 28 29 2a 34 35 36 37 38 39 3a 43 44 45 46 47 48 49
    4a 53 54 55 56 57 58 59 5a 63 64 65 66 67 68 69 6a 73 74 75 76 77 78 79 7a 83 84 85 86 87 88 89
    8a 92 93 94 95 96 97 98 99 9a a2 a3 a4 a5 a6 a7 a8 a9 aa b2 b3 b4 b5 b6 b7 b8 b9 ba c2 c3 c4 c5
    c6 c7 c8 c9 ca d2 d3 d4 d5 d6 d7 d8 d9 da e1 e2 e3 e4 e5 e6 e7 e8 e9 ea f1 f2 f3 f4 f5 f6 f7 f8
    f9 fa
    """
)
CHROMINANCE_SYMBOLS = bytes.fromhex(
    """
    00 01 02 03 11 04 05 21 31 06 12 41 51 07 61 71 13 22 32 81 08 14 42 91 a1 b1 c1 09 23 33 52 f0
    15 62 72 d1 0a 16 24 34 e1 25 f1 17 18 19 1a 26 27 28 29 2a 35 36 37 38 39 3a 43 44 45 46 47 48
    49 4a 53 54 55 56 57 58 59 5a 63 64 65 66 67 68 69 6a 73 74 75 76 77 78 79 7a 82 83 84 85 86 87
    88 89 8a 92 93 94 95 96 97 98 99 9a a2 a3 a4 a5 a6 a7 a8 a9 aa b2 b3 b4 b5 b6 b7 b8 b9 ba c2 c3
    c4 c5 c6 c7 c8 c9 ca d2 d3 d4 d5 d6 d7 d8 d9 da e2 e3 e4 e5 e6 e7 e8 e9 ea f2 f3 f4 f5 f6 f7 f8
    f9 fa
    """
)

# By table id, luminance DC and AC, chrominance DC and AC: how many codes have 1, 2, ... 16 bits,
# and the symbols.
HUFFMAN = {
    0x00: (numbers("0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0"), DC_SYMBOLS),
    0x10: (numbers("0 2 1 3 3 2 4 3 5 5 4 4 0 0 1 125"), LUMINANCE_SYMBOLS),
    0x01: (numbers("0 3 1 1 1 1 1 1 1 1 1 0 0 0 0 0"), DC_SYMBOLS),
    0x11: (numbers("0 2 1 2 4 4 3 4 7 5 4 4 0 1 2 119"), CHROMINANCE_SYMBOLS),
}

# How much larger the float DCT leaves each frequency, apart from a factor of 8 for the block.
AAN_SCALE = [1, 1.387039845, 1.306562965, 1.175875602, 1, 0.785694958, 0.541196100, 0.275899379]


def segment(marker, content):
    """A segment; its length counts its own two bytes."""
    return bytes([0xFF, marker]) + (len(content) + 2).to_bytes(2, "big") + content


def headers(width, height, luminance, chrominance):
    """All that precedes the coded data."""
    jfif = b"JFIF\0" + bytes.fromhex("0101 00 0001 0001 00 00")  # 1.01, ratio 1 : 1, no thumbnail
    quantisation = b"\x00" + bytes(luminance) + b"\x01" + bytes(chrominance)
    size = height.to_bytes(2, "big") + width.to_bytes(2, "big")
    frame = b"\x08" + size + bytes.fromhex("03 011100 021101 031101")  # no component is subsampled
    huffman = b"".join(bytes([i, *counts]) + symbols for i, (counts, symbols) in HUFFMAN.items())
    scan = bytes.fromhex("03 0100 0211 0311 00 3F 00")  # tables 0 for Y, tables 1 for Cb and Cr
    return (
        bytes.fromhex("FFD8")
        + segment(0xE0, jfif)
        + segment(0xFE, b"Quillon v1.0..")
        + segment(0xDB, quantisation)
        + segment(0xC0, frame)
        + segment(0xC4, huffman)
        + segment(0xDA, scan)
    )


def set_quant_table(basic_table, scale_factor):
    """The percentage of a standard table, rounded half up, 1 to 255, in zig-zag order."""
    table = [0] * 64
    for i in range(64):
        product = basic_table[i] * scale_factor
        table[ZIGZAG[i]] = 1 if product < 50 else min((product + 50) // 100, 255)
    return table


def compute_Huffman_table(nrcodes, values):
    """Codes of one length count upwards; the next length continues with a zero bit appended."""
    table = {}
    code = 0
    symbols = iter(values)
    for length, count in enumerate(nrcodes, 1):
        for _ in range(count):
            table[next(symbols)] = f"{code:0{length}b}"
            code += 1
        code *= 2
    return table


def bitcode(value):
    """The extra bits of a value, a negative one in one's complement.

    Their number is the value's category; a zero has none.
    """
    if value == 0:
        return ""
    category = abs(value).bit_length()
    return f"{value if value > 0 else 2**category - 1 + value:0{category}b}"


def prepare_quant_table(table):
    """What a DCT output is multiplied by to be quantised: undoes its scaling, too."""
    fdtbl = np.empty(64, np.float32)
    for i in range(64):
        fdtbl[i] = 1.0 / (table[ZIGZAG[i]] * AAN_SCALE[i // 8] * AAN_SCALE[i % 8] * 8.0)
    return fdtbl


def load_bitmap(data, width, height):
    """The image, top row first, as rows x columns x (blue, green, red).

    Both sides are extended to multiples of 8: with the last column and with the bottom row. Bytes
    that the file does not have are 0.
    """
    padded_width = (width + 7) & 0xFFF8
    padded_height = (height + 7) & 0xFFF8
    stride = 3 * width + (4 - 3 * width % 4) % 4
    pixels = data[54 : 54 + stride * height].ljust(stride * height, b"\0")
    rows = np.frombuffer(pixels, np.uint8).reshape(height, stride)[:, : 3 * width]
    rows = rows.reshape(height, width, 3)
    rows = np.pad(rows, ((0, 0), (0, padded_width - width), (0, 0)), "edge")
    rows = rows.reshape(height, 3 * padded_width)

    # The rows run from the bottom up. The length of the part that is flipped has 16 bits, so the
    # right part of an image wider than 21845 pixels stays as it is.
    row_length = 3 * padded_width % 65536 // 8 * 8
    rows[:, :row_length] = rows[::-1, :row_length].copy()
    rows = np.pad(rows, ((0, padded_height - height), (0, 0)), "edge")
    return rows.reshape(padded_height, padded_width, 3)


def load_data_units(image):
    """The 8 x 8 blocks of Y, Cb and Cr, left to right and top to bottom.

    The coefficients are in 16.16 fixed point. All three come out centred on 0.
    """
    blue, green, red = np.moveaxis(image.astype(np.int32), 2, 0)
    planes = [
        ((19595 * red + 38470 * green + 7471 * blue) >> 16) - 128,
        (-11058 * red - 21708 * green + 32768 * blue) >> 16,
        (32768 * red - 27438 * green - 5328 * blue) >> 16,
    ]
    rows, columns = blue.shape
    cut = (rows // 8, 8, columns // 8, 8)
    return [p.astype(np.int8).reshape(cut).swapaxes(1, 2).reshape(-1, 8, 8) for p in planes]


def dct_pass(d):
    """The Arai-Agui-Nakajima DCT of 8 points, along the first axis, in 32-bit floats."""
    c0_707, c0_383 = np.float32([0.707106781, 0.382683433])
    c0_541, c1_307 = np.float32([0.541196100, 1.306562965])
    out = np.empty_like(d)
    tmp0, tmp7 = d[0] + d[7], d[0] - d[7]
    tmp1, tmp6 = d[1] + d[6], d[1] - d[6]
    tmp2, tmp5 = d[2] + d[5], d[2] - d[5]
    tmp3, tmp4 = d[3] + d[4], d[3] - d[4]

    tmp10, tmp13 = tmp0 + tmp3, tmp0 - tmp3
    tmp11, tmp12 = tmp1 + tmp2, tmp1 - tmp2
    out[0], out[4] = tmp10 + tmp11, tmp10 - tmp11
    z1 = (tmp12 + tmp13) * c0_707
    out[2], out[6] = tmp13 + z1, tmp13 - z1

    tmp10, tmp11, tmp12 = tmp4 + tmp5, tmp5 + tmp6, tmp6 + tmp7
    z5 = (tmp10 - tmp12) * c0_383
    z2 = c0_541 * tmp10 + z5
    z4 = c1_307 * tmp12 + z5
    z3 = tmp11 * c0_707
    z11, z13 = tmp7 + z3, tmp7 - z3
    out[5], out[3] = z13 + z2, z13 - z2
    out[1], out[7] = z11 + z4, z11 - z4
    return out


def fdct_and_quantization(blocks, fdtbl):
    """The quantised coefficients of each block, row-major. Halves are rounded upwards.

    Rows first, then columns: the order decides how the floats are rounded.
    """
    row_major = blocks.astype(np.float32)  # block, row, column
    rows_done = dct_pass(row_major.transpose(2, 0, 1))  # column, block, row
    all_done = dct_pass(rows_done.transpose(2, 1, 0))  # row, block, column
    output = all_done.transpose(1, 0, 2).reshape(-1, 64)
    shifted = (output * fdtbl).astype(np.float64) + 16384.5
    return (np.clip(np.trunc(shifted), -32768, 32767).astype(np.int32) - 16384).astype(np.int16)


def process_DU(du, last_dc, HTDC, HTAC):
    """The codes of one block, whose coefficients are in zig-zag order.

    No end-of-block code follows a block whose last coefficient is not 0.
    """
    extra = bitcode(du[0] - last_dc)
    bits = HTDC[len(extra)] + extra
    end0pos = max((i for i in range(1, 64) if du[i] != 0), default=0)
    nrzeroes = 0
    for i in range(1, end0pos + 1):
        if du[i] == 0:
            nrzeroes += 1
            continue
        extra = bitcode(du[i])
        bits += HTAC[0xF0] * (nrzeroes // 16)
        bits += HTAC[nrzeroes % 16 * 16 + len(extra)] + extra
        nrzeroes = 0
    if end0pos != 63:
        bits += HTAC[0x00]
    return bits


def main_encoder(image, luminance, chrominance):
    """All blocks of the image, each as Y, Cb, Cr; a DC value is coded as a difference."""
    codes = {i: compute_Huffman_table(*table) for i, table in HUFFMAN.items()}
    components = []  # of each the codes of its blocks
    for number, blocks in enumerate(load_data_units(image)):
        table, i = (luminance, 0x00) if number == 0 else (chrominance, 0x01)
        coefficients = fdct_and_quantization(blocks, prepare_quant_table(table))
        units = np.empty_like(coefficients)
        units[:, ZIGZAG] = coefficients
        coded, last_dc = [], 0
        for du in units.tolist():
            coded.append(process_DU(du, last_dc, codes[i], codes[i + 0x10]))
            last_dc = du[0]
        components.append(coded)
    return "".join(y + cb + cr for y, cb, cr in zip(*components))


def writebits(bits):
    """The coded data as bytes: padded with ones, and a zero byte after each byte of 0xFF.

    Codes that end on a byte boundary are followed by a whole byte of ones.
    """
    bits += "1" * (8 - len(bits) % 8)
    return int(bits, 2).to_bytes(len(bits) // 8, "big").replace(b"\xff", b"\xff\x00")


def convertToJPEG(in_path, out_path, scale_factor):
    """Writes a BMP image as JPEG. The output is created once the input has been found good.

    Only the fields named here are looked at; the pixels are always read from byte 54. Of the width
    and the height only the low 16 bits count.
    """
    check(len(in_path) < 512 and len(out_path) < 512, -1.0)
    data = load(in_path, 3.0)
    check(len(data) >= 54, 4.0)
    check(data[:2] == b"BM" and le(data, 28, 2) == 24, 5.0)
    width, height = le(data, 18, 2), le(data, 22, 2)
    check(1 <= width <= 65528 and 1 <= height <= 65528, -9.0)

    luminance = set_quant_table(LUMINANCE, scale_factor % 256)
    chrominance = set_quant_table(CHROMINANCE, scale_factor % 256)
    coded = writebits(main_encoder(load_bitmap(data, width, height), luminance, chrominance))
    jpeg = headers(width, height, luminance, chrominance) + coded + bytes.fromhex("FFD9")
    return create(out_path, jpeg, -1.0)
