#include "dt3Library/base/messages.h"

#include <atomic>
#include <iostream>
#include <new>

namespace VARN3D {

namespace {

std::atomic<std::ostream*> chosenStream{&std::cout};

/// Swallows everything. One for each thread, since even a stream that goes nowhere changes its
/// state; never destroyed, since static objects may print after a thread's own have gone.
std::ostream& silence() {
    alignas(std::ostream) static thread_local unsigned char memory[sizeof(std::ostream)];
    static thread_local auto* const stream = new (memory) std::ostream(nullptr);
    return *stream;
}

}  // namespace

std::ostream& messageStream() {
    std::ostream* const stream = chosenStream.load(std::memory_order_acquire);
    return stream != nullptr ? *stream : silence();
}

std::ostream* exchangeMessageStream(std::ostream* stream) {
    return chosenStream.exchange(stream, std::memory_order_acq_rel);
}

}  // namespace VARN3D
