# SPDX-License-Identifier: Apache-2.0
"""Truncates a core file as a kernel does when the disk is full: truncate_core.py CORE PERCENT OUTPUT.

gdb writes the notes (registers, files) behind the memory, and without them a file is not a core. A kernel writes them
first. So they are moved to the front before the file is cut off."""

import struct
import sys

NOTE = 4

core, percent, output = sys.argv[1:]
data = open(core, "rb").read()
order = "<" if data[5] == 1 else ">"
wide = data[4] == 2
# Where things are in the headers of an ELF file: the form of a number, the headers' offset, their size and count; in a
# header, the offset of its contents and their size.
number, headers_at, size_at, offset_in, length_in = ("Q", 32, 54, 8, 32) if wide else ("I", 28, 42, 4, 16)
(headers,) = struct.unpack_from(order + number, data, headers_at)
size, count = struct.unpack_from(order + "HH", data, size_at)
places = [headers + index * size for index in range(count)]
places.sort(key=lambda place: struct.unpack_from(order + "I", data, place)[0] != NOTE)

whole = bytearray(data[: headers + count * size])
for place in places:
    (offset,) = struct.unpack_from(order + number, data, place + offset_in)
    (length,) = struct.unpack_from(order + number, data, place + length_in)
    struct.pack_into(order + number, whole, place + offset_in, len(whole))
    whole += data[offset : offset + length]
# The sections, of which nobody reads a core's, would now be in a wrong place.
struct.pack_into(order + number, whole, headers_at + struct.calcsize(number), 0)
struct.pack_into(order + "HHH", whole, size_at + 4, 0, 0, 0)
with open(output, "wb") as file:
    file.write(whole[: len(whole) * int(percent) // 100])
