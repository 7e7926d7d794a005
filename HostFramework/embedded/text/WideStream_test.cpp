// UTF-16 files as wide-character streams: what the C library gives for "rb,ccs=".
#include <cwchar>

#include "HostFramework/Names.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

class WideStream : public testing::TestWithParam<const char*> {
 protected:
  ~WideStream() override { std::remove(path_.c_str()); }

  bool BigEndian() const { return std::string_view(GetParam()).ends_with("BE"); }

  // The units in the byte order of the encoding under test.
  void Write(std::u16string_view units) {
    FILE* file = std::fopen(path_.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    for (const char16_t unit : units) {
      const int bytes[2] = {unit & 0xFF, unit >> 8};
      std::fputc(bytes[BigEndian() ? 1 : 0], file);
      std::fputc(bytes[BigEndian() ? 0 : 1], file);
    }
    std::fclose(file);
  }
  void Open() {
    ExtNameStr name;
    name.SetGeneric(path_.c_str());
    stream_.reset(name.fopen((std::string("rb,ccs=") + GetParam()).c_str()));
    ASSERT_NE(stream_, nullptr);
  }
  std::u32string ReadAll() {
    std::u32string read;
    for (wint_t ch; (ch = std::fgetwc(stream_.get())) != WEOF;) {
      read += static_cast<char32_t>(ch);
    }
    return read;
  }

  struct Close {
    void operator()(FILE* file) const { std::fclose(file); }
  };
  std::string path_ = TestFile("wide-stream");
  std::unique_ptr<FILE, Close> stream_;
};

// Code points whichever byte order the file has: a line feed is 0x000A in both, and a surrogate
// pair is one character.
TEST_P(WideStream, GivesCodePointsInTheOrderOfTheName) {
  Write(u"\uFEFFA\r\n\u00E9\u65E5\U0001F600B");
  Open();
  EXPECT_EQ(ReadAll(), U"\uFEFFA\r\n\u00E9\u65E5\U0001F600B");
  EXPECT_NE(std::feof(stream_.get()), 0);
}

TEST_P(WideStream, SeeksInBytes) {
  Write(u"\uFEFFAB");
  Open();
  ASSERT_EQ(std::fseek(stream_.get(), 2, SEEK_SET), 0);
  EXPECT_EQ(ReadAll(), U"AB");
  std::clearerr(stream_.get());
  ASSERT_EQ(std::fseek(stream_.get(), 4, SEEK_SET), 0);
  EXPECT_EQ(ReadAll(), U"B");
}

TEST_P(WideStream, SeeksBackAfterManyBlocks) {
  std::u16string units(1, u'\uFEFF');
  std::u32string expected;
  for (int i = 0; i < 20000; ++i) {
    units += u"x\U0001F600\u65E5\n";
    expected += U"x\U0001F600\u65E5\n";
  }
  Write(units);
  Open();
  ASSERT_EQ(std::fseek(stream_.get(), 2, SEEK_SET), 0);
  EXPECT_EQ(ReadAll(), expected);
  ASSERT_EQ(std::fseek(stream_.get(), 2, SEEK_SET), 0);
  EXPECT_EQ(ReadAll(), expected);
}

TEST_P(WideStream, ACharacterCanBePushedBack) {
  Write(u"AB");
  Open();
  EXPECT_EQ(std::fgetwc(stream_.get()), static_cast<wint_t>('A'));
  EXPECT_EQ(std::ungetwc(L'A', stream_.get()), static_cast<wint_t>('A'));
  EXPECT_EQ(ReadAll(), U"AB");
}

// A surrogate without its partner is an error of the stream, at which reading stays.
TEST_P(WideStream, ALoneSurrogateIsAnErrorAndNotTheEnd) {
  Write(std::u16string{u'A', char16_t{0xD83D}, u'B'});
  Open();
  EXPECT_EQ(ReadAll(), U"A");
  EXPECT_NE(std::ferror(stream_.get()), 0);
  EXPECT_EQ(std::feof(stream_.get()), 0);
}

std::string TestName(const testing::TestParamInfo<const char*>& tested) {
  std::string name = tested.param;
  const bool hyphen = std::erase(name, '-') > 0;
  return hyphen ? name + "Hyphen" : name;
}

INSTANTIATE_TEST_SUITE_P(Names, WideStream,
                         testing::Values("UTF16LE", "UTF-16LE", "UTF16BE", "UTF-16BE"), TestName);

}  // namespace
}  // namespace embedded
