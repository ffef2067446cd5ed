#include "PointFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "InputError.h"
#include "PlyReader.h"
#include "TextReader.h"

namespace tool {

namespace {

bool endsIn(std::string name, std::string_view ending) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name.size() > ending.size() &&
           std::string_view(name).substr(name.size() - ending.size()) == ending;
}

PointFormat formatOf(std::string_view content, const std::string& fileName) {
    if (endsIn(fileName, ".ply")) {
        return PointFormat::ply;
    }
    for (const char* ending : {".xyz", ".txt", ".csv"}) {
        if (endsIn(fileName, ending)) {
            return PointFormat::text;
        }
    }
    std::string_view firstLine;
    LineCursor(content).next(firstLine);
    return trimmed(firstLine) == "ply" ? PointFormat::ply : PointFormat::text;
}

std::string readAll(std::FILE* file, const std::string& name) {
    const std::size_t chunk = std::size_t{1} << 20;
    std::string content;
    for (std::size_t numRead = chunk; numRead == chunk;) {
        const std::size_t before = content.size();
        content.resize(before + chunk);
        numRead = std::fread(&content[before], 1, chunk, file);
        content.resize(before + numRead);
    }
    if (std::ferror(file)) {
        throw InputError(name, std::strerror(errno));
    }
    return content;
}

std::string readContent(const std::string& fileName, const std::string& displayName) {
    if (fileName == "-") {
        return readAll(stdin, displayName);
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(fileName.c_str(), "rb"),
                                                               std::fclose);
    if (!file) {
        throw InputError(displayName, std::strerror(errno));
    }
    return readAll(file.get(), displayName);
}

}  // namespace

std::vector<VARN3D::Point3> readPointFile(const std::string& fileName, PointFormat format) {
    const std::string displayName = fileName == "-" ? "standard input" : fileName;
    return parsePoints(readContent(fileName, displayName), displayName, format);
}

std::vector<VARN3D::Point3> parsePoints(std::string_view content, const std::string& fileName,
                                        PointFormat format) {
    if (format == PointFormat::automatic) {
        format = formatOf(content, fileName);
    }
    std::vector<VARN3D::Point3> points = format == PointFormat::ply
                                             ? PlyReader(content, fileName).read()
                                             : TextReader(content, fileName).read();
    if (points.empty()) {
        throw InputError(fileName, "no points");
    }
    return points;
}

}  // namespace tool
