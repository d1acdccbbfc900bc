"""PNG files as rows of red, green and blue bytes, and a document to print."""
import struct
import zlib


def _paeth(left, above, corner):
    guess = left + above - corner
    distances = (abs(guess - left), abs(guess - above), abs(guess - corner))
    return (left, above, corner)[distances.index(min(distances))]


def _unfiltered(kind, row, before, step):
    row = bytearray(row)
    for i in range(len(row) if kind else 0):
        left = row[i - step] if i >= step else 0
        above = before[i]
        corner = before[i - step] if i >= step else 0
        row[i] = (row[i] + (left, above, (left + above) // 2,
                            _paeth(left, above, corner))[kind - 1]) & 255
    return bytes(row)


def _colours(row, width, depth, colour, palette):
    if colour == 2:
        return row[:3 * width]
    mask = (1 << depth) - 1
    numbers = [(row[x * depth // 8] >> (8 - depth - x * depth % 8)) & mask for x in range(width)]
    if colour == 3:
        return b"".join(palette[3 * n:3 * n + 3] for n in numbers)
    return b"".join(bytes([n * 255 // mask]) * 3 for n in numbers)


def read_png(name):
    """Its width, its height, and what gives a row; only rows that are asked for are made."""
    data = open(name, "rb").read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", name
    at, packed, palette = 8, b"", b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
        elif kind == b"PLTE":
            palette = body
        elif kind == b"IDAT":
            packed += body
        at += length + 12
    raw = zlib.decompress(packed)
    bits = depth * (3 if colour == 2 else 1)
    size = (width * bits + 7) // 8
    rows, before = [], bytes(size)
    for y in range(height):
        line = raw[y * (size + 1):(y + 1) * (size + 1)]
        before = _unfiltered(line[0], line[1:], before, max(1, bits // 8))
        rows.append(before)
    return width, height, lambda y: _colours(rows[y], width, depth, colour, palette)


def write_pdf(name, content, width=595, height=842):
    """A page of what a content stream draws; Helvetica is /F."""
    objects = [
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 {width} {height}] /Contents 4 0 R "
        "/Resources << /Font << /F 5 0 R >> >> >>",
        f"<< /Length {len(content)} >>\nstream\n{content}\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold >>",
    ]
    text, places = "%PDF-1.4\n", []
    for number, body in enumerate(objects, 1):
        places.append(len(text))
        text += f"{number} 0 obj\n{body}\nendobj\n"
    table = "".join(f"{place:010} 00000 n \n" for place in places)
    count = len(objects) + 1
    text += (f"xref\n0 {count}\n0000000000 65535 f \n{table}"
             f"trailer\n<< /Size {count} /Root 1 0 R >>\nstartxref\n{len(text)}\n%%EOF\n")
    with open(name, "w", encoding="ascii") as file:
        file.write(text)
