#include "tools/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tools/InputError.h"
#include "tools/temporaryFiles.h"

namespace tool {

namespace fs = std::filesystem;

OutputFile::OutputFile(const std::string& targetName) : displayName(targetName) {
    std::error_code ignored;
    const fs::path named = fs::u8path(targetName);
    fs::path real = fs::weakly_canonical(named, ignored);
    if (real.empty()) real = named;
    target = real.u8string();
    if (fs::is_directory(real, ignored)) {
        errno = EISDIR;
        fail();
    }
    if (fs::exists(real, ignored) && !fs::is_regular_file(real, ignored)) {
        temporaryName = target;
        pFile = std::fopen(target.c_str(), "wb");
    } else {
        createTemporary();
    }
    if (!pFile) fail();
    std::setvbuf(pFile, nullptr, _IONBF, 0);
    buffer.reserve(2 * BUFFER_SIZE);
}

void OutputFile::createTemporary() {
    const SignalBlock block;
    for (int attempt = 0; !pFile && attempt < 1000; ++attempt) {
        temporaryName = target + ".part" + std::to_string(attempt);
        pFile = std::fopen(temporaryName.c_str(), "wbx");
        if (!pFile && errno != EEXIST) return;
    }
    bTemporary = pFile != nullptr;
    if (bTemporary) addTemporaryFile(temporaryName);
}

OutputFile::~OutputFile() {
    if (pFile) std::fclose(pFile);
    if (bTemporary) {
        const SignalBlock block;
        std::remove(temporaryName.c_str());
        forgetTemporaryFile(temporaryName);
    }
}

void OutputFile::flush() {
    if (std::fwrite(buffer.data(), 1, buffer.size(), pFile) != buffer.size()) fail();
    buffer.clear();
}

void OutputFile::close() {
    flush();
    std::FILE* const pClosing = pFile;
    pFile = nullptr;
    if (std::fclose(pClosing) != 0) fail();
}

void OutputFile::commit() {
    if (bTemporary) {
        const SignalBlock block;
        // Unlike std::rename it replaces an older file on every system.
        std::error_code error;
        fs::rename(fs::u8path(temporaryName), fs::u8path(target), error);
        if (error) {
            errno = error.default_error_condition().value();
            fail();
        }
        forgetTemporaryFile(temporaryName);
    }
    bTemporary = false;
}

void OutputFile::fail() const {
    throw InputError(displayName, std::strerror(errno));
}

}  // namespace tool
