#include "library/capi/Streams.h"

#include <cerrno>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "library/columns/ArrowExport.h"

namespace library {
namespace {

// Where the batches of a stream come from.
class Batches {
 public:
  virtual ~Batches() = default;
  virtual const std::vector<ColumnField>& fields() const = 0;
  // False at the end. Throws as a session does.
  virtual bool Next(ColumnBatch* batch) = 0;
};

class CaseBatches final : public Batches {
 public:
  explicit CaseBatches(std::shared_ptr<ImportSession> session)
      : session_(std::move(session)), fields_(session_->fields()), pass_(session_->BeginPass()) {}
  ~CaseBatches() override { session_->EndPass(pass_); }
  const std::vector<ColumnField>& fields() const override { return fields_; }
  bool Next(ColumnBatch* batch) override { return session_->Next(pass_, batch); }

 private:
  const std::shared_ptr<ImportSession> session_;
  const std::vector<ColumnField> fields_;
  const std::uint64_t pass_;
};

class ProblemBatches final : public Batches {
 public:
  explicit ProblemBatches(std::vector<std::shared_ptr<const ColumnBatch>> batches)
      : batches_(std::move(batches)) {}
  const std::vector<ColumnField>& fields() const override { return ProblemColumns::Fields(); }
  bool Next(ColumnBatch* batch) override {
    if (next_ == batches_.size()) return false;
    *batch = {};
    AppendBatch(fields(), *batches_[next_++], *batch);
    return true;
  }

 private:
  const std::vector<std::shared_ptr<const ColumnBatch>> batches_;
  std::size_t next_ = 0;
};

struct StreamContents {
  std::unique_ptr<Batches> batches;
  std::string error;
};

StreamContents& ContentsOf(ArrowArrayStream* stream) {
  return *static_cast<StreamContents*>(stream->private_data);
}

int ErrnoOf(textwizard_status status) {
  switch (status) {
    case TEXTWIZARD_OK:
      return 0;
    case TEXTWIZARD_USAGE:
      return EINVAL;
    case TEXTWIZARD_NO_MEMORY:
      return ENOMEM;
    case TEXTWIZARD_BUSY:
      return EBUSY;
    case TEXTWIZARD_CANCELLED:
      return ECANCELED;
    case TEXTWIZARD_COMMAND_FAILED:
    case TEXTWIZARD_FILE:
      break;
  }
  return EIO;
}

// Does it and gives its errno number; what it throws is the stream's last error.
template <class Work>
int Guarded(StreamContents& contents, Work work) noexcept {
  try {
    contents.error.clear();
    work();
    return 0;
  } catch (Failure& failure) {
    contents.error = std::move(failure.text);
    return ErrnoOf(failure.status);
  } catch (const std::bad_alloc&) {
    // Short enough to need no memory of its own.
    contents.error = "no memory";
    return ENOMEM;
  } catch (const std::exception&) {
    contents.error = "internal error";
    return EIO;
  }
}

int GetSchema(ArrowArrayStream* stream, ArrowSchema* out) {
  *out = {};
  StreamContents& contents = ContentsOf(stream);
  return Guarded(contents, [&] { ExportSchema(contents.batches->fields(), {}, out); });
}

int GetNext(ArrowArrayStream* stream, ArrowArray* out) {
  *out = {};
  StreamContents& contents = ContentsOf(stream);
  return Guarded(contents, [&] {
    ColumnBatch batch;
    if (contents.batches->Next(&batch)) {
      ExportBatch(contents.batches->fields(), std::move(batch), out);
    }
  });
}

const char* GetLastError(ArrowArrayStream* stream) {
  const StreamContents& contents = ContentsOf(stream);
  return contents.error.empty() ? nullptr : contents.error.c_str();
}

void Release(ArrowArrayStream* stream) {
  if (stream->release == nullptr) return;
  const std::unique_ptr<StreamContents> contents(&ContentsOf(stream));
  *stream = {};
}

void Export(std::unique_ptr<Batches> batches, ArrowArrayStream* out) {
  auto contents = std::make_unique<StreamContents>();
  contents->batches = std::move(batches);
  *out = {.get_schema = GetSchema,
          .get_next = GetNext,
          .get_last_error = GetLastError,
          .release = Release,
          .private_data = contents.release()};
}

}  // namespace

void ExportCases(std::shared_ptr<ImportSession> session, ArrowArrayStream* out) {
  *out = {};
  Export(std::make_unique<CaseBatches>(std::move(session)), out);
}

void ExportProblems(ImportSession& session, ArrowArrayStream* out) {
  *out = {};
  Export(std::make_unique<ProblemBatches>(session.Problems()), out);
}

}  // namespace library
