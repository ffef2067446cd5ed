#include "tools/OffReader.h"

#include <algorithm>

#include "tools/InputError.h"

namespace tool {

namespace {

/// What may stand before "OFF" while the first three numbers of a vertex are x, y and z.
const char* const READABLE_PREFIXES[] = {"", "C", "N", "CN", "ST", "STC", "STN", "STCN"};

bool endsInOff(std::string_view word) {
    return word.size() >= 3 && word.size() <= 9 && word.substr(word.size() - 3) == "OFF";
}

}  // namespace

bool OffReader::isFirstLine(std::string_view line) {
    return endsInOff(takeWord(line));
}

PointSet OffReader::read() {
    const std::uint64_t numVertices = takeNumVertices();
    PointSet set;
    for (std::uint64_t i = 0; i < numVertices; ++i) {
        std::string_view line = takeVertexLine(i, numVertices);
        set.points.push_back(takePoint(line));
    }
    return set;
}

std::uint64_t OffReader::takeNumVertices() {
    std::string_view line;
    nextDataLine(line);
    const std::string_view keyword = takeWord(line);
    if (!endsInOff(keyword)) fail("not an OFF file: its first word doesn't end in \"OFF\"");
    const std::string_view prefix = keyword.substr(0, keyword.size() - 3);
    if (std::find(std::begin(READABLE_PREFIXES), std::end(READABLE_PREFIXES), prefix) ==
        std::end(READABLE_PREFIXES))
        fail(quoted(keyword) + ": only points with three coordinates are read");
    if (trimmed(line).empty() && !nextDataLine(line))
        fail("the counts of vertices, faces and edges are missing");
    std::uint64_t numVertices = 0;
    const std::string_view word = takeWord(line);
    if (!parseCount(word, numVertices)) {
        fail(word == "BINARY" ? "binary OFF can't be read, only ASCII"
                              : quoted(word) + " is not a number of vertices");
    }
    return numVertices;
}

}  // namespace tool
