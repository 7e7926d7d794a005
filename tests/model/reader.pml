/* The reader thread: one pass over the file into the ring. */

inline GiveUp() {
  fault = true;
#ifndef FAILURE_NOT_TOLD
  /* fault FAILURE_NOT_TOLD (assertion): a pass that was given up looks like a complete one */
  fFailed = true;
#endif
  fPending = false
}

inline ReadRecord() {
  atomic {
    if
    :: fReaderState != kReading -> fPending = false
    :: else ->
      if
      :: recordsRead < RECORDS -> recordsRead++; fPending = true
      :: fPending = false;
#ifndef DATA_END_LATE
        fDataEnd = true
#endif
      :: fault = true; gaveUp = true
      fi
    fi
  }
  WHEN(gaveUp, GiveUp(); gaveUp = false)
}

/* Sets `have` when there is a worker then. */
inline MakeWorker(i) {
  if
  :: workers++;
#ifdef RUNNING_CLEARED
    /* fault RUNNING_CLEARED (deadlock): the ring shows a worker before it runs, and who stops it
       takes back that it runs */
    fThreads[i] = true;
#endif
    run Worker(i);
    worker[i].fRunning;
    d_step {
      fThreads[i] = true;
#ifndef NO_POST_PER_WORKER
      /* fault NO_POST_PER_WORKER (deadlock): the host's thread waits at an empty slot and does not
         hear of the worker that has come there */
      fStartSemaphore++;
#endif
      /* A new worker's text is long enough for the record that it is made for. */
      fOversize = true;
      have = true
    }
#ifdef UNSTARTED_WORKER_AWAITED
  /* fault UNSTARTED_WORKER_AWAITED (deadlock): the reader waits until a worker runs that could not
     be started */
  :: true -> worker[i].fRunning
#else
  :: GiveUp()
#endif
  fi
}

/* Sets `filled` when there is a batch, which may be empty. */
inline FillBatch() {
  if
  :: GiveUp()
  :: count = 0;
    fBatch = recordsRead;
    do
    :: fPending && count < 2 -> count++; ReadRecord()
    :: !fPending || count > 0 || !fOversize -> break
    od;
    fOversize = count == 0;
    filled = true
  fi
}

#ifdef FREED_SLOT_NOT_AWAITED
/* fault FREED_SLOT_NOT_AWAITED (assertion): the reader fills a slot before the host's thread has
   made it available, which it then does when the worker is converting */
#define FILLABLE(i) (worker[i].fState != kStopped)
#else
#define FILLABLE(i) (worker[i].fState != kStopped && worker[i].fState != kFreed)
#endif

/* Sets `sent` when the batch has been handed over. */
inline SendBatch(i) {
  if
  :: worker[i].fState == kStopped
  :: FILLABLE(i) ->
    if
    :: fReaderState != kReading
    :: fReaderState == kReading ->
#ifdef COMMAND_LOWERED
      /* fault COMMAND_LOWERED (deadlock): the command to convert replaces one to stop that has been
         given since it was looked for */
      lowers = worker[i].fCommand < kStop;
#define CONVERTS lowers
#else
#define CONVERTS worker[i].fCommand < kStop
#endif
      if
      :: worker[i].fCommand >= kStop
      :: d_step {
          worker[i].fCommand < kStop ->
          TAKE(worker[i].fRecordsOwner, kReader);
          worker[i].fText = fBatch;
          worker[i].fTextCount = count;
          worker[i].fTextFirstCase = fCasesSent
        }
        d_step {
          LEAVE(worker[i].fRecordsOwner, kReader);
          if
          :: CONVERTS ->
            worker[i].fCommand = kConvert;
            POST(worker[i].fWorkSemaphore);
            fInFlight++;
            fCasesSent = fCasesSent + count;
            sent = true
          :: else
          fi
        }
      fi
    fi
  fi
}

inline WalkRing() {
  do
  :: fReaderState != kReading -> break
  :: fReaderState == kReading ->
    if
    :: fThreads[slot] -> have = true
    :: else -> isNew = true; WHEN(fPending, MakeWorker(slot))
    fi;
    WHEN(have && fPending, FillBatch());
    if
    :: have && !isNew ->
      d_step {
#ifndef FREE_NOT_AWAITED
        /* fault FREE_NOT_AWAITED (assertion): the reader hands over a batch when the one before has
           not been given back */
        WAIT(worker[slot].fFreeSemaphore);
#endif
        assert(fInFlight > 0);
        fInFlight--
      }
    :: else
    fi;
    WHEN(filled, SendBatch(slot));
    if
    :: sent
    :: else ->
#ifdef STOPS_FROM_CURRENT_SLOT
      WHEN(have && !filled, Stop(slot));
#else
      WHEN(have, Stop(slot));
#endif
#ifdef WALK_GOES_ON
      /* fault WALK_GOES_ON (livelock): the reader goes round past empty slots when nothing is in
         flight */
      d_step { WHEN(have && fInFlight == 0, RAISE_READER_STATE(kStopping)) }
#elif defined(ENDS_WITH_BATCHES_IN_FLIGHT)
      /* fault ENDS_WITH_BATCHES_IN_FLIGHT (assertion): workers are stopped whose batches have not
         been delivered */
      d_step { RAISE_READER_STATE(kStopping) }
#else
      d_step { WHEN(fInFlight == 0, RAISE_READER_STATE(kStopping)) }
#endif
    fi;
    d_step {
      have = false; isNew = false; filled = false; sent = false; count = 0; fBatch = 0;
      slot = (slot + 1) % SLOTS
    }
  od
}

proctype Reader() {
  bool fPending;
  bool fOversize;
  byte fInFlight;
  byte slot;
  /* The batch that is being filled: its first record and how many. */
  byte fBatch;
  byte count;
  bool have;
  bool isNew;
  bool filled;
  bool sent;
  bool gaveUp;
  bool stops;
#ifdef COMMAND_LOWERED
  bool lowers;
#endif

  if
  :: fReaderState == kReading ->
#ifndef PREAMBLE_END_LATE
    fPreambleEnd = true;
#endif
    ReadRecord();
    WalkRing();
#ifdef PREAMBLE_END_LATE
    /* fault PREAMBLE_END_LATE (assertion): the host's thread tells where the records begin before
       the reader has written it */
    fPreambleEnd = true;
#endif
#ifdef DATA_END_LATE
    /* fault DATA_END_LATE (assertion): the host's thread tells where the data ended when the reader
       has only said that it reads no more */
    fDataEnd = true;
#endif
    atomic { fPending = false; fOversize = false; fInFlight = 0 }
#ifndef STOPS_FROM_CURRENT_SLOT
    /* fault STOPS_FROM_CURRENT_SLOT (deadlock): nobody stops a worker whose batch was not handed
       over, when the walk has ended behind it */
    slot = 0;
#endif
#ifndef NO_POST_AT_END
    /* fault NO_POST_AT_END (deadlock): the host's thread waits at an empty slot for a worker that
       never comes */
    fStartSemaphore++;
#endif
    do
    :: slot < workers -> Stop(slot); slot++
    :: else -> break
    od;
    slot = 0;
    do
    :: slot < workers -> worker[slot].fCommand == kExited; slot++
    :: else -> break
    od;
    atomic { slot = 0; RAISE_READER_STATE(kEnded) }
#ifndef SKIPPED_PASS_NOT_ENDED
  /* fault SKIPPED_PASS_NOT_ENDED (assertion): a reader that was stopped before it began does not
     say that it has ended */
  :: else -> d_step { RAISE_READER_STATE(kEnded) }
#else
  :: else
#endif
  fi;
  atomic {
    assert(!destroyed);
    readerEnded = true
  }
}
