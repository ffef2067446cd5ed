#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace tool {

/// Takes the library's messages, as long as it lives: standard output is the program's.
///
/// Progress notes are dropped. A warning goes to standard error; from the first error on everything
/// does, since what follows explains it. Lines are passed on at once: a process that dies has said
/// why.
class LibraryMessages : private std::streambuf {
  public:
    LibraryMessages();
    ~LibraryMessages() override;
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

  private:
    int_type overflow(int_type c) override;
    void passOn();

    std::ostream stream{this};
    std::string line;
    bool bErrorSeen = false;
};

}  // namespace tool
