/* The host's thread: it makes the iterator, takes batches out of the ring and deletes it. */

inline Start() {
  if
  :: readerStarted = true; run Reader()
  :: fault = true;
#ifndef UNSTARTED_READER_AWAITED
    /* fault UNSTARTED_READER_AWAITED (deadlock): the host's thread waits for a reader that could
       not be started */
    fFailed = true;
    d_step { RAISE_READER_STATE(kEnded) }
#endif
  fi
}

/* Leaves the number of the slot in fReleased. */
inline ReleaseSlot() {
  d_step {
    fReleased = fCurrentThread;
    fCurrentThread = (fCurrentThread + 1) % SLOTS;
    SET_STATE(fReleased, kFreed);
#ifndef RELEASED_BEFORE_TAKEN
    POST(worker[fReleased].fFreeSemaphore)
#endif
  }
  d_step { SET_STATE(fReleased, kAvailable) }
}

/* Leaves the batch of the current slot in fTaken..., or sets `ended` when there is none. */
inline TakeBatch() {
#ifdef NEXT_AFTER_END_WAITS
  /* fault NEXT_AFTER_END_WAITS (deadlock): as long as no case has been delivered every call waits
     for the reader to begin, so asking again after the end of an empty file waits for ever */
  WHEN(delivered == 0, d_step { WAIT(fStartSemaphore) });
#endif
#ifdef NULL_SLOT_IS_END
  /* fault NULL_SLOT_IS_END (assertion): the host's thread waits for the reader to begin, but then
     takes the slot of a worker to come for the end of the data */
  WHEN(!begun, d_step { WAIT(fStartSemaphore); begun = true });
#endif
  do
  :: assert(fCurrentThread < SLOTS);
    if
    :: !fThreads[fCurrentThread] ->
#ifdef NULL_SLOT_IS_END
      ended = true;
      break
#else
      if
      :: fReaderState != kReading -> ended = true; break
      :: else -> d_step { WAIT(fStartSemaphore) }
      fi
#endif
    :: else ->
#ifndef STOP_MARK_IGNORED
      /* fault STOP_MARK_IGNORED (deadlock): the host's thread waits again for a stopped worker */
      WHEN(worker[fCurrentThread].fStopRequested, ended = true; break);
#endif
      d_step {
        WAIT(worker[fCurrentThread].fDoneSemaphore);
        SET_STATE(fCurrentThread, kConsumed)
      }
      if
      :: d_step {
          worker[fCurrentThread].fState != kStopped ->
#ifdef RELEASED_BEFORE_TAKEN
          /* fault RELEASED_BEFORE_TAKEN (assertion): the host's thread gives a slot back before it
             has taken the cases */
          POST(worker[fCurrentThread].fFreeSemaphore);
#endif
          TAKE(worker[fCurrentThread].fCasesOwner, kHost)
        }
        d_step {
          fTaken = worker[fCurrentThread].fCases;
          fTakenCounted = worker[fCurrentThread].fCounted;
          fTakenCount = worker[fCurrentThread].fRecordCount;
          fTakenFirstCase = worker[fCurrentThread].fFirstCase;
          fTakenFailed = worker[fCurrentThread].fFailed;
          fConsumeIndex = 0;
          FORGET_CASES(fCurrentThread);
          LEAVE(worker[fCurrentThread].fCasesOwner, kHost)
        }
        WHEN(!fTakenFailed, ReleaseSlot());
        break
      :: worker[fCurrentThread].fState == kStopped
      fi
    fi
  od
}

/* What the host's thread tells of the pass when it has a batch or the end of them. */
#define CHECK_TOLD \
  assert(fPreambleEnd || fFailed); \
  assert(!ended || fDataEnd || fFailed)

/* The record taken next from the batch is the next one of the file. */
#define CHECK_RECORD(number) assert((number) == delivered + 1 && delivered < recordsRead)

inline Next() {
#ifndef NEXT_AFTER_END_WAITS
  ended = fEndOfData;
#endif
  do
  :: ended -> break
  :: !ended ->
    if
    :: d_step {
        fConsumeIndex < fTakenCount ->
        CHECK_RECORD(fTaken + fConsumeIndex);
        CHECK_RECORD(fTakenFirstCase + fConsumeIndex + 1);
        fConsumeIndex++;
        delivered++
      }
      break
    :: fConsumeIndex < fTakenCount ->
      /* No memory for what there is to say of the record. */
      fault = true;
      cutShort = true;
      fFailed = true;
      ended = true
    :: fConsumeIndex >= fTakenCount ->
      if
      :: fTakenFailed -> fFailed = true; ended = true
      :: else ->
        d_step {
          fTaken = 0; fTakenCounted = 0; fTakenCount = 0; fTakenFirstCase = 0; fConsumeIndex = 0
        }
        TakeBatch();
        atomic { CHECK_TOLD }
      fi
    fi
  od
}

/* Takes batches until the end, or until the user interrupts. */
inline GetAutoNext() {
  do
  :: TakeBatch();
    WHEN(ended, break);
    d_step {
      WHEN(fTakenCounted > 0, CHECK_RECORD(fTaken));
      merged = merged + fTakenCounted;
#ifdef COUNT_AFTER_RELEASE
      /* fault COUNT_AFTER_RELEASE (assertion): the records of a batch are counted in its slot, which
         the reader may be filling again */
      delivered = delivered + worker[fReleased].fRecordCount;
#else
      delivered = delivered + fTakenCount;
#endif
      assert(merged == delivered);
      fTaken = 0; fTakenCounted = 0; fTakenCount = 0; fTakenFirstCase = 0
    }
    WHEN(fTakenFailed, fFailed = true; ended = true; break);
    if
    :: true
    :: true ->
#ifdef WRAP_SKIPPED
      /* fault WRAP_SKIPPED (assertion): a detection that is interrupted at the last slot and then
         goes on leaves the ring */
      fCurrentThread = fReleased + 1;
#endif
      break
    fi
  od
}

inline Destroy() {
#ifdef READER_STATE_LOWERED
  /* fault READER_STATE_LOWERED (assertion): the destructor's wish to stop replaces the reader's
     word that it has ended */
  WHEN(fReaderState == kReading, fReaderState = kStopping);
#endif
  d_step {
    RAISE_READER_STATE(kStopping);
    /* From here on only how the threads end is looked at. */
    i = 0;
    do
    :: i < SLOTS -> FORGET_RECORDS(i); FORGET_CASES(i); i++
    :: else -> break
    od;
    fTaken = 0; fTakenCounted = 0; fTakenCount = 0; fTakenFirstCase = 0; fTakenFailed = false;
    fConsumeIndex = 0; fCurrentThread = 0; fReleased = 0; fEndOfData = false;
    asks = false; ended = false; delivered = 0; merged = 0; detection = false;
    recordsRead = 0; fCasesSent = 0; fFailed = false; fault = false; cutShort = false
  }
  i = 0;
  do
  :: i < SLOTS -> WHEN(fThreads[i], Stop(i)); i++
  :: else -> break
  od;
#ifdef UNSTARTED_PASS_AWAITED
  /* fault UNSTARTED_PASS_AWAITED (deadlock): the destructor waits for a reader that was never
     started */
  fReaderState == kEnded;
#endif
#ifndef DESTROYED_BEFORE_JOIN
  /* fault DESTROYED_BEFORE_JOIN (assertion): members die while the threads use them */
  WHEN(readerStarted, readerEnded; assert(fReaderState == kEnded));
  i = 0;
  do
  :: i < workers -> worker[i].fCommand == kExited; i++
  :: else -> break
  od;
#endif
  destroyed = true
}

init {
  byte fCurrentThread;
  byte fReleased;
  /* The batch that is being delivered. */
  byte fTaken;
  byte fTakenCounted;
  byte fTakenCount;
  byte fTakenFirstCase;
  bool fTakenFailed;
  byte fConsumeIndex;
  byte delivered;
  byte merged;
  byte i;
  bool fEndOfData;
  bool ended;
  bool asks;
  bool stops;
#ifdef NULL_SLOT_IS_END
  bool begun;
#endif

  if
  :: CONVERSION -> Start(); asks = true
  :: DETECTION -> detection = true; Start(); asks = true
  :: DETECTION -> detection = true /* But nobody asks for it. */
  fi;
  do
  :: break
  :: asks ->
    /* After the end the host may ask for a case once more. */
    asks = !fEndOfData;
    ended = false;
    if
    :: detection -> GetAutoNext()
    :: else -> Next()
    fi;
    if
    :: ended ->
      fEndOfData = true;
      asks = asks && !detection;
      assert(fFailed == fault);
      assert(fFailed || delivered == recordsRead);
      assert(cutShort || delivered == fCasesSent)
    :: else
    fi
  od;
  Destroy()
}
