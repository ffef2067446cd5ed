#include "tools/ObjReader.h"

#include <vector>

#include "tools/InputError.h"
#include "tools/columns.h"
#include "tools/readableFormats.h"

namespace tool {

PointSet ObjReader::read() {
    PointSet set;
    std::string_view line;
    std::vector<std::string_view> words;
    const char* const colours[] = {"red", "green", "blue"};
    for (std::size_t i = 0; options.bAttributes && i < 3; ++i) attributes.add(4 + i, colours[i]);
    while (nextDataLine(line)) {
        cut(line, Separator::BLANKS, words);
        if (takeWord(line) != "v") continue;
        set.points.push_back(takePoint(line));
        if (words.size() > 8) fail("more than seven numbers of a vertex");
        if (words.size() < 7)
            words.resize(4);
        else if (words.size() == 8)
            words.erase(words.begin() + 4);
        attributes.take(words);
    }
    if (set.points.empty()) fail(std::string("no line begins with \"v\"; ") + READABLE_FORMATS);
    attributes.moveTo(set);
    return set;
}

}  // namespace tool
