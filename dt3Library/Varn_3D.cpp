#include "dt3Library/Varn_3D.h"

#include "dt3Library/Dt3.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/engine/hostCalls.h"
#include "dt3Library/engine/star.h"

namespace VARN3D {

Varn_3D::Varn_3D() : pDt3(new Dt3(this)) {}

Varn_3D::~Varn_3D() {
    delete pDt3;
}

bool Varn_3D::is3D() const {
    return pDt3->is3D();
}

int Varn_3D::getDimension() const {
    return pDt3->getDimension();
}

void Varn_3D::insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles) {
    guarded("Varn_3D::insert()", [&] { pDt3->insert(vInputPoints, vUserHandles); });
}

void Varn_3D::insert(const std::vector<Point3>& vInputPoints) {
    std::vector<Point3*> vUserHandles;
    insert(vInputPoints, vUserHandles);
}

void Varn_3D::insert(const double* xyz, std::size_t n, std::vector<Point3*>& vUserHandles) {
    guarded("Varn_3D::insert()", [&] { pDt3->insert(InputPoints(xyz, n), vUserHandles); });
}

Point3* Varn_3D::insert(const Point3& point) {
    return guarded("Varn_3D::insert()", [&] { return pDt3->insert(point); });
}

Tet3* Varn_3D::locate(const Point3& point) {
    return guarded("Varn_3D::locate()", [&] { return pDt3->locate(point); });
}

std::size_t Varn_3D::getNumVertices() const {
    return pDt3->getNumVertices();
}

std::size_t Varn_3D::getNumTetrahedra() const {
    return pDt3->getNumTetrahedra();
}

std::size_t Varn_3D::getNumWaiting() const {
    return pDt3->getNumWaiting();
}

void Varn_3D::getVertices(std::vector<Point3*>& vVertices) const {
    guarded("Varn_3D::getVertices()", [&] { pDt3->getVertices(vVertices); });
}

void Varn_3D::getTetrahedra(std::vector<Tet3*>& vTets) const {
    guarded("Varn_3D::getTetrahedra()", [&] { pDt3->getAllTetrahedra(vTets); });
}

void Varn_3D::getHullFacets(std::vector<Facet3>& vFacets) const {
    guarded("Varn_3D::getHullFacets()", [&] { pDt3->getHullFacets(vFacets); });
}

IndexedMesh Varn_3D::getIndexedMesh() const {
    return guarded("Varn_3D::getIndexedMesh()", [&] { return pDt3->getIndexedMesh(); });
}

void Varn_3D::getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTets) {
    guarded("Varn_3D::getTetsAroundVertex()", [&] { listStar(pVtx, vTets); });
}

bool Varn_3D::checkValidity(const std::string& location, bool checkSphereInc) {
    return guarded("Varn_3D::checkValidity()",
                   [&] { return pDt3->checkValidity(location, checkSphereInc); });
}

void Varn_3D::print(const std::string& label) {
    guarded("Varn_3D::print()", [&] { pDt3->print(label); });
}

void Varn_3D::show(const std::string& filename, Point3* pVertex) {
    guarded("Varn_3D::show()", [&] { pDt3->show(filename, pVertex); });
}

void Varn_3D::setVerbosity(bool bVerbose) {
    pDt3->setVerbosity(bVerbose);
}

void Varn_3D::setMessageStream(std::ostream* pStream) {
    exchangeMessageStream(pStream);
}

}  // namespace VARN3D
