#include "library/outputs/DictionaryJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/outputs/OutputFile.h"
#include "library/testing/TestFolder.h"
#include "library/testing/TestSource.h"

namespace library {
namespace {

TEST(DictionaryJson, HasEveryKeyInItsOrder) {
  const embedded::InCodePage host(nullptr);
  TestSource source;
  source.Number("id", 5, 8, 2).String("t\xC3\xA9", 20);
  source.SetFileSpec("/proc/self/fd/3");
  source.GetVariable(0)->SetWriteFormat(5, 9, 3);
  source.GetVariable(1)->SetDisplayWidth(12);
  const TestFolder folder;
  std::string error;
  const auto file = OutputFile::Open(folder / "d.json", &error);
  ASSERT_NE(file, nullptr) << error;
  WriteDictionary(source, "data/a \"b\".csv", 3, *file);
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(
      folder.Text("d.json"),
      "{\"file\":\"data/a \\\"b\\\".csv\",\"cases\":3,\"variables\":["
      "{\"name\":\"id\",\"type\":\"numeric\",\"format\":\"F8.2\",\"format_code\":5,\"width\":8,"
      "\"decimals\":2,\"write_format\":\"F9.3\",\"bytes\":0,\"display_width\":8},"
      "{\"name\":\"t\xC3\xA9\",\"type\":\"string\",\"format\":\"A20\",\"format_code\":1,"
      "\"width\":20,\"decimals\":0,\"write_format\":\"A20\",\"bytes\":20,"
      "\"display_width\":12}]}\n");
}

TEST(DictionaryJson, HoldsWhatTheImportFoundOut) {
  TestSource source;
  source.Number("id", 5, 8, 2).String("t", 20);
  const TestFolder folder;
  std::string error;
  const auto file = OutputFile::Open(folder / "d.json", &error);
  ASSERT_NE(file, nullptr) << error;
  const DictionaryReport report{R"({"bytes":3})", [](std::size_t variable) {
                                  return variable == 0 ? R"({"numbers":1})" : "";
                                }};
  WriteDictionary(source, "a.csv", 3, *file, &report);
  ASSERT_TRUE(file->Finish() && file->Publish());
  const auto json = nlohmann::json::parse(folder.Text("d.json"));
  EXPECT_EQ(json["ledger"]["bytes"], 3);
  EXPECT_EQ(json["variables"][0]["evidence"]["numbers"], 1);
  EXPECT_EQ(json["variables"][0]["display_width"], 8);
  EXPECT_FALSE(json["variables"][1].contains("evidence"));
}

}  // namespace
}  // namespace library
