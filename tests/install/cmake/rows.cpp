// Prints the columns and the number of cases of a bare file.
#include <iostream>
#include <textwizard/textwizard.hpp>

int main(int count, char** arguments) {
  if (count != 2) return 2;
  auto import = textwizard::Import::OpenFile(arguments[1]);
  if (!import) {
    std::cerr << import.error().text() << "\n";
    return 1;
  }
  const auto schema = import->ReadSchema();
  for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
    std::cout << schema->get().children[i]->name << " " << schema->get().children[i]->format
              << "\n";
  }
  auto cases = import->Cases();
  std::int64_t rows = 0;
  while (true) {
    const auto batch = cases->Next();
    if (!batch || !*batch) break;
    rows += batch->length();
  }
  std::cout << rows << "\n";
  return 0;
}
