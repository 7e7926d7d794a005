// `textwizard sniff`: how a bare file is built.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include "library/input/testing/CompressedFile.h"
#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Sniff : public ProgramTest {
 protected:
  Ended Sniffed(const std::string& text, std::vector<std::string> options = {}) const {
    folder_.Write("data.csv", text);
    options.insert(options.begin(), "sniff");
    options.push_back("data.csv");
    return Run(options);
  }
};

constexpr char kTowns[] =
    "# towns of the "
    "world\r\ntown;people;share\r\nZ\xFCrich;400000;12,5\r\nGen\xE8ve;200000;7,25\r\n"
    "Bern;134000;3,75\r\nNeuch\xE2tel;33000;1,25\r\nD\xFC"
    "dingen;8000;0,5\r\n"
    "Total;775000;25,25\r\n";

TEST_F(Sniff, TellsEverythingAsJson) {
  const Ended ended = Sniffed(kTowns, {"--json"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.err, IsEmpty());
  const auto json = nlohmann::json::parse(ended.out);
  EXPECT_EQ(json["file"], "data.csv");
  EXPECT_EQ(json["encoding"], "ISO-8859-1");
  EXPECT_EQ(json["line_end"], "crlf");
  EXPECT_EQ(json["delimiter"], ";");
  EXPECT_EQ(json["preamble_lines"], 1);
  EXPECT_EQ(json["header_lines"], 1);
  EXPECT_EQ(json["first_data_line"], 3);
  EXPECT_EQ(json["last_data_line"], 7);
  EXPECT_EQ(json["decimal"], "comma");
  EXPECT_EQ(json["names"], nlohmann::json({"town", "people", "share"}));
  EXPECT_EQ(json["columns"][2]["format"], "F5.2");
}

TEST_F(Sniff, ShowsOneScreenToAPerson) {
  const Ended ended = Sniffed(kTowns);
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.err, IsEmpty());
  EXPECT_THAT(ended.out, HasSubstr("delimiter   semicolon          found"));
  EXPECT_THAT(ended.out, HasSubstr("decimal     comma              found  12,5 in line 3"));
  EXPECT_THAT(ended.out, HasSubstr("share"));
  EXPECT_TRUE(ended.out.ends_with("\n"));
}

TEST_F(Sniff, AnEmptyFileIsTaken) {
  const Ended ended = Sniffed("", {"--json"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(nlohmann::json::parse(ended.out)["columns"].empty());
  EXPECT_EQ(Sniffed("").status, 0);
}

TEST_F(Sniff, WhatIsNoTextEndsWithStatusOneAndItsName) {
  const Ended ended = Sniffed("\x89PNG\r\n\x1A\n" + std::string(64, '\x01'));
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.out, IsEmpty());
  EXPECT_THAT(ended.err, HasSubstr("error: data.csv: it is a PNG image, not a text file"));
}

TEST_F(Sniff, StandardInputAndCompressedFilesAreTaken) {
  const auto expected = nlohmann::json::parse(Sniffed(kTowns, {"--json"}).out);
  auto json = nlohmann::json::parse(Run({"sniff", "--json", "-"}, kTowns).out);
  EXPECT_EQ(json["file"], "-");
  json["file"] = "data.csv";
  EXPECT_EQ(json, expected);
  EXPECT_THAT(Run({"sniff", "-"}, kTowns).out, StartsWith("standard input  "));
  const std::string zip = library::testing_support::Compressed(kTowns, library::Compression::kZip);
  json = nlohmann::json::parse(Sniffed(zip, {"--json"}).out);
  EXPECT_EQ(json, expected);
  EXPECT_THAT(Sniffed(zip).out, StartsWith("data.csv (zip)  "));
}

TEST_F(Sniff, ADamagedFileEndsWithStatusOne) {
  std::string gzip =
      library::testing_support::Compressed(std::string(100000, 'x'), library::Compression::kGzip);
  gzip.resize(gzip.size() - 9);
  const Ended ended = Sniffed(gzip);
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("data.csv: the gzip data is damaged: it ends too early"));
}

TEST_F(Sniff, WhatCannotBeOpenedEndsWithStatusOne) {
  const Ended missing = Run({"sniff", "missing.csv"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.err, HasSubstr("missing.csv: No such file or directory"));
  const Ended folder = Run({"sniff", "."});
  EXPECT_EQ(folder.status, 1);
  EXPECT_THAT(folder.err, HasSubstr("it is a folder"));
  EXPECT_EQ(Run({"sniff"}).status, 2);
}

TEST_F(Sniff, AFileWithoutPermissionIsSaid) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read every file";
  folder_.Write("closed.csv", "a,b\n");
  std::filesystem::permissions(folder_.path() / "closed.csv", std::filesystem::perms::none);
  const Ended ended = Run({"sniff", "closed.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("Permission denied"));
}

}  // namespace
}  // namespace program
