// Value input takes no memory: the process's allocations are counted while it reads. The sanitizers
// bring allocators of their own, which cannot be counted so.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace {

std::atomic<int> allocations{0};

}  // namespace

// The C library's allocator under its second name. Every other one ends here.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);

extern "C" void* malloc(std::size_t size) {
  ++allocations;
  return __libc_malloc(size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}
extern "C" void* realloc(void* block, std::size_t size) {
  ++allocations;
  return __libc_realloc(block, size);
}

namespace embedded {
namespace {

struct Example {
  int format;
  const char* text;
};

constexpr Example kExamples[] = {
    {kFormatF, "1234.5"},
    {kFormatF, "-1,234,567.25"},
    {kFormatF, "0.12345678901234567890123456789e-5"},
    {kFormatF, "1e400"},
    {kFormatDollar, "$1,234.50"},
    {kFormatPct, "12 %"},
    {kFormatDate, "31-JAN-2020"},
    {kFormatDate, "1 AOÛT 2020"},
    {kFormatDate, "31-JAN-\u0662\u0660\u0662\u0660"},
    {kFormatADate, "01/31/2020"},
    {kFormatMonth, "février"},
    {kFormatWkday, "dimanche"},
    {kFormatTime, "10:30:15.1234567890123456789"},
    {kFormatYmdhms, "2020-01-31T10:30:15.25"},
    {kFormatDateTime, "nonsense"},
};

int AllocationsOfAll() {
  const int before = allocations;
  for (const Example& example : kExamples) {
    double value = 0;
    IocvConvertInput(example.text, std::char_traits<char>::length(example.text), example.format, 0,
                     &value);
  }
  return allocations - before;
}

TEST(NoAllocation, TheCounterCounts) {
  const int before = allocations;
  std::free(std::malloc(1));
  const std::string* text = new std::string(100, 'x');
  EXPECT_EQ(text->size(), 100u);
  delete text;
  EXPECT_GE(allocations - before, 2);
}

TEST(NoAllocation, ReadingTakesNoMemory) {
  for (const char* page : {"UTF-8", "windows-1252", "Shift_JIS"}) {
    const HostEncoding encoding(page);
    EXPECT_EQ(AllocationsOfAll(), 0) << page;
  }
}

TEST(NoAllocation, NotEvenForTheNamesOfALocaleOrOnAnotherThread) {
  const HostEncoding encoding("UTF-8");
  const ProcessLocale locale("fr_FR.UTF-8");
  EXPECT_EQ(AllocationsOfAll(), 0);
  int onThread = -1;
  std::thread([&onThread] { onThread = AllocationsOfAll(); }).join();
  EXPECT_EQ(onThread, 0);
}

}  // namespace
}  // namespace embedded

#endif
