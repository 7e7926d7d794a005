#include "library/import/ImportMessages.h"

#include <string>
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
