// The C interface: texts and structs in and out; the work is done by the classes behind it.
#include "library/include/textwizard/textwizard.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "TextWizardVersion.h"
#include "library/capi/BareFile.h"
#include "library/capi/Calls.h"
#include "library/capi/Options.h"
#include "library/capi/Streams.h"
#include "library/columns/ArrowExport.h"

namespace {

using library::Guarded;
using library::Require;
using library::Text;

// A copy that the user frees.
char* Copied(const std::string& text) {
  auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

}  // namespace

extern "C" {

const char* textwizard_error_text(const textwizard_error* error) {
  return error == nullptr ? "" : error->text.c_str();
}
int32_t textwizard_error_number(const textwizard_error* error) {
  return error == nullptr ? 0 : error->number;
}
int32_t textwizard_error_line(const textwizard_error* error) {
  return error == nullptr ? 0 : error->line;
}
int32_t textwizard_error_column(const textwizard_error* error) {
  return error == nullptr ? 0 : error->column;
}
void textwizard_error_free(textwizard_error* error) { delete error; }

textwizard_status textwizard_open_command(const char* command, const textwizard_options* options,
                                          textwizard_import** import, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(command != nullptr, "command");
    Require(import != nullptr, "import");
    *import = nullptr;
    auto opened = std::make_unique<textwizard_import>();
    opened->session =
        std::make_shared<library::ImportSession>(command, library::SessionOptionsOf(options));
    *import = opened.release();
  });
}

textwizard_status textwizard_open_file(const char* path,
                                       const textwizard_file_options* file_options,
                                       const textwizard_options* options,
                                       textwizard_import** import, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(path != nullptr, "path");
    Require(import != nullptr, "import");
    *import = nullptr;
    auto opened = std::make_unique<textwizard_import>();
    opened->session = std::make_shared<library::ImportSession>(
        library::BareSource{path},
        library::FileSettingsOf(file_options, library::DecimalOf(options)),
        library::SessionOptionsOf(options));
    *import = opened.release();
  });
}

void textwizard_close(textwizard_import* import) {
  if (import == nullptr) return;
  Guarded(nullptr, [&] { import->session->Close(); });
  delete import;
}

textwizard_status textwizard_schema(textwizard_import* import, struct ArrowSchema* schema,
                                    textwizard_error** error) {
  return Guarded(error, [&] {
    Require(import != nullptr, "import");
    Require(schema != nullptr, "schema");
    *schema = {};
    library::ExportSchema(import->session->fields(), {}, schema);
  });
}

textwizard_status textwizard_cases(textwizard_import* import, struct ArrowArrayStream* cases,
                                   textwizard_error** error) {
  return Guarded(error, [&] {
    Require(import != nullptr, "import");
    Require(cases != nullptr, "cases");
    library::ExportCases(import->session, cases);
  });
}

textwizard_status textwizard_problems(textwizard_import* import, struct ArrowArrayStream* problems,
                                      textwizard_error** error) {
  return Guarded(error, [&] {
    Require(import != nullptr, "import");
    Require(problems != nullptr, "problems");
    library::ExportProblems(*import->session, problems);
  });
}

textwizard_status textwizard_write_cases(textwizard_import* import, const char* path,
                                         const textwizard_write_options* options,
                                         textwizard_error** error) {
  return Guarded(error, [&] {
    Require(import != nullptr, "import");
    Require(path != nullptr, "path");
    const library::WriteSettings settings = library::WriteSettingsOf(path, options);
    import->session->WriteCases(path, settings.format, settings.arrowBody);
  });
}

textwizard_status textwizard_pass_error(textwizard_import* import, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(import != nullptr, "import");
    if (const auto failure = import->session->PassFailure()) throw *failure;
  });
}

void textwizard_cancel(textwizard_import* import) {
  if (import != nullptr) import->session->Cancel();
}

const char* textwizard_command(textwizard_import* import) {
  if (import == nullptr) return nullptr;
  return Text(import->command, [&] { return import->session->command(); });
}
const char* textwizard_dictionary(textwizard_import* import) {
  if (import == nullptr) return nullptr;
  return Text(import->dictionary, [&] { return import->session->Dictionary(); });
}
const char* textwizard_reading(textwizard_import* import) {
  if (import == nullptr || import->session->reading().empty()) return nullptr;
  return import->session->reading().c_str();
}
const char* textwizard_ledger(textwizard_import* import) {
  if (import == nullptr) return nullptr;
  return Text(import->ledger, [&] { return import->session->Ledger(); });
}
const char* textwizard_digest(textwizard_import* import) {
  if (import == nullptr) return nullptr;
  return Text(import->digest, [&] { return import->session->Digest(); });
}

textwizard_status textwizard_sniff(const char* path, const textwizard_file_options* file_options,
                                   char** json, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(path != nullptr, "path");
    Require(json != nullptr, "json");
    *json = nullptr;
    *json = Copied(library::SniffedFile(path, library::SniffSettingsOf(file_options)));
  });
}

textwizard_status textwizard_preview(const char* path, const char* encoding, int64_t first,
                                     int64_t count, char** json, textwizard_error** error) {
  return Guarded(error, [&] {
    Require(path != nullptr, "path");
    Require(json != nullptr, "json");
    *json = nullptr;
    *json = Copied(
        library::PreviewedFile(path, encoding == nullptr ? "UTF-8" : encoding, first, count));
  });
}

void textwizard_text_free(char* text) { std::free(text); }

const char* textwizard_version(void) { return TEXTWIZARD_VERSION; }

}  // extern "C"
