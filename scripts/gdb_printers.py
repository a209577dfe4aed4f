"""Shows the engine's pages, rows and values in gdb: `source scripts/gdb_printers.py`, then `print` as usual.

Needs a build with full debug information (-DCMAKE_BUILD_TYPE=Debug). The printers read memory alone and call nothing
in the program, so they work on core dumps too.
"""

import datetime
import re
import struct

import gdb

JET_3_PAGE_BYTES = 2048
PAGE_KINDS = {0: "header", 1: "rows", 2: "definition", 3: "index node", 4: "index leaf", 5: "usage bitmap"}
LONG_VALUES = 0x4C41564C
DAY_ZERO = datetime.datetime(1899, 12, 30)
SHOWN_BYTES = 32


def bytes_at(address, count):
    return bytes(gdb.selected_inferior().read_memory(int(address), int(count)))


def hex_of(data):
    text = data[:SHOWN_BYTES].hex(" ")
    return text + (f" ... ({len(data)} bytes)" if len(data) > SHOWN_BYTES else "")


def vector_bytes(vector):
    parts = vector["_M_impl"]
    return bytes_at(parts["_M_start"], int(parts["_M_finish"]) - int(parts["_M_start"]))


def u16_text(text):
    count = int(text["_M_string_length"])
    return bytes_at(text["_M_dataplus"]["_M_p"], 2 * count).decode("utf-16-le", "replace")


class RowId:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        page, slot = int(self.value["page"]), int(self.value["slot"])
        return f"row {slot} of page {page}" if page else "no row"


class Currency:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        amount = int(self.value["ten_thousandths"])
        return f"{'-' if amount < 0 else ''}{abs(amount) // 10000}.{abs(amount) % 10000:04}"


class Date:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        days = float(self.value["days"])
        try:
            whole = int(days)
            return (DAY_ZERO + datetime.timedelta(days=whole + abs(days - whole))).isoformat(timespec="seconds")
        except (OverflowError, ValueError):
            return f"no date ({days} days)"


class Guid:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        raw = bytes_at(self.value.address, 16)
        first, second, third = struct.unpack_from("<IHH", raw)
        return f"{{{first:08X}-{second:04X}-{third:04X}-{raw[8:10].hex().upper()}-{raw[10:].hex().upper()}}}"


class Numeric:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        raw = bytes_at(self.value.address, 17)
        words = struct.unpack_from("<4I", raw, 1)
        digits, scale = 0, int(self.value["scale"])
        for word in words:
            digits = digits << 32 | word
        text = str(digits).rjust(scale + 1, "0")
        text = f"{text[:-scale]}.{text[-scale:]}" if scale else text
        return ("-" if raw[0] & 0x80 else "") + text


class Page:
    """A pinned page: its number and kind; for a page of rows also its owner and free space."""

    def __init__(self, value):
        self.place = value["place_"]

    def to_string(self):
        if int(self.place["frame"]) == 0:
            return "no page"
        frame = self.place["frame"].dereference()
        number = int(frame["page_no"])
        page = bytes_at(self.place["bytes"], int(frame["page_bytes"]))
        kind = PAGE_KINDS.get(0 if number == 0 else page[0], f"unknown kind {page[0]}")
        text = f"page {number}: {kind}"
        if kind == "rows":
            slot_count = 8 if len(page) == JET_3_PAGE_BYTES else 12
            free, owner, slots = struct.unpack_from("<HI", page, 2) + struct.unpack_from("<H", page, slot_count)
            whose = f"of the table at page {owner}" if owner else "usage maps"
            whose = "long values" if owner == LONG_VALUES else whose
            text += f" {whose}, {slots} slots, {free} bytes free"
        elif kind.startswith("index"):
            text += f" of the table at page {struct.unpack_from('<I', page, 4)[0]}"
        return text + (", not yet in the file" if bool(frame["dirty"]) else "")


class RowView:
    """One stored row: its address, its stored bytes, and the name and type of each column."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        data = vector_bytes(self.value["bytes_"])
        return f"{RowId(self.value['row_']).to_string()}, {len(data)} bytes: {hex_of(data)}"

    def children(self):
        shape = self.value["shape_"]
        if int(shape) == 0:
            return
        columns = shape.dereference()["columns"]["_M_impl"]
        at = columns["_M_start"]
        while at != columns["_M_finish"]:
            column = at.dereference()
            yield u16_text(column["name"]), column["type"]
            at += 1


PRINTERS = {"RowId": RowId, "Currency": Currency, "Date": Date, "Guid": Guid, "Numeric": Numeric, "Page": Page,
            "MutablePage": Page, "RowView": RowView}


def printer_of(value):
    name = re.fullmatch(r"jet::(\w+)", str(value.type.strip_typedefs().unqualified()))
    return PRINTERS[name.group(1)](value) if name and name.group(1) in PRINTERS else None


gdb.pretty_printers.append(printer_of)
