// Whole texts and buffers from one encoding into another.
#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/Converter.h"
#include "HostFramework/embedded/text/Settings.h"
#include "HostFramework/embedded/text/Transcode.h"

namespace {

using embedded::BufferSink;
using embedded::Codec;
using embedded::CodePage;
using embedded::HostPage;
using embedded::LocalePage;

Codec CodecOf(const CodePage& page) { return {&page, nullptr}; }

// The encoding that a whole-text conversion's first argument names.
Codec CodecOf(QANTMBConverter* converter) {
  if (converter == nullptr) return CodecOf(LocalePage());
  return converter->page() != nullptr ? CodecOf(*converter->page())
                                      : Codec{nullptr, converter->icu().get()};
}

void ConvertText(const Codec& from, const Codec& to, std::string& out, std::string_view in) {
  out.clear();
  embedded::StringSink sink(out);
  embedded::Convert(from, to, in, sink);
}

std::string_view Terminated8(const char* in, std::size_t bytes) {
  return {in, bytes == QANTMB_TERMINATED ? std::strlen(in) : bytes};
}

std::string_view Terminated16(const char* in, std::size_t bytes) {
  if (bytes == QANTMB_TERMINATED) {
    for (bytes = 0; in[bytes] != '\0' || in[bytes + 1] != '\0';) bytes += 2;
  }
  return {in, bytes};
}

std::size_t ConvertBuffer8(const CodePage& from, const CodePage& to, char* out, std::size_t outSize,
                           const char* in, std::size_t inBytes) {
  BufferSink sink(out, outSize);
  embedded::Convert(CodecOf(from), CodecOf(to), Terminated8(in, inBytes), sink);
  return sink.Written();
}

std::size_t ConvertBuffer16(bool bigEndian, const CodePage& to, char* out, std::size_t outSize,
                            const char* in, std::size_t inBytes) {
  BufferSink sink(out, outSize);
  embedded::TranscodeTo(embedded::Utf16Source(Terminated16(in, inBytes), bigEndian), CodecOf(to),
                        sink);
  return sink.Written();
}

}  // namespace

void QANTMBCodePageToU8(QANTMBConverter* converter, std::string& out, std::string_view in) {
  ConvertText(CodecOf(converter), CodecOf(CodePage::Utf8()), out, in);
}

void QANTMBCodePageToGeneric(QANTMBConverter* converter, std::string& out, std::string_view in) {
  ConvertText(CodecOf(converter), CodecOf(HostPage()), out, in);
}

void QANTMBU8ToCodePage(QANTMBConverter* converter, std::string& out, std::string_view in) {
  ConvertText(CodecOf(CodePage::Utf8()), CodecOf(converter), out, in);
}

std::size_t QANTMB16to8(char* out, std::size_t outSize, const char* in, std::size_t inBytes) {
  return ConvertBuffer16(false, CodePage::Utf8(), out, outSize, in, inBytes);
}

std::size_t QANTMB16Revto8(char* out, std::size_t outSize, const char* in, std::size_t inBytes) {
  return ConvertBuffer16(true, CodePage::Utf8(), out, outSize, in, inBytes);
}

std::size_t QANTMB16toGeneric(char* out, std::size_t outSize, const char* in, std::size_t inBytes) {
  return ConvertBuffer16(false, HostPage(), out, outSize, in, inBytes);
}

std::size_t QANTMB16RevtoGeneric(char* out, std::size_t outSize, const char* in,
                                 std::size_t inBytes) {
  return ConvertBuffer16(true, HostPage(), out, outSize, in, inBytes);
}

std::size_t QANTMB8toGeneric(char* out, std::size_t outSize, const char* in, std::size_t inBytes) {
  return ConvertBuffer8(CodePage::Utf8(), HostPage(), out, outSize, in, inBytes);
}

std::size_t QANTMBCodePagetoGeneric(char* out, std::size_t outSize, const char* in,
                                    std::size_t inBytes) {
  return ConvertBuffer8(LocalePage(), HostPage(), out, outSize, in, inBytes);
}

std::size_t QANTMBCodePageto8(char* out, std::size_t outSize, const char* in, std::size_t inBytes) {
  return ConvertBuffer8(LocalePage(), CodePage::Utf8(), out, outSize, in, inBytes);
}
