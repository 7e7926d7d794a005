#include "native/Columns.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <stdexcept>

namespace python {
namespace {

namespace py = pybind11;

std::int32_t TakeLength(const char*& at) {
  std::int32_t length = 0;
  std::memcpy(&length, at, sizeof length);
  at += sizeof length;
  return length;
}

std::string TakeText(const char*& at) {
  const auto length = static_cast<std::size_t>(TakeLength(at));
  std::string text(at, length);
  at += length;
  return text;
}

Field FieldOf(const ArrowSchema& schema) {
  Field field{
      .name = schema.name == nullptr ? "" : schema.name, .format = schema.format, .metadata = {}};
  if (schema.metadata == nullptr) return field;
  const char* at = schema.metadata;
  for (std::int32_t pairs = TakeLength(at); pairs > 0; --pairs) {
    std::string key = TakeText(at);
    field.metadata.emplace_back(std::move(key), TakeText(at));
  }
  return field;
}

// A struct handed out that shows what `owner` holds. Each struct, also of a child, holds the owner
// by itself, as a consumer may move children out of their parent.
template <class Struct, class Owner>
struct Shown {
  std::shared_ptr<const Owner> owner;
  std::vector<Struct> children;
  std::vector<Struct*> pointers;

  static void Release(Struct* shown) {
    auto* const contents = static_cast<Shown*>(shown->private_data);
    for (Struct& child : contents->children) {
      if (child.release != nullptr) child.release(&child);
    }
    delete contents;
    shown->release = nullptr;
  }

  static void Make(const Struct& original, const std::shared_ptr<const Owner>& owner, Struct* out) {
    auto contents = std::make_unique<Shown>();
    contents->owner = owner;
    const auto count = static_cast<std::size_t>(original.n_children);
    contents->children.resize(count);
    contents->pointers.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      Make(*original.children[i], owner, &contents->children[i]);
      contents->pointers.push_back(&contents->children[i]);
    }
    *out = original;
    out->children = count == 0 ? nullptr : contents->pointers.data();
    out->release = Release;
    out->private_data = contents.release();
  }
};

using ShownSchema = Shown<ArrowSchema, textwizard::Schema>;
using ShownArray = Shown<ArrowArray, textwizard::Batch>;

// A capsule that releases what nobody took out of it.
template <class Struct>
py::capsule CapsuleOf(std::unique_ptr<Struct> held, const char* name) {
  py::capsule capsule(held.get(), name, [](PyObject* object) {
    auto* const kept =
        static_cast<Struct*>(PyCapsule_GetPointer(object, PyCapsule_GetName(object)));
    if (kept->release != nullptr) kept->release(kept);
    delete kept;
  });
  held.release();
  return capsule;
}

struct StreamState {
  std::shared_ptr<const textwizard::Schema> schema;
  std::vector<std::shared_ptr<const textwizard::Batch>> batches;
  std::size_t next = 0;
};

StreamState& StateOf(ArrowArrayStream* stream) {
  return *static_cast<StreamState*>(stream->private_data);
}

int GetSchema(ArrowArrayStream* stream, ArrowSchema* out) noexcept {
  *out = {};
  const StreamState& state = StateOf(stream);
  try {
    ShownSchema::Make(state.schema->get(), state.schema, out);
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
  return 0;
}

int GetNext(ArrowArrayStream* stream, ArrowArray* out) noexcept {
  *out = {};
  StreamState& state = StateOf(stream);
  if (state.next == state.batches.size()) return 0;
  try {
    ShownArray::Make(state.batches[state.next]->get(), state.batches[state.next], out);
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
  ++state.next;
  return 0;
}

// The only failure has no memory for a text of its own.
const char* GetLastError(ArrowArrayStream* /*stream*/) { return "no memory"; }

void ReleaseStream(ArrowArrayStream* stream) {
  delete &StateOf(stream);
  stream->release = nullptr;
}

}  // namespace

Columns::Columns(textwizard::Schema schema, std::vector<textwizard::Batch> batches)
    : Columns(std::make_shared<const textwizard::Schema>(std::move(schema)), {}) {
  for (textwizard::Batch& batch : batches) {
    rows_ += batch.length();
    batches_.push_back(std::make_shared<const textwizard::Batch>(std::move(batch)));
  }
}

Columns::Columns(SharedSchema schema, std::vector<SharedBatch> batches)
    : schema_(std::move(schema)), batches_(std::move(batches)) {
  const ArrowSchema& top = schema_->get();
  for (std::int64_t i = 0; i < top.n_children; ++i) fields_.push_back(FieldOf(*top.children[i]));
  for (const SharedBatch& batch : batches_) rows_ += batch->length();
}

std::shared_ptr<const Columns> Columns::BatchAt(std::size_t batch) const {
  return std::shared_ptr<const Columns>(new Columns(schema_, {batches_.at(batch)}));
}

std::vector<Piece> Columns::Pieces(std::size_t column) const {
  if (column >= fields_.size()) throw std::out_of_range("there is no such column");
  std::vector<Piece> pieces;
  for (const SharedBatch& batch : batches_) {
    const ArrowArray* const child = batch->array().children[column];
    pieces.push_back({child, child->offset + batch->array().offset, batch->length()});
  }
  return pieces;
}

py::capsule Columns::SchemaCapsule() const {
  auto shown = std::make_unique<ArrowSchema>();
  ShownSchema::Make(schema_->get(), schema_, shown.get());
  return CapsuleOf(std::move(shown), "arrow_schema");
}

py::capsule Columns::ArrayCapsule() const {
  if (batches_.size() != 1) throw std::logic_error("only a batch is one Arrow array");
  auto shown = std::make_unique<ArrowArray>();
  ShownArray::Make(batches_[0]->get(), batches_[0], shown.get());
  return CapsuleOf(std::move(shown), "arrow_array");
}

py::capsule Columns::StreamCapsule() const {
  auto state = std::make_unique<StreamState>();
  state->schema = schema_;
  state->batches = batches_;
  auto stream = std::make_unique<ArrowArrayStream>();
  *stream = {.get_schema = GetSchema,
             .get_next = GetNext,
             .get_last_error = GetLastError,
             .release = ReleaseStream,
             .private_data = state.release()};
  return CapsuleOf(std::move(stream), "arrow_array_stream");
}

}  // namespace python
