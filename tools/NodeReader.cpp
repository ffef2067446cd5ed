#include "tools/NodeReader.h"

#include "tools/InputError.h"
#include "tools/columns.h"

namespace tool {

PointSet NodeReader::read() {
    takeCounts();
    PointSet set;
    for (std::uint64_t i = 0; i < numNodes; ++i) takeNode(i, set);
    std::string_view line;
    if (nextDataLine(line))
        fail("more than the " + std::to_string(numNodes) + " points that the counts promise");
    attributes.moveTo(set);
    return set;
}

void NodeReader::takeCounts() {
    std::string_view line;
    std::uint64_t dimension = 0;
    if (!nextDataLine(line)) return;
    cut(line, Separator::BLANKS, words);
    if (words.size() < 2 || words.size() > 4 || !parseCount(words[0], numNodes) ||
        !parseCount(words[1], dimension) ||
        (words.size() > 2 && !parseCount(words[2], numAttributes)) ||
        (words.size() > 3 && !parseCount(words[3], numMarkers)))
        fail("not the counts of a .node file: points, 3, attributes, markers");
    if (dimension != 3)
        fail("points with " + std::to_string(dimension) + " coordinates: 3 are needed");
    for (std::uint64_t i = 0; options.bAttributes && i < numAttributes && i < line.size(); ++i)
        attributes.add(4 + static_cast<std::size_t>(i), "attribute" + std::to_string(i + 1));
    if (options.bAttributes && numMarkers > 0)
        attributes.add(4 + static_cast<std::size_t>(numAttributes), "marker");
}

void NodeReader::takeNode(std::uint64_t index, PointSet& set) {
    std::string_view line = takeVertexLine(index, numNodes);
    std::uint64_t number = 0;
    cut(line, Separator::BLANKS, words);
    if (!parseCount(takeWord(line), number) || number != base + index) {
        base = index == 0 && number == 1 ? 1 : base;
        if (number != base + index) {
            fail(quoted(words[0]) + " is not the number of the next point, " +
                 std::to_string(base + index));
        }
    }
    set.points.push_back(takePoint(line));
    const std::uint64_t numWanted = 4 + numAttributes + numMarkers;
    if (words.size() != numWanted) {
        fail(std::to_string(words.size()) + " columns, where the counts promise " +
             std::to_string(numWanted));
    }
    attributes.take(words);
}

}  // namespace tool
