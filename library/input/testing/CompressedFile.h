// Compressed files for tests, made by libarchive's writers.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <archive.h>
#include <archive_entry.h>

#include "library/input/Decompression.h"

namespace library::testing_support {

struct ArchivedFile {
  std::string name;
  std::string content;
};

// The files as a zip archive; `password` not empty: protected by it.
inline std::string Zipped(const std::vector<ArchivedFile>& files,
                          const std::string& password = "") {
  std::string bytes(1 << 20, '\0');
  std::size_t used = 0;
  archive* const writer = archive_write_new();
  archive_write_set_format_zip(writer);
  if (!password.empty()) {
    archive_write_set_options(writer, "zip:encryption=traditional");
    archive_write_set_passphrase(writer, password.c_str());
  }
  archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
  for (const ArchivedFile& file : files) {
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, file.name.c_str());
    archive_entry_set_size(entry, static_cast<la_int64_t>(file.content.size()));
    const bool folder = file.name.ends_with("/");
    archive_entry_set_filetype(entry, folder ? AE_IFDIR : AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_write_header(writer, entry);
    archive_write_data(writer, file.content.data(), file.content.size());
    archive_entry_free(entry);
  }
  archive_write_close(writer);
  archive_write_free(writer);
  bytes.resize(used);
  return bytes;
}

// The content compressed.
inline std::string Compressed(const std::string& content, Compression compression) {
  if (compression == Compression::kNone) return content;
  if (compression == Compression::kZip) return Zipped({{"data.csv", content}});
  std::string bytes(1 << 20, '\0');
  std::size_t used = 0;
  archive* const writer = archive_write_new();
  archive_write_set_format_raw(writer);
  if (compression == Compression::kGzip) archive_write_add_filter_gzip(writer);
  if (compression == Compression::kBzip2) archive_write_add_filter_bzip2(writer);
  if (compression == Compression::kXz) archive_write_add_filter_xz(writer);
  if (compression == Compression::kZstd) archive_write_add_filter_zstd(writer);
  archive_write_set_bytes_in_last_block(writer, 1);
  archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
  archive_entry* const entry = archive_entry_new();
  archive_entry_set_filetype(entry, AE_IFREG);
  archive_write_header(writer, entry);
  archive_write_data(writer, content.data(), content.size());
  archive_entry_free(entry);
  archive_write_close(writer);
  archive_write_free(writer);
  bytes.resize(used);
  return bytes;
}

}  // namespace library::testing_support
