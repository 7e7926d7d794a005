#include "cli/MessageSink.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "cli/testing/TestFolder.h"

namespace cli {
namespace {

TEST(MessageSink, WritesJsonLinesInTheOrderPosted) {
  const TestFolder folder;
  Console console({});
  MessageSink sink(console);
  std::string error;
  const auto file = OutputFile::Open(folder / "messages", &error);
  ASSERT_NE(file, nullptr) << error;
  sink.WriteTo(file.get());
  const ErrorCallback callback = MessageSink::Callback();
  callback("[2273] cut: \"x\"", kMessageWarning);
  callback("1000", kMessageProgress);
  callback("\n", kMessageLog);
  callback("[2269] no file", kMessageError);
  sink.PostError("own");
  sink.WriteTo(nullptr);
  ASSERT_TRUE(file->Finish() && file->Publish());
  EXPECT_EQ(folder.Text("messages"),
            "{\"kind\":\"warning\",\"text\":\"[2273] cut: \\\"x\\\"\"}\n"
            "{\"kind\":\"log\",\"text\":\"\\n\"}\n"
            "{\"kind\":\"error\",\"text\":\"[2269] no file\"}\n"
            "{\"kind\":\"error\",\"text\":\"own\"}\n");
  EXPECT_EQ(sink.errors(), 2);
}

TEST(MessageSink, GoesToTheConsoleWithoutAFile) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  {
    Console console({});
    MessageSink sink(console);
    const ErrorCallback callback = MessageSink::Callback();
    callback("careful", kMessageWarning);
    callback("\n", kMessageLog);
    callback("a line", kMessageLog);
    callback("broken", kMessageError);
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
    MessageSink::Callback()("a line", kMessageLog);
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
    MessageSink::Callback()("name \xE9", kMessageWarning);
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
    MessageSink::Callback()("2000", kMessageProgress);
    MessageSink::Callback()("4294967295", kMessageProgress);
    MessageSink::Callback()("after", kMessageError);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "2000 records, finding the types of the variables\r\033[Kerror: after\n");
}

TEST(MessageSink, NobodyListensOutsideARun) { MessageSink::Callback()("lost", kMessageError); }

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
