// Runs one import command the way a host does: the entry builds the data source, an iterator
// delivers its cases. Keeps everything that comes out, so that two runs can be compared.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/ImportObserver.h"
#include "HostFramework/Messages.h"
#include "HostFramework/embedded/command/Adapter.h"
#include "model/testing/MessageKeeper.h"
#include "source/QANT_TextWizardSrc.h"

namespace whole {

struct Message {
  int kind = 0;  // ErrorTextKind
  std::string text;
  bool operator==(const Message&) const = default;
};
using Messages = std::vector<Message>;
std::ostream& operator<<(std::ostream& out, const Message& message);

// The texts of one kind, in the order in which they came.
std::vector<std::string> Texts(const Messages& messages, int kind);

// A variable of the host's data source, as a line: name, type, formats, display width, first cell.
using Dictionary = std::vector<std::string>;

// Which iterator reads: the one that the source chooses, or the one without threads.
enum class Reading { kChosen, kOneThread };

// What a pass over the cases delivered.
struct Pass {
  std::size_t cases = 0;
  // All cells of all cases, one case after another.
  std::string bytes;
  Messages messages;
  // There was no memory for an iterator.
  bool noIterator = false;
  // There was no memory for a case; nothing was read.
  bool noMemory = false;
  // Cases that the source knows of after the pass.
  long long rowCount = -1;
  bool operator==(const Pass&) const = default;
};

// What an iterator reported to the keeper.
Messages MessagesOf(const textwizard::MessageKeeper& keeper);

// A command that was run, and its data source while this lives. One thread makes and destroys all
// of them; passes over different ones may run at once.
class Import {
 public:
  // `command`: one whole GET DATA command, in the host's language.
  // `observer` watches the import and its passes; it outlives this.
  explicit Import(std::string_view command, int workers = 2, ImportObserver* observer = nullptr);
  ~Import();
  Import(const Import&) = delete;
  Import& operator=(const Import&) = delete;

  // The command succeeded.
  bool made() const { return source_ != nullptr; }
  // What the command posted.
  const Messages& messages() const { return messages_; }
  const textwizard::QANT_TextWizardSrc& source() const { return *source_; }
  Dictionary dictionary() const;

  // Null when there is no memory for one.
  std::unique_ptr<QANT_InputCaseIterator> MakeIterator(Reading reading, OBS* obs) const;
  // A pass to the end of the data, or over the first `most` cases.
  Pass Read(Reading reading, std::size_t most = SIZE_MAX) const;
  // A pass to the end of the data that goes from case `from` on to case `to`, not before it, both
  // counted from 0: those between are not delivered.
  Pass ReadWithLeap(Reading reading, std::size_t from, std::size_t to) const;

 private:
  // Reads on by `iterator` until the pass has so many cases.
  void ReadOn(QANT_InputCaseIterator& iterator, const OBS* obs, std::size_t most, Pass& pass) const;

  Messages messages_;
  std::string name_;
  std::unique_ptr<embedded::Adapter> adapter_;
  const textwizard::QANT_TextWizardSrc* source_ = nullptr;
};

// Detection on one thread (DISABLE_MULTI_THREAD_AUTO) while it lives, when `on`.
class ScopedOneThreadDetection {
 public:
  explicit ScopedOneThreadDetection(bool on);
  ~ScopedOneThreadDetection();
  ScopedOneThreadDetection(const ScopedOneThreadDetection&) = delete;
  ScopedOneThreadDetection& operator=(const ScopedOneThreadDetection&) = delete;
};

}  // namespace whole
