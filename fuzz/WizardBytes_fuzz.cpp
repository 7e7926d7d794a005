// The import wizard's requests as bytes. The first byte chooses the host's code page, the second
// the encoding of the file, the third how many calls follow; what is behind the calls is the file.
// Whatever arrives, two objects answer alike: with a result, or with a response that reads back and
// is written the same. A request that is understood is, too. A new object hands out the records
// that a plain reading of the file gives, twice.

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/packages/PackageRegistry.h"
#include "HostFramework/embedded/text/HostText.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "tests/differential/NaiveCodePage.h"

namespace {

using embedded::PackageConnection;

constexpr unsigned short kOpen = 1002;
constexpr unsigned short kRewind = 1003;
constexpr unsigned short kRecord = 1004;
constexpr unsigned short kClose = 1005;
constexpr std::array<const char*, 11> kEncodings = {"UTF-8",   "UTF8",     "UTF16",   "UTF-16",
                                                    "UTF16BE", "UTF-16BE", "UTF16LE", "UTF-16LE",
                                                    "Locale",  "",         "latin"};
constexpr const char* kHostPages[] = {nullptr, nullptr, "ISO-8859-1", "Shift_JIS"};
constexpr const char* kLocalePages[] = {"windows-1252", "Shift_JIS", "GB18030", "EUC-JP"};

const naive::CodePageText& TextOf(const char* host, const char* locale) {
  static std::map<std::pair<const char*, const char*>, std::unique_ptr<naive::CodePageText>> made;
  std::unique_ptr<naive::CodePageText>& text = made[{host, locale}];
  if (!text) text = std::make_unique<naive::CodePageText>(host, naive::Records::kLocale, locale);
  return *text;
}

// The input, taken from its start.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}
  unsigned Byte() {
    const std::string_view byte = Bytes(1);
    return byte.empty() ? 0 : static_cast<unsigned char>(byte[0]);
  }
  std::string_view Bytes(std::size_t most) {
    const std::string_view bytes = rest_.substr(0, most);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }
  std::string Rest() const { return std::string(rest_); }

 private:
  std::string_view rest_;
};

std::string Written(const VSerializable& message) {
  VStream stream;
  message.Write(stream);
  return stream.bytes();
}

// One call on one object. The answer of a result that is not 0 is empty.
std::pair<int, std::string> Serve(PackageConnection& wizard, unsigned short method,
                                  const std::string& request) {
  FileOpenResponse file;
  TextWizardDacStringResponse text;
  VSerializable& response = method == kRecord ? static_cast<VSerializable&>(text) : file;
  std::string answer;
  const int result = wizard.Serve(method, request, response.GetSignature(), &answer);
  if (result == 0) {
    VStream stream(answer);
    fuzz::Require(response.Read(stream) && stream.AtEnd(), "an answer that cannot be read");
    fuzz::Require(Written(response) == answer, "an answer that is written otherwise");
  } else {
    fuzz::Require(result == 1 && answer.empty(), "an answer to what was refused");
  }
  return {result, answer};
}

// A request that is understood is one that can be written, with any byte but 0 for true.
void CompareRequest(const std::string& request) {
  FileOpenRequest read;
  VStream stream(request);
  if (!read.Read(stream) || !stream.AtEnd()) return;
  const std::string again = Written(read);
  fuzz::Require(again.size() == request.size() &&
                    again.compare(0, again.size() - 1, request, 0, request.size() - 1) == 0 &&
                    (again.back() != 0) == (request.back() != 0),
                "a request that is written otherwise");
}

enum class Mode { kBytes, kUtf8, kBigEndian, kLittleEndian };

// What a plain reading makes of a file that is opened in the encoding by a new object.
class PlainFile {
 public:
  PlainFile(const std::string& bytes, const std::string& encoding, const naive::CodePageText& text)
      : bytes_(bytes), text_(text) {
    const auto starts = [&](std::string_view mark) {
      return bytes.size() >= 3 && std::string_view(bytes).substr(0, mark.size()) == mark;
    };
    using std::string_view_literals::operator""sv;
    if (starts("\xFF\xFE\0\0"sv) || starts("\0\0\xFE\xFF"sv)) {
      opens_ = false;
    } else if (starts("\xEF\xBB\xBF")) {
      mode_ = Mode::kUtf8;
      at_ = 3;
    } else if (starts("\xFF\xFE")) {
      mode_ = Mode::kLittleEndian;
      at_ = 2;
    } else if (starts("\xFE\xFF")) {
      mode_ = Mode::kBigEndian;
      at_ = 2;
    } else if (encoding == "UTF-8") {
      mode_ = Mode::kUtf8;
    } else if (encoding == "UTF-16LE" || encoding == "UTF-16BE") {
      mode_ = encoding == "UTF-16LE" ? Mode::kLittleEndian : Mode::kBigEndian;
    }
  }

  bool opens() const { return opens_; }

  // Nothing when this reader cannot tell: a unit 0 hides the length of its line.
  std::optional<std::vector<std::string>> Records() {
    std::vector<std::string> records;
    const bool wide = mode_ == Mode::kBigEndian || mode_ == Mode::kLittleEndian;
    while (at_ < bytes_.size()) {
      if (!wide) {
        records.push_back(Line());
      } else if (!WideLine(&records)) {
        return std::nullopt;
      }
    }
    return records;
  }

 private:
  std::string Line() {
    const std::size_t end = bytes_.find('\n', at_);
    std::string line = bytes_.substr(at_, end == std::string::npos ? end : end + 1 - at_);
    at_ += line.size();
    std::erase(line, '\0');
    if (line.size() > 1 && line.back() == '\n') line.pop_back();
    return mode_ == Mode::kUtf8 ? text_.FromUtf8(line) : text_.FromRecord(line);
  }

  unsigned Unit() {
    const auto next = [&] {
      return at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_++]) : 0xFFU;
    };
    const unsigned first = next();
    const unsigned second = next();
    return mode_ == Mode::kBigEndian ? first * 256 + second : first + second * 256;
  }

  bool WideLine(std::vector<std::string>* records) {
    std::u16string units;
    while (at_ < bytes_.size()) {
      const unsigned unit = Unit();
      if (unit == 0) return false;
      if (unit == '\n') break;
      if (unit == '\r') {
        const std::size_t behind = at_;
        if (at_ < bytes_.size() && Unit() != '\n') at_ = behind;
        break;
      }
      units += static_cast<char16_t>(unit);
    }
    std::string line;
    for (std::size_t i = 0; i < units.size(); ++i) {
      const char32_t unit = units[i];
      const char32_t next = i + 1 < units.size() ? units[i + 1] : U'\0';
      if (unit < 0xD800 || unit > 0xDFFF) {
        text_.Append(line, unit);
      } else if (unit <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
        text_.Append(line, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
        ++i;
      } else {
        text_.Append(line, naive::HostText::kInvalid);
      }
    }
    records->push_back(line);
    return true;
  }

  const std::string& bytes_;
  const naive::CodePageText& text_;
  bool opens_ = true;
  Mode mode_ = Mode::kBytes;
  std::size_t at_ = 0;
};

std::unique_ptr<PackageConnection> NewWizard() {
  auto wizard = PackageConnection::Open("TextWizardDACPkg");
  fuzz::Require(wizard != nullptr, "the package is not registered");
  return wizard;
}

void CompareRecords(const std::string& path, const std::string& bytes, const std::string& encoding,
                    const naive::CodePageText& text) {
  const auto wizard = NewWizard();
  const FileOpenRequest request(path, encoding, false);
  FileOpenResponse done;
  PlainFile plain(bytes, encoding, text);
  fuzz::Require(wizard->Call(kOpen, request, done) == 0, "opening is refused");
  const bool known = encoding != "" && encoding != "latin";
  fuzz::Require(done.HasError() == !(plain.opens() && known), "opened, or not");
  if (!plain.opens()) return;
  const auto expected = plain.Records();
  for (int pass = 0; pass < 2; ++pass) {
    std::vector<std::string> records;
    TextWizardDacStringResponse record;
    while (wizard->Call(kRecord, request, record) == 0 && record.GetError().GetCode() == 0) {
      records.push_back(record.GetText());
      fuzz::Require(record.GetNumber() == 0, "a short line is truncated");
      fuzz::Require(records.size() <= bytes.size(), "more records than bytes");
    }
    fuzz::Require(record.GetError().GetCode() == 1006, "no error at the end");
    if (expected && records != *expected) {
      std::string difference = "other records, pass " + std::to_string(pass) + ":";
      for (const std::string& got : records) difference += " [" + got + "]";
      difference += ", not";
      for (const std::string& wanted : *expected) difference += " [" + wanted + "]";
      fuzz::Require(false, difference);
    }
    fuzz::Require(wizard->Call(kRewind, request, done) == 0 && !done.HasError(), "no rewinding");
  }
  fuzz::Require(wizard->Call(kClose, request, done) == 0 && !done.HasError(), "no closing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned pages = input.Byte();
  const char* const host = kHostPages[pages % 4];
  const char* const locale = kLocalePages[pages / 4 % 4];
  fuzz::Require(embedded::SetCodePage(host) && embedded::SetLocaleCodePage(locale),
                "an unknown code page");
  const std::string encoding = kEncodings[input.Byte() % kEncodings.size()];

  struct Call {
    unsigned short method;
    unsigned choice;
    std::string raw;
  };
  std::vector<Call> calls(input.Byte() % 8);
  for (Call& call : calls) {
    const unsigned method = input.Byte();
    call.method = static_cast<unsigned short>(method < 250 ? 1001 + method % 6 : method);
    call.choice = input.Byte();
    if (call.choice >= 0xC0) call.raw = input.Bytes(input.Byte());
  }
  const std::string bytes = input.Rest();
  const fuzz::MemoryFile file(bytes);

  const auto one = NewWizard(), other = NewWizard();
  for (const Call& call : calls) {
    std::string request = call.raw;
    if (call.choice < 0xC0) {
      const bool validate = call.choice >= 0x80;
      request = Written(
          FileOpenRequest(file.path(), kEncodings[call.choice % kEncodings.size()], validate));
    }
    CompareRequest(request);
    fuzz::Require(Serve(*one, call.method, request) == Serve(*other, call.method, request),
                  "two answers");
  }
  CompareRecords(file.path(), bytes, encoding, TextOf(host, locale));
  return 0;
}
