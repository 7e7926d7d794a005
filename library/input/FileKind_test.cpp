#include "library/input/FileKind.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StrEq;

std::string What(const std::string& head) {
  const FileKind kind = FileKindOf(head);
  EXPECT_EQ(kind.what == nullptr, kind.wayOut == nullptr);
  return kind.what != nullptr ? kind.what : "";
}

// The start of a zip archive whose first file has this name.
std::string ZipOf(const std::string& name) {
  std::string head = std::string("PK\x03\x04\x14\0\0\0\x08\0", 10) + std::string(16, '\x01');
  head += static_cast<char>(name.size());
  head += std::string("\0\0\0", 3);
  return head + name + std::string(100, '\x02');
}

TEST(FileKind, NamesCompressedFilesAndDocuments) {
  EXPECT_EQ(What(std::string("\x1F\x8B\x08\0", 4)), "compressed with gzip");
  EXPECT_EQ(What("BZh91AY&SY\x01\x02"), "compressed with bzip2");
  EXPECT_EQ(What(std::string("\xFD"
                             "7zXZ\0\x01",
                             7)),
            "compressed with xz");
  EXPECT_EQ(What("\x28\xB5\x2F\xFD"), "compressed with zstd");
  EXPECT_EQ(What(ZipOf("town.csv")), "a zip archive");
  EXPECT_EQ(What(ZipOf("[Content_Types].xml")), "a workbook (.xlsx)");
  EXPECT_EQ(What(ZipOf("mimetypeapplication/vnd.oasis.opendocument.spreadsheet")),
            "a workbook or document (.ods, .odt)");
  EXPECT_THAT(What("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"), HasSubstr(".xls"));
  EXPECT_EQ(What(std::string("SQLite format 3\0", 16)), "an SQLite database");
  EXPECT_EQ(What("PAR1" + std::string(50, '\x15')), "a Parquet file");
  EXPECT_EQ(What("%PDF-1.7\n%\x80\x01\x02\x03\x04\x05"), "a PDF document");
  // One may be ASCII through and through.
  EXPECT_EQ(What("%PDF-1.4\n1 0 obj<</Type/Catalog>>endobj\n"), "a PDF document");
}

TEST(FileKind, TextIsNoKind) {
  EXPECT_EQ(What(""), "");
  EXPECT_EQ(What("id,town\n1,Bern\n"), "");
  // Texts that begin like something else.
  EXPECT_EQ(What("PAR1,PAR2\n1,2\n"), "");
  EXPECT_EQ(What("%PDF-files,count\n1,2\n"), "");
  EXPECT_EQ(What("PK,name\n1,x\n"), "");
  EXPECT_EQ(What("BZh,x\n1,2\n"), "");
}

TEST(FileKind, CountsControlCharactersWhereTheyAreTooMany) {
  EXPECT_EQ(ControlsBeyondText("a\tb\r\n\x1B[1m"), 0U);
  EXPECT_EQ(ControlsBeyondText(std::string("a\0b,c,d\n", 8)), 0U);
  EXPECT_EQ(ControlsBeyondText(std::string(90, 'x') + std::string(10, '\x01')), 10U);
  EXPECT_EQ(ControlsBeyondText(std::string(100, '\0')), 100U);
  // 16-bit text with and without its mark.
  EXPECT_EQ(ControlsBeyondText(std::string("\xFF\xFE"
                                           "a\0,\0b\0",
                                           8)),
            0U);
  EXPECT_EQ(ControlsBeyondText(std::string("a\0,\0b\0\n\0", 8)), 0U);
  EXPECT_EQ(ControlsBeyondText(std::string("\0a\0,\0b\0\n", 8)), 0U);
}

TEST(FileKind, ReadsTheHeadOfAFile) {
  const TestFolder folder;
  EXPECT_EQ(FileHead(folder.Write("short", "abc")), "abc");
  EXPECT_EQ(FileHead(folder.Write("long", std::string(9000, 'x'))).size(), kFileHeadBytes);
  EXPECT_THAT(FileHead(folder / "none"), IsEmpty());
  EXPECT_THAT(FileHead(folder.path().string()), IsEmpty());
}

TEST(FileKind, SaysWhyAFileIsNotOpened) {
  const TestFolder folder;
  EXPECT_THAT(WhyNotOpened(folder.Write("there", "")), IsEmpty());
  EXPECT_THAT(WhyNotOpened("-"), IsEmpty());
  EXPECT_THAT(WhyNotOpened(folder / "none"), StrEq("No such file or directory"));
  EXPECT_EQ(WhyNotOpened("no-such-file"), "No such file or directory; it was looked for in " +
                                              std::filesystem::current_path().string());
  EXPECT_EQ(WhyNotOpened(folder.path().string()), "it is a folder");
  EXPECT_EQ(WhyNotOpened(folder / "there" + "/x"), "Not a directory");
}

}  // namespace
}  // namespace library
