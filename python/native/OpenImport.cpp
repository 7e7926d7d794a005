#include "native/OpenImport.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <exception>
#include <mutex>
#include <thread>

namespace python {

namespace py = pybind11;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// How long a signal waits at most, and `progress` for its next call.
constexpr milliseconds kBetweenChecks(50);

// The imports of all threads take turns: one uses every processor, and opening a bare file wants
// the library for itself.
std::timed_mutex turns;
std::atomic<std::thread::id> reader;

// Stands around one operation, on the thread that does it, which has let go of the GIL.
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

template <class Value>
Value Wanted(textwizard::Result<Value> result) {
  if (!result) throw ImportError(result.error());
  return std::move(*result);
}

}  // namespace

// What the library calls while it reads.
class Callbacks {
 public:
  explicit Callbacks(py::object progress) : progress_(std::move(progress)) {}

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
  // Raises what a callback raised, once.
  void Rethrow() {
    if (raised_) std::rethrow_exception(std::exchange(raised_, nullptr));
  }
  std::vector<std::string> TakeWarnings() { return std::exchange(warnings_, {}); }

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

  const py::object progress_;
  steady_clock::time_point next_{};
  std::exception_ptr raised_;
  std::vector<std::string> warnings_;
};

OpenImport::OpenImport(py::object progress)
    : callbacks_(std::make_unique<Callbacks>(std::move(progress))) {}

OpenImport::~OpenImport() = default;

template <class Work>
void OpenImport::InTurn(Work work) {
  std::optional<ImportError> failure;
  {
    const py::gil_scoped_release release;
    const Turn turn;
    try {
      work();
    } catch (const ImportError& error) {
      failure = error;
    }
  }
  callbacks_->Rethrow();
  if (failure) throw ImportError(*failure);
}

template <class Open>
std::unique_ptr<OpenImport> OpenImport::Opened(const py::dict& options, py::object progress,
                                               Open open) {
  std::unique_ptr<OpenImport> opened(new OpenImport(std::move(progress)));
  textwizard_options all = opened->settings_.Import(options);
  opened->callbacks_->AddTo(all);
  opened->InTurn([&] { opened->import_.emplace(Wanted(open(*opened, all))); });
  return opened;
}

std::unique_ptr<OpenImport> OpenImport::OfFile(const std::string& path,
                                               const py::dict& file_options,
                                               const py::dict& options, py::object progress) {
  Settings settings;
  const textwizard_file_options file = settings.File(file_options);
  return Opened(options, std::move(progress), [&](OpenImport&, const textwizard_options& all) {
    return textwizard::Import::OpenFile(path, &file, &all);
  });
}

std::unique_ptr<OpenImport> OpenImport::OfCommand(const std::string& command,
                                                  const py::dict& options, py::object progress) {
  return Opened(options, std::move(progress), [&](OpenImport&, const textwizard_options& all) {
    return textwizard::Import::OpenCommand(command, &all);
  });
}

std::unique_ptr<OpenImport> OpenImport::OfSummary(const std::string& summary,
                                                  const py::dict& file_options,
                                                  const py::dict& options, py::object progress) {
  Settings settings;
  const textwizard_file_options file = settings.File(file_options);
  return Opened(options, std::move(progress), [&](OpenImport&, const textwizard_options& all) {
    return textwizard::Import::OpenSummary(textwizard::Summary(summary), &file, &all);
  });
}

std::unique_ptr<OpenImport> OpenImport::OfRecipe(const std::string& recipe, const py::dict& options,
                                                 py::object progress) {
  return Opened(options, std::move(progress), [&](OpenImport&, const textwizard_options& all) {
    return textwizard::Import::OpenRecipe(recipe, &all);
  });
}

textwizard::Import& OpenImport::import() {
  if (!import_) throw ImportError({TEXTWIZARD_USAGE, "the import was closed"});
  return *import_;
}

// The stream's text, with the number that the library knows of it.
void OpenImport::FailPass(textwizard::Stream& stream, int error) {
  const textwizard::Error failure = import().PassError();
  if (failure.status() != TEXTWIZARD_OK) throw ImportError(failure);
  const char* const text = stream.get().get_last_error(&stream.get());
  throw ImportError({error == ENOMEM ? TEXTWIZARD_NO_MEMORY : TEXTWIZARD_COMMAND_FAILED,
                     text == nullptr ? "the stream failed" : text});
}

std::shared_ptr<const Columns> OpenImport::Drained(textwizard::Stream stream) {
  textwizard::Schema schema;
  if (const int error = stream.get().get_schema(&stream.get(), &schema.get()); error != 0) {
    FailPass(stream, error);
  }
  std::vector<textwizard::Batch> batches;
  while (true) {
    textwizard::Batch batch;
    if (const int error = stream.get().get_next(&stream.get(), &batch.get()); error != 0) {
      FailPass(stream, error);
    }
    if (!batch) break;
    batches.push_back(std::move(batch));
  }
  return std::make_shared<const Columns>(std::move(schema), std::move(batches));
}

std::shared_ptr<const Columns> OpenImport::NoCases() {
  std::shared_ptr<const Columns> columns;
  InTurn([&] {
    columns = std::make_shared<const Columns>(Wanted(import().ReadSchema()),
                                              std::vector<textwizard::Batch>());
  });
  return columns;
}

std::shared_ptr<const Columns> OpenImport::Next() {
  std::shared_ptr<const Columns> columns;
  InTurn([&] {
    if (!cases_) cases_.emplace(Wanted(import().Cases()));
    textwizard::Schema schema;
    textwizard::Batch batch;
    ArrowArrayStream& stream = cases_->get();
    int error = stream.get_schema(&stream, &schema.get());
    if (error == 0) error = stream.get_next(&stream, &batch.get());
    if (error != 0) FailPass(*cases_, error);
    if (!batch) return;
    std::vector<textwizard::Batch> one;
    one.push_back(std::move(batch));
    columns = std::make_shared<const Columns>(std::move(schema), std::move(one));
  });
  return columns;
}

std::shared_ptr<const Columns> OpenImport::AllCases() {
  std::shared_ptr<const Columns> columns;
  InTurn([&] { columns = Drained(Wanted(import().Cases())); });
  return columns;
}

std::shared_ptr<const Columns> OpenImport::Problems() {
  std::shared_ptr<const Columns> columns;
  InTurn([&] { columns = Drained(Wanted(import().Problems())); });
  return columns;
}

void OpenImport::Write(const std::string& path, const std::optional<std::string>& format,
                       bool arrowLz4) {
  InTurn([&] {
    textwizard_write_options options{};
    options.size = sizeof options;
    options.format = format ? format->c_str() : nullptr;
    options.arrow_lz4 = arrowLz4 ? 1 : 0;
    const textwizard::Error failure = import().WriteCases(path, &options);
    if (failure.status() != TEXTWIZARD_OK) throw ImportError(failure);
  });
}

std::string OpenImport::Dictionary() {
  std::string dictionary;
  InTurn([&] { dictionary = import().Dictionary(); });
  return dictionary;
}

std::vector<std::string> OpenImport::TakeWarnings() { return callbacks_->TakeWarnings(); }

void OpenImport::Close() {
  InTurn([&] {
    cases_.reset();
    import_.reset();
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

py::bytes SummarizePart(const std::string& path, std::int64_t number, std::int64_t count,
                        const py::dict& file_options, const py::dict& options) {
  Settings settings;
  const textwizard_file_options file = settings.File(file_options);
  textwizard_options all = settings.Import(options);
  Callbacks callbacks{py::none()};
  callbacks.AddTo(all);
  textwizard::Result<textwizard::Summary> summary = textwizard::Summary("");
  {
    const py::gil_scoped_release release;
    const Turn turn;
    summary = textwizard::Summary::OfPart(path, number, count, &file, &all);
  }
  callbacks.Rethrow();
  return Wanted(std::move(summary)).bytes();
}

py::bytes MergeSummaries(const std::vector<std::string>& summaries, bool linesOnly) {
  const std::vector<textwizard::Summary> given(summaries.begin(), summaries.end());
  return Wanted(textwizard::Summary::Merge(given, linesOnly)).bytes();
}

std::string SummaryJson(const std::string& summary) {
  return Wanted(textwizard::Summary(summary).Json());
}

std::vector<py::bytes> ListFiles(const std::vector<std::string>& given) {
  const std::vector<std::string> files = Wanted(textwizard::ListFiles(given));
  return {files.begin(), files.end()};
}

py::dict OpenDataSet(const std::vector<std::string>& paths,
                     const std::vector<std::string>& summaries, const py::dict& set_options,
                     const py::dict& file_options, const py::dict& options) {
  Settings settings;
  const textwizard_data_set_options set = settings.DataSet(set_options);
  const textwizard_file_options file = settings.File(file_options);
  textwizard_options all = settings.Import(options);
  Callbacks callbacks{py::none()};
  callbacks.AddTo(all);
  const std::vector<textwizard::Summary> given(summaries.begin(), summaries.end());
  std::optional<textwizard::Result<textwizard::DataSet>> opened;
  {
    const py::gil_scoped_release release;
    const Turn turn;
    opened.emplace(textwizard::DataSet::Open(paths, &set, given, &file, &all));
  }
  callbacks.Rethrow();
  if (!*opened) throw ImportError(opened->error());
  const textwizard::DataSet& found = **opened;
  py::list recipes;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const std::string recipe = found.Recipe(i);
    recipes.append(recipe.empty() ? py::object(py::none()) : py::object(py::str(recipe)));
  }
  py::dict texts;
  texts["command"] = found.Command();
  texts["dictionary"] = found.Dictionary();
  texts["reading"] = found.Reading();
  texts["files"] = found.Files();
  texts["recipes"] = recipes;
  py::list warnings;
  for (const std::string& text : callbacks.TakeWarnings()) warnings.append(py::str(text));
  texts["warnings"] = warnings;
  return texts;
}

}  // namespace python
