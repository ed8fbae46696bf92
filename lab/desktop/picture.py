# SPDX-License-Identifier: MIT
"""Pictures of a screen: reads what Xvfb keeps in its file, and writes PNG."""
import struct
import zlib

HEADER = struct.Struct(">25I")  # of the X window dump format
# Positions in that header.
SIZE, WIDTH, HEIGHT, BITS, BYTES_PER_LINE, COLOURS = 0, 4, 5, 11, 12, 19
BYTES_PER_COLOUR = 12
# Of the PNG format: its first bytes, the facts, and those of them that are always the same here: eight
# bits of red, green and blue each, and nothing special.
SIGNATURE, FACTS, PLAIN = b"\x89PNG\r\n\x1a\n", ">2I5B", (8, 2, 0, 0, 0)


class Picture:
    """Rows of pixels, each three bytes. Two pictures are equal when all pixels are."""

    def __init__(self, rows):
        self.rows = rows
        self.height, self.width = len(rows), len(rows[0]) // 3 if rows else 0

    @classmethod
    def of_screen(cls, file, part=None):
        """The screen that Xvfb keeps in this file, or a part of it: (x, y, width, height)."""
        data = file.read_bytes()
        header = HEADER.unpack_from(data)
        assert header[BITS] == 32, "a screen of depth 24 keeps four bytes for each pixel"
        start, stride = header[SIZE] + header[COLOURS] * BYTES_PER_COLOUR, header[BYTES_PER_LINE]
        x, y, width, height = part or (0, 0, header[WIDTH], header[HEIGHT])
        left, top = max(x, 0), max(y, 0)
        right, bottom = min(x + width, header[WIDTH]), min(y + height, header[HEIGHT])
        rows = []
        for line in range(top, bottom):
            pixels = data[start + line * stride + left * 4:start + line * stride + right * 4]
            row = bytearray(len(pixels) // 4 * 3)
            row[0::3], row[1::3], row[2::3] = pixels[2::4], pixels[1::4], pixels[0::4]
            rows.append(bytes(row))
        return cls(rows)

    def __eq__(self, other):
        return isinstance(other, Picture) and self.rows == other.rows

    def is_empty(self):
        """Whether it is all of one colour, as a screen on which nothing has been drawn yet."""
        return all(row == self.rows[0][:3] * self.width for row in self.rows)

    def colour(self, x, y):
        """(red, green, blue) of a pixel."""
        return tuple(self.rows[y][3 * x:3 * x + 3])

    def save(self, path):
        """Writes a PNG file; the same pixels make the same bytes."""
        def chunk(kind, data):
            return (struct.pack(">I", len(data)) + kind + data
                    + struct.pack(">I", zlib.crc32(kind + data)))

        facts = struct.pack(FACTS, self.width, self.height, *PLAIN)
        pixels = zlib.compress(b"".join(b"\0" + row for row in self.rows), 9)
        path.write_bytes(SIGNATURE + chunk(b"IHDR", facts) + chunk(b"IDAT", pixels)
                         + chunk(b"IEND", b""))

    @classmethod
    def load(cls, path):
        """A file that save() has written."""
        data = path.read_bytes()
        assert data.startswith(SIGNATURE), "%s is no PNG" % path
        chunks, place = {}, len(SIGNATURE)
        while place < len(data):
            length, kind = struct.unpack_from(">I4s", data, place)
            chunks[kind] = data[place + 8:place + 8 + length]
            place += length + 12
        width, height, *rest = struct.unpack(FACTS, chunks[b"IHDR"])
        pixels, line = zlib.decompress(chunks[b"IDAT"]), 1 + 3 * width
        assert tuple(rest) == PLAIN and not any(pixels[::line]), "%s is of another kind" % path
        return cls([pixels[row * line + 1:(row + 1) * line] for row in range(height)])

    def difference(self, other):
        """Where the two differ: (x, y, width, height) of what holds all of it; None where they do not."""
        if (self.width, self.height) != (other.width, other.height):
            return 0, 0, max(self.width, other.width), max(self.height, other.height)
        rows = [row for row in range(self.height) if self.rows[row] != other.rows[row]]
        columns = [place // 3 for row in rows for place in range(3 * self.width)
                   if self.rows[row][place] != other.rows[row][place]]
        return rows and (min(columns), rows[0], max(columns) - min(columns) + 1,
                         rows[-1] - rows[0] + 1) or None
