#include "HostFramework/embedded/text/Converter.h"

#include <new>
#include <utility>

#include "HostFramework/embedded/text/Settings.h"

QANTMBConverter* QANTMBConverterNew_A(const char* codePage) {
  const embedded::CodePage* page =
      codePage == nullptr ? &embedded::HostPage() : embedded::CodePage::Find(codePage);
  if (page != nullptr) return new (std::nothrow) QANTMBConverter(*page);
  embedded::IcuConverter icu(codePage);
  return icu.IsOpen() ? new (std::nothrow) QANTMBConverter(std::move(icu)) : nullptr;
}

void QANTMBConverterDelete_A(QANTMBConverter* converter) { delete converter; }
