#include <Kestrom/Version.hpp>

#include <cstdio>

int main() {
  std::printf("embedding Kestrom %.1f: %s", kestrom::KestromVersionNumber, kestrom::KestromVersionString);
}
