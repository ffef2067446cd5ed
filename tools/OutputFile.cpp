#include "OutputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "InputError.h"

namespace tool {

namespace fs = std::filesystem;

OutputFile::OutputFile(const std::string& targetName) : displayName(targetName) {
    std::error_code ignored;
    const fs::path real = fs::weakly_canonical(targetName, ignored);
    target = real.empty() ? targetName : real.string();
    if (fs::is_directory(target, ignored)) {
        errno = EISDIR;
        fail();
    }
    if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) {
        temporaryName = target;
        pFile = std::fopen(target.c_str(), "wb");
    } else {
        bTemporary = true;
        for (int attempt = 0; !pFile && attempt < 1000; ++attempt) {
            temporaryName = target + ".part" + std::to_string(attempt);
            pFile = std::fopen(temporaryName.c_str(), "wbx");
            if (!pFile && errno != EEXIST) {
                break;
            }
        }
    }
    if (!pFile) {
        bTemporary = false;
        fail();
    }
    std::setvbuf(pFile, nullptr, _IOFBF, std::size_t{1} << 18);
}

OutputFile::~OutputFile() {
    if (pFile) {
        std::fclose(pFile);
    }
    if (bTemporary) {
        std::remove(temporaryName.c_str());
    }
}

void OutputFile::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), pFile) != text.size()) {
        fail();
    }
}

void OutputFile::close() {
    std::FILE* const pClosing = pFile;
    pFile = nullptr;
    if (std::fclose(pClosing) != 0) {
        fail();
    }
}

void OutputFile::commit() {
    if (bTemporary && std::rename(temporaryName.c_str(), target.c_str()) != 0) {
        fail();
    }
    bTemporary = false;
}

void OutputFile::fail() const {
    throw InputError(displayName, std::strerror(errno));
}

}  // namespace tool
