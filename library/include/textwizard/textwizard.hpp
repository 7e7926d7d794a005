// The C interface with owners and results, for C++17 and later; header only. Nothing throws but
// Result::value and std::bad_alloc.
//
//     auto import = textwizard::Import::OpenFile("data.csv");
//     if (!import) { std::cerr << import.error().text(); return 1; }
//     auto cases = import->Cases();
//     while (cases) {
//       textwizard::Result<textwizard::Batch> batch = cases->Next();
//       if (!batch || !*batch) break;
//       ... batch->array() ...
//     }
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "textwizard/textwizard.h"

namespace textwizard {

// What went wrong. A value: may be copied and kept.
class Error {
 public:
  Error(textwizard_status status, std::string text, std::int32_t number = 0, std::int32_t line = 0,
        std::int32_t column = 0)
      : status_(status), text_(std::move(text)), number_(number), line_(line), column_(column) {}
  // Frees `error`, which may be null.
  static Error Take(textwizard_status status, textwizard_error* error) {
    const std::unique_ptr<textwizard_error, void (*)(textwizard_error*)> owned(
        error, textwizard_error_free);
    return {status, error == nullptr ? "no memory" : textwizard_error_text(error),
            textwizard_error_number(error), textwizard_error_line(error),
            textwizard_error_column(error)};
  }

  textwizard_status status() const { return status_; }
  const std::string& text() const { return text_; }
  // Of the message; 0 where it has none.
  std::int32_t number() const { return number_; }
  // In the command's text, from 1; 0 where it is not about the text.
  std::int32_t line() const { return line_; }
  std::int32_t column() const { return column_; }

 private:
  textwizard_status status_;
  std::string text_;
  std::int32_t number_;
  std::int32_t line_;
  std::int32_t column_;
};

// A value or an error.
template <class Value>
class Result {
 public:
  Result(Value value) : held_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : held_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return held_.index() == 0; }
  bool has_value() const { return held_.index() == 0; }
  // Only where there is one.
  Value& operator*() { return std::get<0>(held_); }
  const Value& operator*() const { return std::get<0>(held_); }
  Value* operator->() { return &std::get<0>(held_); }
  const Value* operator->() const { return &std::get<0>(held_); }
  // Throws std::runtime_error with the error's text where there is none.
  Value& value() {
    if (!has_value()) throw std::runtime_error(error().text());
    return std::get<0>(held_);
  }
  const Error& error() const { return std::get<1>(held_); }

 private:
  std::variant<Value, Error> held_;
};

// An owner of one of the three structs.
template <class Struct>
class Owned {
 public:
  Owned() = default;
  explicit Owned(const Struct& taken) : held_(taken) {}
  Owned(Owned&& other) noexcept : held_(std::exchange(other.held_, Struct{})) {}
  Owned& operator=(Owned&& other) noexcept {
    std::swap(held_, other.held_);
    return *this;
  }
  ~Owned() {
    if (held_.release != nullptr) held_.release(&held_);
  }
  // False where there is nothing: a batch behind the last one.
  explicit operator bool() const { return held_.release != nullptr; }
  Struct& get() { return held_; }
  const Struct& get() const { return held_; }
  // Gives the struct away, for who releases it.
  Struct Release() { return std::exchange(held_, Struct{}); }

 private:
  Struct held_{};
};

class Schema : public Owned<ArrowSchema> {
 public:
  using Owned::Owned;
};

// Cases as columns.
class Batch : public Owned<ArrowArray> {
 public:
  using Owned::Owned;
  const ArrowArray& array() const { return get(); }
  std::int64_t length() const { return get().length; }
};

class Stream : public Owned<ArrowArrayStream> {
 public:
  using Owned::Owned;
  Result<Schema> ReadSchema() {
    ArrowSchema schema{};
    if (get().get_schema(&get(), &schema) != 0) return Failure();
    return Schema(schema);
  }
  // The next batch; an empty one (false) at the end.
  Result<Batch> Next() {
    ArrowArray batch{};
    if (get().get_next(&get(), &batch) != 0) return Failure();
    return Batch(batch);
  }

 private:
  Error Failure() {
    const char* const text = get().get_last_error(&get());
    return {TEXTWIZARD_COMMAND_FAILED, text == nullptr ? "the stream failed" : text};
  }
};

// What one look at a part of a file says; or at several parts that follow one another.
class Summary {
 public:
  // Of part `number` (from 1) of `count` of a file.
  static Result<Summary> OfPart(const std::string& path, std::int64_t number, std::int64_t count,
                                const textwizard_file_options* file_options = nullptr,
                                const textwizard_options* options = nullptr) {
    void* bytes = nullptr;
    std::size_t size = 0;
    textwizard_error* error = nullptr;
    const textwizard_status status = textwizard_summarize_part(
        path.c_str(), number, count, file_options, options, &bytes, &size, &error);
    return Made(status, bytes, size, error);
  }
  // `linesOnly`: what `before` of a textwizard_part needs.
  static Result<Summary> Merge(const std::vector<Summary>& summaries, bool linesOnly = false) {
    std::vector<const void*> bytes;
    std::vector<std::size_t> sizes;
    for (const Summary& summary : summaries) {
      bytes.push_back(summary.bytes().data());
      sizes.push_back(summary.bytes().size());
    }
    void* merged = nullptr;
    std::size_t size = 0;
    textwizard_error* error = nullptr;
    const textwizard_status status = textwizard_merge_summaries(
        bytes.data(), sizes.data(), bytes.size(), linesOnly ? 1 : 0, &merged, &size, &error);
    return Made(status, merged, size, error);
  }
  explicit Summary(std::string bytes) : bytes_(std::move(bytes)) {}

  // To be sent or kept.
  const std::string& bytes() const { return bytes_; }
  // What textwizard_summary_json gives.
  Result<std::string> Json() const {
    char* json = nullptr;
    textwizard_error* error = nullptr;
    const textwizard_status status =
        textwizard_summary_json(bytes_.data(), bytes_.size(), &json, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    const std::unique_ptr<char, void (*)(char*)> owned(json, textwizard_text_free);
    return std::string(json);
  }

 private:
  static Result<Summary> Made(textwizard_status status, void* bytes, std::size_t size,
                              textwizard_error* error) {
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    const std::unique_ptr<void, void (*)(void*)> owned(bytes, textwizard_bytes_free);
    return Summary(std::string(static_cast<const char*>(bytes), size));
  }

  std::string bytes_;
};

// An import. Its streams may outlive it, and end with an error then.
class Import {
 public:
  static Result<Import> OpenCommand(const std::string& command,
                                    const textwizard_options* options = nullptr) {
    textwizard_import* import = nullptr;
    textwizard_error* error = nullptr;
    const textwizard_status status =
        textwizard_open_command(command.c_str(), options, &import, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return Import(import);
  }

  static Result<Import> OpenFile(const std::string& path,
                                 const textwizard_file_options* file_options = nullptr,
                                 const textwizard_options* options = nullptr) {
    textwizard_import* import = nullptr;
    textwizard_error* error = nullptr;
    const textwizard_status status =
        textwizard_open_file(path.c_str(), file_options, options, &import, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return Import(import);
  }

  // Of a file all of whose parts are in the summary.
  static Result<Import> OpenSummary(const Summary& summary,
                                    const textwizard_file_options* file_options = nullptr,
                                    const textwizard_options* options = nullptr) {
    textwizard_import* import = nullptr;
    textwizard_error* error = nullptr;
    const textwizard_status status = textwizard_open_summary(
        summary.bytes().data(), summary.bytes().size(), file_options, options, &import, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return Import(import);
  }

  static Result<Import> OpenRecipe(const std::string& recipe,
                                   const textwizard_options* options = nullptr) {
    textwizard_import* import = nullptr;
    textwizard_error* error = nullptr;
    const textwizard_status status =
        textwizard_open_recipe(recipe.c_str(), options, &import, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return Import(import);
  }

  Result<Schema> ReadSchema() {
    ArrowSchema schema{};
    textwizard_error* error = nullptr;
    const textwizard_status status = textwizard_schema(handle_.get(), &schema, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return Schema(schema);
  }
  Result<Stream> Cases() { return Opened(textwizard_cases); }
  Result<Stream> Problems() { return Opened(textwizard_problems); }
  // Reads the cases into a file. An error of status TEXTWIZARD_OK where all is well.
  Error WriteCases(const std::string& path, const textwizard_write_options* options = nullptr) {
    textwizard_error* error = nullptr;
    const textwizard_status status =
        textwizard_write_cases(handle_.get(), path.c_str(), options, &error);
    return Outcome(status, error);
  }
  // What the latest pass failed with; of status TEXTWIZARD_OK where it did not.
  Error PassError() {
    textwizard_error* error = nullptr;
    const textwizard_status status = textwizard_pass_error(handle_.get(), &error);
    return Outcome(status, error);
  }
  void Cancel() { textwizard_cancel(handle_.get()); }

  // Empty where there is none yet.
  std::string Command() const { return Text(textwizard_command(handle_.get())); }
  std::string Dictionary() const { return Text(textwizard_dictionary(handle_.get())); }
  std::string Reading() const { return Text(textwizard_reading(handle_.get())); }
  std::string Ledger() const { return Text(textwizard_ledger(handle_.get())); }
  std::string Recipe() const { return Text(textwizard_recipe(handle_.get())); }
  std::string Digest() const { return Text(textwizard_digest(handle_.get())); }
  // For the C functions; stays this object's.
  textwizard_import* handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(textwizard_import* import) const { textwizard_close(import); }
  };
  explicit Import(textwizard_import* import) : handle_(import) {}
  static Error Outcome(textwizard_status status, textwizard_error* error) {
    if (status == TEXTWIZARD_OK) return {TEXTWIZARD_OK, ""};
    return Error::Take(status, error);
  }
  static std::string Text(const char* text) { return text == nullptr ? std::string() : text; }
  Result<Stream> Opened(textwizard_status (*open)(textwizard_import*, ArrowArrayStream*,
                                                  textwizard_error**)) {
    ArrowArrayStream stream{};
    textwizard_error* error = nullptr;
    const textwizard_status status = open(handle_.get(), &stream, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return Stream(stream);
  }

  std::unique_ptr<textwizard_import, Close> handle_;
};

// The files that paths and patterns name, in order.
inline Result<std::vector<std::string>> ListFiles(const std::vector<std::string>& given) {
  std::vector<const char*> texts;
  for (const std::string& text : given) texts.push_back(text.c_str());
  void* names = nullptr;
  std::size_t size = 0;
  textwizard_error* error = nullptr;
  const textwizard_status status =
      textwizard_list_files(texts.data(), texts.size(), &names, &size, &error);
  if (status != TEXTWIZARD_OK) return Error::Take(status, error);
  const std::unique_ptr<void, void (*)(void*)> owned(names, textwizard_bytes_free);
  std::vector<std::string> files;
  const char* const begin = static_cast<const char*>(names);
  for (const char* at = begin; at < begin + size; at += files.back().size() + 1) {
    files.emplace_back(at);
  }
  return files;
}

// Several files of one structure. Moved, not copied.
class DataSet {
 public:
  // The summaries are of whole files; those of `set_options` play no role.
  static Result<DataSet> Open(const std::vector<std::string>& paths,
                              const textwizard_data_set_options* set_options = nullptr,
                              const std::vector<Summary>& summaries = {},
                              const textwizard_file_options* file_options = nullptr,
                              const textwizard_options* options = nullptr) {
    std::vector<const char*> texts;
    for (const std::string& path : paths) texts.push_back(path.c_str());
    std::vector<const void*> data;
    std::vector<std::size_t> sizes;
    for (const Summary& summary : summaries) {
      data.push_back(summary.bytes().data());
      sizes.push_back(summary.bytes().size());
    }
    textwizard_data_set_options given{};
    if (set_options != nullptr) given = *set_options;
    given.size = sizeof given;
    given.summaries = data.data();
    given.summary_sizes = sizes.data();
    given.summary_count = data.size();
    textwizard_data_set* opened = nullptr;
    textwizard_error* error = nullptr;
    const textwizard_status status = textwizard_open_data_set(
        texts.data(), texts.size(), &given, file_options, options, &opened, &error);
    if (status != TEXTWIZARD_OK) return Error::Take(status, error);
    return DataSet(opened);
  }

  std::string Command() const { return Text(textwizard_data_set_command(handle_.get())); }
  std::string Dictionary() const { return Text(textwizard_data_set_dictionary(handle_.get())); }
  std::string Reading() const { return Text(textwizard_data_set_reading(handle_.get())); }
  std::string Files() const { return Text(textwizard_data_set_files(handle_.get())); }
  // Of path number `file` (from 0); empty where that is not read.
  std::string Recipe(std::size_t file) const {
    return Text(textwizard_data_set_recipe(handle_.get(), file));
  }

 private:
  struct Close {
    void operator()(textwizard_data_set* set) const { textwizard_close_data_set(set); }
  };
  explicit DataSet(textwizard_data_set* set) : handle_(set) {}
  static std::string Text(const char* text) { return text == nullptr ? std::string() : text; }

  std::unique_ptr<textwizard_data_set, Close> handle_;
};

}  // namespace textwizard
