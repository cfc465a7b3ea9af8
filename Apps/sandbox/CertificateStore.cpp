#include "Apps/sandbox/CertificateStore.hpp"

#include "Apps/sandbox/Hosts.hpp"

#include <fcntl.h>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>
#include <optional>

namespace kestrom::sandbox {

namespace {

template <auto Free>
struct Freeing {
  template <class T>
  void operator()(T* object) const {
    Free(object);
  }
};
using Key = std::unique_ptr<EVP_PKEY, Freeing<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Freeing<X509_free>>;
using Memory = std::unique_ptr<BIO, Freeing<BIO_free_all>>;

constexpr long kDay = 24L * 60 * 60;
constexpr long kAuthorityDays = 3650;
/// What strict clients allow a server's certificate.
constexpr long kServerDays = 397;
constexpr const char* kAuthorityName = "Kestrom sandbox certificate authority";
constexpr const char* kServerName = "Kestrom sandbox";

struct Identity {
  Certificate certificate;
  Key key;
};

/// Names as the certificate has them.
std::string alternativeNames() {
  std::string names = "DNS:localhost,IP:127.0.0.1";
  for (const std::string_view host : kAPIHosts) names += ",DNS:" + std::string(host);
  return names;
}

bool addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, Freeing<X509_EXTENSION_free>> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
  return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

/// A certificate for `key` that says nothing yet of what it is for; a random serial number, so that no client takes it
/// for one that it has seen.
Certificate bareCertificate(EVP_PKEY* key, const char* name, X509_NAME* issuer, long days) {
  Certificate certificate(X509_new());
  std::array<unsigned char, 16> serial;
  if (!certificate || RAND_bytes(serial.data(), serial.size()) != 1) return nullptr;
  serial[0] &= 0x7F;
  const std::unique_ptr<BIGNUM, Freeing<BN_free>> number(BN_bin2bn(serial.data(), serial.size(), nullptr));
  X509_NAME* subject = X509_get_subject_name(certificate.get());
  const bool isMade = number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate.get())) &&
                      X509_set_version(certificate.get(), X509_VERSION_3) == 1 &&
                      X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                                 reinterpret_cast<const unsigned char*>(name), -1, -1, 0) == 1 &&
                      X509_set_issuer_name(certificate.get(), issuer ? issuer : subject) == 1 &&
                      X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -60 * 60) &&
                      X509_gmtime_adj(X509_getm_notAfter(certificate.get()), days * kDay) &&
                      X509_set_pubkey(certificate.get(), key) == 1;
  return isMade ? std::move(certificate) : nullptr;
}

std::optional<Identity> makeAuthority() {
  Key key(EVP_EC_gen("P-256"));
  if (!key) return std::nullopt;
  Certificate certificate = bareCertificate(key.get(), kAuthorityName, nullptr, kAuthorityDays);
  if (!certificate ||
      !addExtension(certificate.get(), certificate.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0") ||
      !addExtension(certificate.get(), certificate.get(), NID_key_usage, "critical,keyCertSign,cRLSign") ||
      !addExtension(certificate.get(), certificate.get(), NID_subject_key_identifier, "hash") ||
      X509_sign(certificate.get(), key.get(), EVP_sha256()) == 0)
    return std::nullopt;
  return Identity{std::move(certificate), std::move(key)};
}

std::optional<Identity> makeServer(const Identity& authority) {
  Key key(EVP_EC_gen("P-256"));
  if (!key) return std::nullopt;
  X509* issuer = authority.certificate.get();
  Certificate certificate = bareCertificate(key.get(), kServerName, X509_get_subject_name(issuer), kServerDays);
  if (!certificate || !addExtension(certificate.get(), issuer, NID_basic_constraints, "critical,CA:FALSE") ||
      !addExtension(certificate.get(), issuer, NID_key_usage, "critical,digitalSignature") ||
      !addExtension(certificate.get(), issuer, NID_ext_key_usage, "serverAuth") ||
      !addExtension(certificate.get(), issuer, NID_subject_key_identifier, "hash") ||
      !addExtension(certificate.get(), issuer, NID_authority_key_identifier, "keyid:always") ||
      !addExtension(certificate.get(), issuer, NID_subject_alt_name, alternativeNames()) ||
      X509_sign(certificate.get(), authority.key.get(), EVP_sha256()) == 0)
    return std::nullopt;
  return Identity{std::move(certificate), std::move(key)};
}

/// What is kept, if certificate and key are there, fit each other and last for another day.
std::optional<Identity> load(const std::filesystem::path& certificateFile, const std::filesystem::path& keyFile) {
  const Memory certificateText(BIO_new_file(certificateFile.c_str(), "r"));
  const Memory keyText(BIO_new_file(keyFile.c_str(), "r"));
  if (!certificateText || !keyText) return std::nullopt;
  Identity identity{Certificate(PEM_read_bio_X509(certificateText.get(), nullptr, nullptr, nullptr)),
                    Key(PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr))};
  if (!identity.certificate || !identity.key ||
      X509_check_private_key(identity.certificate.get(), identity.key.get()) != 1)
    return std::nullopt;
  time_t tomorrow = time(nullptr) + kDay;
  if (X509_cmp_time(X509_get0_notAfter(identity.certificate.get()), &tomorrow) < 0) return std::nullopt;
  return identity;
}

bool isSignedBy(const Identity& server, const Identity& authority) {
  return X509_verify(server.certificate.get(), authority.key.get()) == 1;
}

bool namesAllHosts(const Identity& server) {
  X509* certificate = server.certificate.get();
  for (const std::string_view host : kAPIHosts) {
    if (X509_check_host(certificate, host.data(), host.size(), 0, nullptr) != 1) return false;
  }
  return true;
}

/// Writes beside the place and takes its name, so that no half file is ever found there.
bool writeFile(const std::filesystem::path& path, BIO* content, mode_t mode) {
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(content, &bytes);
  const std::string beside = path.string() + ".new";
  ::unlink(beside.c_str());
  const int file = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  if (file < 0) return false;
  const bool isWritten = ::write(file, bytes, static_cast<std::size_t>(size)) == size;
  ::close(file);
  return isWritten && std::rename(beside.c_str(), path.c_str()) == 0;
}

bool save(const Identity& identity, const std::filesystem::path& certificateFile,
          const std::filesystem::path& keyFile) {
  const Memory certificate(BIO_new(BIO_s_mem()));
  const Memory key(BIO_new(BIO_s_mem()));
  return certificate && key && PEM_write_bio_X509(certificate.get(), identity.certificate.get()) == 1 &&
         PEM_write_bio_PrivateKey(key.get(), identity.key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
         writeFile(keyFile, key.get(), 0600) && writeFile(certificateFile, certificate.get(), 0644);
}

}  // namespace

std::expected<CertificateFiles, std::string> prepareCertificates(const std::filesystem::path& directory) {
  const CertificateFiles files{directory / "ca.pem", directory / "server.pem", directory / "server.key"};
  const std::filesystem::path authorityKey = directory / "ca.key";
  const auto failed = [&] {
    ERR_clear_error();
    return std::unexpected(directory.string() + ": the certificates cannot be made");
  };

  std::optional<Identity> authority = load(files.authority, authorityKey);
  if (!authority) {
    authority = makeAuthority();
    if (!authority || !save(*authority, files.authority, authorityKey)) return failed();
  }
  std::optional<Identity> server = load(files.certificate, files.key);
  if (!server || !isSignedBy(*server, *authority) || !namesAllHosts(*server)) {
    server = makeServer(*authority);
    if (!server || !save(*server, files.certificate, files.key)) return failed();
  }
  ERR_clear_error();
  return files;
}

}  // namespace kestrom::sandbox
