// The C functions for several files that are one data set.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "library/capi/Calls.h"
#include "library/capi/Options.h"
#include "library/files/FileNames.h"
#include "library/import/HostSettings.h"
#include "library/include/textwizard/textwizard.h"

namespace {

using library::Failure;
using library::Guarded;
using library::Require;

const char* TextOrNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

void RequireAll(const char* const* texts, size_t count, const char* what) {
  Require(texts != nullptr, what);
  if (count == 0) throw Failure{.status = TEXTWIZARD_USAGE, .text = "no file is given"};
  for (size_t i = 0; i < count; ++i) Require(texts[i] != nullptr, what);
}

}  // namespace

extern "C" {

textwizard_status textwizard_list_files(const char* const* given, size_t count, void** names,
                                        size_t* size, textwizard_error** error) {
  return Guarded(error, [&] {
    RequireAll(given, count, "given");
    Require(names != nullptr, "names");
    Require(size != nullptr, "size");
    *names = nullptr;
    std::vector<std::string> found;
    std::string problem;
    if (!library::ExpandFileNames({given, given + count}, &found, &problem)) {
      throw Failure{.status = TEXTWIZARD_FILE, .text = problem};
    }
    std::string all;
    for (const std::string& name : found) all.append(name.c_str(), name.size() + 1);
    void* const copy = std::malloc(all.size());
    if (copy == nullptr) throw std::bad_alloc();
    std::memcpy(copy, all.data(), all.size());
    *names = copy;
    *size = all.size();
  });
}

textwizard_status textwizard_open_data_set(const char* const* paths, size_t count,
                                           const textwizard_data_set_options* set_options,
                                           const textwizard_file_options* file_options,
                                           const textwizard_options* options,
                                           textwizard_data_set** data_set,
                                           textwizard_error** error) {
  return Guarded(error, [&] {
    RequireAll(paths, count, "paths");
    Require(data_set != nullptr, "data_set");
    *data_set = nullptr;
    auto opened = std::make_unique<textwizard_data_set>();
    const library::SessionOptions session = library::SessionOptionsOf(options);
    opened->session = std::make_unique<library::DataSetSession>(
        library::DataSetOptionsOf(paths, count, set_options),
        library::FileSettingsOf(file_options, library::DecimalOf(options)), session);
    *data_set = opened.release();
  });
}

void textwizard_close_data_set(textwizard_data_set* data_set) { delete data_set; }

const char* textwizard_data_set_command(const textwizard_data_set* data_set) {
  return data_set == nullptr ? nullptr : TextOrNull(data_set->session->commands());
}
const char* textwizard_data_set_dictionary(const textwizard_data_set* data_set) {
  return data_set == nullptr ? nullptr : TextOrNull(data_set->session->dictionary());
}
const char* textwizard_data_set_reading(const textwizard_data_set* data_set) {
  return data_set == nullptr ? nullptr : TextOrNull(data_set->session->reading());
}
const char* textwizard_data_set_files(const textwizard_data_set* data_set) {
  return data_set == nullptr ? nullptr : TextOrNull(data_set->session->files());
}
const char* textwizard_data_set_recipe(const textwizard_data_set* data_set, size_t file) {
  if (data_set == nullptr || file >= data_set->session->count()) return nullptr;
  return TextOrNull(data_set->session->recipe(file));
}

}  // extern "C"
