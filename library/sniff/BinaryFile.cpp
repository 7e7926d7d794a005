#include "library/sniff/BinaryFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace library {
namespace {

using namespace std::string_view_literals;

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  const char* name;
};

constexpr auto kSignatures = std::to_array<Signature>({
    {0, "\x89PNG\r\n\x1A\n"sv, "a PNG picture"},
    {0, "\xFF\xD8\xFF"sv, "a JPEG picture"},
    {0, "GIF87a"sv, "a GIF picture"},
    {0, "GIF89a"sv, "a GIF picture"},
    {0, "II*\0"sv, "a TIFF picture"},
    {0, "MM\0*"sv, "a TIFF picture"},
    {8, "WEBP"sv, "a WebP picture"},
    {0, "\0\0\1\0"sv, "an icon"},
    {0, "%PDF-"sv, "a PDF document"},
    {0, "%!PS"sv, "a PostScript document"},
    {0, "{\\rtf"sv, "a Rich Text document"},
    {0, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, "an Office document of the old kind (xls, doc, ppt)"},
    {0, "\x1F\x8B"sv, "a gzip file"},
    {0, "BZh"sv, "a bzip2 file"},
    {0,
     "\xFD"
     "7zXZ\0"sv,
     "an xz file"},
    {0, "\x28\xB5\x2F\xFD"sv, "a zstd file"},
    {0, "\x04\x22\x4D\x18"sv, "an lz4 file"},
    {0, "7z\xBC\xAF\x27\x1C"sv, "a 7-Zip archive"},
    {0, "Rar!\x1A\x07"sv, "a RAR archive"},
    {257, "ustar"sv, "a tar archive"},
    {0, "!<arch>\n"sv, "an object library"},
    {0,
     "\x7F"
     "ELF"sv,
     "an executable (ELF)"},
    {0, "\xCA\xFE\xBA\xBE"sv, "a Java class or a Mach-O executable"},
    {0, "\xCF\xFA\xED\xFE"sv, "an executable (Mach-O)"},
    {0, "\xCE\xFA\xED\xFE"sv, "an executable (Mach-O)"},
    {0, "\0asm"sv, "a WebAssembly module"},
    {0, "SQLite format 3\0"sv, "an SQLite database"},
    {0, "PAR1"sv, "a Parquet file"},
    {0, "ARROW1"sv, "an Arrow file"},
    {0, "FEA1"sv, "a Feather file"},
    {0, "ORC"sv, "an ORC file"},
    {0, "Obj\1"sv, "an Avro file"},
    {0, "\x89HDF\r\n\x1A\n"sv, "an HDF5 file"},
    {0, "CDF\1"sv, "a NetCDF file"},
    {0, "CDF\2"sv, "a NetCDF file"},
    {0, "ID3"sv, "an MP3 recording"},
    {0, "OggS"sv, "an Ogg recording"},
    {0, "fLaC"sv, "a FLAC recording"},
    {4, "ftyp"sv, "an MP4 recording"},
    {8, "WAVE"sv, "a WAV recording"},
    {8, "AVI "sv, "an AVI recording"},
    {0, "\x1A\x45\xDF\xA3"sv, "a Matroska recording"},
    {0, "wOFF"sv, "a font"},
    {0, "wOF2"sv, "a font"},
    {0, "\0\1\0\0\0"sv, "a font"},
    {0, "OTTO\0"sv, "a font"},
});

// What a zip archive holds tells what it is.
struct Member {
  std::string_view name;
  const char* what;
};

constexpr auto kMembers = std::to_array<Member>({
    {"xl/"sv, "an Excel workbook (xlsx)"},
    {"word/"sv, "a Word document (docx)"},
    {"ppt/"sv, "a PowerPoint presentation (pptx)"},
    {"mimetypeapplication/vnd.oasis.opendocument.spreadsheet"sv, "an OpenDocument table (ods)"},
    {"mimetypeapplication/vnd.oasis.opendocument.text"sv, "an OpenDocument text (odt)"},
    {"mimetypeapplication/epub"sv, "an EPUB book"},
    {"META-INF/MANIFEST.MF"sv, "a Java archive (jar)"},
});

// Bytes that are looked at.
constexpr std::size_t kMostBytes = 64 << 10;
// Of so many bytes of text at most one is a control character.
constexpr std::size_t kBytesAControl = 10;
// Shorter files are text unless their signature says otherwise.
constexpr std::size_t kFewestBytes = 32;

std::uint32_t LittleEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

// A program for Windows: its header says where the new one stands.
bool IsWindowsProgram(std::string_view head) {
  if (!head.starts_with("MZ") || head.size() < 64) return false;
  const std::uint32_t at = LittleEndian(head.substr(60, 4));
  return at + 4 <= head.size() && head.substr(at, 4) == "PE\0\0"sv;
}

bool IsBitmap(std::string_view head) {
  return head.starts_with("BM") && head.size() > 18 && head.substr(6, 4) == "\0\0\0\0"sv;
}

bool IsControl(char one) {
  const auto byte = static_cast<unsigned char>(one);
  return (byte < 0x20 && (byte < 9 || byte > 13) && byte != 0x1B && byte < 0x1C) || byte == 0x7F;
}

bool HasControls(std::string_view head) { return std::any_of(head.begin(), head.end(), IsControl); }

bool IsWord(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == ' ';
  });
}

}  // namespace

std::string NameOfBinary(std::string_view head) {
  if (head.starts_with("PK\3\4"sv) || head.starts_with("PK\5\6"sv)) {
    const std::string_view begin = head.substr(0, kMostBytes);
    for (const Member& member : kMembers) {
      if (begin.find(member.name) != std::string_view::npos) return member.what;
    }
    return "a zip archive";
  }
  if (IsWindowsProgram(head)) return "an executable (Windows)";
  if (IsBitmap(head)) return "a BMP picture";
  for (const Signature& signature : kSignatures) {
    // A text may begin with the same letters.
    if (IsWord(signature.bytes) && !HasControls(head.substr(0, kMostBytes))) continue;
    if (head.size() >= signature.offset + signature.bytes.size() &&
        head.substr(signature.offset, signature.bytes.size()) == signature.bytes) {
      return signature.name;
    }
  }
  return {};
}

bool IsControlHeavy(std::string_view head, bool zeros) {
  head = head.substr(0, kMostBytes);
  if (head.size() < kFewestBytes) return false;
  const auto controls = static_cast<std::size_t>(std::count_if(
      head.begin(), head.end(), [&](char byte) { return byte == '\0' ? zeros : IsControl(byte); }));
  // Plain ASCII may hold them for a reason.
  const bool ascii = std::none_of(
      head.begin(), head.end(), [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
  return controls * (ascii ? 2 : kBytesAControl) > head.size();
}

}  // namespace library
