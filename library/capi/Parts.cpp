// The C functions by which several take part in an import.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "library/capi/Calls.h"
#include "library/capi/Options.h"
#include "library/capi/PartWork.h"
#include "library/include/textwizard/textwizard.h"

namespace {

using library::Failure;
using library::FilePartSummary;
using library::Guarded;
using library::Require;

// Gives bytes to the user, who frees them.
void Hand(const std::string& bytes, void** data, size_t* size) {
  // A block of nothing may be null.
  void* const copy = std::malloc(bytes.size() + 1);
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, bytes.c_str(), bytes.size() + 1);
  *data = copy;
  if (size != nullptr) *size = bytes.size();
}

FilePartSummary SummaryOf(const void* bytes, size_t size) {
  Require(bytes != nullptr, "summary");
  return library::SummaryFrom({static_cast<const char*>(bytes), size});
}

}  // namespace

extern "C" {

textwizard_status textwizard_summarize_part(const char* path, int64_t number, int64_t count,
                                            const textwizard_file_options* file_options,
                                            const textwizard_options* options, void** summary,
                                            size_t* size, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(path != nullptr, "path");
    Require(summary != nullptr, "summary");
    Require(size != nullptr, "size");
    *summary = nullptr;
    Hand(library::SummarizedPart(path, number, count,
                                 library::FileSettingsOf(file_options, library::DecimalOf(options)),
                                 library::SessionOptionsOf(options)),
         summary, size);
  });
}

textwizard_status textwizard_merge_summaries(const void* const* summaries, const size_t* sizes,
                                             size_t count, int32_t lines_only, void** merged,
                                             size_t* size, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(summaries != nullptr && sizes != nullptr, "summaries");
    Require(merged != nullptr, "merged");
    Require(size != nullptr, "size");
    *merged = nullptr;
    if (count == 0) throw Failure{.status = TEXTWIZARD_USAGE, .text = "there is no summary"};
    std::vector<FilePartSummary> read;
    for (size_t index = 0; index < count; ++index) {
      read.push_back(SummaryOf(summaries[index], sizes[index]));
    }
    Hand(library::MergedSummary(std::move(read), lines_only != 0), merged, size);
  });
}

textwizard_status textwizard_summary_json(const void* summary, size_t size, char** json,
                                          textwizard_error** error) {
  return Guarded(error, [&] {
    Require(json != nullptr, "json");
    *json = nullptr;
    void* text = nullptr;
    Hand(library::SummaryText(SummaryOf(summary, size)), &text, nullptr);
    *json = static_cast<char*>(text);
  });
}

textwizard_status textwizard_open_summary(const void* summary, size_t size,
                                          const textwizard_file_options* file_options,
                                          const textwizard_options* options,
                                          textwizard_import** import, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(import != nullptr, "import");
    *import = nullptr;
    const FilePartSummary whole = SummaryOf(summary, size);
    auto opened = std::make_unique<textwizard_import>();
    opened->session = std::make_shared<library::ImportSession>(
        library::BareSource{whole.file, &whole},
        library::FileSettingsOf(file_options, library::DecimalOf(options)),
        library::SessionOptionsOf(options));
    *import = opened.release();
  });
}

const char* textwizard_recipe(textwizard_import* import) {
  if (import == nullptr) return nullptr;
  return library::Text(import->recipe,
                       [&] { return library::RecipeText(import->session->recipe()); });
}

textwizard_status textwizard_open_recipe(const char* recipe, const textwizard_options* options,
                                         textwizard_import** import, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(recipe != nullptr, "recipe");
    Require(import != nullptr, "import");
    *import = nullptr;
    auto opened = std::make_unique<textwizard_import>();
    opened->session = std::make_shared<library::ImportSession>(library::ReadRecipe(recipe),
                                                               library::SessionOptionsOf(options));
    *import = opened.release();
  });
}

void textwizard_bytes_free(void* bytes) { std::free(bytes); }

}  // extern "C"
