/* TextWizard's C interface: a text file as typed columns.
 *
 *     textwizard_import* import = NULL;
 *     textwizard_error* error = NULL;
 *     if (textwizard_open_file("data.csv", NULL, NULL, &import, &error) != TEXTWIZARD_OK) {
 *       fprintf(stderr, "%s\n", textwizard_error_text(error));
 *       textwizard_error_free(error);
 *       return 1;
 *     }
 *     struct ArrowArrayStream cases;
 *     textwizard_cases(import, &cases, &error);
 *     ... cases.get_schema, cases.get_next, cases.release ...
 *     textwizard_close(import);
 *
 * Texts are UTF-8 and end with a zero byte unless a length is given; paths are bytes of the file
 * system. A struct whose first member is `size` may grow: set it to sizeof of the struct, and every
 * member that is zero has its default. Every function that can fail gives a status and, where
 * `error` is not null, sets *error to what happened; free it with textwizard_error_free. On success
 * *error is left alone. C11 and C++.
 *
 * Threads. An import is used by one thread at a time, but for textwizard_cancel, which any thread
 * may call. Conversion has threads of its own; callbacks come on the thread that called the
 * function or the stream. Settings of the host that the library brings along (code page, decimal
 * character) are the process's: imports that are read at the same time must agree on them, and
 * while a bare file is opened nothing else is read; else TEXTWIZARD_BUSY. Opening imports is
 * serialized.
 */
#ifndef TEXTWIZARD_TEXTWIZARD_H
#define TEXTWIZARD_TEXTWIZARD_H

#include <stddef.h>
#include <stdint.h>

#include "textwizard/arrow_c.h"

#if defined(__GNUC__)
#define TEXTWIZARD_API __attribute__((visibility("default")))
#else
#define TEXTWIZARD_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef enum textwizard_status {
  TEXTWIZARD_OK = 0,
  TEXTWIZARD_COMMAND_FAILED = 1, /* the command or its data: the error has the message's number */
  TEXTWIZARD_USAGE = 2,          /* an argument or a setting is wrong */
  TEXTWIZARD_FILE = 3,           /* a file cannot be read or written */
  TEXTWIZARD_NO_MEMORY = 4,
  TEXTWIZARD_BUSY = 5,     /* another import is being read with other settings of the process */
  TEXTWIZARD_CANCELLED = 6 /* textwizard_cancel, or the progress callback wanted it */
} textwizard_status;

/* --- Errors */

typedef struct textwizard_error textwizard_error;

/* A sentence or several: what happened, where, and the way out. Lives as long as the error. */
TEXTWIZARD_API const char* textwizard_error_text(const textwizard_error* error);
/* The number of the message, such as 2265; 0 where it has none. */
TEXTWIZARD_API int32_t textwizard_error_number(const textwizard_error* error);
/* The place in the command text, from 1; 0 where it is not about the text. */
TEXTWIZARD_API int32_t textwizard_error_line(const textwizard_error* error);
TEXTWIZARD_API int32_t textwizard_error_column(const textwizard_error* error);
/* Null is accepted. */
TEXTWIZARD_API void textwizard_error_free(textwizard_error* error);

/* --- Options */

typedef enum textwizard_message_kind {
  TEXTWIZARD_WARNING = 0,
  TEXTWIZARD_ERROR = 1,
  TEXTWIZARD_LOG = 3
} textwizard_message_kind;

/* A part of a data file: a range of bytes. It owns the lines that begin in it. */
typedef struct textwizard_part {
  size_t size;
  int64_t from; /* the first byte, from 0; of a compressed file of its decompressed bytes */
  int64_t to;   /* the byte behind the last one */
  /* What stands before the part: a summary of it (textwizard_merge_summaries). Null: the file is
     read up to the part, to count its lines. */
  const void* before;
  size_t before_size; /* in bytes */
} textwizard_part;

/* What goes for every import. */
typedef struct textwizard_options {
  size_t size;
  /* Of the host's text; null: UTF-8. For a file these three are found. */
  const char* code_page;
  /* What ENCODING=LOCALE means; null: the locale's codeset. */
  const char* locale_code_page;
  /* '.' or ',': the host's decimal character; 0: '.', or what the file was found to have. */
  char decimal;
  /* Conversion threads; 0: one per processor and two more. */
  int32_t workers;
  /* Texts that mean a missing number, besides the empty one; null: "NA", "N/A", "NULL", "null",
     "NaN", "nan", ".", "-". */
  const char* const* null_texts;
  size_t null_text_count;
  /* 1: a line break inside a qualified field stays in the value; a backslash in one makes the next
     character an ordinary one; a qualifier inside an unqualified field is an ordinary character.
     What a file needs is found. */
  int32_t join_quoted_lines;
  int32_t backslash_escapes;
  int32_t keep_stray_qualifiers;
  /* Problems kept for textwizard_problems, at most; 0: 1,000,000; negative: none. */
  int64_t problem_limit;
  /* 1: a problem makes the import fail. */
  int32_t strict;
  /* 1: columns carry variables' names instead of the labels that a file gives them. */
  int32_t names_as_variables;
  /* Of a file: columns whose values are all whole and within 2^53 are int64, unless -1. Of a
     command: 1 makes every number int64 whose format has no decimals; a value that is not whole is
     missing then, and a problem. */
  int32_t integers;
  /* A message; may be null. `text` is good during the call. */
  void (*message)(void* context, textwizard_message_kind kind, const char* text);
  /* Cases so far (while types are found: records that were looked at), bytes so far and bytes in
     all (-1: unknown). Not 0 cancels. May be null. */
  int32_t (*progress)(void* context, int64_t cases, int64_t bytes, int64_t all_bytes);
  void* context;
  /* One part of the data file alone, of a command or a recipe; null: all of it. */
  const textwizard_part* part;
  /* 1: passes make no digest, which takes about a tenth of a pass's processor time. */
  int32_t no_digest;
  /* Of a command, what of the file it has no words for; of a file it is found. "utf-16le" or
     "utf-16be": the file is read as if it began with that mark; else null. */
  const char* byte_order_mark;
  /* An encoding (a name that ICU knows) from which the file is converted to UTF-8; else null. */
  const char* transcode;
  /* Characters of a line, from 1, rising, such as "13,18": a copy of the file (UTF-8) is read that
     has blanks in front of them, so that character n stands at byte 4(n - 1); else null. */
  const char* pad_columns;
} textwizard_options;

/* What is given instead of found about a bare file. */
typedef struct textwizard_file_options {
  size_t size;
  const char* encoding;  /* a name that ICU knows */
  const char* delimiter; /* "" : one column */
  const char* qualifier; /* "" : none */
  int64_t first_line;    /* where the data begins, from 1; 0: found */
  int32_t header;        /* 1: names stand above the data; -1: they do not; 0: found */
  const char* fixed;     /* columns such as "1-8,9-20" */
  const char* types;     /* "visited=EDATE10,id=A12" */
  const char* names;     /* "id,name,visited" */
  int64_t sample_lines;  /* types from the first lines only; 0: from all */
} textwizard_file_options;

/* --- Imports */

typedef struct textwizard_import textwizard_import;

/* Runs one GET DATA command: parses it, finds the types of AUTO variables. `options` may be null.
 */
TEXTWIZARD_API textwizard_status textwizard_open_command(const char* command,
                                                         const textwizard_options* options,
                                                         textwizard_import** import,
                                                         textwizard_error** error);
/* Understands a bare file (compressed or not; "-": standard input), finds the types from the whole
   of it and makes the command. `file_options` and `options` may be null. */
TEXTWIZARD_API textwizard_status textwizard_open_file(const char* path,
                                                      const textwizard_file_options* file_options,
                                                      const textwizard_options* options,
                                                      textwizard_import** import,
                                                      textwizard_error** error);
/* Ends the import; streams of it end with an error from then on and are still to be released. Null
   is accepted. */
TEXTWIZARD_API void textwizard_close(textwizard_import* import);

/* The columns. Release *schema. */
TEXTWIZARD_API textwizard_status textwizard_schema(textwizard_import* import,
                                                   struct ArrowSchema* schema,
                                                   textwizard_error** error);
/* The cases from the first to the last, as batches of at most 65,536; reads while it is asked. One
   at a time: a second one begins again and ends the first. Release *cases. */
TEXTWIZARD_API textwizard_status textwizard_cases(textwizard_import* import,
                                                  struct ArrowArrayStream* cases,
                                                  textwizard_error** error);
typedef struct textwizard_write_options {
  size_t size;
  const char* format; /* csv, tsv, jsonl, arrow, parquet, sqlite; null: as the path ends */
  int32_t arrow_lz4;  /* 1: batches of an Arrow file are compressed by LZ4 */
} textwizard_write_options;
/* Reads the cases, from the first to the last, into a file, which gets its name when it is complete
   and replaces what has that name; what fails leaves no file. `options` may be null. A stream of
   the import ends. */
TEXTWIZARD_API textwizard_status textwizard_write_cases(textwizard_import* import, const char* path,
                                                        const textwizard_write_options* options,
                                                        textwizard_error** error);
/* What the latest pass failed with, which its stream can say as a text only, as number and text:
   the status and *error of that. TEXTWIZARD_OK where it did not fail. */
TEXTWIZARD_API textwizard_status textwizard_pass_error(textwizard_import* import,
                                                       textwizard_error** error);
/* The problems of the latest pass that came to its end, or as far as it came: kind, case, line,
   byte, variable, format, text, detail. Release *problems. */
TEXTWIZARD_API textwizard_status textwizard_problems(textwizard_import* import,
                                                     struct ArrowArrayStream* problems,
                                                     textwizard_error** error);
/* Stops the pass that runs, or the next one, at its next check. Any thread. */
TEXTWIZARD_API void textwizard_cancel(textwizard_import* import);

/* Texts about the import, good until the next call of the same function or textwizard_close. */

/* The GET DATA command. */
TEXTWIZARD_API const char* textwizard_command(textwizard_import* import);
/* JSON: file, cases, variables (with "evidence" of AUTO variables), and after a pass "ledger". */
TEXTWIZARD_API const char* textwizard_dictionary(textwizard_import* import);
/* JSON: how a bare file was read, as `textwizard sniff --json` says it; null for a command. */
TEXTWIZARD_API const char* textwizard_reading(textwizard_import* import);
/* JSON: the ledger of the latest pass; null before one ended. */
TEXTWIZARD_API const char* textwizard_ledger(textwizard_import* import);
/* The digest of the latest pass's cases, 32 hexadecimal digits; null before one ended, and where
   the options want none. */
TEXTWIZARD_API const char* textwizard_digest(textwizard_import* import);

/* --- Parts: one import by several processes or machines that see the file. Each sums up its part;
   one merges the summaries, opens the import that they make, and gives its recipe to all; each
   reads the cases of its part with it. The cases, their numbers, problems, ledgers and digests of
   the parts are, or add up to, those of one import of the whole. */

/* Sums up part `number` (from 1) of `count` even parts of a bare file: some kilobytes that do not
   grow with the part. Everybody gives the same options. Free *summary with textwizard_bytes_free.
   Of the options workers, null_texts, progress and decimal count. Nothing else is opened or read in
   the process meanwhile; else TEXTWIZARD_BUSY. */
TEXTWIZARD_API textwizard_status textwizard_summarize_part(
    const char* path, int64_t number, int64_t count, const textwizard_file_options* file_options,
    const textwizard_options* options, void** summary, size_t* size, textwizard_error** error);
/* Merges `count` summaries, in any order, of parts that follow one another; in any grouping the
   same. `lines_only` 1: only what `before` of a textwizard_part needs. Free *merged with
   textwizard_bytes_free. */
TEXTWIZARD_API textwizard_status textwizard_merge_summaries(const void* const* summaries,
                                                            const size_t* sizes, size_t count,
                                                            int32_t lines_only, void** merged,
                                                            size_t* size, textwizard_error** error);
/* JSON: file, file_bytes and modified (its size, and nanoseconds since 1970, when it was summed
   up), data_bytes (decompressed), from and to (the bytes summed up), lines, records, columns. Free
   *json with textwizard_text_free. */
TEXTWIZARD_API textwizard_status textwizard_summary_json(const void* summary, size_t size,
                                                         char** json, textwizard_error** error);
/* As textwizard_open_file of the file whose parts are all in the summary, which is not read again
   for its types. The options are those of the summaries. Fails where the file has changed. */
TEXTWIZARD_API textwizard_status textwizard_open_summary(
    const void* summary, size_t size, const textwizard_file_options* file_options,
    const textwizard_options* options, textwizard_import** import, textwizard_error** error);
/* What textwizard_open_recipe makes the same import of, anywhere: the command and all that goes
   with it (JSON, whose members may change). Good until the next call or textwizard_close. */
TEXTWIZARD_API const char* textwizard_recipe(textwizard_import* import);
/* The import of a recipe, or the part of it that the options name. Of the options workers,
   problem_limit, strict, message, progress and part count. Fails, and so do its passes
   (TEXTWIZARD_FILE), where the file is not as it was when the recipe was made. */
TEXTWIZARD_API textwizard_status textwizard_open_recipe(const char* recipe,
                                                        const textwizard_options* options,
                                                        textwizard_import** import,
                                                        textwizard_error** error);
TEXTWIZARD_API void textwizard_bytes_free(void* bytes);

/* --- Several files of one structure as one data set: columns go by name or by place, types are
   those of all files. Each file is read by a recipe of its own, in parts or not, and gives the data
   set's columns; cases are counted through all files, in their order. */

typedef struct textwizard_data_set textwizard_data_set;

typedef struct textwizard_data_set_options {
  size_t size;
  const char* name; /* what the dictionary calls the data; null: the paths */
  const char* by;   /* "name", "position"; null: by name where names stand above the columns */
  /* 1: a file that does not fit, or cannot be read, is left out; else it is an error. */
  int32_t skip_misfits;
  const char* source_column; /* a last column with each case's file; null: none */
  /* Summaries of all of a file (textwizard_merge_summaries), of any of the files: those are not
     read again for their types. A file that has changed since is an error. */
  const void* const* summaries;
  const size_t* summary_sizes;
  size_t summary_count;
} textwizard_data_set_options;

/* The files that `given` names, paths and patterns of * ? and []: those of a pattern in the order
   of their names' bytes, each file once. *names has them one behind the other, each with a zero
   byte at its end; *size is in bytes. Free *names with textwizard_bytes_free. Fails
   (TEXTWIZARD_FILE) where a pattern matches none. */
TEXTWIZARD_API textwizard_status textwizard_list_files(const char* const* given, size_t count,
                                                       void** names, size_t* size,
                                                       textwizard_error** error);
/* Understands `count` bare files and finds the types from all of all; reads no cases. The options,
   any of which may be null, are those of textwizard_open_file for each. Nothing else is opened or
   read meanwhile; else TEXTWIZARD_BUSY. */
TEXTWIZARD_API textwizard_status textwizard_open_data_set(
    const char* const* paths, size_t count, const textwizard_data_set_options* set_options,
    const textwizard_file_options* file_options, const textwizard_options* options,
    textwizard_data_set** data_set, textwizard_error** error);
/* Null is accepted. */
TEXTWIZARD_API void textwizard_close_data_set(textwizard_data_set* data_set);

/* Texts, good until textwizard_close_data_set. */

/* The commands of the files that are read, one behind the other. */
TEXTWIZARD_API const char* textwizard_data_set_command(const textwizard_data_set* data_set);
/* JSON as of textwizard_dictionary; witnesses in "evidence" name their files; "drift" where files
   differ. */
TEXTWIZARD_API const char* textwizard_data_set_dictionary(const textwizard_data_set* data_set);
/* JSON as of textwizard_reading, of the file whose structure most have. */
TEXTWIZARD_API const char* textwizard_data_set_reading(const textwizard_data_set* data_set);
/* JSON: of each path, in order: file, kind ("data", "header-only", "empty", "left-out"), problem
   (why it is no data), file_bytes, modified; of those that are read records, command, and
   summarized: false where no summary goes with how it is cut among the others; then summaries of
   its parts do not stand before parts of it. */
TEXTWIZARD_API const char* textwizard_data_set_files(const textwizard_data_set* data_set);
/* For textwizard_open_recipe: the import of path number `file` (from 0), whose "files" in
   textwizard_dictionary has what it came to. Null where that is not read. */
TEXTWIZARD_API const char* textwizard_data_set_recipe(const textwizard_data_set* data_set,
                                                      size_t file);

/* --- Without an import. Free the texts with textwizard_text_free. */

/* JSON: how a bare file is built. */
TEXTWIZARD_API textwizard_status textwizard_sniff(const char* path,
                                                  const textwizard_file_options* file_options,
                                                  char** json, textwizard_error** error);
/* JSON: {"records":[{"line":n,"text":"...","cut":bool}...]}: `count` records from record `first`
   (from 1) on, as the import wizard sees them. `encoding`: a name of the wizard's; null: "UTF-8".
 */
TEXTWIZARD_API textwizard_status textwizard_preview(const char* path, const char* encoding,
                                                    int64_t first, int64_t count, char** json,
                                                    textwizard_error** error);
TEXTWIZARD_API void textwizard_text_free(char* text);

/* Such as "1.0.0". */
TEXTWIZARD_API const char* textwizard_version(void);

#ifdef __cplusplus
}
#endif

#endif /* TEXTWIZARD_TEXTWIZARD_H */
