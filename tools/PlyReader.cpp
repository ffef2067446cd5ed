#include "tools/PlyReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "tools/InputError.h"

namespace tool {

namespace {

int axisOf(std::string_view propertyName) {
    const std::string_view axes = "xyz";
    return propertyName.size() == 1 && axes.find(propertyName[0]) != std::string_view::npos
               ? propertyName[0] - 'x'
               : -1;
}

/// The number whose bits, in the machine's own order, are these.
template <class Number, class Bits>
double reinterpreted(Bits bits) {
    static_assert(sizeof(Number) == sizeof(Bits), "a number and its bits");
    Number number;
    std::memcpy(&number, &bits, sizeof number);
    return static_cast<double>(number);
}

}  // namespace

PointSet PlyReader::read() {
    parseHeader();
    data = lines.rest();
    for (const Element& element : elements) {
        const bool bVertices = element.name == "vertex";
        if (encoding == Encoding::ASCII)
            readAsciiElement(element, bVertices);
        else
            readBinaryElement(element, bVertices);
        if (bVertices) break;
    }
    return std::move(set);
}

// ---- The header

void PlyReader::parseHeader() {
    std::string_view line;
    if (!lines.next(line) || trimmed(line) != "ply")
        throw InputError(fileName, 1, "not a PLY file: its first line is not \"ply\"");
    bool bFormat = false;
    while (lines.next(line)) {
        const std::string_view keyword = takeWord(line);
        if (keyword == "end_header") {
            const auto isVertex = [](const Element& element) { return element.name == "vertex"; };
            const auto vertices = std::find_if(elements.begin(), elements.end(), isVertex);
            if (!bFormat) fail("the header names no format");
            if (vertices == elements.end()) fail("the header names no vertex element");
            checkVertexElement(*vertices);
            return;
        }
        if (keyword == "format") {
            parseFormat(line);
            bFormat = true;
        } else if (keyword == "element") {
            parseElement(line);
        } else if (keyword == "property") {
            parseProperty(line);
        } else if (!keyword.empty() && keyword != "comment" && keyword != "obj_info") {
            fail("unknown header line " + quoted(keyword));
        }
    }
    fail("the header has no end");
}

void PlyReader::parseFormat(std::string_view words) {
    const std::string_view name = takeWord(words);
    if (name == "ascii")
        encoding = Encoding::ASCII;
    else if (name == "binary_little_endian")
        encoding = Encoding::LITTLE;
    else if (name == "binary_big_endian")
        encoding = Encoding::BIG;
    else
        fail("unknown format " + quoted(name));
    const std::string_view version = takeWord(words);
    if (version != "1.0") fail("unknown format version " + quoted(version));
}

void PlyReader::parseElement(std::string_view words) {
    Element element;
    element.name = takeWord(words);
    const std::string_view count = takeWord(words);
    if (element.name.empty() || !parseCount(count, element.count))
        fail(quoted(count) + " is not a number of elements");
    const auto sameName = [&](const Element& other) { return other.name == element.name; };
    if (std::any_of(elements.begin(), elements.end(), sameName))
        fail("a second element " + quoted(element.name));
    elements.push_back(element);
}

void PlyReader::parseProperty(std::string_view words) {
    if (elements.empty()) fail("a property before the first element");
    Property property = {};
    std::string_view type = takeWord(words);
    property.bList = type == "list";
    if (property.bList) {
        const std::string_view countType = takeWord(words);
        property.countType = parseScalar(countType);
        if (property.countType.bFloat) fail("a list can't be counted in " + quoted(countType));
        type = takeWord(words);
    }
    property.type = parseScalar(type);
    const std::string_view name = takeWord(words);
    if (name.empty()) fail("a property without a name");
    Element& element = elements.back();
    property.slot = takeSlot(name, element.name, property.bList);
    element.properties.push_back(property);
}

int PlyReader::takeSlot(std::string_view name, const std::string& element, bool bList) {
    if (element != "vertex") return -1;
    const int axis = axisOf(name);
    if (axis >= 0 && bList) fail("the vertex property " + quoted(name) + " is a list");
    if (axis >= 0 || bList || !options.bAttributes) return axis;
    set.attributes.push_back({std::string(name), {}});
    values.push_back(0);
    return static_cast<int>(values.size()) - 1;
}

PlyReader::Scalar PlyReader::parseScalar(std::string_view word) const {
    static const struct {
        const char* name;
        const char* sizedName;
        Scalar type;
    } scalars[] = {
        {"char", "int8", {1, true, false}},    {"uchar", "uint8", {1, false, false}},
        {"short", "int16", {2, true, false}},  {"ushort", "uint16", {2, false, false}},
        {"int", "int32", {4, true, false}},    {"uint", "uint32", {4, false, false}},
        {"float", "float32", {4, true, true}}, {"double", "float64", {8, true, true}},
    };
    for (const auto& scalar : scalars)
        if (word == scalar.name || word == scalar.sizedName) return scalar.type;
    fail("unknown property type " + quoted(word));
}

void PlyReader::checkVertexElement(const Element& element) const {
    for (int axis = 0; axis < 3; ++axis) {
        const auto numNamed = std::count_if(element.properties.begin(), element.properties.end(),
                                            [&](const Property& p) { return p.slot == axis; });
        if (numNamed != 1) {
            fail(std::string(numNamed == 0 ? "no" : "more than one") + " vertex property " +
                 quoted(std::string_view("xyz").substr(static_cast<std::size_t>(axis), 1)));
        }
    }
}

void PlyReader::addVertex() {
    set.points.emplace_back(values[0], values[1], values[2]);
    for (std::size_t i = 0; i < set.attributes.size(); ++i)
        set.attributes[i].values.push_back(values[3 + i]);
}

// ---- ASCII data: a line an element

void PlyReader::readAsciiElement(const Element& element, bool bVertices) {
    if (element.properties.empty()) return;
    for (std::uint64_t i = 0; i < element.count; ++i) {
        std::string_view line;
        do {
            if (!lines.next(line)) {
                fail("the file ends before " + printable(element.name) + " " + std::to_string(i) +
                     " of " + std::to_string(element.count));
            }
        } while (trimmed(line).empty());
        tellShare();
        readAsciiLine(element, line);
        if (bVertices) addVertex();
    }
}

void PlyReader::readAsciiLine(const Element& element, std::string_view line) {
    for (const Property& property : element.properties) {
        const std::string_view word = takeAsciiValue(line);
        if (property.bList) {
            std::uint64_t length = 0;
            if (!parseCount(word, length)) fail(quoted(word) + " is not the length of a list");
            for (; length > 0; --length) takeAsciiValue(line);
        } else if (property.slot >= 0) {
            const auto slot = static_cast<std::size_t>(property.slot);
            values[slot] = parseAsciiValue(word, slot < 3);
        }
    }
    if (!trimmed(line).empty()) fail("more values than the header names");
}

std::string_view PlyReader::takeAsciiValue(std::string_view& line) const {
    const std::string_view word = takeWord(line);
    if (word.empty()) fail("fewer values than the header names");
    return word;
}

double PlyReader::parseAsciiValue(std::string_view word, bool bFinite) const {
    double value = 0;
    const char* const problem = parseNumber(word, value);
    if (problem && (bFinite || !parseAnyNumber(word, value))) fail(quoted(word) + problem);
    return value;
}

// ---- Binary data

void PlyReader::readBinaryElement(const Element& element, bool bVertices) {
    std::uint64_t smallestRecord = 0;
    for (const Property& property : element.properties)
        smallestRecord += property.bList ? property.countType.size : property.type.size;
    if (smallestRecord == 0) return;
    if (bVertices) {
        const std::uint64_t mostPossible = data.size() / smallestRecord;
        set.points.reserve(static_cast<std::size_t>(std::min(element.count, mostPossible)));
    }
    for (std::uint64_t i = 0; i < element.count; ++i) {
        readBinaryRecord({&element, i});
        if (bVertices) addVertex();
    }
}

void PlyReader::readBinaryRecord(const Place& place) {
    for (const Property& property : place.pElement->properties) {
        if (property.bList) {
            const Scalar& countType = property.countType;
            const double length = decode(takeBytes(countType.size, place), countType);
            if (length < 0) failAtPlace(place, "a list of negative length");
            takeBytes(static_cast<std::uint64_t>(length) * property.type.size, place);
            continue;
        }
        const std::string_view bytes = takeBytes(property.type.size, place);
        if (property.slot >= 0) {
            const auto slot = static_cast<std::size_t>(property.slot);
            values[slot] = decode(bytes, property.type);
            if (slot < 3 && !std::isfinite(values[slot]))
                failAtPlace(place, std::string(1, "xyz"[slot]) + " is not finite");
        }
    }
}

std::string_view PlyReader::takeBytes(std::uint64_t numBytes, const Place& place) {
    if (numBytes > data.size()) {
        failAtPlace(place, "the file ends here, " + std::to_string(place.pElement->count) +
                               " were promised");
    }
    const std::string_view bytes = data.substr(0, static_cast<std::size_t>(numBytes));
    data.remove_prefix(bytes.size());
    return bytes;
}

double PlyReader::decode(std::string_view bytes, const Scalar& type) const {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < type.size; ++i) {
        const std::size_t at = encoding == Encoding::BIG ? i : type.size - 1 - i;
        bits = bits << 8 | static_cast<unsigned char>(bytes[at]);
    }
    if (type.bFloat) {
        return type.size == 8 ? reinterpreted<double>(bits)
                              : reinterpreted<float>(static_cast<std::uint32_t>(bits));
    }
    const std::uint64_t signBit = std::uint64_t{1} << (8 * type.size - 1);
    const auto magnitude = static_cast<double>(bits);
    return type.bSigned && (bits & signBit) != 0 ? magnitude - 2 * static_cast<double>(signBit)
                                                 : magnitude;
}

void PlyReader::failAtPlace(const Place& place, const std::string& problem) const {
    throw InputError(fileName, printable(place.pElement->name) + " " + std::to_string(place.index) +
                                   ": " + problem);
}

}  // namespace tool
