#include "tests/differential/NaiveImport.h"

#include "HostFramework/ValueInput.h"

namespace naive {

std::size_t HostText::Decode(const std::string& text, std::size_t at, char32_t* ch) const {
  const auto byte = [&](std::size_t i) -> unsigned {
    return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
  };
  const auto tail = [&](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  const unsigned first = byte(0);
  if (first < 0x80) {
    *ch = first;
    return first == 0 ? 0 : 1;
  }
  if (first >= 0xC2 && first <= 0xDF && tail(1)) {
    *ch = (first & 0x1FU) << 6 | (byte(1) & 0x3FU);
    return 2;
  }
  if ((first & 0xF0U) == 0xE0U && tail(1) && tail(2)) {
    const char32_t c = (first & 0x0FU) << 12 | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
    if (c < 0x800 || (c >= 0xD800 && c <= 0xDFFF)) return 0;
    *ch = c;
    return 3;
  }
  if (first >= 0xF0 && first <= 0xF4 && tail(1) && tail(2) && tail(3)) {
    const char32_t c = (first & 0x07U) << 18 | (byte(1) & 0x3FU) << 12 | (byte(2) & 0x3FU) << 6 |
                       (byte(3) & 0x3FU);
    if (c < 0x10000 || c > 0x10FFFF) return 0;
    *ch = c;
    return 4;
  }
  return 0;
}

void HostText::Append(std::string& out, char32_t c) const {
  if (c == kInvalid) c = 0xFFFD;
  const auto put = [&](char32_t value) { out += static_cast<char>(value); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

std::size_t HostText::UnfinishedTail(const std::string& text) const {
  for (std::size_t length = 3; length > 0; --length) {
    if (length > text.size()) continue;
    const std::string tail = text.substr(text.size() - length);
    char32_t ch = 0;
    if (static_cast<unsigned char>(tail[0]) < 0xC2 || Decode(tail, 0, &ch) != 0) continue;
    for (const char* rest : {"\x80", "\xBF", "\x80\x80", "\xBF\x80", "\x80\x80\x80"}) {
      const std::string whole = tail + rest;
      if (Decode(whole, 0, &ch) == whole.size()) return length;
    }
    // A second byte that the first allows decides what may follow.
    if (length == 1) {
      for (const char* rest : {"\xA0\x80", "\x90\x80\x80"}) {
        const std::string whole = tail + rest;
        if (Decode(whole, 0, &ch) == whole.size()) return length;
      }
    }
  }
  return 0;
}

namespace {

std::string LeadingBlanksRemoved(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : text.substr(first);
}

class Reader {
 public:
  Reader(const std::string& bytes, const Settings& settings, const std::vector<Variable>& variables,
         const HostText& host)
      : bytes_(bytes), settings_(settings), variables_(variables), host_(host) {}

  Import Run() {
    StepOverMark();
    std::int64_t count = settings_.lines == Lines::kCounted ? 0 : 1;
    for (; count != settings_.firstCase; ++count) {
      if (!NextRecord(true)) break;
    }
    Case values;
    while (import_.cases.size() != settings_.caseLimit.value_or(SIZE_MAX)) {
      values.clear();
      const bool read = settings_.lines == Lines::kOneCase   ? ReadLineCase(values)
                        : settings_.lines == Lines::kCounted ? ReadCountedCase(values)
                                                             : ReadFixedCase(values);
      if (!read) break;
      import_.cases.push_back(values);
    }
    return std::move(import_);
  }

 private:
  void StepOverMark() {
    if (bytes_.starts_with("\xEF\xBB\xBF")) {
      at_ = 3;
    } else if (bytes_.starts_with("\xFE\xFF")) {
      at_ = 2;
      bigEndian_ = true;
    } else if (bytes_.starts_with("\xFF\xFE")) {
      at_ = 2;
      littleEndian_ = true;
    }
  }

  bool NextRecord(bool keepEmpty) {
    while (true) {
      bool atEnd = false;
      const bool wide = bigEndian_ || littleEndian_;
      const std::string read = wide ? Units(&atEnd) : Bytes(&atEnd);
      if (!read.empty() || (keepEmpty && !atEnd)) {
        record_ = wide || read.empty() ? read : host_.FromRecord(read);
        return true;
      }
      if (atEnd) {
        record_.clear();
        return false;
      }
    }
  }

  std::string Bytes(bool* atEnd) {
    std::string record;
    while (true) {
      if (at_ == bytes_.size()) {
        *atEnd = true;
        return record;
      }
      const char c = bytes_[at_++];
      if (c == '\n') return record;
      if (c == '\r') {
        if (at_ < bytes_.size() && bytes_[at_] == '\n') ++at_;
        return record;
      }
      if (c != '\0') record += c;
    }
  }

  // The next two bytes as first + 256 * second, each 255 where the file has ended.
  unsigned Unit(std::size_t* read) {
    *read = 0;
    const auto next = [&]() -> unsigned {
      if (at_ == bytes_.size()) return 0xFF;
      ++*read;
      return static_cast<unsigned char>(bytes_[at_++]);
    };
    const unsigned first = next();
    return first + 256 * next();
  }

  std::string Units(bool* atEnd) {
    std::vector<unsigned> units;
    std::size_t read = 0;
    while (true) {
      const unsigned unit = Unit(&read);
      if (unit == 0xFFFF) {
        *atEnd = true;
        break;
      }
      if (unit == 0x000D || unit == 0x0D00) {
        const unsigned follower = Unit(&read);
        if (follower != (littleEndian_ ? 0x000AU : 0x0A00U)) at_ -= read;
        break;
      }
      if (unit == 0x000A || unit == 0x0A00) break;
      units.push_back(unit);
    }
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
      const auto value = [&](std::size_t k) -> char32_t {
        const unsigned u = units[k];
        return littleEndian_ ? u : (u & 0xFFU) << 8 | u >> 8;
      };
      char32_t c = value(i);
      if (c == 0) break;
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units.size() && value(i + 1) >= 0xDC00 &&
          value(i + 1) <= 0xDFFF) {
        c = 0x10000 + ((c - 0xD800) << 10) + (value(++i) - 0xDC00);
      } else if (c >= 0xD800 && c <= 0xDFFF) {
        c = HostText::kInvalid;
      }
      host_.Append(text, c);
    }
    return text;
  }

  bool IsDelimiter(char32_t c) const {
    return settings_.delimiters.find(c) != std::u32string::npos;
  }
  bool IsQualifier(char32_t c) const { return c != 0 && c == settings_.qualifier; }

  // The next field of the record at `cursor`; false when the record was used up before.
  bool NextField(std::string& field, std::size_t& cursor) {
    field.clear();
    if (cursor >= record_.size()) return false;
    const bool blankCuts = IsDelimiter(U' ');
    int state = 0;
    bool ended = false;
    // Bytes of each character of the field.
    std::vector<std::size_t> lengths;
    while (!ended && cursor < record_.size()) {
      char32_t c = 0;
      std::size_t length = host_.Decode(record_, cursor, &c);
      if (length == 0) {
        import_.undecodable.emplace_back(static_cast<std::int64_t>(import_.cases.size()) + 1,
                                         cursor);
        length = 1;
        c = static_cast<unsigned char>(record_[cursor]);
      }
      const std::string bytes = record_.substr(cursor, length);
      cursor += length;
      const std::size_t before = field.size();
      switch (state) {
        case 0:
          if (c == U' ' && blankCuts && (settings_.multipleSpaces || settings_.leadingSpaces)) {
            field += ' ';
          } else if (IsDelimiter(c)) {
            ended = true;
          } else if (IsQualifier(c)) {
            state = 2;
          } else {
            field += bytes;
            state = 1;
          }
          break;
        case 1:
          if (c == U' ' && blankCuts) {
            const char next = cursor < record_.size() ? record_[cursor] : '\0';
            const bool otherDelimiter =
                next != ' ' && next != '\0' && IsDelimiter(static_cast<unsigned char>(next));
            ended = !(otherDelimiter && settings_.multipleSpaces);
          } else if (IsDelimiter(c)) {
            ended = true;
          } else if (IsQualifier(c)) {
            if (!field.empty() && field.front() == ' ') {
              field.resize(field.size() - lengths.back());
              lengths.pop_back();
            }
            state = 2;
          } else {
            field += bytes;
          }
          break;
        case 2:
          if (IsQualifier(c)) {
            state = 3;
          } else {
            field += bytes;
          }
          break;
        default:
          if (IsQualifier(c)) {
            field += bytes;
            state = 2;
          } else if (IsDelimiter(c)) {
            ended = true;
          } else {
            state = 1;
          }
      }
      if (field.size() > before) lengths.push_back(field.size() - before);
    }
    if (settings_.leadingSpaces) field = LeadingBlanksRemoved(field);
    if (settings_.multipleSpaces && blankCuts) {
      for (std::size_t at; (at = field.find("  ")) != std::string::npos;) field.erase(at, 1);
    }
    return true;
  }

  static std::string Dated(const Variable& variable, const std::string& f) {
    const int format = variable.format;
    const auto s = [&](std::size_t at, std::size_t n) { return f.substr(at, n); };
    if (format == 20 || format == 23 || format == 38 || format == 39) {
      if (f.find_first_of("/.,-\\") != std::string::npos) return f;
      if (f.size() == 6) return s(0, 2) + "/" + s(2, 2) + "/" + s(4, 2);
      if (f.size() == 8 && format == 39) return s(0, 4) + "/" + s(4, 2) + "/" + s(6, 2);
      if (f.size() == 8) return s(0, 2) + "/" + s(2, 2) + "/" + s(4, 4);
      if (f.size() == 7 && format == 20) return s(0, 2) + "-" + s(2, 3) + "-" + s(5, 2);
      if (f.size() == 9 && format == 20) return s(0, 2) + "-" + s(2, 3) + "-" + s(5, 4);
      return "";
    }
    if (format == 21) {
      if (f.find_first_of(":.") != std::string::npos) return f;
      if (f.size() == 4) return s(0, 2) + ":" + s(2, 2);
      if (f.size() == 6) return s(0, 2) + ":" + s(2, 2) + ":" + s(4, 2);
      if (f.size() == 8) return s(0, 2) + ":" + s(2, 2) + ":" + s(4, 2) + "." + s(6, 2);
      return "";
    }
    return f;
  }

  static std::size_t FieldWidth(const Variable& variable) {
    return variable.fieldWidth != 0 ? variable.fieldWidth : variable.width;
  }

  Cell Converted(const Variable& variable, std::string field) const {
    Cell cell;
    if (variable.format == 1) {
      cell.isString = true;
      if (field.size() > FieldWidth(variable) && settings_.leadingSpaces) {
        field = LeadingBlanksRemoved(field);
      }
      // What fits, in whole characters; an unfinished one at the end is none.
      if (field.size() > variable.width) field.resize(field.size() - host_.UnfinishedTail(field));
      std::size_t kept = 0;
      while (kept < field.size()) {
        char32_t c = 0;
        std::size_t length = host_.Decode(field, kept, &c);
        if (length == 0) length = 1;
        if (kept + length > variable.width) break;
        kept += length;
      }
      cell.text = field.substr(0, kept);
      while (!cell.text.empty() && cell.text.back() == ' ') cell.text.pop_back();
      return cell;
    }
    const std::string text = Dated(variable, field);
    double value = 0.0;
    if (IocvConvertInput(text.data(), text.size(), variable.format, 0, &value) == 0) {
      cell.number = value;
    }
    return cell;
  }

  void Missing(const Variable& variable, Case& values) const {
    if (variable.format == 0) return;
    if (variable.format == 1) {
      values.push_back(Converted(variable, ""));
    } else {
      values.emplace_back();
    }
  }

  bool ReadLineCase(Case& values) {
    if (!NextRecord(false)) return false;
    std::size_t cursor = 0;
    std::string field;
    for (const Variable& variable : variables_) {
      NextField(field, cursor);
      if (variable.format != 0) values.push_back(Converted(variable, field));
    }
    return true;
  }

  bool ReadCountedCase(Case& values) {
    std::string field;
    bool linesLeft = true;
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      const Variable& variable = variables_[i];
      bool found = NextField(field, countedCursor_);
      while (!found && linesLeft) {
        linesLeft = NextRecord(false);
        countedCursor_ = 0;
        if (linesLeft) found = NextField(field, countedCursor_);
      }
      if (!found && i == 0) return false;
      if (!found) {
        Missing(variable, values);
      } else if (variable.format != 0) {
        values.push_back(Converted(variable, field));
      }
    }
    return true;
  }

  bool ReadFixedCase(Case& values) {
    std::vector<Case> byVariable(variables_.size());
    // Of this case; the next one tries again, as a unit FFFF only looks like the end.
    bool atEnd = false;
    for (std::size_t line = 1; line <= settings_.recordsPerCase; ++line) {
      const bool read = atEnd ? false : NextRecord(true);
      if (!read && line == 1) return false;
      if (!read) atEnd = true;
      for (std::size_t i = 0; i < variables_.size(); ++i) {
        const Variable& variable = variables_[i];
        if (variable.record != line || variable.format == 0) continue;
        if (read && variable.start <= record_.size()) {
          byVariable[i].push_back(
              Converted(variable, record_.substr(variable.start, FieldWidth(variable))));
        } else {
          Missing(variable, byVariable[i]);
        }
      }
    }
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      if (variables_[i].format == 0) continue;
      if (byVariable[i].empty()) Missing(variables_[i], byVariable[i]);
      values.push_back(byVariable[i].front());
    }
    return true;
  }

  const std::string& bytes_;
  const Settings& settings_;
  const std::vector<Variable>& variables_;
  const HostText& host_;
  std::size_t at_ = 0;
  bool bigEndian_ = false;
  bool littleEndian_ = false;
  std::string record_;
  std::size_t countedCursor_ = 0;
  Import import_;
};

}  // namespace

Import Read(const std::string& bytes, const Settings& settings,
            const std::vector<Variable>& variables, const HostText& host) {
  return Reader(bytes, settings, variables, host).Run();
}

}  // namespace naive
