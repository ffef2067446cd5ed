#include "dt3Library/Iterators.h"

#include "dt3Library/base/messages.h"
#include "dt3Library/tools.h"

/// The circulator's checks are known by the header's name and these lines.
#define circulatorCheck(condition, text, line) \
    varnAssertAt(condition, text, "dt3Library/Iterators.h", line)

namespace VARN3D {

TetAroundEdgeIterator::TetAroundEdgeIterator(const Edge3& edge) : current(edge) {}

TetAroundEdgeIterator::TetAroundEdgeIterator(const TetAroundEdgeIterator& other)
    : current(other.current), storedPayload(other.storedPayload) {}

TetAroundEdgeIterator& TetAroundEdgeIterator::operator++() {
    const Point3* source = current.getSourceVtx();
    const Point3* target = current.getTargetVtx();
    Tet3* next = previewNextTet();
    const int k = next->getIntraTetIndex(current.getTet());
    int j = 0;
    while (j == k || next->getCorner(j) == source || next->getCorner(j) == target) ++j;
    current = Edge3(next, k, j);
    return *this;
}

bool TetAroundEdgeIterator::operator==(const TetAroundEdgeIterator& other) const {
    return current == other.current && **this == *other;
}

void TetAroundEdgeIterator::setPayload(Tet3* pTet) {
    circulatorCheck(storedPayload == nullptr, "storedPayload==NULL", 60);
    storedPayload = pTet;
}

Tet3* TetAroundEdgeIterator::getPayload() const {
    circulatorCheck(storedPayload != nullptr, "storedPayload!=NULL", 65);
    return storedPayload;
}

void TetAroundEdgeIterator::setPayloadICI(int ici) {
    circulatorCheck(storedPayloadICI == -1, "storedPayloadICI==-1", 70);
    storedPayloadICI = ici;
}

int TetAroundEdgeIterator::getPayloadICI() const {
    circulatorCheck(storedPayloadICI != -1, "storedPayloadICI!=-1", 75);
    return storedPayloadICI;
}

void TetAroundEdgeIterator::debug() const {
    const char* const rule = "-----------------------------------";
    messageStream() << rule << std::endl << "# This is a TetAroundEdgeIterator:" << std::endl;
    messageStream() << current << rule << std::endl << std::endl;
}

}  // namespace VARN3D
