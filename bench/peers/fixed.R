# Fixed columns, by vroom (with ALTREP off so that it loads every value) or by readr.
#
#   Rscript fixed.R FILE vroom|readr THREADS
arguments <- commandArgs(trailingOnly = TRUE)
file <- arguments[1]
package <- arguments[2]
suppressPackageStartupMessages(library(package, character.only = TRUE))
types <- readLines(sub("csv$", "types", file))
widths <- as.integer(readLines(sub("csv$", "widths", file)))
columns <- list(integer = col_integer(), real = col_double(), date = col_date("%m/%d/%Y"),
                datetime = col_datetime("%d-%b-%Y %H:%M:%S"), text = col_character())
names <- paste0("v", seq_along(types))
declared <- do.call(cols, setNames(columns[types], names))
threads <- as.integer(arguments[3])

seconds <- system.time(gcFirst = FALSE, {
  table <- if (package == "vroom") {
    vroom_fwf(file, fwf_widths(widths, names), col_types = declared, altrep = FALSE,
              progress = FALSE, num_threads = threads)
  } else {
    read_fwf(file, fwf_widths(widths, names), col_types = declared, lazy = FALSE,
             progress = FALSE, num_threads = threads)
  }
})[["elapsed"]]
cat(sprintf('{"seconds":%.4f,"rows":%d,"version":"%s"}\n', seconds, nrow(table),
            packageVersion(package)))
