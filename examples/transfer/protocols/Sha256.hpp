// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace transfer {

/// The SHA-256 of bytes that come piece by piece.
class Sha256 {
 public:
  /// @throws std::runtime_error, as do the others, if the cryptographic library refuses.
  Sha256();

  void update(std::string_view bytes);

  /// The digest of all so far, in 64 lower-case hex digits. Ends the calculation.
  std::string finish();

 private:
  struct Free {
    void operator()(evp_md_ctx_st* context) const;
  };
  std::unique_ptr<evp_md_ctx_st, Free> context_;
};

}  // namespace transfer
