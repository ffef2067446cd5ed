#pragma once

#include <string>

namespace tool {

/// While it lives, the calling thread and those it starts take no SIGINT, SIGTERM or SIGHUP: they
/// wait. Where there are no such signals it does nothing.
class SignalBlock {
  public:
    SignalBlock();
    ~SignalBlock();
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;
};

/// Notes an unfinished file: when one of these signals ends the process, it is removed first. A
/// signal that the process was told to ignore stays ignored. Call it under the SignalBlock under
/// which the file has been created.
void addTemporaryFile(const std::string& name);

/// Forgets the file; under the SignalBlock under which it gets its own name or is removed.
void forgetTemporaryFile(const std::string& name);

}  // namespace tool
