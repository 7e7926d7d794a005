#include "library/input/FileKind.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "library/input/Decompression.h"

namespace library {
namespace {

using namespace std::string_view_literals;

constexpr char kDecompress[] =
    "decompress it first, or pipe the text in as FILE='-' (zcat, bzcat, xzcat, zstdcat, unzip -p)";
constexpr char kSaveAsText[] = "save the table as CSV in the program that it comes from";
constexpr char kNoTable[] = "name a text file";

struct Signature {
  std::string_view bytes;
  // A text could begin with these bytes, too: only with control characters behind they count.
  bool maybeText;
  FileKind kind;
};

constexpr Signature kSignatures[] = {
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv,
     false,
     {"a workbook or document of the old binary Office kind (.xls, .doc)", kSaveAsText}},
    {"%PDF-1."sv, false, {"a PDF document", kNoTable}},
    {"%PDF-2."sv, false, {"a PDF document", kNoTable}},
    {"SQLite format 3\0"sv, false, {"an SQLite database", "export the table as CSV"}},
    {"PAR1"sv, true, {"a Parquet file", "export the table as CSV"}},
    {"ARROW1\0"sv, false, {"an Arrow file", "export the table as CSV"}},
    {"\x89HDF\r\n\x1A\n"sv, false, {"an HDF5 file", "export the table as CSV"}},
    {"7z\xBC\xAF\x27\x1C"sv, false, {"a 7-Zip archive", kDecompress}},
    {"Rar!\x1A\x07"sv, false, {"a RAR archive", kDecompress}},
    {"\x04\x22\x4D\x18"sv, false, {"compressed with lz4", kDecompress}},
    {"\x1F\x9D"sv, false, {"compressed with compress", kDecompress}},
    {"\x89PNG\r\n\x1A\n"sv, false, {"a PNG image", kNoTable}},
    {"\xFF\xD8\xFF"sv, false, {"a JPEG image", kNoTable}},
    {"GIF8"sv, true, {"a GIF image", kNoTable}},
    {"MZ"sv, true, {"a program", kNoTable}},
    {"\xCF\xFA\xED\xFE"sv, false, {"a program", kNoTable}},
    {"\x7F"
     "ELF"sv,
     false,
     {"a program", kNoTable}},
};

FileKind Compressed(Compression compression) {
  switch (compression) {
    case Compression::kGzip:
      return {"compressed with gzip", kDecompress};
    case Compression::kBzip2:
      return {"compressed with bzip2", kDecompress};
    case Compression::kXz:
      return {"compressed with xz", kDecompress};
    case Compression::kZstd:
      return {"compressed with zstd", kDecompress};
    case Compression::kZip:
      return {"a zip archive", kDecompress};
    case Compression::kNone:
      break;
  }
  return {};
}

// Documents are zip archives whose first files have known names.
FileKind ZipKind(std::string_view head) {
  for (const std::string_view name : {"[Content_Types].xml"sv, "_rels/.rels"sv, "xl/"sv}) {
    if (head.find(name) == std::string_view::npos) continue;
    return head.find("word/") == std::string_view::npos
               ? FileKind{"a workbook (.xlsx)", kSaveAsText, true}
               : FileKind{"a document (.docx)", kSaveAsText, true};
  }
  if (head.find("mimetypeapplication/vnd.oasis.opendocument"sv) != std::string_view::npos) {
    return {"a workbook or document (.ods, .odt)", kSaveAsText, true};
  }
  return Compressed(Compression::kZip);
}

bool IsTar(std::string_view head) {
  constexpr std::size_t kPlace = 257;
  return head.size() > kPlace && head.substr(kPlace).starts_with("ustar");
}

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && std::strchr("\t\n\v\f\r\x1A\x1B", byte) == nullptr) || byte == 0 ||
         byte == 0x7F;
}

// 16-bit text: a mark, or NULs at even or at odd places only.
bool MayBe16Bit(std::string_view head) {
  if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")) return true;
  std::size_t nuls[2] = {0, 0};
  for (std::size_t i = 0; i < head.size(); ++i) {
    if (head[i] == '\0') ++nuls[i % 2];
  }
  const std::size_t most = std::max(nuls[0], nuls[1]);
  return std::min(nuls[0], nuls[1]) == 0 && most > head.size() / 8;
}

}  // namespace

FileKind FileKindOf(std::string_view head) {
  const Compression compression = CompressionOf(head.substr(0, kCompressionHeadBytes));
  if (compression == Compression::kZip) return ZipKind(head);
  if (compression != Compression::kNone) return Compressed(compression);
  const bool noText = ControlsBeyondText(head) > 0;
  for (const Signature& signature : kSignatures) {
    if (head.starts_with(signature.bytes) && (noText || !signature.maybeText)) {
      return signature.kind;
    }
  }
  if (noText && IsTar(head)) return {"a tar archive", kDecompress};
  return {};
}

std::size_t ControlsBeyondText(std::string_view head) {
  if (MayBe16Bit(head)) return 0;
  const auto controls =
      static_cast<std::size_t>(std::count_if(head.begin(), head.end(), IsControl));
  // A few may be in a text of any origin.
  constexpr std::size_t kShare = 20;
  return controls > 2 && controls > head.size() / kShare ? controls : 0;
}

std::string FileHead(const std::string& path) {
  std::string head;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (file < 0) return head;
  struct stat status {};
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
    head.resize(kFileHeadBytes);
    const ssize_t got = pread(file, head.data(), head.size(), 0);
    head.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
  }
  close(file);
  return head;
}

std::string WhyNotOpened(const std::string& path) {
  if (path == "-") return {};
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    const int code = errno;
    std::string why = std::strerror(code);
    if (code == ENOENT && !path.starts_with('/')) {
      std::error_code failed;
      const std::filesystem::path here = std::filesystem::current_path(failed);
      why += fmt::format("; it was looked for in {}", here.string());
    }
    return why;
  }
  if (S_ISDIR(status.st_mode)) return "it is a folder";
  return access(path.c_str(), R_OK) == 0 ? std::string() : std::strerror(errno);
}

}  // namespace library
