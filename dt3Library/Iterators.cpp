#include "dt3Library/Iterators.h"

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/messages.h"

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
    engineCheck(storedPayload == nullptr, checks::PAYLOAD_FREE);
    storedPayload = pTet;
}

Tet3* TetAroundEdgeIterator::getPayload() const {
    engineCheck(storedPayload != nullptr, checks::PAYLOAD_SET);
    return storedPayload;
}

void TetAroundEdgeIterator::setPayloadICI(int ici) {
    engineCheck(storedPayloadICI == -1, checks::PAYLOAD_INDEX_FREE);
    storedPayloadICI = ici;
}

int TetAroundEdgeIterator::getPayloadICI() const {
    engineCheck(storedPayloadICI != -1, checks::PAYLOAD_INDEX_SET);
    return storedPayloadICI;
}

void TetAroundEdgeIterator::debug() const {
    const char* const rule = "-----------------------------------";
    messageStream() << rule << std::endl << "# This is a TetAroundEdgeIterator:" << std::endl;
    messageStream() << current << rule << std::endl << std::endl;
}

}  // namespace VARN3D
