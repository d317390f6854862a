# SPDX-License-Identifier: Apache-2.0
"""Plants differences in a copy of the event log's sources; accesses.py has to name each. Takes the project's folder."""

import pathlib
import shutil
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(sys.argv[1])
SOURCES = PROJECT / "foundation/corvane/common/logging"

# What is planted, where, what stands there, what is put in its place, what accesses.py has to say.
PLANTED = [
    ("another order of a store", "LogAccess.hpp", "__ATOMIC_RELEASE", "__ATOMIC_RELAXED", "slot.*text, store, relaxed"),
    ("another order of a load", "LogAccess.hpp", "__ATOMIC_ACQUIRE", "__ATOMIC_RELAXED", "shared, load, relaxed"),
    ("another order of the fence", "MemoryReader.cpp", "__ATOMIC_ACQUIRE", "__ATOMIC_RELAXED", "fence, fence, relaxed"),
    ("an order where there was none", "LogAccess.hpp", "count_.fetch_add(1)",
     "count_.fetch_add(1, std::memory_order_relaxed)", "count_, fetch_add, relaxed"),
    ("an order on the next line", "LogAccess.hpp", "count_.fetch_add(1)",
     "count_\n.fetch_add(1,\n std::memory_order::relaxed)", "count_, fetch_add, relaxed"),
    ("one more load", "FastLog.cpp", "const auto count = count_.load();",
     "const auto count = std::min(count_.load(), count_.load());", "count_, load, seq_cst: 2 in the code, 1 in the table"),
    ("one load less", "FastLog.cpp", "count_.load()", "0", "count_, load, seq_cst: 0 in the code, 1 in the table"),
    ("a load without its name", "FastLog.cpp", "count_.load()", "std::uint64_t{count_}", "not understood"),
    ("a plain addition", "LogAccess.hpp", "count_.fetch_add(1)", "count_++", "not understood"),
    ("a plain store of a text", "LogAccess.hpp", "__atomic_store_n(&(slot.*text), event.*text, __ATOMIC_RELEASE);",
     "slot.*text = event.*text;", "slot.*text, store, release: 0 in the code"),
    ("a plain look at the ring", "FastLog.cpp", "LogAccess::load(ring_[slot])", "ring_.at(slot)", "not understood"),
    ("one more look at the ring", "FastLog.cpp", "LogAccess::load(ring_[slot])",
     "ring_[slot].text1 != nullptr ? LogAccess::load(ring_[slot]) : Record{}", "ring_, address, -: 4 in the code"),
    ("an unknown operation", "LogAccess.hpp", "__atomic_load_n(&shared, __ATOMIC_ACQUIRE)",
     "__atomic_exchange_n(&shared, nullptr, __ATOMIC_ACQUIRE)", "not understood"),
    ("an atomic variable of which nothing is known", "FastLogger.cpp", "FastLogger::FastLogger()",
     "std::atomic<int> more = 0;\nint one() { return more.load(); }\nFastLogger::FastLogger()", "more, load, seq_cst"),
    ("a lock", "FastLogger.cpp", "FastLogger::FastLogger()", "std::mutex lock;\nFastLogger::FastLogger()",
     "not understood"),
    ("a copy by the kernel without a fence", "dumpFastLog.cpp", "reader_.readShared(addressOf(slot), record)",
     "reader_.read(addressOf(slot), &record, sizeof record)", "addressOf(slot), copy, -"),
]


def check(sources):
    command = [sys.executable, PROJECT / "scripts/lib/accesses.py", sources, PROJECT / "docs/model/accesses.txt"]
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    return run.returncode, run.stdout + run.stderr


failed = 0
for words, name, old, new, expected in PLANTED:
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(shutil.copytree(SOURCES, pathlib.Path(folder) / "logging"))
        text = (copy / name).read_text()
        assert text.count(old) == 1, "%s: it is there %d times: %s" % (words, text.count(old), old)
        (copy / name).write_text(text.replace(old, new))
        status, output = check(copy)
        if status != 1 or expected not in output:
            print("not found: %s\n%s" % (words, output))
            failed = 1
print("%d planted" % len(PLANTED))
sys.exit(failed)
