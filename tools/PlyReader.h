#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/PointReader.h"

namespace tool {

/// Reads the vertices of a PLY file: ASCII, or binary of either byte order. Of the vertex element
/// the scalar properties x, y and z are the point and the other scalars its attributes; lists are
/// skipped, and what follows the vertices is not looked at.
///
/// No number of the header is trusted: memory is taken in proportion to the size of the file only.
class PlyReader : public PointReader {
  public:
    using PointReader::PointReader;

    /// An InputError names the line for the header and ASCII data, the element and its index
    /// (counted from 0) for binary data.
    PointSet read() override;

  private:
    enum class Encoding { ASCII, LITTLE, BIG };

    struct Scalar {
        std::size_t size;
        bool bSigned;
        bool bFloat;
    };

    struct Property {
        Scalar type;
        bool bList;
        Scalar countType;
        /// Where its value goes: 0, 1, 2 for the vertex properties x, y, z, from 3 on for those
        /// that are attributes; -1 for every other one.
        int slot;
    };

    struct Element {
        std::string name;
        std::uint64_t count;
        std::vector<Property> properties;
    };

    /// A place in the file: the element and its index.
    struct Place {
        const Element* pElement;
        std::uint64_t index;
    };

    void parseHeader();
    void parseFormat(std::string_view words);
    void parseElement(std::string_view words);
    void parseProperty(std::string_view words);
    Scalar parseScalar(std::string_view word) const;
    void checkVertexElement(const Element& element) const;

    int takeSlot(std::string_view name, const std::string& element, bool bList);
    void addVertex();

    void readAsciiElement(const Element& element, bool bVertices);
    void readAsciiLine(const Element& element, std::string_view line);
    std::string_view takeAsciiValue(std::string_view& line) const;
    double parseAsciiValue(std::string_view word, bool bFinite) const;

    void readBinaryElement(const Element& element, bool bVertices);
    void readBinaryRecord(const Place& place);
    std::string_view takeBytes(std::uint64_t numBytes, const Place& place);
    double decode(std::string_view bytes, const Scalar& type) const;

    [[noreturn]] void failAtPlace(const Place& place, const std::string& problem) const;

    Encoding encoding = Encoding::ASCII;
    std::vector<Element> elements;
    /// The binary data that has not been read yet.
    std::string_view data;
    PointSet set;
    /// The values of the vertex that is being read, by slot.
    std::vector<double> values = {0, 0, 0};
};

}  // namespace tool
