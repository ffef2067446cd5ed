#include "PlyReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "InputError.h"

namespace tool {

using VARN3D::Point3;

namespace {

int axisOf(std::string_view propertyName) {
    const std::string_view axes = "xyz";
    return propertyName.size() == 1 && axes.find(propertyName[0]) != std::string_view::npos
               ? propertyName[0] - 'x'
               : -1;
}

bool parseCount(std::string_view text, std::uint64_t& count) {
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, count);
    return result.ec == std::errc() && result.ptr == end;
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

PlyReader::PlyReader(std::string_view content, const std::string& name)
    : lines(content), fileName(name) {}

std::vector<Point3> PlyReader::read() {
    parseHeader();
    data = lines.rest();
    std::vector<Point3> points;
    for (const Element& element : elements) {
        const bool bVertices = element.name == "vertex";
        std::vector<Point3>* const pPoints = bVertices ? &points : nullptr;
        if (encoding == Encoding::ascii) {
            readAsciiElement(element, pPoints);
        } else {
            readBinaryElement(element, pPoints);
        }
        if (bVertices) {
            break;
        }
    }
    return points;
}

// ---- The header

void PlyReader::parseHeader() {
    std::string_view line;
    if (!lines.next(line) || trimmed(line) != "ply") {
        throw InputError(fileName, 1, "not a PLY file: its first line is not \"ply\"");
    }
    bool bFormat = false;
    while (lines.next(line)) {
        const std::string_view keyword = takeWord(line);
        if (keyword == "end_header") {
            const auto isVertex = [](const Element& element) { return element.name == "vertex"; };
            const auto vertices = std::find_if(elements.begin(), elements.end(), isVertex);
            if (!bFormat) {
                failAtLine("the header names no format");
            }
            if (vertices == elements.end()) {
                failAtLine("the header names no vertex element");
            }
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
            failAtLine("unknown header line " + quoted(keyword));
        }
    }
    failAtLine("the header has no end");
}

void PlyReader::parseFormat(std::string_view words) {
    const std::string_view name = takeWord(words);
    if (name == "ascii") {
        encoding = Encoding::ascii;
    } else if (name == "binary_little_endian") {
        encoding = Encoding::littleEndian;
    } else if (name == "binary_big_endian") {
        encoding = Encoding::bigEndian;
    } else {
        failAtLine("unknown format " + quoted(name));
    }
    const std::string_view version = takeWord(words);
    if (version != "1.0") {
        failAtLine("unknown format version " + quoted(version));
    }
}

void PlyReader::parseElement(std::string_view words) {
    Element element;
    element.name = takeWord(words);
    const std::string_view count = takeWord(words);
    if (element.name.empty() || !parseCount(count, element.count)) {
        failAtLine(quoted(count) + " is not a number of elements");
    }
    const auto sameName = [&](const Element& other) { return other.name == element.name; };
    if (std::any_of(elements.begin(), elements.end(), sameName)) {
        failAtLine("a second element " + quoted(element.name));
    }
    elements.push_back(element);
}

void PlyReader::parseProperty(std::string_view words) {
    if (elements.empty()) {
        failAtLine("a property before the first element");
    }
    Property property = {};
    std::string_view type = takeWord(words);
    property.bList = type == "list";
    if (property.bList) {
        const std::string_view countType = takeWord(words);
        property.countType = parseScalar(countType);
        if (property.countType.bFloat) {
            failAtLine("a list can't be counted in " + quoted(countType));
        }
        type = takeWord(words);
    }
    property.type = parseScalar(type);
    const std::string_view name = takeWord(words);
    if (name.empty()) {
        failAtLine("a property without a name");
    }
    Element& element = elements.back();
    property.axis = element.name == "vertex" ? axisOf(name) : -1;
    if (property.axis >= 0 && property.bList) {
        failAtLine("the vertex property " + quoted(name) + " is a list");
    }
    element.properties.push_back(property);
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
    for (const auto& scalar : scalars) {
        if (word == scalar.name || word == scalar.sizedName) {
            return scalar.type;
        }
    }
    failAtLine("unknown property type " + quoted(word));
}

void PlyReader::checkVertexElement(const Element& element) const {
    for (int axis = 0; axis < 3; ++axis) {
        const auto numNamed = std::count_if(element.properties.begin(), element.properties.end(),
                                            [&](const Property& p) { return p.axis == axis; });
        if (numNamed != 1) {
            failAtLine(std::string(numNamed == 0 ? "no" : "more than one") + " vertex property " +
                       quoted(std::string_view("xyz").substr(static_cast<std::size_t>(axis), 1)));
        }
    }
}

// ---- ASCII data: a line an element

void PlyReader::readAsciiElement(const Element& element, std::vector<Point3>* pPoints) {
    if (element.properties.empty()) {
        return;
    }
    for (std::uint64_t i = 0; i < element.count; ++i) {
        std::string_view line;
        do {
            if (!lines.next(line)) {
                failAtLine("the file ends before " + printable(element.name) + " " +
                           std::to_string(i) + " of " + std::to_string(element.count));
            }
        } while (trimmed(line).empty());
        double xyz[3] = {};
        readAsciiLine(element, line, xyz);
        if (pPoints) {
            pPoints->emplace_back(xyz[0], xyz[1], xyz[2]);
        }
    }
}

void PlyReader::readAsciiLine(const Element& element, std::string_view line,
                              double (&xyz)[3]) const {
    for (const Property& property : element.properties) {
        if (property.bList) {
            const std::string_view word = takeWord(line);
            std::uint64_t length = 0;
            if (!parseCount(word, length)) {
                failAtLine(quoted(word) + " is not the length of a list");
            }
            for (; length > 0; --length) {
                takeAsciiNumber(line);
            }
        } else if (property.axis >= 0) {
            xyz[property.axis] = takeAsciiNumber(line);
        } else if (takeWord(line).empty()) {
            failAtLine("fewer values than the header names");
        }
    }
    if (!trimmed(line).empty()) {
        failAtLine("more values than the header names");
    }
}

double PlyReader::takeAsciiNumber(std::string_view& line) const {
    const std::string_view word = takeWord(line);
    if (word.empty()) {
        failAtLine("fewer values than the header names");
    }
    double value = 0;
    if (const char* problem = parseNumber(word, value)) {
        failAtLine(quoted(word) + problem);
    }
    return value;
}

// ---- Binary data

void PlyReader::readBinaryElement(const Element& element, std::vector<Point3>* pPoints) {
    std::uint64_t smallestRecord = 0;
    for (const Property& property : element.properties) {
        smallestRecord += property.bList ? property.countType.size : property.type.size;
    }
    if (smallestRecord == 0) {
        return;
    }
    if (pPoints) {
        pPoints->reserve(std::min(element.count, data.size() / smallestRecord));
    }
    for (std::uint64_t i = 0; i < element.count; ++i) {
        double xyz[3] = {};
        readBinaryRecord({&element, i}, xyz);
        if (pPoints) {
            pPoints->emplace_back(xyz[0], xyz[1], xyz[2]);
        }
    }
}

void PlyReader::readBinaryRecord(const Place& place, double (&xyz)[3]) {
    for (const Property& property : place.pElement->properties) {
        if (property.bList) {
            const Scalar& countType = property.countType;
            const double length = decode(takeBytes(countType.size, place), countType);
            if (length < 0) {
                failAtPlace(place, "a list of negative length");
            }
            takeBytes(static_cast<std::uint64_t>(length) * property.type.size, place);
            continue;
        }
        const std::string_view bytes = takeBytes(property.type.size, place);
        if (property.axis >= 0) {
            const double value = decode(bytes, property.type);
            if (!std::isfinite(value)) {
                failAtPlace(place, std::string(1, "xyz"[property.axis]) + " is not finite");
            }
            xyz[property.axis] = value;
        }
    }
}

std::string_view PlyReader::takeBytes(std::uint64_t numBytes, const Place& place) {
    if (numBytes > data.size()) {
        failAtPlace(place, "the file ends here, " + std::to_string(place.pElement->count) +
                               " were promised");
    }
    const std::string_view bytes = data.substr(0, numBytes);
    data.remove_prefix(numBytes);
    return bytes;
}

double PlyReader::decode(std::string_view bytes, const Scalar& type) const {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < type.size; ++i) {
        const std::size_t at = encoding == Encoding::bigEndian ? i : type.size - 1 - i;
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

void PlyReader::failAtLine(const std::string& problem) const {
    throw InputError(fileName, lines.lineNumber(), problem);
}

void PlyReader::failAtPlace(const Place& place, const std::string& problem) const {
    throw InputError(fileName, printable(place.pElement->name) + " " + std::to_string(place.index) +
                                   ": " + problem);
}

}  // namespace tool
