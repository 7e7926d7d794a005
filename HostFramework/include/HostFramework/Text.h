// Multibyte text and code-page conversion of the host.
//
// "Host text" is the encoding that the host works in: UTF-8 when qUTF8mode() is true, else the
// host's active code page. "The locale's code page" is what ENCODING=LOCALE names; outside UTF-8
// mode it is the active code page. Unless a function says otherwise, char texts are NUL-terminated
// host text, nothing throws but std::bad_alloc where a conversion lacks memory, and every function
// may be called on any thread as long as two threads do not share a converter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

// True when the host's text is UTF-8. Fixed while a command runs or an iterator lives.
bool qUTF8mode();

// A code-page converter with its state. Not shared between threads.
class QANTMBConverter;

// Makes a converter for the named code page; null names the host's text encoding. Returns null for
// an unknown name. The caller releases it with QANTMBConverterDelete_A (null is accepted there).
QANTMBConverter* QANTMBConverterNew_A(const char* codePage);
void QANTMBConverterDelete_A(QANTMBConverter* converter);

// A converter that is released with its owner.
struct ReleaseConverter {
  void operator()(QANTMBConverter* converter) const { QANTMBConverterDelete_A(converter); }
};
using ConverterHandle = std::unique_ptr<QANTMBConverter, ReleaseConverter>;

// Decodes the character at `text`, looking at no more than `max` bytes and never past a NUL.
// Returns its length in bytes, or 0 or less when the bytes there are not a character. `flags` is 0.
int QANTMBU32Get_A(std::uint32_t* ch, const char* text, int flags, int max);
int QANTMBU32GetC_A(QANTMBConverter* converter, std::uint32_t* ch, const char* text, int flags,
                    int max);

// Length in bytes of the character at `text`: 1 for a byte that starts no character, 0 at the end.
int QANTMBmbclen_A(const char* text);
// The position after the character at `text`.
const char* QANTMBstrinc_A(const char* text);
// Compares without regard to letter case, character by character: negative, 0 or positive.
int QANTMBstricmp_A(const char* left, const char* right);
// Number of bytes of `text` before the first character that is in `set`.
std::size_t QANTMBstrcspn_A(const char* text, const char* set);
// Copies at most `bytes` bytes and never a part of a character; terminates `target`, which must
// have room for bytes + 1. Returns target.
char* QANTMBstrncpy_A(char* target, const char* text, std::size_t bytes);
// Converts letter case in place, character by character; a character whose other case has another
// byte length stays as it is. Returns text.
char* QANTMBstrupr_A(char* text);
char* QANTMBstrlwr_A(char* text);

// Copies host text into a fixed field of `width` bytes: as many whole characters of the first
// `length` bytes as fit, then blanks. No terminator is written.
void QANTMBCopyToFixed_A(char* field, int width, const char* text, int length);

// Whole-text conversions. The first argument's encoding is the code page of the name (the source of
// the first two, the target of the third); null means the locale's code page, with a converter of
// the calling thread's own. `out` is replaced (its capacity is kept), and
// undefined after a throw; `in` must not lie inside it.
// Bytes that are not valid in the source become U+FFFD in UTF-8 and "?" in a code page, as does a
// character that the code page lacks.
void QANTMBCodePageToU8(QANTMBConverter* converter, std::string& out, std::string_view in);
void QANTMBCodePageToGeneric(QANTMBConverter* converter, std::string& out, std::string_view in);
void QANTMBU8ToCodePage(QANTMBConverter* converter, std::string& out, std::string_view in);

// "Read until the terminator" as a source length.
inline constexpr std::size_t QANTMB_TERMINATED = static_cast<std::size_t>(-1);

// Buffer conversions: write at most `outSize` bytes to `out`, never a part of a character, no
// terminator; return the number of bytes written. `inBytes` is the source's length in bytes, or
// QANTMB_TERMINATED (two zero bytes end 16-bit text, one ends 8-bit text). 16: UTF-16
// little-endian, 16Rev: big-endian, 8: UTF-8, Generic: host text, CodePage: the locale's code page.
std::size_t QANTMB16to8(char* out, std::size_t outSize, const char* in, std::size_t inBytes);
std::size_t QANTMB16Revto8(char* out, std::size_t outSize, const char* in, std::size_t inBytes);
std::size_t QANTMB16toGeneric(char* out, std::size_t outSize, const char* in, std::size_t inBytes);
std::size_t QANTMB16RevtoGeneric(char* out, std::size_t outSize, const char* in,
                                 std::size_t inBytes);
std::size_t QANTMB8toGeneric(char* out, std::size_t outSize, const char* in, std::size_t inBytes);
std::size_t QANTMBCodePagetoGeneric(char* out, std::size_t outSize, const char* in,
                                    std::size_t inBytes);
std::size_t QANTMBCodePageto8(char* out, std::size_t outSize, const char* in, std::size_t inBytes);

// Reads at most size-1 bytes, up to and including a line feed, and terminates them. Returns the
// buffer, or null at the end of the file.
char* ReadLine(char* buffer, int size, FILE* stream);
