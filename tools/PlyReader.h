#pragma once

#include <dt3Library/Varn_3D.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "parsing.h"

namespace tool {

/// Reads the vertices of a PLY file: ASCII, or binary of either byte order. Of the vertex element
/// the scalar properties x, y and z count, everything else is skipped; what follows the vertices is
/// not looked at.
///
/// No number of the header is trusted: memory is taken in proportion to the size of the file only.
class PlyReader {
  public:
    PlyReader(std::string_view content, const std::string& fileName);

    /// All vertices, in the order of the file. Throws InputError, which names the line for the
    /// header and ASCII data, the element and its index (counted from 0) for binary data.
    std::vector<VARN3D::Point3> read();

  private:
    enum class Encoding { ascii, littleEndian, bigEndian };

    struct Scalar {
        std::size_t size;
        bool bSigned;
        bool bFloat;
    };

    struct Property {
        Scalar type;
        bool bList;
        Scalar countType;
        /// 0, 1, 2 for the vertex properties x, y, z; -1 for every other one.
        int axis;
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

    void readAsciiElement(const Element& element, std::vector<VARN3D::Point3>* pPoints);
    void readAsciiLine(const Element& element, std::string_view line, double (&xyz)[3]) const;
    double takeAsciiNumber(std::string_view& line) const;

    void readBinaryElement(const Element& element, std::vector<VARN3D::Point3>* pPoints);
    void readBinaryRecord(const Place& place, double (&xyz)[3]);
    std::string_view takeBytes(std::uint64_t numBytes, const Place& place);
    double decode(std::string_view bytes, const Scalar& type) const;

    [[noreturn]] void failAtLine(const std::string& problem) const;
    [[noreturn]] void failAtPlace(const Place& place, const std::string& problem) const;

    LineCursor lines;
    std::string fileName;
    Encoding encoding = Encoding::ascii;
    std::vector<Element> elements;
    /// The binary data that has not been read yet.
    std::string_view data;
};

}  // namespace tool
