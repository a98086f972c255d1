"""Names of the header fields in the files that the operations read and write."""

PSD = [(0, "signature"), (4, "version"), (6, "reserved"), (12, "channels"), (14, "height"),
       (18, "width"), (22, "depth"), (24, "colour mode"), (26, "colour data length"),
       (30, "resources length")]
BMP = [(0, "signature"), (2, "file size"), (6, "reserved"), (10, "pixel offset"),
       (14, "header size"), (18, "width"), (22, "height"), (26, "planes"), (28, "bits"),
       (30, "compression"), (34, "image size"), (38, "rest")]
TARGA = [(0, "id length"), (1, "colour map"), (2, "kind"), (3, "colour map fields"),
         (8, "x origin"), (10, "y origin"), (12, "width"), (14, "height"), (16, "bits"),
         (17, "descriptor")]
JPEG = {0xD8: "SOI", 0xE0: "APP0", 0xFE: "COM", 0xDB: "DQT", 0xC0: "SOF0", 0xC4: "DHT", 0xDA: "SOS"}


def in_table(table, end, at):
    """The field of a table at an offset."""
    return next((name for start, name in reversed(table) if start <= at < end), None)


def in_tiff(data, at):
    if at < 8:
        return "byte order" if at < 2 else "magic" if at < 4 else "directory offset"
    directory = int.from_bytes(data[4:8], "little")
    entry, part = divmod(at - directory - 2, 12)
    if directory <= at < directory + 2:
        return "entry count"
    if not 0 <= entry < int.from_bytes(data[directory : directory + 2], "little"):
        return None
    start = directory + 2 + 12 * entry
    tag = int.from_bytes(data[start : start + 2], "little")
    return (
        f"{tag} {'tag' if part < 2 else 'type' if part < 4 else 'count' if part < 8 else 'value'}"
    )


def in_mesh(data, at):
    """A chunk's header, by walking the chunk lengths."""
    start = 32
    while start + 16 <= len(data):
        identity, length = (
            int.from_bytes(data[start + k : start + k + 4], "little") for k in (0, 4)
        )
        if start <= at < start + 16:
            return f"chunk {identity} {('id', 'length', 'count', 'reserved')[(at - start) // 4]}"
        start += max(length, 16)
    return None


def in_jpeg(data, at):
    start = 0
    while start + 4 <= len(data) and data[start] == 0xFF:
        marker = data[start + 1]
        length = 2 if marker == 0xD8 else 2 + int.from_bytes(data[start + 2 : start + 4], "big")
        if at < start + length:
            return JPEG.get(marker, f"segment {marker:02X}")
        if marker == 0xDA:
            return None
        start += length
    return None


def name(data, at):
    """The name, in brackets, of the field at an offset of a file; nothing outside a header."""
    if data[:4] == b"8BPS":
        found = in_table(PSD, 34, at)
    elif data[:2] == b"BM":
        found = in_table(BMP, 54, at)
    elif data[:3] == b"II*":
        found = in_tiff(data, at)
    elif data[:2] == b"\xff\xd8":
        found = in_jpeg(data, at)
    elif data[:8] == b"\0\0\2" + bytes(5):
        found = in_table(TARGA, 18, at)
    else:
        found = in_mesh(data, at)
    return f" ({found})" if found else ""
