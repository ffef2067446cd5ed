#include "temporaryFiles.h"

#include <algorithm>
#include <vector>

#if defined(__unix__) || defined(__APPLE__)
#define VARN3D_HAS_SIGNALS
#include <unistd.h>

#include <csignal>
#endif

namespace tool {

namespace {

/// Changes only while no signal comes, so that the handler may read it. Since it is never
/// destroyed, a signal at the process's end finds it as well.
std::vector<std::string>& temporaryFiles() {
    static auto* const names = new std::vector<std::string>;
    return *names;
}

#if defined(VARN3D_HAS_SIGNALS)

const int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

sigset_t endingSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : endingSignals) {
        sigaddset(&set, signal);
    }
    return set;
}

/// Its own signal ends the process as soon as it returns, so that the parent sees which it was.
extern "C" void removeTemporaryFiles(int signal) {
    for (const std::string& name : temporaryFiles()) {
        unlink(name.c_str());
    }
    raise(signal);
}

void handleSignals() {
    for (const int signal : endingSignals) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_DFL) {
            action.sa_handler = removeTemporaryFiles;
            action.sa_flags = static_cast<int>(SA_RESETHAND);
            action.sa_mask = endingSet();
            sigaction(signal, &action, nullptr);
        }
    }
}

#else

void handleSignals() {}

#endif

}  // namespace

#if defined(VARN3D_HAS_SIGNALS)

SignalBlock::SignalBlock() {
    const sigset_t set = endingSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

SignalBlock::~SignalBlock() {
    const sigset_t set = endingSet();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

#else

SignalBlock::SignalBlock() = default;
SignalBlock::~SignalBlock() = default;

#endif

void addTemporaryFile(const std::string& name) {
    handleSignals();
    temporaryFiles().push_back(name);
}

void forgetTemporaryFile(const std::string& name) {
    std::vector<std::string>& names = temporaryFiles();
    names.erase(std::remove(names.begin(), names.end(), name), names.end());
}

}  // namespace tool
