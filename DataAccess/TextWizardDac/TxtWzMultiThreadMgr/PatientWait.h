// A wait for something that no semaphore announces.
#pragma once

#include "HostFramework/Threads.h"

namespace textwizard {

// Gives up the processor a number of times, because what is waited for is usually only a few
// instructions away, and then sleeps, so that a long wait takes no processor. One object a wait.
class PatientWait {
 public:
  void Pause() {
    if (yields_ < kYields) {
      ++yields_;
      QANT_msleep(0);
    } else {
      QANT_msleep(1);
    }
  }

 private:
  // Longer than a thread takes to start.
  static constexpr int kYields = 256;
  int yields_ = 0;
};

}  // namespace textwizard
