/*
 * The hand-off of batches between the reader thread, the workers and the host's thread, as
 * QANT_TextWizardMultiThreadedManager, RingReader and TextDataIteratorThread do it over a WorkerRing.
 * tools/check-model tries every interleaving of its steps, and shows that planted faults are found
 * that way.
 *
 * What is modelled: a ring of SLOTS workers; a file of 0 to RECORDS records; batches of one or two
 * records, or of none (once in a row, as the reader does it when a record does not fit), so that
 * there are 0 to RECORDS batches with records; conversion and detection; the host deleting the
 * iterator before, between and after its calls; detection interrupted, and ended there or gone on
 * with; detection never asked for; a reader or a worker that cannot be started; no memory for a
 * batch text; what the reader leaves for the host's thread beside the batches; a read that fails; a
 * worker, or the host's thread, that fails at any record. Names are those of the code.
 *
 * What a step is: one access to one shared word. A word that is raised by compare-and-exchange, or
 * set in one section of fStateMutex, changes in one step. Waiting for a semaphore or a mutex shares
 * the step of the access that follows, posting one and giving back the other that of the access
 * before: what other threads do in between could as well be done before or after. What a thread
 * does to its own members, or to a batch that it has been handed, shares a step, too; the owners,
 * which the code does not have, show that nobody else has a worker's batch meanwhile. Values that
 * nobody will look at any more are forgotten, so that states which differ in nothing else are one
 * state.
 *
 * What is left out: the contents of records, cases and counters (a record is its number in the
 * file, from 1); notes, messages, products and what else is told of the cases (they belong to the
 * batch); positions asked for ahead (cases are read and dropped); fStateMutex as a lock (nobody waits
 * inside it, so it stops nobody for ever). A wait that looks again and again (PatientWait) is a step that is possible while its
 * condition holds: such a wait in the code may miss a condition that holds for a moment only, and
 * here its step may be left until it is too late in the same way.
 *
 * What is checked:
 *   assertion  every record is delivered once and in order; when the host sees the end, either all
 *              have been delivered or it is told of the failure; what the reader leaves has been
 *              written when the host's thread reads it; nobody touches a batch out of
 *              turn; no thread outlives what it uses
 *   deadlock   in no state but the one in which all threads have ended is there no next step
 *   livelock   no run goes round for ever
 * The last two together: the destructor always ends.
 *
 * "#ifdef" plants a fault, described in a comment "fault NAME (the check that finds it): ...".
 */

#ifndef SLOTS
#define SLOTS 2
#endif
#ifndef RECORDS
#define RECORDS 4
#endif
/* What the iterator is made for: both, or one of them. */
#ifndef CONVERSION
#define CONVERSION true
#endif
#ifndef DETECTION
#define DETECTION true
#endif

/* fReaderState */
#define kReading 0
#define kStopping 1
#define kEnded 2

/* fState */
#define kFreed 0
#define kAvailable 1
#define kConverting 2
#define kConverted 3
#define kConsumed 4
#define kStopped 5

/* fCommand */
#define kNew 0
#define kConvert 1
#define kStop 2
#define kExited 3

/* fRecordsOwner, fCasesOwner */
#define kNobody 0
#define kReader 1
#define kWorker 2
#define kHost 3

typedef TextDataIteratorThread {
  byte fCommand = kNew;
  bool fRunning;
  bool fStopRequested;
  byte fWorkSemaphore;
  byte fDoneSemaphore;
  byte fFreeSemaphore;
  bool fControlMutex;
  byte fState = kAvailable;
  /* fRecords: of its first record, the number in the file. */
  byte fRecordsOwner = kNobody;
  byte fText;
  byte fTextCount;
  byte fTextFirstCase;
  /* fCases: the same for what the worker has made of the text. */
  byte fCasesOwner = kNobody;
  byte fCases;
  byte fCounted;
  byte fRecordCount;
  byte fFirstCase;
  bool fFailed
};

TextDataIteratorThread worker[SLOTS];

/* The manager. */
byte fReaderState = kReading;
bool fFailed;
bool fThreads[SLOTS];
byte fStartSemaphore;
byte fCasesSent;
/* Size of fWorkers. */
byte workers;
bool readerStarted;
bool readerEnded;
/* What the reader leaves for the host's thread to tell, in words that only the hand-off orders:
   where the records begin, and where the data ended. */
bool fPreambleEnd;
bool fDataEnd;
bool destroyed;

bool detection;
/* Of the file: the reader may find its end after any of them. */
byte recordsRead;
/* Something went wrong that the host has to hear of; so it did behind the reader. */
bool fault;
bool cutShort;

#define WHEN(condition, action) if :: condition -> action :: else fi

#define WAIT(semaphore) semaphore > 0 -> semaphore--
/* Never more than the token of a batch and that of the stop procedure. */
#define POST(semaphore) semaphore++; assert(semaphore <= 2)

#define TAKE(owner, who) assert(owner == kNobody); owner = who
#define LEAVE(owner, who) assert(owner == who); owner = kNobody
#define FORGET_RECORDS(i) \
  worker[i].fText = 0; worker[i].fTextCount = 0; worker[i].fTextFirstCase = 0
#define FORGET_CASES(i) \
  worker[i].fCases = 0; worker[i].fCounted = 0; worker[i].fRecordCount = 0; \
  worker[i].fFirstCase = 0; worker[i].fFailed = false

/* The command of a stopped slot has been raised before. */
#define SET_STATE(i, to) \
  if \
  :: worker[i].fState != kStopped -> worker[i].fState = to \
  :: else -> assert(worker[i].fCommand >= kStop) \
  fi

#define RAISE_READER_STATE(to) WHEN(fReaderState < to, fReaderState = to)

#include "worker.pml"
#include "reader.pml"
#include "host.pml"
