// SPDX-License-Identifier: Apache-2.0
#include "protocols/Sha256.hpp"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace transfer {

namespace {

void require(bool success) {
  if (!success) throw std::runtime_error("cannot calculate a SHA-256");
}

}  // namespace

void Sha256::Free::operator()(evp_md_ctx_st* context) const {
  EVP_MD_CTX_free(context);
}

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
  require(context_ != nullptr && EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) == 1);
}

void Sha256::update(std::string_view bytes) {
  require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1);
}

std::string Sha256::finish() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  require(EVP_DigestFinal_ex(context_.get(), digest.data(), &size) == 1);
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < size; ++i) {
    text += digits[digest[i] >> 4U];
    text += digits[digest[i] & 15U];
  }
  return text;
}

}  // namespace transfer
