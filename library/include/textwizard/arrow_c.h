/* The Arrow C data and stream interface: three public structs by which columns pass from one
   library to another without a copy. They are the same wherever they are declared; whoever includes
   another declaration first keeps it. C11 and C++. */
#ifndef TEXTWIZARD_ARROW_C_H
#define TEXTWIZARD_ARROW_C_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

/* The type, name and metadata of a column, or of a table as a struct of its columns. */
struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  /* Whoever holds the struct calls this once; it sets itself to null. */
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

/* The values of a column, or of a table. */
struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif /* ARROW_C_DATA_INTERFACE */

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

/* A sequence of tables of one schema. Each callback gives 0, or an errno number with a text from
   get_last_error, which is good until the next call. The end is an array without a release. */
struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

#endif /* ARROW_C_STREAM_INTERFACE */

#ifdef __cplusplus
}
#endif

#endif /* TEXTWIZARD_ARROW_C_H */
