// The floor that whole imports are measured against: one thread a processor over a file in memory,
// which only cut bytes at commas and line feeds, parse what is a number with fast_float and copy
// the rest. Prints the best of five passes in seconds; reading the file is not counted.
//
//   floor FILE

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fast_float/fast_float.h>

namespace {

// What a pass leaves behind, so that no work can be left out.
struct Result {
  double sum = 0.0;
  std::uint64_t copied = 0;
};

Result Cut(std::string_view text) {
  constexpr std::size_t kRoom = 1U << 16;
  std::vector<char> copies(2 * kRoom);
  std::size_t used = 0;
  Result result;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at < end) {
    const char* stop = at;
    while (stop < end && *stop != ',' && *stop != '\n') ++stop;
    double value = 0.0;
    const auto parsed = fast_float::from_chars(at, stop, value);
    if (parsed.ec == std::errc() && parsed.ptr == stop) {
      result.sum += value;
    } else {
      const auto length = std::min(static_cast<std::size_t>(stop - at), kRoom);
      std::memcpy(copies.data() + used, at, length);
      used = (used + length) % kRoom;
      result.copied += length;
    }
    at = stop + 1;
  }
  result.copied += static_cast<unsigned char>(copies[used]);
  return result;
}

// The text in pieces of about the same length that end with a line.
std::vector<std::string_view> Pieces(std::string_view text, std::size_t count) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t i = 1; i <= count && start < text.size(); ++i) {
    const std::size_t least = std::max(start, text.size() / count * i);
    const std::size_t lineEnd = i < count ? text.find('\n', least) : std::string_view::npos;
    const std::size_t end = lineEnd == std::string_view::npos ? text.size() : lineEnd + 1;
    pieces.push_back(text.substr(start, end - start));
    start = end;
  }
  return pieces;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: floor FILE\n", stderr);
    return 2;
  }
  std::ifstream file(argv[1], std::ios::binary);
  std::ostringstream loaded;
  loaded << file.rdbuf();
  if (!file) {
    std::perror(argv[1]);
    return 1;
  }
  const std::string text = std::move(loaded).str();
  const std::vector<std::string_view> pieces =
      Pieces(text, std::max(1U, std::thread::hardware_concurrency()));
  double best = 1e9;
  std::vector<Result> results(pieces.size());
  for (int pass = 0; pass < 5; ++pass) {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      threads.emplace_back([&, i] { results[i] = Cut(pieces[i]); });
    }
    for (std::thread& thread : threads) thread.join();
    best = std::min(
        best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  Result all;
  for (const Result& result : results) {
    all.sum += result.sum;
    all.copied += result.copied;
  }
  std::printf("{\"seconds\":%.4f,\"sum\":\"%.6g\",\"copied\":%llu}\n", best, all.sum,
              static_cast<unsigned long long>(all.copied));
  return 0;
}
