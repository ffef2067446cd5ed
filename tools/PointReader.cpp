#include "tools/PointReader.h"

#include "tools/InputError.h"

namespace tool {

PointReader::PointReader(std::string_view content, const std::string& name,
                         const ReadingOptions& readingOptions)
    : lines(content), fileName(name), options(readingOptions) {}

bool PointReader::nextDataLine(std::string_view& line) {
    while (lines.next(line)) {
        line = trimmed(line.substr(0, line.find('#')));
        if (!line.empty()) {
            tellShare();
            return true;
        }
    }
    return false;
}

std::string_view PointReader::takeVertexLine(std::uint64_t index, std::uint64_t count) {
    std::string_view line;
    if (!nextDataLine(line)) {
        fail("the file ends before vertex " + std::to_string(index) + " of " +
             std::to_string(count));
    }
    return line;
}

double PointReader::takeNumber(std::string_view& line) const {
    const std::string_view word = takeWord(line);
    double value = 0;
    if (word.empty()) fail("fewer than three coordinates");
    if (const char* const problem = parseNumber(word, value)) fail(quoted(word) + problem);
    return value;
}

VARN3D::Point3 PointReader::takePoint(std::string_view& line) const {
    const double x = takeNumber(line);
    const double y = takeNumber(line);
    return {x, y, takeNumber(line)};
}

void PointReader::tellShare() const {
    if (options.pShare && lines.lineNumber() % 1024 == 0)
        options.pShare->store(lines.share(), std::memory_order_relaxed);
}

void PointReader::fail(const std::string& problem) const {
    throw InputError(fileName, lines.lineNumber(), problem);
}

}  // namespace tool
