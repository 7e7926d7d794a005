# vroom, with ALTREP off so that it loads every value.
#
#   Rscript vroom.R FILE MODE THREADS     MODE: declared or sampled (its 100 rows)
suppressPackageStartupMessages(library(vroom))

arguments <- commandArgs(trailingOnly = TRUE)
file <- arguments[1]
types <- readLines(sub("csv$", "types", file))
columns <- list(integer = col_integer(), real = col_double(), date = col_date("%m/%d/%Y"),
                datetime = col_datetime("%d-%b-%Y %H:%M:%S"), text = col_character())
declared <- setNames(columns[types], paste0("v", seq_along(types)))

seconds <- system.time(gcFirst = FALSE, {
  table <- vroom(file, delim = ",", altrep = FALSE, progress = FALSE, show_col_types = FALSE,
                 col_types = if (arguments[2] == "declared") do.call(cols, declared),
                 num_threads = as.integer(arguments[3]))
})[["elapsed"]]

first <- if (types[1] == "text") nchar(table$v1) else table$v1
cat(sprintf('{"seconds":%.4f,"rows":%d,"checksum":%.0f,"text":%d,"version":"%s"}\n', seconds, nrow(table),
            sum(as.numeric(first)), sum(sapply(table, is.character)), packageVersion("vroom")))
