/* The worker's thread, and the stop procedure that the other two threads call. */

/* Uses `stops`. */
inline Stop(i) {
  d_step {
    !worker[i].fControlMutex ->
    stops = worker[i].fRunning && !worker[i].fStopRequested;
    WHEN(stops, worker[i].fControlMutex = true; worker[i].fStopRequested = true)
  }
  if
  :: !stops
  :: else ->
    d_step { WHEN(worker[i].fCommand < kStop, worker[i].fCommand = kStop) }
#ifdef STOP_AWAITS_STATE_ONLY
    /* fault STOP_AWAITS_STATE_ONLY (deadlock): the stop procedure waits for the end of a conversion
       that a worker which met the command between two batches never begins */
    worker[i].fState != kConverting;
#else
    worker[i].fState != kConverting || worker[i].fCommand == kExited;
#endif
    d_step {
      worker[i].fState = kStopped;
#ifndef STOP_LEAVES_DONE
      /* fault STOP_LEAVES_DONE (deadlock): the stop procedure does not wake the host's thread */
      POST(worker[i].fDoneSemaphore);
#endif
#ifndef STOP_LEAVES_WORK
      /* fault STOP_LEAVES_WORK (deadlock): the stop procedure does not wake the worker */
      POST(worker[i].fWorkSemaphore);
#endif
#ifndef STOP_LEAVES_FREE
      /* fault STOP_LEAVES_FREE (deadlock): the stop procedure does not wake the reader */
      POST(worker[i].fFreeSemaphore);
#endif
#ifdef RUNNING_CLEARED
      worker[i].fRunning = false;
#endif
      stops = false;
      worker[i].fControlMutex = false
    }
  fi
}

/* ConvertBatch runs out of memory after `records`. */
#define FAIL_AFTER(i, records) \
  worker[i].fRecordCount = records; worker[i].fFailed = true; cutShort = true; fault = true

proctype Worker(byte i) {
  worker[i].fRunning = true;
  do
  :: worker[i].fCommand > kConvert -> break
  :: else ->
    d_step {
      WAIT(worker[i].fWorkSemaphore);
      SET_STATE(i, kConverting)
    }
    if
    :: worker[i].fCommand != kConvert -> break
    :: d_step {
        worker[i].fCommand == kConvert ->
        TAKE(worker[i].fRecordsOwner, kWorker);
        TAKE(worker[i].fCasesOwner, kWorker);
        assert(worker[i].fState == kConverting);
        worker[i].fCases = worker[i].fText;
        worker[i].fRecordCount = worker[i].fTextCount;
        worker[i].fFirstCase = worker[i].fTextFirstCase;
        FORGET_RECORDS(i)
      }
    fi;
    atomic {
      if
      :: true
      :: FAIL_AFTER(i, 0)
      :: worker[i].fRecordCount > 1 -> FAIL_AFTER(i, 1)
      fi;
      d_step {
        worker[i].fCounted = worker[i].fRecordCount;
        assert(worker[i].fState == kConverting);
        LEAVE(worker[i].fRecordsOwner, kWorker);
        LEAVE(worker[i].fCasesOwner, kWorker);
        SET_STATE(i, kConverted);
        POST(worker[i].fDoneSemaphore)
      }
    }
  od;
  /* The last access to what the host's thread destroys. */
  atomic {
    assert(!destroyed && worker[i].fCommand < kExited);
    worker[i].fCommand = kExited
  }
}
