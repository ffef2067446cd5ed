#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "dt3Library/Point3.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// Names of the palette's colours, in its order.
enum Color3 {
    LIGHTBLUE,
    DARKBLUE,
    YELLOW,
    PINK,
    BLACK,
    LIGHTBROWN,
    DARKBROWN,
    ORANGE,
    PURPLE,
    GRAY,
    LIGHTGRAY,
    RED,
    GREEN,
    WHITE,
    CRIMSON,
    CDARKORANGE,
    CGOLDENROD,
    COLIVE,
    CLAWNGREEN,
    CGREENYELLOW,
    CPALEGREEN,
    CMEDSPRINGGREEN,
    CLIGHTSEAGREAN,
    CCYAN,
    CSTEELBLUE,
    MIDNIGHTBLUE,
    CWHEAT,
    NUM_COLORS
};

/// Writes shapes to a file in Geomview's OOGL text format, one list of objects.
///
/// Numbers are written with 6 digits. Only that the file opens is checked: a disk that fills up
/// leaves a shorter file.
///
/// Colours are OOGL texts of four numbers (red, green, blue, alpha). The cursor that hands out the
/// palette's first fourteen in turn is shared by the whole process. A file that can't be opened is
/// reported on standard output and ends the process with code 1.
class Visualizer3 {
  public:
    /// The palette as colour texts.
    static const char* const colorArray[NUM_COLORS];

    /// Opens the file, or overwrites it, and starts the list. Prints two lines.
    explicit Visualizer3(const std::string& fileName);
    ~Visualizer3();
    Visualizer3(const Visualizer3&) = delete;
    Visualizer3& operator=(const Visualizer3&) = delete;

    /// Ends the list and closes the file; doing so twice is harmless.
    void close();

    /// Points of a size in pixels; an empty list is only warned of.
    void writePoints(const std::vector<Point3>& vPoints, int lineWidth, const std::string& color);
    /// An object of its own for each shape.
    void writeSegment(const Point3& p, const Point3& q, const std::string& color);
    void writeTriangle(const Point3& a, const Point3& b, const Point3& c, const std::string& color);
    /// The four facets; null is only reported.
    void writeTet(const Tet3* c, const std::string& color);
    void writeBall(const Point3& centre, double squaredRadius);

    /// The colour at a position of the cursor, 0 to 13. For any other it prints a line and
    /// gives the last of these colours.
    static std::string getColorAt(int cursor);
    /// The colour at the cursor.
    static std::string getColor();
    /// The same, and moves the cursor on.
    static std::string getNextColor();

  private:
    void writeCoordinates(const Point3& p);

    std::ofstream out;
};

}  // namespace VARN3D
