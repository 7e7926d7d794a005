/* Prints how many cases a bare file has. */
#include <stdio.h>
#include <textwizard/textwizard.h>

int main(int count, char** arguments) {
  textwizard_import* import = NULL;
  textwizard_error* error = NULL;
  struct ArrowArrayStream cases;
  struct ArrowArray batch;
  long long rows = 0;
  if (count != 2) return 2;
  if (textwizard_open_file(arguments[1], NULL, NULL, &import, &error) != TEXTWIZARD_OK ||
      textwizard_cases(import, &cases, &error) != TEXTWIZARD_OK) {
    fprintf(stderr, "%s\n", textwizard_error_text(error));
    textwizard_error_free(error);
    textwizard_close(import);
    return 1;
  }
  while (cases.get_next(&cases, &batch) == 0 && batch.release != NULL) {
    rows += batch.length;
    batch.release(&batch);
  }
  cases.release(&cases);
  textwizard_close(import);
  printf("%lld\n", rows);
  return 0;
}
