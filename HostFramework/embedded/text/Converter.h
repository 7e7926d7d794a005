// What a converter of the host holds.
#pragma once

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/CodePage.h"

class QANTMBConverter {
 public:
  // A page with tables.
  explicit QANTMBConverter(const embedded::CodePage& page) : page_(&page) {}
  // Any other encoding that ICU knows.
  explicit QANTMBConverter(embedded::IcuConverter icu) : icu_(std::move(icu)) {}

  // Null when only ICU knows the encoding.
  const embedded::CodePage* page() const { return page_; }
  embedded::IcuConverter& icu() { return icu_; }

 private:
  const embedded::CodePage* page_ = nullptr;
  embedded::IcuConverter icu_;
};
