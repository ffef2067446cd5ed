#include "tools/temporaryFiles.h"

#include <algorithm>
#include <vector>

#if defined(__unix__) || defined(__APPLE__)
#define VARN3D_HAS_SIGNALS
#include <unistd.h>

#include <csignal>
#endif

namespace tool {

namespace {

/// Changes only while no signal comes, so that the handler may read it. The handler is there only
/// while there are files: it can't meet a list that is destroyed at the process's end.
std::vector<std::string> temporaryFiles;

#if defined(VARN3D_HAS_SIGNALS)

const int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};

sigset_t endingSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : ENDING_SIGNALS) sigaddset(&set, signal);
    return set;
}

/// Its own signal ends the process as soon as it returns, so that the parent sees which it was.
extern "C" void removeTemporaryFiles(int signal) {
    for (const std::string& name : temporaryFiles) unlink(name.c_str());
    raise(signal);
}

using Handler = void (*)(int);

/// Sets the handler of those signals that have the other one now.
void replaceHandler(Handler present, Handler next) {
    for (const int signal : ENDING_SIGNALS) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == present) {
            action.sa_handler = next;
            action.sa_flags = static_cast<int>(SA_RESETHAND);
            action.sa_mask = endingSet();
            sigaction(signal, &action, nullptr);
        }
    }
}

void handleSignals() {
    replaceHandler(SIG_DFL, removeTemporaryFiles);
}

void leaveSignals() {
    replaceHandler(removeTemporaryFiles, SIG_DFL);
}

#else

void handleSignals() {}
void leaveSignals() {}

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
    temporaryFiles.push_back(name);
    handleSignals();
}

void forgetTemporaryFile(const std::string& name) {
    temporaryFiles.erase(std::remove(temporaryFiles.begin(), temporaryFiles.end(), name),
                         temporaryFiles.end());
    if (temporaryFiles.empty()) leaveSignals();
}

}  // namespace tool
