#pragma once

#include <memory>

namespace kestrom::networking {

struct CurlEasyCleanup {
  void operator()(void* handle) const;
};

/// libcurl's handle of one transfer, which serves one after the other: what is the same for all exchanges of a session
/// is told to it once. libcurl's own type for it is void, so that its header stays in the files that call it.
using CurlEasyHandle = std::unique_ptr<void, CurlEasyCleanup>;

}  // namespace kestrom::networking
