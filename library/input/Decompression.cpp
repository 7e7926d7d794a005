#include "library/input/Decompression.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include <archive.h>
#include <archive_entry.h>
#include <fmt/format.h>
#include <unistd.h>

#include "library/input/GzipReader.h"

namespace library {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
// Names of an archive's files that a message lists.
constexpr std::size_t kListedNames = 3;

struct CloseArchive {
  void operator()(archive* reader) const { archive_read_free(reader); }
};
using Archive = std::unique_ptr<archive, CloseArchive>;

std::string ErrorOf(archive* reader) {
  const char* const text = archive_error_string(reader);
  return text != nullptr ? text : "no reason is told";
}

std::string Damaged(Compression compression, const std::string& reason) {
  return fmt::format("the {} data is damaged: {}", CompressionName(compression), reason);
}

// An archive that is read from the start of the file; null with *problem set.
Archive OpenArchive(int descriptor, Compression compression, std::string* problem) {
  Archive reader(archive_read_new());
  if (!reader || lseek(descriptor, 0, SEEK_SET) < 0) {
    *problem = std::strerror(reader ? errno : ENOMEM);
    return nullptr;
  }
  if (compression == Compression::kZip) {
    archive_read_support_format_zip(reader.get());
  } else {
    archive_read_support_format_raw(reader.get());
    archive_read_support_format_empty(reader.get());
  }
  if (compression == Compression::kBzip2) archive_read_support_filter_bzip2(reader.get());
  if (compression == Compression::kXz) archive_read_support_filter_xz(reader.get());
  if (compression == Compression::kZstd) archive_read_support_filter_zstd(reader.get());
  if (archive_read_open_fd(reader.get(), descriptor, kBlock) == ARCHIVE_OK) return reader;
  *problem = Damaged(compression, ErrorOf(reader.get()));
  return nullptr;
}

// What an archive says of one of its files.
struct Member {
  std::string name;
  bool encrypted = false;
};

// Files in the archive that are no folder and no note of the system that made it.
bool ListMembers(int descriptor, std::vector<Member>* members, std::string* problem) {
  const Archive reader = OpenArchive(descriptor, Compression::kZip, problem);
  if (!reader) return false;
  archive_entry* entry = nullptr;
  int result;
  while ((result = archive_read_next_header(reader.get(), &entry)) == ARCHIVE_OK ||
         result == ARCHIVE_WARN) {
    if (archive_entry_filetype(entry) == AE_IFDIR) continue;
    const char* const path = archive_entry_pathname_utf8(entry);
    const std::string name = path != nullptr ? path : "?";
    if (name.starts_with("__MACOSX/")) continue;
    members->push_back({name, archive_entry_is_encrypted(entry) != 0});
  }
  if (result == ARCHIVE_EOF) return true;
  *problem = Damaged(Compression::kZip, ErrorOf(reader.get()));
  return false;
}

std::string SeveralFiles(const std::vector<Member>& members) {
  std::string names;
  for (const Member& member : members) {
    if (member.name == "xl/workbook.xml") {
      return "it is a workbook of a spreadsheet program; save the sheet as CSV and import that";
    }
  }
  for (std::size_t index = 0; index < members.size() && index < kListedNames; ++index) {
    names += (index > 0 ? ", " : "") + members[index].name;
  }
  if (members.size() > kListedNames) names += ", ...";
  return fmt::format("the zip archive holds {} files ({}); extract the one to import",
                     members.size(), names);
}

// The one file of a zip archive can be read.
bool CheckZip(int descriptor, std::string* problem) {
  std::vector<Member> members;
  if (!ListMembers(descriptor, &members, problem)) return false;
  if (members.empty()) *problem = "the zip archive holds no file";
  if (members.size() > 1) *problem = SeveralFiles(members);
  if (members.size() == 1 && members[0].encrypted) {
    *problem = fmt::format("{} in the zip archive is protected by a password; extract it first",
                           members[0].name);
  }
  return members.size() == 1 && !members[0].encrypted;
}

bool DecompressArchive(int descriptor, Compression compression,
                       const DecompressionListener& listener, std::string* problem) {
  if (compression == Compression::kZip && !CheckZip(descriptor, problem)) return false;
  const Archive reader = OpenArchive(descriptor, compression, problem);
  if (!reader) return false;
  archive_entry* entry = nullptr;
  int result;
  do {
    result = archive_read_next_header(reader.get(), &entry);
    if (result == ARCHIVE_EOF) return true;
    if (result != ARCHIVE_OK && result != ARCHIVE_WARN) {
      *problem = Damaged(compression, ErrorOf(reader.get()));
      return false;
    }
  } while (archive_entry_filetype(entry) == AE_IFDIR ||
           std::string_view(archive_entry_pathname(entry) != nullptr ? archive_entry_pathname(entry)
                                                                     : "")
               .starts_with("__MACOSX/"));
  std::vector<char> block(kBlock);
  for (;;) {
    const la_ssize_t got = archive_read_data(reader.get(), block.data(), block.size());
    if (got < 0) {
      *problem = Damaged(compression, ErrorOf(reader.get()));
      return false;
    }
    if (got == 0) return true;
    if (!listener.write({block.data(), static_cast<std::size_t>(got)}, problem)) return false;
    if (!listener.progress(archive_filter_bytes(reader.get(), -1))) {
      *problem = "interrupted";
      return false;
    }
  }
}

}  // namespace

Compression CompressionOf(std::string_view head) {
  if (head.starts_with("\x1F\x8B\x08")) return Compression::kGzip;
  // The mark of the first block, or of the end, follows the block size.
  if (head.starts_with("BZh") && head.size() >= 10 && head[3] >= '1' && head[3] <= '9' &&
      (head.substr(4, 6) == "1AY&SY" || head.substr(4, 6) == "\x17\x72\x45\x38\x50\x90")) {
    return Compression::kBzip2;
  }
  if (head.starts_with(std::string_view("\xFD"
                                        "7zXZ\0",
                                        6))) {
    return Compression::kXz;
  }
  if (head.starts_with("\x28\xB5\x2F\xFD")) return Compression::kZstd;
  if (head.starts_with("PK\x03\x04") || head.starts_with("PK\x05\x06") ||
      head.starts_with("PK\x07\x08")) {
    return Compression::kZip;
  }
  return Compression::kNone;
}

const char* CompressionName(Compression compression) {
  switch (compression) {
    case Compression::kGzip:
      return "gzip";
    case Compression::kBzip2:
      return "bzip2";
    case Compression::kXz:
      return "xz";
    case Compression::kZstd:
      return "zstd";
    case Compression::kZip:
      return "zip";
    case Compression::kNone:
      break;
  }
  return "";
}

bool Decompress(int descriptor, Compression compression, const DecompressionListener& listener,
                std::string* problem) {
  if (compression == Compression::kGzip) return ReadGzip(descriptor, listener, problem);
  return DecompressArchive(descriptor, compression, listener, problem);
}

}  // namespace library
