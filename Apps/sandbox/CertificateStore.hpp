#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace kestrom::sandbox {

/// The files that make a client believe this server.
struct CertificateFiles {
  std::filesystem::path authority;
  std::filesystem::path certificate;
  std::filesystem::path key;
};

/// The certificate authority of a state directory and the server's certificate for the API hosts, localhost and
/// 127.0.0.1. Both are made when they are missing or damaged, run out within a day or do not fit each other; the
/// server's also when the hosts have changed. Keys are readable for their owner only.
std::expected<CertificateFiles, std::string> prepareCertificates(const std::filesystem::path& directory);

}  // namespace kestrom::sandbox
