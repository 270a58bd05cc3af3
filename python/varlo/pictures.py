"""Reads the six formats of pictures far enough to know that a file is whole, and how large its picture is.

Nothing here knows how varlo writes: a file counts as whole when all its pixels are there by the rules of its format.
A JPEG file is followed from marker to marker up to its end mark, but its pixels are not decoded.
"""

import struct
import zlib
from collections.abc import Callable
from pathlib import Path

Size = tuple[int, int]


class NotWhole(ValueError):
    """What is wrong with the file of a picture."""


def require(holds: bool, what: str) -> None:
    if not holds:
        raise NotWhole(what)


def read_ppm(data: bytes) -> Size:
    fields: list[bytes] = []
    position = 0
    while len(fields) < 4:
        if data[position:position + 1] == b"#":
            position = data.index(b"\n", position)
        elif data[position:position + 1].isspace():
            position += 1
        else:
            end = position
            while end < len(data) and not data[end:end + 1].isspace():
                end += 1
            require(end > position, "the head is cut off")
            fields.append(data[position:end])
            position = end
    require(fields[0] == b"P6" and fields[3] == b"255", "this is no PPM file of bytes")
    width, height = int(fields[1]), int(fields[2])
    require(len(data) == position + 1 + 3 * width * height, "the pixels are not all there")
    return width, height


def read_tga(data: bytes) -> Size:
    text, palette, kind, _, colours, bits_of_colour, _, _, width, height, bits, _ = struct.unpack_from(
        "<BBBHHBHHHHBB", data)
    require(kind == 2 and bits == 24, "this is no TGA file of true colour")
    start = 18 + int(text) + (int(colours) * ((int(bits_of_colour) + 7) // 8) if palette else 0)
    require(len(data) >= start + 3 * width * height, "the pixels are not all there")
    return width, height


def read_bmp(data: bytes) -> Size:
    magic, size, start, _, width, height, _, bits, packed = struct.unpack_from("<2sI4xIIiiHHI", data)
    require(magic == b"BM" and bits == 24 and packed == 0, "this is no BMP file of true colour")
    needed = start + (3 * width + 3) // 4 * 4 * abs(height)
    require(len(data) >= needed and len(data) == size, "the pixels are not all there")
    return width, abs(height)


def read_png(data: bytes) -> Size:
    require(data[:8] == b"\x89PNG\r\n\x1a\n", "this is no PNG file")
    position, kind = 8, b""
    width = height = row = 0
    pixels = zlib.decompressobj()
    rows = bytearray()
    while kind != b"IEND":
        length, kind = struct.unpack_from(">I4s", data, position)
        body = data[position + 8:position + 8 + length]
        check, = struct.unpack_from(">I", data, position + 8 + length)
        require(zlib.crc32(kind + body) == check, f"the chunk at byte {position} is damaged")
        if kind == b"IHDR":
            width, height, depth, colours, _, _, interlaced = struct.unpack(">IIBBBBB", body)
            require((depth, colours, interlaced) == (8, 2, 0), "this is no PNG file of true colour")
            row = 1 + 3 * width
        elif kind == b"IDAT":
            rows += pixels.decompress(body)
        position += 12 + length
    require(pixels.eof and len(rows) == row * height, "the pixels are not all there")
    require(max(rows[::row]) <= 4, "a row has an unknown filter")
    return width, height


def read_jpeg(data: bytes) -> Size:
    require(data[:2] == b"\xff\xd8", "this is no JPEG file")
    position = 2
    size: Size | None = None
    while True:
        require(data[position] == 0xFF, f"there is no marker at byte {position}")
        kind = data[position + 1]
        if kind == 0xD9:
            require(size is not None, "there is no picture in it")
            assert size is not None
            return size
        length, = struct.unpack_from(">H", data, position + 2)
        if 0xC0 <= kind <= 0xCF and kind not in (0xC4, 0xC8, 0xCC):
            height, width = struct.unpack_from(">HH", data, position + 5)
            size = width, height
        position += 2 + length
        if kind == 0xDA:  # coded pixels up to the next marker: 0xFF with neither 0 nor a restart behind it
            while data[position] != 0xFF or data[position + 1] == 0 or 0xD0 <= data[position + 1] <= 0xD7:
                position = data.index(b"\xff", position + (2 if data[position] == 0xFF else 1))


TIFF_TYPES = {1: "B", 2: "c", 3: "H", 4: "I", 6: "b", 7: "c", 8: "h", 9: "i"}  # all others take 8 bytes


def read_tiff(data: bytes) -> Size:
    order = {b"II*\0": "<", b"MM\0*": ">"}.get(data[:4], "")
    require(order != "", "this is no TIFF file")
    directory, = struct.unpack_from(order + "I", data, 4)
    count, = struct.unpack_from(order + "H", data, directory)
    tags = {}
    for entry in range(directory + 2, directory + 2 + 12 * count, 12):
        tag, kind, number = struct.unpack_from(order + "HHI", data, entry)
        form = f"{order}{number}{TIFF_TYPES.get(kind, 'Q')}"
        start = entry + 8 if struct.calcsize(form) <= 4 else struct.unpack_from(order + "I", data, entry + 8)[0]
        tags[tag] = struct.unpack_from(form, data, start)
    require(len(data) >= directory + 6 + 12 * count, "the directory is cut off")
    width, height = int(tags[256][0]), int(tags[257][0])
    require(tags.get(259, (1,))[0] == 1 and tags.get(277) == (3,), "this is no plain TIFF file of true colour")
    strips = list(zip(tags[273], tags[279]))
    per_strip = tags.get(278, (height,))[0]
    require(len(strips) == -(-height // per_strip), "there are too few strips")
    for number, (start, length) in enumerate(strips):
        rows = min(per_strip, height - number * per_strip)
        require(start > 0 and length >= 3 * width * rows and start + length <= len(data),
                f"row {number * per_strip} is not there")
    return width, height


READERS: dict[str, Callable[[bytes], Size]] = {
    ".ppm": read_ppm, ".tga": read_tga, ".bmp": read_bmp, ".png": read_png, ".jpg": read_jpeg, ".jpeg": read_jpeg,
    ".tif": read_tiff, ".tiff": read_tiff,
}


def whole_size(path: Path) -> Size:
    """Width and height of a picture that is whole; its ending tells the format. Raises `NotWhole` for another one."""
    try:
        width, height = READERS[path.suffix.lower()](path.read_bytes())
    except NotWhole:
        raise
    except OSError as error:
        raise NotWhole(error.strerror or str(error)) from error
    except (struct.error, zlib.error, ValueError, IndexError, KeyError, OverflowError) as error:
        raise NotWhole("the file is cut off or damaged") from error
    require(width > 0 and height > 0, "the picture has no pixels")
    return width, height
