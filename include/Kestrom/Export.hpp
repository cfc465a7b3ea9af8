#pragma once

/// Marks what the shared library shows to a host; all else stays inside it.
#define KESTROM_API [[gnu::visibility("default")]]
