#include "native/Reading.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "native/Settings.h"

namespace python {
namespace {

namespace py = pybind11;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How long a signal waits at most, and `progress` for its next call.
constexpr milliseconds kBetweenChecks(50);

// The imports of all threads take turns: one uses every processor, and opening a bare file wants
// the library for itself.
std::timed_mutex turns;
std::atomic<std::thread::id> reader;

// Stands around one import, on the thread that reads, which has let go of the GIL.
class Turn {
 public:
  Turn() {
    if (reader == std::this_thread::get_id()) {
      throw ImportError({TEXTWIZARD_BUSY, "an import is under way: read another one behind it"});
    }
    while (!turns.try_lock_for(kBetweenChecks)) {
      const py::gil_scoped_acquire acquire;
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    }
    reader = std::this_thread::get_id();
  }
  ~Turn() {
    reader = std::thread::id();
    turns.unlock();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
};

// What the library calls while it reads.
class Callbacks {
 public:
  // `progress` outlives this.
  explicit Callbacks(const py::object& progress) : progress_(progress) {}

  void AddTo(textwizard_options& options) {
    options.context = this;
    options.progress = [](void* context, std::int64_t cases, std::int64_t bytes,
                          std::int64_t all) noexcept -> std::int32_t {
      return static_cast<Callbacks*>(context)->GoesOn(cases, bytes, all) ? 0 : 1;
    };
    options.message = [](void* context, textwizard_message_kind kind, const char* text) noexcept {
      if (kind == TEXTWIZARD_WARNING) static_cast<Callbacks*>(context)->Keep(text);
    };
  }
  // Raises what a callback raised.
  void Rethrow() const {
    if (raised_) std::rethrow_exception(raised_);
  }
  std::vector<std::string> TakeWarnings() { return std::move(warnings_); }

 private:
  bool GoesOn(std::int64_t cases, std::int64_t bytes, std::int64_t all) noexcept {
    if (raised_) return false;
    const steady_clock::time_point now = steady_clock::now();
    if (now < next_) return true;
    next_ = now + kBetweenChecks;
    const py::gil_scoped_acquire acquire;
    try {
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
      if (!progress_.is_none()) progress_(cases, bytes, all);
    } catch (...) {
      raised_ = std::current_exception();
    }
    return raised_ == nullptr;
  }
  void Keep(const char* text) noexcept {
    try {
      warnings_.emplace_back(text);
    } catch (...) {
      raised_ = std::current_exception();
    }
  }

  const py::object& progress_;
  steady_clock::time_point next_{};
  std::exception_ptr raised_;
  std::vector<std::string> warnings_;
};

template <class Value>
Value Wanted(textwizard::Result<Value> result) {
  if (!result) throw ImportError(result.error());
  return std::move(*result);
}

// The number that stands in front of a message, as in "[2265] ..."; 0 where none does.
std::int32_t NumberOf(const std::string& text) {
  std::int32_t number = 0;
  if (!text.empty() && text[0] == '[') {
    std::from_chars(text.data() + 1, text.data() + text.size(), number);
  }
  return number;
}

ImportError FailureOf(int error, ArrowArrayStream& stream) {
  const char* const last = stream.get_last_error(&stream);
  std::string text = last == nullptr ? "the stream failed" : last;
  const std::int32_t number = NumberOf(text);
  textwizard_status status = TEXTWIZARD_COMMAND_FAILED;
  if (error == ENOMEM) status = TEXTWIZARD_NO_MEMORY;
  if (error == ECANCELED) status = TEXTWIZARD_CANCELLED;
  if (error == EBUSY) status = TEXTWIZARD_BUSY;
  return ImportError({status, std::move(text), number});
}

std::shared_ptr<const Columns> Drained(textwizard::Stream stream) {
  textwizard::Schema schema;
  if (const int error = stream.get().get_schema(&stream.get(), &schema.get()); error != 0) {
    throw FailureOf(error, stream.get());
  }
  std::vector<textwizard::Batch> batches;
  while (true) {
    textwizard::Batch batch;
    if (const int error = stream.get().get_next(&stream.get(), &batch.get()); error != 0) {
      throw FailureOf(error, stream.get());
    }
    if (!batch) break;
    batches.push_back(std::move(batch));
  }
  return std::make_shared<const Columns>(std::move(schema), std::move(batches));
}

// `open` opens the import with the options. Raises what a callback raised rather than the
// cancellation that follows it.
template <class Open>
Imported ReadAll(const py::dict& given, const py::object& progress, Open open) {
  Settings settings;
  textwizard_options options = settings.Import(given);
  Callbacks callbacks(progress);
  callbacks.AddTo(options);
  std::optional<ImportError> failure;
  Imported imported;
  {
    const py::gil_scoped_release release;
    const Turn turn;
    try {
      textwizard::Import import = Wanted(open(options));
      imported.cases = Drained(Wanted(import.Cases()));
      imported.problems = Drained(Wanted(import.Problems()));
      imported.command = import.Command();
      imported.dictionary = import.Dictionary();
      imported.reading = import.Reading();
      imported.digest = import.Digest();
    } catch (const ImportError& error) {
      failure = error;
    }
  }
  callbacks.Rethrow();
  if (failure) throw ImportError(*failure);
  imported.warnings = callbacks.TakeWarnings();
  return imported;
}

}  // namespace

Imported ReadFile(const std::string& path, const py::dict& file_options, const py::dict& options,
                  const py::object& progress) {
  Settings settings;
  const textwizard_file_options file = settings.File(file_options);
  return ReadAll(options, progress, [&](const textwizard_options& all) {
    return textwizard::Import::OpenFile(path, &file, &all);
  });
}

Imported RunCommand(const std::string& command, const py::dict& options,
                    const py::object& progress) {
  return ReadAll(options, progress, [&](const textwizard_options& all) {
    return textwizard::Import::OpenCommand(command, &all);
  });
}

std::string SniffFile(const std::string& path, const py::dict& file_options) {
  Settings settings;
  const textwizard_file_options file = settings.File(file_options);
  char* json = nullptr;
  textwizard_error* error = nullptr;
  textwizard_status status = TEXTWIZARD_OK;
  {
    const py::gil_scoped_release release;
    const Turn turn;
    status = textwizard_sniff(path.c_str(), &file, &json, &error);
  }
  if (status != TEXTWIZARD_OK) throw ImportError(textwizard::Error::Take(status, error));
  const std::unique_ptr<char, void (*)(char*)> owned(json, textwizard_text_free);
  return json;
}

}  // namespace python
