#include "tools/PointFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "tools/InputError.h"
#include "tools/NodeReader.h"
#include "tools/ObjReader.h"
#include "tools/OffReader.h"
#include "tools/PlyReader.h"
#include "tools/TextReader.h"
#include "tools/readableFormats.h"

namespace tool {

namespace {

bool beginsWith(std::string_view content, std::string_view beginning) {
    return content.substr(0, beginning.size()) == beginning;
}

/// Names what the content is when no reader can make anything of it.
void refuseForeign(std::string_view content, const std::string& fileName) {
    static const struct {
        std::string_view beginning;
        const char* name;
    } foreign[] = {{"BZh", "compressed with bzip2"},
                   {"\xFD"
                    "7zXZ",
                    "compressed with xz"},
                   {"\x28\xB5\x2F\xFD", "compressed with zstd"},
                   {"PK\x03\x04", "a zip archive"},
                   {"\xFF\xFE", "text in UTF-16"},
                   {"\xFE\xFF", "text in UTF-16"},
                   {"LASF", "a LAS file"},
                   {"ASTM-E57", "an E57 file"},
                   {"# .PCD", "a PCD file"},
                   {"# vtk DataFile", "a VTK file"},
                   {"<", "XML"},
                   {"\x93NUMPY", "a NumPy array"},
                   {"\x89HDF", "an HDF5 file"},
                   {"solid", "an STL file"}};
    if (beginsWith(content, "\x1F\x8B")) {
        throw InputError(fileName,
                         "compressed with gzip: gunzip -c FILE | varn3d - reads it, with "
                         "--format NAME if it is OBJ or .node");
    }
    for (const auto& other : foreign)
        if (beginsWith(content, other.beginning))
            throw InputError(fileName, std::string(other.name) + "; " + READABLE_FORMATS);
    if (content.substr(0, 16).find('\0') != std::string_view::npos) {
        throw InputError(fileName,
                         std::string("binary data, or text in UTF-16; ") + READABLE_FORMATS);
    }
}

PointFormat formatOf(std::string_view content, const std::string& fileName) {
    std::string_view firstLine;
    LineCursor(content).next(firstLine);
    if (trimmed(firstLine) == "ply") return PointFormat::PLY;
    if (OffReader::isFirstLine(firstLine)) return PointFormat::OFF;
    const std::pair<const char*, PointFormat> endings[] = {{".ply", PointFormat::PLY},
                                                           {".obj", PointFormat::OBJ},
                                                           {".off", PointFormat::OFF},
                                                           {".node", PointFormat::NODE}};
    for (const auto& [ending, format] : endings)
        if (endsIn(fileName, ending)) return format;
    return PointFormat::TEXT;
}

std::unique_ptr<PointReader> makeReader(std::string_view content, const std::string& fileName,
                                        PointFormat format, const ReadingOptions& options) {
    switch (format) {
        case PointFormat::PLY:
            return std::make_unique<PlyReader>(content, fileName, options);
        case PointFormat::OBJ:
            return std::make_unique<ObjReader>(content, fileName, options);
        case PointFormat::OFF:
            return std::make_unique<OffReader>(content, fileName, options);
        case PointFormat::NODE:
            return std::make_unique<NodeReader>(content, fileName, options);
        case PointFormat::TEXT:
        case PointFormat::AUTOMATIC:
            break;
    }
    return std::make_unique<TextReader>(content, fileName, options);
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
    if (std::ferror(file)) throw InputError(name, std::strerror(errno));
    return content;
}

std::string readContent(const std::string& fileName, const std::string& displayName) {
    if (fileName == "-") return readAll(stdin, displayName);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(fileName.c_str(), "rb"),
                                                               std::fclose);
    if (!file) throw InputError(displayName, std::strerror(errno));
    return readAll(file.get(), displayName);
}

}  // namespace

PointSet readPointFile(const std::string& fileName, const ReadingOptions& options) {
    const std::string displayName = fileName == "-" ? "standard input" : fileName;
    return parsePoints(readContent(fileName, displayName), displayName, options);
}

PointSet parsePoints(std::string_view content, const std::string& fileName,
                     const ReadingOptions& options) {
    PointFormat format = options.format;
    refuseForeign(content, fileName);
    if (format == PointFormat::AUTOMATIC) format = formatOf(content, fileName);
    if (options.columns && format != PointFormat::TEXT)
        throw InputError(fileName, "--columns is for text only");
    PointSet set = makeReader(content, fileName, format, options)->read();
    if (set.points.empty()) throw InputError(fileName, "no points");
    return set;
}

}  // namespace tool
