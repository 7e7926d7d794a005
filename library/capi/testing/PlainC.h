/* A consumer in C, for the tests. */
#ifndef TEXTWIZARD_TESTING_PLAIN_C_H
#define TEXTWIZARD_TESTING_PLAIN_C_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Adds up the first column, which are numbers, of all cases of a command. 0, or another number with
   what went wrong in `error` (`room` bytes). */
int SumInC(const char* command, double* sum, int64_t* rows, char* error, size_t room);

#ifdef __cplusplus
}
#endif

#endif /* TEXTWIZARD_TESTING_PLAIN_C_H */
