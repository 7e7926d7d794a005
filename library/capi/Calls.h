// What the C functions share: their handle, and errors instead of exceptions.
#pragma once

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "library/capi/DataSetSession.h"
#include "library/capi/Failure.h"
#include "library/capi/ImportSession.h"

struct textwizard_import {
  std::shared_ptr<library::ImportSession> session;
  // What functions gave to the user.
  std::string command;
  std::string dictionary;
  std::string ledger;
  std::string digest;
  std::string recipe;
};

struct textwizard_data_set {
  std::unique_ptr<const library::DataSetSession> session;
};

namespace library {

// Null is accepted; *error is null where there is no memory for it.
inline void Give(textwizard_error** error, const Failure& failure) noexcept {
  if (error == nullptr) return;
  try {
    *error = new textwizard_error(failure);
  } catch (const std::bad_alloc&) {
    // The status says it.
    *error = nullptr;
  }
}

// Does it; what it throws is the status and the error.
template <class Work>
textwizard_status Guarded(textwizard_error** error, Work work) noexcept {
  Failure failure;
  try {
    work();
    return TEXTWIZARD_OK;
  } catch (Failure& thrown) {
    failure = std::move(thrown);
  } catch (const std::bad_alloc&) {
    failure.status = TEXTWIZARD_NO_MEMORY;
    failure.text = "no memory";
  } catch (const std::exception&) {
    failure.text = "internal error";
  }
  Give(error, failure);
  return failure.status;
}

// The text of a function that cannot fail; null where there is none.
template <class Work>
const char* Text(std::string& kept, Work work) noexcept {
  try {
    kept = work();
    return kept.empty() ? nullptr : kept.c_str();
  } catch (...) {
    return nullptr;
  }
}

inline void Require(bool given, const char* what) {
  if (!given) throw Failure{.status = TEXTWIZARD_USAGE, .text = std::string(what) + " is null"};
}

}  // namespace library
