// The option structs of the C interface as the library's own.
#pragma once

#include "library/capi/DataSetSession.h"
#include "library/capi/ImportSession.h"
#include "library/include/textwizard/textwizard.h"
#include "library/sniff/SniffSettings.h"

namespace library {

// Null stands for all defaults. Throw Failure for a value that is none.
SessionOptions SessionOptionsOf(const textwizard_options* options);
// The decimal character that is given; 0 where none is.
char DecimalOf(const textwizard_options* options);
// `decimal`: that of the other struct; 0 where it is to be found.
BareImportSettings FileSettingsOf(const textwizard_file_options* options, char decimal);
struct WriteSettings {
  CaseFormat format;
  ArrowBody arrowBody;
};
// `path`: whose ending names the format that is not given.
WriteSettings WriteSettingsOf(const char* path, const textwizard_write_options* options);
SniffSettings SniffSettingsOf(const textwizard_file_options* options);

// Of `count` paths.
DataSetOptions DataSetOptionsOf(const char* const* paths, std::size_t count,
                                const textwizard_data_set_options* options);

}  // namespace library
