/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The event log as its threads see it: the ring, the exchange of the logs by a snapshot, late writers, readers.
 * scripts/model runs every check; docs/fastlog-model.md says what they show, and what the model leaves out.
 *
 * A step is one access to memory that others see; accesses.txt lists them as they are in the code. What only the checks
 * know changes in the same step, as early as it may, so that a check is as sharp as it can be. The four texts of an event
 * are its number, 1 and up; 0 is null.
 *
 * The stores of an event are releases, so they become visible in their order; its loads are acquires, so they happen in
 * theirs. What that means for the bytes behind the pointers is counted: a writer knows the bytes of the texts that it
 * saved. Each release leaves in the variable what its thread knows, and each acquire takes over what it finds there.
 * A thread that follows a pointer to bytes that it does not know might read anything there.
 *
 * Macros say what a check looks at:
 *   SLOTS, TEXTS (a record), WRITERS, EVENTS (a writer), OWNERS (each takes one snapshot), READERS    how many
 *   DUMPS          readers read as dumpFastLog does, by copies that the kernel makes
 *   RELAXED_STORE, RELAXED_LOAD    the number of a text that is stored, or loaded, without a memory order
 *   FIND_...       claims what is not promised: the counterexample shows why
 *   PLANTED_...    a fault, to see that the check would find it
 *   WATCHED        a thread that has to come back whatever the others do, or do not
 */
#ifndef SLOTS
#define SLOTS 2
#endif
#ifndef WRITERS
#define WRITERS 2
#endif
#ifndef EVENTS
#define EVENTS 1
#endif
#ifndef OWNERS
#define OWNERS 1
#endif
#ifndef READERS
#define READERS 0
#endif
#ifndef TEXTS
#define TEXTS 4
#endif
#ifndef RELAXED_STORE
#define RELAXED_STORE 0
#endif
#ifndef RELAXED_LOAD
#define RELAXED_LOAD 0
#endif
#define LOGS (OWNERS + 1)
#define ALL_EVENTS (WRITERS * EVENTS)
#define NOWHERE 255

/* Threads are numbered: writers, readers, owners. Owners know of all, or of the writers alone. */
#define THREADS (WRITERS + READERS)
#ifndef KNOWN_THREADS
#define KNOWN_THREADS THREADS
#endif

/* What a variable passes on is a set of events, a bit for each. A thread that acquires it knows the bytes of their texts. */
typedef Record {
  byte text[TEXTS];
  byte passes_on[TEXTS]
};

typedef Log {
  Record ring[SLOTS];
  byte count;
  byte count_passes_on;
  bool freed
};

/* What the program has. */
Log logs[LOGS];
byte current = 0;
byte current_passes_on = 0;

/* What only the checks know: of an event the log and the slot in which it took a place, and whether its call returned;
 * of a log the places that were handed out, and whether a snapshot returned it; of a thread the calls that it began,
 * and whether it is in one. */
byte log_of[ALL_EVENTS + 1] = NOWHERE;
byte slot_of[ALL_EVENTS + 1] = NOWHERE;
bool recorded[ALL_EVENTS + 1];
bool handed_out[LOGS * (ALL_EVENTS + 1)];
bool returned[LOGS];
byte calls[THREADS];
bool inside[THREADS];
byte at_work = THREADS + OWNERS;

/* Nobody waits: the watched thread comes back although any other may stop for ever, anywhere. */
#ifdef WATCHED
bool watched_is_back = false;
ltl nobody_waits { <> watched_is_back }
#define MAY_STOP(thread)                                 \
  if                                                     \
  :: thread != WATCHED -> printf("  thread %d stops for ever\n", thread); goto stopped \
  :: skip                                                \
  fi
#define IS_BACK(thread)                                  \
  if                                                     \
  :: thread == WATCHED -> watched_is_back = true         \
  :: else                                                \
  fi
#else
#define MAY_STOP(thread) skip
#define IS_BACK(thread) skip
#endif

#ifdef PLANTED_LOCK
bool locked;
#define LOCK atomic { !locked -> locked = true; printf("  thread %d takes the lock\n", _pid - 1) }
#define UNLOCK locked = false
#else
#define LOCK skip
#define UNLOCK skip
#endif

/* Texts that are still to be stored, or loaded: bits 1 to 4. */
#define ALL_TEXTS ((1 << (TEXTS + 1)) - 2)
#define LEFT(number) (left & (1 << number))
/* A release waits for all stores before it. */
#define MAY_STORE(number) (LEFT(number) && (number == RELAXED_STORE || !(left & ((1 << number) - 1))))

inline store(number) {
  MAY_STOP(me);
  d_step {
    assert(!logs[log].freed);
    printf("  writer %d stores text%d of event %d in slot %d of log %d\n", me, number, event, slot, log);
    logs[log].ring[slot].text[number - 1] = event;
    logs[log].ring[slot].passes_on[number - 1] = (number == RELAXED_STORE -> 0 : knows);
    left = left & ~(1 << number);
    if
    :: left == 0 ->
       recorded[event] = true;
       inside[me] = false;
       printf("  writer %d is back\n", me)
    :: else
    fi
  }
}

/* FastLogger::log, EVENTS times. */
proctype Writer(byte me) {
  byte log, place, slot, event, left, knows, i;
  bool gone[LOGS];

  do
  :: event < me * EVENTS + EVENTS ->
     LOCK;
     MAY_STOP(me);
     d_step {
       event = (event == 0 -> me * EVENTS + 1 : event + 1);
       inside[me] = true;
       calls[me]++;
       for (i : 0 .. LOGS - 1) { gone[i] = returned[i] }
       i = 0;
       /* It saves the texts: their bytes are written before the pointers. */
       knows = knows | (1 << event);
       log = current;
       knows = knows | current_passes_on;
       printf("  writer %d has event %d, and reads the pointer: log %d\n", me, event, log)
     }
     MAY_STOP(me);
#ifdef PLANTED_TORN_COUNT
     place = logs[log].count;
#endif
     d_step {
       assert(!logs[log].freed);
#ifndef PLANTED_TORN_COUNT
       place = logs[log].count;
#endif
       logs[log].count = place + 1;
       knows = knows | logs[log].count_passes_on;
       logs[log].count_passes_on = knows;
       slot = place % SLOTS;
       printf("  writer %d takes place %d of log %d for event %d: slot %d\n", me, place, log, event, slot);
       /* Every value of a log's count is handed out once; an event has one place, in one log, */
       assert(!handed_out[log * (ALL_EVENTS + 1) + place]);
       handed_out[log * (ALL_EVENTS + 1) + place] = true;
       assert(log_of[event] == NOWHERE);
       log_of[event] = log;
       slot_of[event] = slot;
       /* and never in a log that a snapshot had returned before the call began. */
       assert(!gone[log]);
#ifdef FIND_ORDER_OF_LOGS
       /* Was what is recorded in a later log claimed later? */
       for (i : 1 .. ALL_EVENTS) { assert(!(recorded[i] && log_of[i] > log)) }
       i = 0;
#endif
       left = ALL_TEXTS
     }
     do
     :: MAY_STORE(1) -> store(1)
     :: MAY_STORE(2) -> store(2)
#if TEXTS == 4
     :: MAY_STORE(3) -> store(3)
     :: MAY_STORE(4) -> store(4)
#endif
     :: left == 0 -> break
     od;
     UNLOCK
  :: else -> break
  od;
  IS_BACK(me);
stopped:
  at_work--
}

inline load(number) {
  atomic {
    assert(!logs[log].freed);
    seen[number - 1] = logs[log].ring[slot].text[number - 1];
    if
    :: number != RELAXED_LOAD -> knows = knows | logs[log].ring[slot].passes_on[number - 1]
    :: else
    fi;
    left = left & ~(1 << number)
  }
}

/* What is promised of a record that is not empty. */
inline check_record() {
  atomic {
    printf("  reader has read slot %d of log %d: text1 of event %d, text2 of event %d\n", slot, log, seen[0], seen[1]);
#if TEXTS == 4
    printf("    text3 of event %d, text4 of event %d (0 is null)\n", seen[2], seen[3]);
#endif
    /* A thread that sees a second text sees a first one, */
    assert(seen[0] != 0);
    for (i : 0 .. TEXTS - 1) {
      /* each text is null or of an event that took this slot of this log, */
      assert(seen[i] == 0 || (log_of[seen[i]] == log && slot_of[seen[i]] == slot));
      /* and the reader may follow its pointer: it sees the bytes that were saved. */
      assert(seen[i] == 0 || (knows & (1 << seen[i])))
    }
    i = 0;
#ifdef FIND_TORN
    for (i : 1 .. TEXTS - 1) { assert(seen[i] == seen[0]) }
    i = 0;
#endif
    skip
  }
}

/* A record as LogAccess::load reads it: the second text first, the others in their order. */
inline load_record() {
  left = ALL_TEXTS;
#ifdef PLANTED_EARLY_LOAD
  load(1);
#endif
  load(2);
  if
  :: seen[1] != 0 ->
     if
     :: LEFT(1) -> load(1)
     :: else
     fi;
#if TEXTS == 4
     load(3);
     load(4);
#endif
     left = 0;
     check_record()
  :: else -> left = 0
  fi
}

/* privatePrintBufferBlock. */
inline print_block(from, to) {
  slot = from;
  do
  :: slot < to ->
     load_record();
     if
     :: seen[1] != 0 ->
        atomic {
          lines++;
#ifdef FIND_ORDER_OF_LINES
          /* While the ring has room for all, does a later line mean a later event? */
          assert(slot >= printed);
          printed = slot;
#endif
          for (i : 0 .. TEXTS - 1) { seen[i] = 0 }
          i = 0
        }
     :: else
     fi;
     slot++
  :: else -> break
  od
}

/* FastLog::print. */
inline print() {
  slot = 0;
  do
  :: slot < SLOTS ->
     atomic {
       assert(!logs[log].freed);
       knows = knows | logs[log].ring[slot].passes_on[1];
       if
       :: logs[log].ring[slot].text[1] != 0 -> size++
       :: else
       fi;
       slot++
     }
  :: else -> break
  od;
  atomic {
    assert(!logs[log].freed);
    count = logs[log].count;
    knows = knows | logs[log].count_passes_on;
    printf("  reader has found %d records, and reads the count: %d\n", size, count)
  }
  print_block(count, SLOTS);
  if
  :: count > SLOTS -> count = SLOTS
  :: else
  fi;
  print_block(0, count);
#ifdef FIND_SIZE
  assert(lines == size);
#endif
  skip
}

/* A copy that the kernel makes: of memory that may be freed, and without a memory order. */
inline copy(number) {
  atomic {
    if
    :: logs[log].freed -> seen[number - 1] = 0
    :: else ->
       seen[number - 1] = logs[log].ring[slot].text[number - 1];
       copied = copied | logs[log].ring[slot].passes_on[number - 1]
    fi;
    left = left & ~(1 << number)
  }
}

inline fence() {
  atomic {
#ifndef PLANTED_NO_FENCE
    knows = knows | copied;
#endif
    copied = 0
  }
}

/* dumpFastLog: the second text of a slot, a fence, then all texts in any order, and another fence. */
inline dump() {
  slot = 0;
  do
  :: slot < SLOTS ->
     copy(2);
     fence();
     if
     :: seen[1] != 0 ->
        left = ALL_TEXTS;
        do
        :: LEFT(1) -> copy(1)
        :: LEFT(2) -> copy(2)
#if TEXTS == 4
        :: LEFT(3) -> copy(3)
        :: LEFT(4) -> copy(4)
#endif
        :: left == 0 -> break
        od;
        fence();
        if
        :: !logs[log].freed -> check_record()
        :: else
        fi
     :: else
     fi;
     atomic {
       left = 0;
       for (i : 0 .. TEXTS - 1) { seen[i] = 0 }
       i = 0;
       slot++
     }
  :: else -> break
  od
}

/* A thread that reads the current log. */
proctype Reader(byte me) {
  byte log, slot, count, size, lines, left, knows, copied, i;
  byte seen[TEXTS];
#ifdef FIND_ORDER_OF_LINES
  byte printed;
#endif

  d_step {
    inside[me] = true;
    calls[me]++;
    log = current;
    knows = current_passes_on;
    printf("  reader reads the pointer: log %d\n", log)
  }
#ifdef DUMPS
  dump();
#else
  print();
#endif
  IS_BACK(me);
  d_step {
    inside[me] = false;
    at_work--
  }
}

/* Whether the thread is past the call that it was in when the snapshot was taken. */
#define IS_PAST(thread) (thread >= KNOWN_THREADS || !inside[thread] || calls[thread] != calls_then[thread])

/* FastLogger::snapshot, and what its owner does with it. */
proctype Owner(byte me) {
  byte log, slot, count, size, lines, left, knows, i;
  byte seen[TEXTS];
  byte calls_then[THREADS];
#ifdef FIND_ORDER_OF_LINES
  byte printed;
#endif

  LOCK;
  MAY_STOP(THREADS + me);
#ifdef PLANTED_TORN_EXCHANGE
  log = current;
#endif
  d_step {
#ifndef PLANTED_TORN_EXCHANGE
    log = current;
#endif
    current = me + 1;
    knows = knows | current_passes_on;
    current_passes_on = knows;
    printf("  owner %d takes log %d, log %d is new\n", me, log, current);
    /* Each snapshot gets a log of its own, */
    assert(!returned[log]);
    /* and whatever was recorded before is in a log that has been taken. The two yields make nothing impossible. */
    returned[log] = true;
    for (i : 1 .. ALL_EVENTS) { assert(!recorded[i] || returned[log_of[i]]) }
    for (i : 0 .. THREADS - 1) { calls_then[i] = calls[i] }
    i = 0
  }
  UNLOCK;
  IS_BACK(THREADS + me);

#ifdef OWNER_PRINTS
  print();
#endif
#ifdef FIND_LATE_EVENT
  /* Does a snapshot stay as it was? */
  atomic {
    size = logs[log].ring[0].text[1];
    printf("  owner %d finds text2 of event %d in slot 0 of its snapshot\n", me, size)
  }
  atomic {
    printf("  owner %d looks again, and finds text2 of event %d\n", me, logs[log].ring[0].text[1]);
    assert(size == logs[log].ring[0].text[1])
  }
#endif

#ifndef FIND_FREED
  (IS_PAST(0) && IS_PAST(1)
#if WRITERS + READERS > 2
   && IS_PAST(2)
#endif
  );
#endif
  d_step {
    logs[log].freed = true;
    printf("  owner %d lets go of log %d\n", me, log);
    at_work--
  }
stopped:
  skip
}

/* When all is quiet, a slot is empty exactly if its place was never handed out, and while the ring has not wrapped a
 * record is of one event. */
inline look_at_slot() {
  assert((logs[log].count > slot) == (logs[log].ring[slot].text[1] != 0));
  for (i : 1 .. TEXTS - 1) {
    assert(
#ifndef FIND_TORN_FOR_EVER
      logs[log].count > SLOTS ||
#endif
      logs[log].ring[slot].text[i] == logs[log].ring[slot].text[0])
  }
}

init {
  byte i, log, slot;
  atomic {
    for (i : 0 .. WRITERS - 1) { run Writer(i) }
    for (i : 0 .. OWNERS - 1) { run Owner(i) }
#if READERS > 0
    for (i : 0 .. READERS - 1) { run Reader(WRITERS + i) }
#endif
    i = 0
  }
#ifndef WATCHED
  atomic {
    at_work == 0;
    printf("  all are back\n");
    for (i : 1 .. ALL_EVENTS) { assert(recorded[i]) }
    for (log : 0 .. LOGS - 1) {
      for (slot : 0 .. SLOTS - 1) { look_at_slot() }
    }
  }
#endif
}
