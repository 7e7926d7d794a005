#include "cli/ComponentLibrary.h"

#include <filesystem>

#include <dlfcn.h>

namespace cli {
namespace {

constexpr char kLibrary[] = "libTextWizardDac.so";
constexpr char kEntry[] = "ProcessDACSyntax";

std::string LoadError() {
  const char* error = dlerror();
  return error != nullptr ? error : "unknown error";
}

}  // namespace

bool ComponentLibrary::Load(std::string* error) {
  std::error_code unknown;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
  const auto beside = program.parent_path().parent_path() / "lib" / kLibrary;
  const bool isBeside = !unknown && std::filesystem::exists(beside, unknown);
  void* library = dlopen(isBeside ? beside.c_str() : kLibrary, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    *error = "cannot load the import component: " + LoadError();
    return false;
  }
  entry_ = reinterpret_cast<bool (*)(DACAdapterBase*)>(dlsym(library, kEntry));
  if (entry_ == nullptr) {
    *error = "the import component has no entry: " + LoadError();
    return false;
  }
  return true;
}

}  // namespace cli
