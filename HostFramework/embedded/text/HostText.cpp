#include "HostFramework/embedded/text/HostText.h"

#include <atomic>

#include <langinfo.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/CodePageNames.h"
#include "HostFramework/embedded/text/IcuConverter.h"
#include "HostFramework/embedded/text/Settings.h"

namespace embedded {
namespace {

// Null while not decided.
constinit std::atomic<const CodePage*> hostPage{nullptr};
// What SetLocaleCodePage chose, or the codeset's page; only UTF-8 mode asks for it.
constinit std::atomic<const CodePage*> localePage{nullptr};

const CodePage& Decided(std::atomic<const CodePage*>& setting) {
  if (const CodePage* page = setting.load(std::memory_order_acquire)) return *page;
  const CodePage* page = CodePage::Find(nl_langinfo(CODESET));
  // A codeset that ICU does not know; this one it always does.
  if (page == nullptr) page = CodePage::Find("US-ASCII");
  const CodePage* before = nullptr;
  return setting.compare_exchange_strong(before, page) ? *page : *before;
}

}  // namespace

bool SetCodePage(const char* name) {
  const CodePage* page = name == nullptr ? &CodePage::Utf8() : CodePage::Find(name);
  if (page == nullptr) return false;
  hostPage.store(page, std::memory_order_release);
  return true;
}

bool SetLocaleCodePage(const char* name) {
  const CodePage* page = name == nullptr ? nullptr : CodePage::Find(name);
  if (name != nullptr && page == nullptr) return false;
  localePage.store(page, std::memory_order_release);
  return true;
}

std::string CodePageRefusal(const std::string& name) {
  constexpr std::size_t kMostNames = 3;
  if (const IcuConverter known(name.c_str()); known.IsOpen()) {
    return "code page " + name +
           " cannot be worked in: it has shift states or is no superset of ASCII";
  }
  std::string text = "unknown code page " + name;
  const char* before = "; near ones: ";
  for (const std::string& near : NearCodePages(name, kMostNames)) {
    text += before + near;
    before = ", ";
  }
  return text;
}

const CodePage& HostPage() { return Decided(hostPage); }

const CodePage& LocalePage() {
  const CodePage& host = HostPage();
  return host.IsUtf8() ? Decided(localePage) : host;
}

}  // namespace embedded

bool qUTF8mode() { return embedded::HostPage().IsUtf8(); }
