// The cases of a command as an Arrow C stream, every batch asked for and released. Prints the
// seconds from the command to the last batch, the rows, and the sum of the first column.
//
//   stream COMMAND-FILE

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "textwizard/textwizard.hpp"

namespace {

double Sum(const ArrowArray& batch, const std::string& format) {
  const ArrowArray& column = *batch.children[0];
  double sum = 0;
  for (std::int64_t row = 0; row < column.length; ++row) {
    if (format == "g") {
      sum += static_cast<const double*>(column.buffers[1])[row];
    } else {
      const auto* const offsets = static_cast<const std::int32_t*>(column.buffers[1]);
      sum += static_cast<double>(offsets[row + 1] - offsets[row]);
    }
  }
  return sum;
}

int Fail(const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return Fail("usage: stream COMMAND-FILE");
  std::ifstream file(argv[1]);
  const std::string command{std::istreambuf_iterator<char>(file), {}};
  const auto start = std::chrono::steady_clock::now();
  textwizard_options options{};
  options.size = sizeof options;
  options.no_digest = 1;  // plain reading makes none either
  auto import = textwizard::Import::OpenCommand(command, &options);
  if (!import) return Fail(import.error().text());
  auto cases = import->Cases();
  if (!cases) return Fail(cases.error().text());
  auto schema = cases->ReadSchema();
  if (!schema) return Fail(schema.error().text());
  const std::string format = schema->get().children[0]->format;
  std::int64_t rows = 0;
  double checksum = 0;
  while (true) {
    auto batch = cases->Next();
    if (!batch) return Fail(batch.error().text());
    if (!*batch) break;
    rows += batch->length();
    checksum += Sum(batch->array(), format);
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("{\"seconds\": %.6f, \"rows\": %lld, \"checksum\": %.0f}\n", seconds.count(),
              static_cast<long long>(rows), checksum);
  return 0;
}
