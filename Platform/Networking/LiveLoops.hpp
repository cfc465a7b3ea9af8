#pragma once

namespace kestrom::networking {

class CurlLoop;

/// The loops of the process. When the process ends, each is frozen before the network library and what that uses are
/// torn down under the threads of the kit. Any thread.
namespace live_loops {

/// To be called once, after the library is prepared: what is registered last is called first.
void freezeAtExit();

void add(CurlLoop& loop);
void remove(CurlLoop& loop);

}  // namespace live_loops

}  // namespace kestrom::networking
