#pragma once

#include <memory>

namespace kestrom::networking {

struct CurlEasyCleanup {
  void operator()(void* handle) const;
};

/// libcurl's handle of one transfer. Its own type for it is void, so that its header stays in the files that call it.
using CurlEasyHandle = std::unique_ptr<void, CurlEasyCleanup>;

}  // namespace kestrom::networking
