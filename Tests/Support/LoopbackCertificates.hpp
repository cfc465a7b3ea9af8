#pragma once

#include <memory>
#include <string>
#include <vector>

using EVP_PKEY = struct evp_pkey_st;
using X509 = struct x509_st;

namespace kestrom::tests {

struct FreeOpenSSL {
  void operator()(EVP_PKEY* key) const;
  void operator()(X509* certificate) const;
};

/// A certificate and the key that belongs to it.
struct LoopbackCertificate {
  std::unique_ptr<EVP_PKEY, FreeOpenSSL> key;
  std::unique_ptr<X509, FreeOpenSSL> certificate;
};

/// A certificate authority that lives as long as the test.
class LoopbackAuthority {
 public:
  explicit LoopbackAuthority(const std::string& name = "Loopback authority");

  /// A certificate for `host`, good until so many seconds from now; negative ones make it one that has run out.
  LoopbackCertificate issue(const std::string& host, long secondsLeft = 24 * 60 * 60) const;

  /// The authority's own certificate, as a trust file has it.
  std::string pem() const;

 private:
  LoopbackCertificate _own;
};

}  // namespace kestrom::tests
