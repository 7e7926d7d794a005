#include "tests/support/ImportRun.h"

#include <cstdlib>
#include <sstream>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "entry/CommandEntry.h"
#include "reading/QANT_TextWizardIterator.h"

namespace whole {
namespace {

constexpr const char* kDetectionSwitch = "DISABLE_MULTI_THREAD_AUTO";

// Where the messages of the command that runs go: the host's callback takes no object.
Messages* commandMessages = nullptr;

void Collect(const char* text, int kind) { commandMessages->push_back({kind, text}); }

std::string FormatText(const QANT_Format& format) {
  return std::to_string(format.type) + ":" + std::to_string(format.width) + "." +
         std::to_string(format.decimals);
}

// An adapter of a host that watches.
class ObservingAdapter : public embedded::Adapter, public ImportObserving {
 public:
  ObservingAdapter(std::vector<embedded::CommandToken> tokens, int workers,
                   ImportObserver& observer)
      : Adapter(std::move(tokens), Collect, nullptr, workers, 0), observer_(observer) {}
  ImportObserver* GetImportObserver() override { return &observer_; }

 private:
  ImportObserver& observer_;
};

}  // namespace

std::ostream& operator<<(std::ostream& out, const Message& message) {
  return out << message.kind << ' ' << message.text;
}

std::vector<std::string> Texts(const Messages& messages, int kind) {
  std::vector<std::string> texts;
  for (const Message& message : messages) {
    if (message.kind == kind) texts.push_back(message.text);
  }
  return texts;
}

Messages MessagesOf(const textwizard::MessageKeeper& keeper) {
  Messages messages;
  for (const ErrorText& message : keeper.messages) messages.push_back({message.kind, message.text});
  return messages;
}

Import::Import(std::string_view command, int workers, ImportObserver* observer) {
  static int number = 0;
  embedded::CommandReader reader(command);
  embedded::ParsedCommand parsed;
  if (!reader.Next(parsed) || !parsed.ok) {
    messages_.push_back({kMessageError, parsed.error});
    return;
  }
  if (observer) {
    adapter_ = std::make_unique<ObservingAdapter>(std::move(parsed.tokens), workers, *observer);
  } else {
    adapter_ =
        std::make_unique<embedded::Adapter>(std::move(parsed.tokens), Collect, nullptr, workers, 0);
  }
  commandMessages = &messages_;
  const bool made = ProcessDACSyntax(adapter_.get());
  commandMessages = nullptr;
  if (!made) return;
  // A name of its own, so that the next command does not replace it.
  ServerDataManager* const manager = ServerDataManager::GetInstance();
  QANT_DataSource* const source = manager->Find("");
  name_ = "import " + std::to_string(++number);
  manager->Add(source, name_.c_str(), false);
  source_ = dynamic_cast<const textwizard::QANT_TextWizardSrc*>(source);
}

Import::~Import() {
  if (!name_.empty()) ServerDataManager::GetInstance()->Remove(name_.c_str());
}

Dictionary Import::dictionary() const {
  Dictionary dictionary;
  for (std::size_t i = 0; i < source_->GetNVariables(); ++i) {
    const QANT_Variable& variable = *source_->GetVariable(i);
    std::ostringstream line;
    line << variable.GetName() << " type " << variable.GetType() << " print "
         << FormatText(variable.GetFormat()) << " write " << FormatText(variable.GetWriteFormat())
         << " display " << variable.GetDisplayWidth() << " cell " << variable.ObsIndex();
    dictionary.push_back(line.str());
  }
  return dictionary;
}

std::unique_ptr<QANT_InputCaseIterator> Import::MakeIterator(Reading reading, OBS* obs) const {
  if (reading == Reading::kChosen) {
    return std::unique_ptr<QANT_InputCaseIterator>(source_->MakeIterator(obs));
  }
  return std::make_unique<textwizard::QANT_TextWizardIterator>(*source_, obs);
}

void Import::ReadOn(QANT_InputCaseIterator& iterator, const OBS* obs, std::size_t most,
                    Pass& pass) const {
  const auto* const cells = reinterpret_cast<const char*>(obs);
  for (; pass.cases < most && iterator.Next(); ++pass.cases) {
    pass.bytes.append(cells, source_->GetObsAreaSize());
  }
}

Pass Import::Read(Reading reading, std::size_t most) const {
  return ReadWithLeap(reading, most, most);
}

Pass Import::ReadWithLeap(Reading reading, std::size_t from, std::size_t to) const {
  Pass pass;
  const embedded::CaseBuffer buffer(*source_);
  pass.noMemory = buffer.obs() == nullptr;
  if (pass.noMemory) return pass;
  textwizard::MessageKeeper monitor;
  const auto iterator = MakeIterator(reading, buffer.obs());
  pass.noIterator = !iterator;
  if (pass.noIterator) return pass;
  iterator->SetErrorMonitor(&monitor);
  ReadOn(*iterator, buffer.obs(), from, pass);
  if (from < to && iterator->Seek(static_cast<long long>(to))) {
    ReadOn(*iterator, buffer.obs(), SIZE_MAX, pass);
  }
  pass.messages = MessagesOf(monitor);
  pass.rowCount = source_->RowCount();
  return pass;
}

ScopedOneThreadDetection::ScopedOneThreadDetection(bool on) {
  if (on) setenv(kDetectionSwitch, "YES", 1);
}

ScopedOneThreadDetection::~ScopedOneThreadDetection() { unsetenv(kDetectionSwitch); }

}  // namespace whole
