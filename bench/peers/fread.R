# data.table's fread. It knows no layout of dates but ISO 8601, so dates stay text.
#
#   Rscript fread.R FILE MODE THREADS     MODE: declared or sampled (its 10,000 rows)
suppressPackageStartupMessages(library(data.table))

arguments <- commandArgs(trailingOnly = TRUE)
file <- arguments[1]
types <- readLines(sub("csv$", "types", file))
classes <- c(integer = "integer", real = "numeric", date = "character", datetime = "character",
             text = "character")
setDTthreads(as.integer(arguments[3]))

seconds <- system.time(gcFirst = FALSE, {
  table <- if (arguments[2] == "declared") {
    fread(file, sep = ",", header = TRUE, quote = "\"", colClasses = unname(classes[types]),
          na.strings = NULL, showProgress = FALSE)
  } else {
    fread(file, showProgress = FALSE)
  }
})[["elapsed"]]

first <- if (types[1] == "text") nchar(table$v1) else table$v1
cat(sprintf('{"seconds":%.4f,"rows":%d,"checksum":%.0f,"text":%d,"version":"%s"}\n', seconds, nrow(table),
            sum(as.numeric(first)), sum(sapply(table, is.character)), packageVersion("data.table")))
