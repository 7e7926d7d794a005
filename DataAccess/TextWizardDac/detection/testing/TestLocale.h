// A locale for the time of a test.
#pragma once

#include <clocale>
#include <stdexcept>
#include <string>

namespace textwizard {

// Sets one category of the process's locale and puts the former one back. Throws when the locale is
// not installed (tools/install-packages generates those that the tests name).
class TestLocale {
 public:
  TestLocale(int category, const char* name)
      : category_(category), former_(std::setlocale(category, nullptr)) {
    if (!std::setlocale(category, name)) {
      throw std::runtime_error(std::string("no locale ") + name);
    }
  }
  ~TestLocale() { std::setlocale(category_, former_.c_str()); }
  TestLocale(const TestLocale&) = delete;
  TestLocale& operator=(const TestLocale&) = delete;

 private:
  int category_;
  std::string former_;
};

}  // namespace textwizard
