#include "cli/run/MessageSink.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "library/testing/TestFolder.h"

namespace cli {
namespace {

TEST(MessageSink, WritesJsonLinesInTheOrderPosted) {
  const library::TestFolder folder;
  Console console({});
  MessageSink sink(console);
  std::string error;
  const auto file = library::OutputFile::Open(folder / "messages", &error);
  ASSERT_NE(file, nullptr) << error;
  sink.WriteTo(file.get());
  sink.Post("[2273] cut: \"x\"", kMessageWarning);
  sink.Post("1000", kMessageProgress);
  sink.Post("\n", kMessageLog);
  sink.Post("[2269] no file", kMessageError);
  sink.PostError("own");
  sink.WriteTo(nullptr);
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(folder.Text("messages"),
            "{\"kind\":\"warning\",\"text\":\"[2273] cut: \\\"x\\\"\"}\n"
            "{\"kind\":\"log\",\"text\":\"\\n\"}\n"
            "{\"kind\":\"error\",\"text\":\"[2269] no file\"}\n"
            "{\"kind\":\"error\",\"text\":\"own\"}\n");
}

TEST(MessageSink, GoesToTheConsoleWithoutAFile) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  {
    Console console({});
    MessageSink sink(console);
    sink.Post("careful", kMessageWarning);
    sink.Post("\n", kMessageLog);
    sink.Post("a line", kMessageLog);
    sink.Post("broken", kMessageError);
    console.Flush();
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "warning: careful\nerror: broken\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\na line\n");
}

TEST(MessageSink, KeepsStandardOutputFreeForData) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  {
    Console::Settings settings;
    settings.outputIsData = true;
    Console console(settings);
    MessageSink sink(console);
    sink.Post("a line", kMessageLog);
    console.PrintResult("{}");
    console.Flush();
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "a line\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "{}\n");
}

TEST(MessageSink, TextOfACodePageBecomesUtf8) {
  ASSERT_TRUE(embedded::SetCodePage("ISO-8859-1"));
  testing::internal::CaptureStderr();
  {
    Console console({});
    MessageSink sink(console);
    sink.Post("name \xE9", kMessageWarning);
  }
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "warning: name \xC3\xA9\n");
}

TEST(MessageSink, ABadNameLeavesTheFileUtf8) {
  testing::internal::CaptureStderr();
  {
    Console console({});
    MessageSink sink(console);
    sink.PostError("caf\xE9.sps");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: caf\xEF\xBF\xBD.sps\n");
}

TEST(MessageSink, ShowsCountsAsProgressUntilTheyEnd) {
  testing::internal::CaptureStderr();
  {
    Console::Settings settings;
    settings.progress = true;
    Console console(settings);
    MessageSink sink(console);
    sink.Post("2000", kMessageProgress);
    sink.Post("4294967295", kMessageProgress);
    sink.Post("after", kMessageError);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "2000 records, finding the types of the variables\r\033[Kerror: after\n");
}

TEST(Console, MessagesEraseTheProgressLine) {
  testing::internal::CaptureStderr();
  {
    Console::Settings settings;
    settings.progress = true;
    Console console(settings);
    console.ShowProgress("10 cases");
    console.Warning("careful");
    console.ShowProgress("20 cases");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "10 cases\r\033[Kwarning: careful\n20 cases\r\033[K");
}

}  // namespace
}  // namespace cli
