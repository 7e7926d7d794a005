#include "library/import/ImportMessages.h"

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class KeptMessages : public ImportMessages {
 public:
  void Post(std::string_view hostText, int kind) override { kept.emplace_back(hostText, kind); }
  std::vector<std::pair<std::string, int>> kept;
};

TEST(MessageRoute, LeadsToTheMessagesOfTheRouteMadeLast) {
  KeptMessages outer;
  KeptMessages inner;
  const ErrorCallback post = MessageRoute::Callback();
  {
    const MessageRoute toOuter(outer);
    post("one", kMessageError);
    {
      const MessageRoute toInner(inner);
      post("two", kMessageWarning);
    }
    post("three", kMessageLog);
  }
  EXPECT_THAT(outer.kept, ElementsAre(Pair("one", kMessageError), Pair("three", kMessageLog)));
  EXPECT_THAT(inner.kept, ElementsAre(Pair("two", kMessageWarning)));
}

TEST(MessageRoute, LeadsTheMessagesOfItsThreadOnly) {
  KeptMessages mine;
  KeptMessages others;
  const MessageRoute route(mine);
  std::thread([&others] {
    MessageRoute::Callback()("nobody's", kMessageLog);
    const MessageRoute other(others);
    MessageRoute::Callback()("theirs", kMessageLog);
  }).join();
  EXPECT_THAT(mine.kept, IsEmpty());
  EXPECT_THAT(others.kept, ElementsAre(Pair("theirs", kMessageLog)));
}

TEST(MessageRoute, DropsWhatIsPostedWithoutOne) {
  KeptMessages messages;
  { const MessageRoute route(messages); }
  MessageRoute::Callback()("lost", kMessageError);
  const MessageRoute route(messages);
  MessageRoute::Callback()(nullptr, kMessageError);
  EXPECT_THAT(messages.kept, IsEmpty());
}

}  // namespace
}  // namespace library
