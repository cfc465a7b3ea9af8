#include "Tests/Support/LoopbackCertificates.hpp"

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>

namespace kestrom::tests {

namespace {

constexpr long kDay = 24 * 60 * 60;

void addExtension(X509* certificate, int kind, const std::string& value) {
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

LoopbackCertificate makeUnsigned(const std::string& name, long secondsLeft) {
  static std::atomic<long> serial = 1;
  LoopbackCertificate made{std::unique_ptr<EVP_PKEY, FreeOpenSSL>(EVP_EC_gen("P-256")),
                           std::unique_ptr<X509, FreeOpenSSL>(X509_new())};
  X509* const certificate = made.certificate.get();
  X509_set_version(certificate, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -2 * kDay);
  X509_gmtime_adj(X509_getm_notAfter(certificate), secondsLeft);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_pubkey(certificate, made.key.get());
  return made;
}

}  // namespace

void FreeOpenSSL::operator()(EVP_PKEY* key) const {
  EVP_PKEY_free(key);
}

void FreeOpenSSL::operator()(X509* certificate) const {
  X509_free(certificate);
}

LoopbackAuthority::LoopbackAuthority(const std::string& name) : _own(makeUnsigned(name, kDay)) {
  X509* const certificate = _own.certificate.get();
  X509_set_issuer_name(certificate, X509_get_subject_name(certificate));
  addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
  addExtension(certificate, NID_key_usage, "critical,keyCertSign");
  X509_sign(certificate, _own.key.get(), EVP_sha256());
}

LoopbackCertificate LoopbackAuthority::issue(const std::string& host, long secondsLeft) const {
  LoopbackCertificate issued = makeUnsigned(host, secondsLeft);
  X509_set_issuer_name(issued.certificate.get(), X509_get_subject_name(_own.certificate.get()));
  addExtension(issued.certificate.get(), NID_subject_alt_name, "DNS:" + host);
  X509_sign(issued.certificate.get(), _own.key.get(), EVP_sha256());
  return issued;
}

std::string LoopbackAuthority::pem() const {
  BIO* const memory = BIO_new(BIO_s_mem());
  PEM_write_bio_X509(memory, _own.certificate.get());
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory, &text);
  std::string pem(text, static_cast<std::size_t>(size));
  BIO_free(memory);
  return pem;
}

}  // namespace kestrom::tests
