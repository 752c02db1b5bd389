#pragma once

namespace nfk {

// By nfkStart.
extern bool started;

} // namespace nfk
