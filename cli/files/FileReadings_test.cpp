#include "cli/files/FileReadings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(FileReadings, TextsSayWhatIsReadInAnotherWayAndAreReadBack) {
  FileReading comma;
  comma.host.decimal = library::DecimalCharacter::kComma;
  FileReading quoted;
  quoted.rewriting.joinQuotedLines = true;
  quoted.host.localeCodePage = "windows-1252";
  const FileReading usual;
  const std::vector<FileReading> readings = {comma, usual, quoted, quoted, quoted, comma, usual};
  const std::vector<std::string> texts = ReadingTexts(readings, usual);
  EXPECT_THAT(texts, ElementsAre("1,6:decimal=comma",
                                 "3-5:locale-code-page=windows-1252,join-quoted-lines"));
  std::vector<FileReading> read(readings.size());
  std::string error;
  for (const std::string& text : texts) EXPECT_TRUE(ApplyReading(text, &read, &error)) << error;
  EXPECT_TRUE(read == readings);
  EXPECT_THAT(ReadingTexts({usual, usual}, usual), IsEmpty());
  EXPECT_THAT(ReadingTexts({comma, usual}, comma), ElementsAre("2:none"));
}

TEST(FileReadings, FilesThatAreConvertedFirstSayHow) {
  FileReading converted;
  converted.transcoding = "UTF-32LE";
  converted.paddedAt = {12, 17};
  const std::vector<FileReading> readings = {converted, {}};
  const std::vector<std::string> texts = ReadingTexts(readings, {});
  EXPECT_THAT(texts, ElementsAre("1:transcode=UTF-32LE,pad-columns=13/18"));
  std::vector<FileReading> read(2);
  std::string error;
  EXPECT_TRUE(ApplyReading(texts[0], &read, &error)) << error;
  EXPECT_TRUE(read == readings);
}

TEST(FileReadings, OtherTextsAreRefused) {
  for (const char* text : {"", "1", "x:none", "0:none", "2-1:none", "1,:none", "1:what",
                           "1:locale-code-page=", "-3:none", "1:", "1:transcode=none such",
                           "1:pad-columns=", "1:pad-columns=5/5"}) {
    std::vector<FileReading> readings(3);
    std::string error;
    EXPECT_FALSE(ApplyReading(text, &readings, &error)) << text;
    EXPECT_NE(error, "") << text;
  }
  std::vector<FileReading> readings(3);
  std::string error;
  EXPECT_FALSE(ApplyReading("2-4:none", &readings, &error));
  EXPECT_THAT(error, HasSubstr("no command of the 3"));
}

}  // namespace
}  // namespace cli
