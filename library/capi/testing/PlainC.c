/* The C interface as a program in C uses it. */
#include "library/capi/testing/PlainC.h"

#include <stddef.h>
#include <string.h>

#include "textwizard/textwizard.h"

int SumInC(const char* command, double* sum, int64_t* rows, char* error, size_t room) {
  textwizard_import* import = NULL;
  textwizard_error* failure = NULL;
  struct ArrowArrayStream cases;
  int result = -1;
  if (textwizard_open_command(command, NULL, &import, &failure) != TEXTWIZARD_OK) {
    strncpy(error, textwizard_error_text(failure), room - 1);
    error[room - 1] = '\0';
    textwizard_error_free(failure);
    return -1;
  }
  *sum = 0;
  *rows = 0;
  if (textwizard_cases(import, &cases, &failure) == TEXTWIZARD_OK) {
    struct ArrowArray batch;
    while ((result = cases.get_next(&cases, &batch)) == 0 && batch.release != NULL) {
      const double* values = (const double*)batch.children[0]->buffers[1];
      int64_t row;
      for (row = 0; row < batch.length; ++row) *sum += values[row];
      *rows += batch.length;
      batch.release(&batch);
    }
    cases.release(&cases);
  }
  textwizard_close(import);
  return result;
}
