#include "dt3Library/Visualizer3.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <locale>

#include "dt3Library/base/messages.h"
#include "dt3Library/tools.h"

namespace VARN3D {

namespace {

/// Only these many colours, from the first on, are handed out in turn.
constexpr int NUM_CYCLED_COLORS = 14;

std::atomic<int> colorCursor{0};

}  // namespace

const char* const Visualizer3::colorArray[NUM_COLORS] = {
    "0 0.749 1 0.5",
    "0 0.1 .803 0.5",
    "1 1 0 0.5",
    "1 0.411 0.705 0.5",
    "0.1 0.1 0.1 0.5",
    "0.823 0.705 0.549 0.5",
    "0.545 0.271 0.074 0.5",
    "1 0.627 0 0.5",
    "0.627 0.125 0.941 0.5",
    ".745 .745 .745 0.5",
    ".445 .445 .445 0.5",
    "1 0 0 0.5",
    "0 1 0 0.5",
    "1 1 1 0.5",
    ".86 .08 .24 0.5",
    "1 .55 0 0.5",
    ".85 .65 .13 0.5",
    ".5 .5 .0 0.5",
    "0.49\t0.99 0.00 0.5",
    "0.68 1.00 0.18 0.5",
    "0.60\t0.98 0.60 0.5",
    "0.00 0.98 0.60 0.5",
    "0.13 0.70 0.67 0.5",
    "0.00 1.00 1.00 0.5",
    "0.27 0.51 0.71 0.5",
    "0.10 0.10 0.44 0.5",
    "0.96 0.87 0.7 0.5",
};

Visualizer3::Visualizer3(const std::string& fileName) {
    messageStream() << "Visualizer, writing " << fileName << std::endl;
    out.open(fileName);
    if (!out) {
        messageStream() << fileName << " not open" << std::endl;
        std::exit(1);
    }
    messageStream() << "  Writing " << fileName << std::endl;
    out.imbue(std::locale::classic());  // OOGL knows no decimal comma, whatever the host's locale
    out << "LIST" << std::endl << "{" << std::endl;
}

Visualizer3::~Visualizer3() {
    close();
}

void Visualizer3::close() {
    if (!out.is_open()) return;
    out << "}" << std::endl;
    out.close();
}

void Visualizer3::writeCoordinates(const Point3& p) {
    out << p.x() << " " << p.y() << " " << p.z();
}

void Visualizer3::writePoints(const std::vector<Point3>& vPoints, int lineWidth,
                              const std::string& color) {
    if (vPoints.empty()) {
        printWarning("Visualizer3::writePoints", "vPoints.empty()");
        return;
    }
    const std::size_t n = vPoints.size();
    out << "LIST\n{\nappearance{linewidth " << lineWidth << "}" << std::endl;
    out << "VECT" << std::endl;
    out << n << " " << n << " 1" << std::endl;
    for (std::size_t i = 0; i < n; ++i) out << "1 ";
    out << std::endl;
    out << "1 ";
    for (std::size_t i = 1; i < n; ++i) out << "0 ";
    out << std::endl;
    for (const Point3& p : vPoints) {
        writeCoordinates(p);
        out << "\n";
    }
    out << color << std::endl << "}" << std::endl;
}

void Visualizer3::writeSegment(const Point3& p, const Point3& q, const std::string& color) {
    out << "{" << std::endl << "VECT" << std::endl << "1 2 1" << std::endl;
    out << "2" << std::endl << "1" << std::endl;
    writeCoordinates(p);
    out << "\n";
    writeCoordinates(q);
    out << "\n" << color << std::endl << "}" << std::endl;
}

void Visualizer3::writeTriangle(const Point3& a, const Point3& b, const Point3& c,
                                const std::string& color) {
    out << "{" << std::endl << "OFF" << std::endl << "3 1 0" << std::endl;
    for (const Point3* corner : {&a, &b, &c}) {
        writeCoordinates(*corner);
        out << std::endl;
    }
    out << "3 0 1 2 " << color << std::endl << "}" << std::endl;
}

void Visualizer3::writeTet(const Tet3* c, const std::string& color) {
    if (c == nullptr) {
        printError("Visualizer3:.writeTet()", "c==NULL");
        return;
    }
    for (int i = 0; i < 4; ++i) {
        const int a = i == 0 ? 1 : 0;
        const int b = i <= 1 ? 2 : 1;
        const int d = i <= 2 ? 3 : 2;
        writeTriangle(*c->getCorner(a), *c->getCorner(b), *c->getCorner(d), color);
    }
}

void Visualizer3::writeBall(const Point3& centre, double squaredRadius) {
    out << "{\nappearance { +edge -face }\nSPHERE " << std::sqrt(squaredRadius) << " ";
    writeCoordinates(centre);
    out << "\n}" << std::endl;
}

std::string Visualizer3::getColorAt(int cursor) {
    if (cursor >= 0 && cursor < NUM_CYCLED_COLORS) return colorArray[cursor];
    messageStream() << "Attention, returning colorArray[13] which is the last available color"
                    << std::endl;
    return colorArray[NUM_CYCLED_COLORS - 1];
}

std::string Visualizer3::getColor() {
    return getColorAt(colorCursor.load());
}

std::string Visualizer3::getNextColor() {
    int cursor = colorCursor.load();
    while (!colorCursor.compare_exchange_weak(cursor, (cursor + 1) % NUM_CYCLED_COLORS)) {
    }
    return getColorAt(cursor);
}

}  // namespace VARN3D
