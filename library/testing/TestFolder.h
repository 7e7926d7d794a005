// A folder of its own for one test, and what stands in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace library {

class TestFolder {
 public:
  // `kind` keeps two folders of one test apart.
  explicit TestFolder(const std::string& kind = "folder") {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string("textwizard-") + test->test_suite_name() + "-" + test->name() +
                       "-" + std::to_string(getpid()) + "-" + kind;
    for (char& character : name) {
      if (character == '/') character = '-';
    }
    path_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(path_);
  }
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::filesystem::path path() const { return path_; }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

  // Writes a file and returns its path.
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream file(path_ / name, std::ios::binary);
    file << text;
    return *this / name;
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    EXPECT_TRUE(file.good()) << name;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }
  bool Holds(const std::string& name) const { return std::filesystem::exists(path_ / name); }
  // Files and folders in it.
  std::size_t Count() const {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path_)) ++count;
    return count;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace library
