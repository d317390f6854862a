# SPDX-License-Identifier: Apache-2.0
"""Corvane Common in the debugger.

gdb loads this file of its own accord where the library is installed below /usr; elsewhere:

    (gdb) source PREFIX/share/corvane_common/corvane-gdb.py

It adds the command "corvane fastlog", for core files and live processes, and printers for the library's types. The
command needs no debug information: it finds the log by a descriptor that the library exports, and only reads memory.
The printers need that of the program, and those of the registries that of the library, too.
"""

import json
import struct

import gdb
import gdb.printing


# --- the event log ----------------------------------------------------------------------------------------------------


# In place of a text: there is none. A text whose memory is gone is None.
NULL = object()


class LogError(Exception):
    """Why there is no log to print."""


class Memory:
    """The debugged process's memory, or what a core file has kept of it.

    The process may be of another processor than gdb: its byte order and the size of its pointers come from the
    descriptor of the log."""

    LONGEST_TEXT = 1 << 20

    def __init__(self):
        self._inferior = gdb.selected_inferior()
        self._order = "<"
        self._pointer = "Q"

    def set_pointer_size(self, size):
        self._pointer = {4: "I", 8: "Q"}[size]

    def set_order_by(self, small_number):
        """The byte order in which these four bytes are a number below 65,536."""
        self._order = "<" if int.from_bytes(small_number, "little") < 1 << 16 else ">"

    def bytes(self, address, size):
        return self._inferior.read_memory(address, size).tobytes()

    def form(self, form):
        """A form for struct, without padding: I has four bytes, Q has eight, P is a pointer."""
        return self._order + form.replace("P", self._pointer)

    def unpack(self, form, address):
        form = self.form(form)
        return struct.unpack(form, self.bytes(address, struct.calcsize(form)))

    def pointer(self, address):
        return self.unpack("P", address)[0]

    def text(self, address):
        """The C string at the address, as bytes; None if its memory is gone."""
        found = b""
        size = 256
        while len(found) < self.LONGEST_TEXT:
            # A piece never crosses a page's end. It gets shorter if memory ends inside it, as in a truncated core.
            size = min(size, 256 - address % 256)
            try:
                piece = self.bytes(address, size)
            except gdb.MemoryError:
                if size == 1:
                    return None
                size //= 2
                continue
            end = piece.find(b"\0")
            if end >= 0:
                return found + piece[:end]
            found += piece
            address += size
        return None


def address_of(name):
    """The address of a symbol, debug information or not. Raises gdb.error if there is none."""
    language = gdb.parameter("language")
    # The language of the selected frame may have no such expression.
    gdb.execute("set language c", to_string=True)
    try:
        return int(gdb.parse_and_eval("(unsigned long)&" + name))
    finally:
        gdb.execute("set language " + language, to_string=True)


class ProcessLog:
    """The events of the process's log, oldest first."""

    MAGIC = b"corvane.fastlog\0"
    VERSION = 2
    LARGEST = 1 << 28  # A ring of more bytes than this is a damaged descriptor.

    def __init__(self):
        self._memory = Memory()
        try:
            descriptor = address_of("corvane_fastlog_descriptor")
        except gdb.error as error:
            raise LogError(
                "no descriptor of the log found: is libcorvane_common not loaded, a static program stripped,"
                " or the core file truncated? (%s)" % error
            ) from error
        try:
            self._read(descriptor)
        except gdb.error as error:
            raise LogError("the memory of the log is missing: is the core file truncated? (%s)" % error) from error

    def _read(self, descriptor):
        memory = self._memory
        damaged = LogError("the descriptor of the log is damaged, or not relocated yet: has the process started?")
        if memory.bytes(descriptor, 16) != self.MAGIC:
            raise damaged
        memory.set_order_by(memory.bytes(descriptor + 16, 4))
        version, _, pointer_size = memory.unpack("III", descriptor + 16)
        if version != self.VERSION:
            raise LogError("the log is of version %d, and this script knows %d" % (version, self.VERSION))
        if pointer_size not in (4, 8):
            raise damaged
        memory.set_pointer_size(pointer_size)
        (current_offset, count_offset, ring_offset, record_count, record_size, text_count, written_text,
         logger_at) = memory.unpack("7IP", descriptor + 28)
        if logger_at == 0 or record_count == 0 or record_count * record_size > self.LARGEST:
            raise damaged
        if not written_text < text_count <= record_size // pointer_size:
            raise damaged
        self._widths = memory.unpack("%dI" % text_count, descriptor + 56 + pointer_size)
        if max(self._widths) > 1000:
            raise damaged
        logger = memory.pointer(logger_at)
        log = memory.pointer(logger + current_offset) if logger else 0
        if log == 0:
            raise LogError("the process has no log: FastLogger::instance() was not called, or the logger has ended")
        self.recorded = memory.unpack("Q", log + count_offset)[0]

        self.events = []
        self.missing = 0  # records whose memory is gone
        texts = {}
        oldest = max(self.recorded - record_count, 0)
        ring = self._ring(log + ring_offset, record_count, record_size)
        for event in range(oldest, oldest + record_count):
            slot = event % record_count
            record = ring[slot]
            if record is None:
                self.missing += 1
                continue
            pointers = struct.unpack_from(memory.form("%dP" % text_count), record)
            if pointers[written_text] == 0:
                continue
            for pointer in pointers:
                if pointer and pointer not in texts:
                    texts[pointer] = memory.text(pointer)
            self.events.append((slot, [NULL if pointer == 0 else texts[pointer] for pointer in pointers]))
        if self.missing == record_count:
            raise LogError("the memory of the log is missing: is the core file truncated?")

    def _ring(self, address, count, size):
        """The records, each as bytes; None for a record whose memory is gone."""
        try:
            ring = self._memory.bytes(address, count * size)
            return [ring[slot * size : (slot + 1) * size] for slot in range(count)]
        except gdb.MemoryError:
            return [self._record(address + slot * size, size) for slot in range(count)]

    def _record(self, address, size):
        try:
            return self._memory.bytes(address, size)
        except gdb.MemoryError:
            return None

    def lines(self):
        yield "Log size = %d" % len(self.events)
        for number, (slot, texts) in enumerate(self.events):
            columns = []
            for text, width in zip(texts, self._widths):
                shown = "<null>" if text is NULL else "<unreadable>" if text is None else printable(text)
                # The library counts bytes, not characters. The lines are to be the same.
                columns.append(shown + " " * (width - len(shown.encode())) + " ")
            yield "%4d  (%d): %s" % (number, slot, "".join(columns))

    def json(self):
        return json.dumps(
            {
                "recorded": self.recorded,
                "events": [
                    {
                        "slot": slot,
                        "texts": [
                            None if text is NULL else {"unreadable": True} if text is None else printable(text)
                            for text in texts
                        ],
                    }
                    for slot, texts in self.events
                ],
            },
            ensure_ascii=False,
        )


def printable(text):
    """UTF-8 as it is, any other byte as an escape."""
    return text.decode("utf-8", "backslashreplace")


class Corvane(gdb.Command):
    """Commands for programs that use Corvane Common."""

    def __init__(self):
        super().__init__("corvane", gdb.COMMAND_DATA, gdb.COMPLETE_NONE, True)


class FastLogCommand(gdb.Command):
    """Print the process's event log, oldest event first.

    corvane fastlog [--json]

    Works on a core file and on a live process, which it does not disturb, and without debug information. With --json,
    one line: {"recorded": N, "events": [{"slot": N, "texts": [T, T, T, T]}]}, T a string, null, or
    {"unreadable": true}."""

    def __init__(self):
        super().__init__("corvane fastlog", gdb.COMMAND_DATA, gdb.COMPLETE_NONE)

    def invoke(self, argument, from_tty):
        arguments = gdb.string_to_argv(argument)
        if arguments not in ([], ["--json"]):
            raise gdb.GdbError("usage: corvane fastlog [--json]")
        try:
            log = ProcessLog()
        except LogError as error:
            raise gdb.GdbError(str(error)) from error
        if log.missing:
            gdb.write(
                "corvane fastlog: the memory of %d records is missing: is the core file truncated?\n" % log.missing,
                gdb.STDERR,
            )
        if arguments:
            gdb.write(log.json() + "\n")
        else:
            for line in log.lines():
                gdb.write(line + "\n")


# --- printers ---------------------------------------------------------------------------------------------------------


class FastLogPrinter:
    """How full a log is; its events are for "corvane fastlog"."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        recorded = int(self._value["count_"]["_M_i"])
        size = int(self._value["ring_"].type.template_argument(1))
        return "log of %d events, %d recorded" % (min(recorded, size), recorded)


class IDPrinter:
    """Both numbers, as the text form has them."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        fields = (int(self._value[name]) & 0xFFFFFFFFFFFFFFFF for name in ("sequence", "processId"))
        return " ".join("0" if field == 0 else hex(field) for field in fields)


class UUIDPrinter:
    """The 36 characters."""

    def __init__(self, value):
        self._value = value["value"]

    def to_string(self):
        # The 16 bytes are all that there is, whatever Boost calls them. A copy in gdb has no address.
        found = self._value
        while found.type.strip_typedefs().code != gdb.TYPE_CODE_ARRAY:
            found = found[found.type.strip_typedefs().fields()[0]]
        text = bytes(int(found[index]) & 0xFF for index in range(16)).hex()
        return "-".join((text[:8], text[8:12], text[12:16], text[16:20], text[20:]))


class VersionPrinter:
    """The dotted text."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        pair = (int(self._value["first"]), int(self._value["second"]))
        return "undefinedVersion" if pair == (65535, 65535) else "%d.%d" % pair


class EnumPrinter:
    """The enumerator's bare name."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        number = int(self._value)
        for field in self._value.type.strip_typedefs().fields():
            if field.enumval == number:
                return field.name.rsplit("::", 1)[-1]
        return "%d, which has no name" % number


def first_pointer(value):
    """The first pointer in a value or in its parts; None if there is none."""
    kind = value.type.strip_typedefs()
    if kind.code == gdb.TYPE_CODE_PTR:
        return value
    found = None
    if kind.code == gdb.TYPE_CODE_STRUCT:
        for field in kind.fields():
            if not hasattr(field, "bitpos"):  # a static member
                continue
            found = first_pointer(value[field])
            if found is not None:
                break
    return found


def pointee(owner):
    """What a unique_ptr owns, whatever its library calls its parts; None if the type is only declared, as are those
    that the library's sources define if there is no debug information of the library."""
    held = owner.type.strip_typedefs().template_argument(0)
    value = first_pointer(owner).cast(held.pointer()).dereference()
    return value if value.type.fields() else None


class FieldsPrinter:
    """A record: its fields, by the names that its users know; those of the object `behind` it, if given."""

    def __init__(self, title, fields, behind=None):
        self._title = title
        self._fields = fields
        self._behind = behind

    def __call__(self, value):
        printer = FieldsPrinter(self._title, self._fields, self._behind)
        printer.value = value
        return printer

    def to_string(self):
        return self._title(self.value) if callable(self._title) else self._title

    def children(self):
        holder = pointee(self.value[self._behind]) if self._behind else self.value
        if holder is None:
            return
        for name, path in self._fields:
            yield name, holder[path]


class ValuePrinter:
    """A JSON value: what it holds, and nothing of how."""

    KINDS = ("null", "bool", "double", "int64", "uint64", "string", "array", "object")

    def __init__(self, value):
        variant = value["data_"]
        index = int(variant["_M_index"])
        self._kind = self.KINDS[index] if 0 <= index < len(self.KINDS) else None
        self._held = None
        if self._kind not in (None, "null"):
            alternatives = variant.type.strip_typedefs()
            storage = variant["_M_u"]
            for _ in range(index):
                storage = storage["_M_rest"]
            held = alternatives.template_argument(index)
            stored = storage["_M_first"]["_M_storage"]
            if stored.type.strip_typedefs() == held.strip_typedefs():
                self._held = stored
            elif stored.address is not None:  # The bytes of it.
                self._held = stored.address.cast(held.pointer()).dereference()

    def to_string(self):
        if self._kind is None:
            return "damaged JSON value"
        if self._kind == "null":
            return "null"
        if self._held is None or self._kind in ("array", "object"):
            return "JSON " + self._kind
        return self._held.format_string()

    def children(self):
        if self._held is not None and self._kind in ("array", "object"):
            yield self._kind, self._held


UNKNOWN = "what it has, only the library's debug information tells"


def registry_title(value):
    title = "Registry of %s, %s" % (value["softwareName_"].format_string(), "closed" if value["closed_"] else "open")
    return "%s; %s" % (title, UNKNOWN) if pointee(value["tables_"]) is None else title


def protocol_registry_title(value):
    state = pointee(value["state_"])
    if state is None:
        return "ProtocolRegistry; " + UNKNOWN
    return "ProtocolRegistry of %s %s" % (
        state["softwareName"].format_string(),
        state["softwareVersion"].format_string(),
    )


def printers():
    common = "^foundation::corvane::common::"
    session = common + "session::"
    collection = gdb.printing.RegexpCollectionPrettyPrinter("corvane_common")

    def add(name, pattern, printer):
        collection.add_printer(name, pattern + "$", printer)

    add("FastLog", common + "logging::FastLog", FastLogPrinter)
    add("IDType", session + "IDType", IDPrinter)
    add("UUIDType", session + "UUIDType", UUIDPrinter)
    add("version", "^std::pair<unsigned int, unsigned int>", VersionPrinter)
    for name in ("FeatureHandling", "FeatureStatus", "ConnectionType", "SessionType", "TransportType",
                 "LaunchConnectPolicy"):
        add(name, session + name, EnumPrinter)
    add("DomainType", common + "framing::DomainType", EnumPrinter)
    add("FeatureRequest", session + "FeatureRequest",
        FieldsPrinter("request", (("name", "name"), ("value", "value"), ("handling", "handling"))))
    add("FeatureResolution", session + "FeatureResolution",
        FieldsPrinter("resolution", (("name", "name"), ("message", "message"), ("status", "status"))))
    add("MessageProtocolConfig", session + "MessageProtocolConfig",
        FieldsPrinter("config", (("name", "name"), ("version", "version"), ("features", "features"))))
    add("MessageProtocolResolution", session + "MessageProtocolResolution",
        FieldsPrinter("resolution", (("name", "name"), ("version", "version"), ("resolutions", "resolutions"))))
    add("Registry", common + "serialization::Registry",
        FieldsPrinter(registry_title, (("protocols", "protocols"), ("installations", "installations"),
                                       ("serializers by tag", "serializersByTag")), behind="tables_"))
    add("ProtocolRegistry", common + "serialization::ProtocolRegistry",
        FieldsPrinter(protocol_registry_title, (("protocols", "protocols"),), behind="state_"))
    add("Value", "^foundation::json::Value", ValuePrinter)
    return collection


Corvane()
FastLogCommand()
if gdb.current_objfile() is not None:
    gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
else:
    # Read by hand, for no file in particular. The printers of a file come before those of none, and the standard library
    # has one of its own for pairs; so these go with the first file there is, the program.
    def register(_=None):
        for objfile in gdb.objfiles()[:1]:
            gdb.printing.register_pretty_printer(objfile, printers(), replace=True)

    register()
    gdb.events.new_objfile.connect(register)
