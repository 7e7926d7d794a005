#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <dlfcn.h>

#include "HostFramework/Messages.h"
#include "HostFramework/Names.h"
#include "HostFramework/Threads.h"
#include "HostFramework/embedded/messages/Catalogue.h"

namespace embedded {
namespace {

constexpr std::size_t kLargestCatalogue = std::size_t{1} << 20;

struct InUse {
  sfMutex mutex;
  // Null until something asks for a text; what is pointed at never changes.
  std::shared_ptr<const Catalogue> catalogue SF_GUARDED_BY(mutex);
  std::string problems SF_GUARDED_BY(mutex);
};

InUse& TheCatalogue() {
  static InUse inUse;
  return inUse;
}

// Reads a whole file of at most kLargestCatalogue bytes; false, with the reason, when it cannot.
bool ReadWhole(const char* path, std::string* text, std::string* reason) {
  const FileHandle file(std::fopen(path, "rbe"));
  if (!file) {
    *reason = std::strerror(errno);
    return false;
  }
  char block[65536];
  std::size_t got;
  while ((got = std::fread(block, 1, sizeof block, file.get())) > 0) {
    text->append(block, got);
    if (text->size() > kLargestCatalogue) {
      *reason = "it is too large for a catalogue";
      return false;
    }
  }
  if (!std::ferror(file.get())) return true;
  *reason = std::strerror(errno);
  return false;
}

std::string Named(const char* path, const std::string& problem) {
  return std::string("message catalogue ") + path + ": " + problem;
}

// Reads and parses a catalogue file; null, with *problems saying why, when it cannot be read.
std::shared_ptr<const Catalogue> ReadCatalogue(const char* path, std::string* problems) {
  std::string text, reason;
  if (!ReadWhole(path, &text, &reason)) {
    *problems = Named(path, reason);
    return nullptr;
  }
  auto catalogue = std::make_shared<const Catalogue>(Catalogue::Parse(text, &reason));
  *problems = reason.empty() ? reason : Named(path, reason);
  return catalogue;
}

// The catalogue in use; null when the host's own cannot be read. That is tried again for the next
// text: what was lacking, a descriptor perhaps, may be there by then.
std::shared_ptr<const Catalogue> UseCatalogue(InUse& inUse) SF_REQUIRES(inUse.mutex) {
  if (!inUse.catalogue) {
    inUse.catalogue = ReadCatalogue(DefaultCataloguePath().c_str(), &inUse.problems);
  }
  return inUse.catalogue;
}

}  // namespace

std::string DefaultCataloguePath() {
  Dl_info library{};
  std::string path;
  if (dladdr(reinterpret_cast<const void*>(&DefaultCataloguePath), &library) != 0 &&
      library.dli_fname) {
    path = library.dli_fname;
  }
  const std::size_t slash = path.rfind('/');
  path.resize(slash == std::string::npos ? 0 : slash + 1);
  return path + "../share/textwizard/" + kMessageCatalogue;
}

bool LoadCatalogue(const char* path, std::string* error) {
  std::string problems;
  auto catalogue = ReadCatalogue(path ? path : "", &problems);
  if (error) *error = problems;
  if (!catalogue) return false;
  InUse& inUse = TheCatalogue();
  const sfGuard guard(inUse.mutex);
  inUse.catalogue = std::move(catalogue);
  inUse.problems = problems;
  return problems.empty();
}

std::string CatalogueProblems() {
  InUse& inUse = TheCatalogue();
  const sfGuard guard(inUse.mutex);
  UseCatalogue(inUse);
  return inUse.problems;
}

}  // namespace embedded

QantServerErrorText::QantServerErrorText(const char* file, long id) {
  std::shared_ptr<const embedded::Catalogue> catalogue;
  if (file && std::strcmp(file, kMessageCatalogue) == 0) {
    embedded::InUse& inUse = embedded::TheCatalogue();
    const sfGuard guard(inUse.mutex);
    catalogue = embedded::UseCatalogue(inUse);
  }
  const std::string* const found = catalogue ? catalogue->Find(id) : nullptr;
  text_ = found ? *found : "[" + std::to_string(id) + "] (no text for this message)";
}

const char* QantServerErrorText::GetText() const { return text_.c_str(); }
