#include "dt3Library/Varn_3D.h"

#include <utility>

#include "dt3Library/Dt3.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/engine/hostCalls.h"
#include "dt3Library/engine/star.h"

namespace VARN3D {

Varn_3D::Varn_3D() : pDt3(std::make_unique<Dt3>()) {}

Varn_3D::~Varn_3D() = default;
Varn_3D::Varn_3D(Varn_3D&&) noexcept = default;
Varn_3D& Varn_3D::operator=(Varn_3D&&) noexcept = default;

Dt3& Varn_3D::engine() const {
    engineCheck(pDt3 != nullptr, checks::FACADE_HAS_ENGINE);
    return *pDt3;
}

bool Varn_3D::is3D() const {
    return engine().is3D();
}

int Varn_3D::getDimension() const {
    return engine().getDimension();
}

void Varn_3D::insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles) {
    guarded("Varn_3D::insert()", [&] { engine().insert(vInputPoints, vUserHandles); });
}

void Varn_3D::insert(const std::vector<Point3>& vInputPoints) {
    std::vector<Point3*> vUserHandles;
    insert(vInputPoints, vUserHandles);
}

void Varn_3D::insert(const double* xyz, std::size_t n, std::vector<Point3*>& vUserHandles) {
    guarded("Varn_3D::insert()", [&] { engine().insert(InputPoints(xyz, n), vUserHandles); });
}

Point3* Varn_3D::insert(const Point3& point) {
    return guarded("Varn_3D::insert()", [&] { return engine().insert(point); });
}

std::size_t Varn_3D::insertWaiting() {
    return guarded("Varn_3D::insertWaiting()", [&] { return engine().insertWaiting(); });
}

void Varn_3D::setProgress(std::function<bool(std::size_t done, std::size_t total)> function) {
    engine().getProgress().setFunction(std::move(function));
}

Tet3* Varn_3D::locate(const Point3& point) {
    return guarded("Varn_3D::locate()", [&] { return engine().locate(point); });
}

std::size_t Varn_3D::getNumVertices() const {
    return engine().getNumVertices();
}

std::size_t Varn_3D::getNumTetrahedra() const {
    return engine().getNumTetrahedra();
}

std::size_t Varn_3D::getNumWaiting() const {
    return engine().getNumWaiting();
}

void Varn_3D::getVertices(std::vector<Point3*>& vVertices) const {
    guarded("Varn_3D::getVertices()", [&] { engine().getVertices(vVertices); });
}

void Varn_3D::getTetrahedra(std::vector<Tet3*>& vTets) const {
    guarded("Varn_3D::getTetrahedra()", [&] { engine().getAllTetrahedra(vTets); });
}

void Varn_3D::getHullFacets(std::vector<Facet3>& vFacets) const {
    guarded("Varn_3D::getHullFacets()", [&] { engine().getHullFacets(vFacets); });
}

IndexedMesh Varn_3D::getIndexedMesh() const {
    return guarded("Varn_3D::getIndexedMesh()", [&] { return engine().getIndexedMesh(); });
}

void Varn_3D::getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTets) {
    guarded("Varn_3D::getTetsAroundVertex()", [&] { listStar(pVtx, vTets); });
}

bool Varn_3D::checkValidity(const std::string& location, bool checkSphereInc) {
    return guarded("Varn_3D::checkValidity()",
                   [&] { return engine().checkValidity(location, checkSphereInc); });
}

void Varn_3D::print(const std::string& label) {
    guarded("Varn_3D::print()", [&] { engine().print(label); });
}

void Varn_3D::show(const std::string& filename, Point3* pVertex) {
    guarded("Varn_3D::show()", [&] { engine().show(filename, pVertex); });
}

void Varn_3D::setVerbosity(bool bVerbose) {
    engine().setVerbosity(bVerbose);
}

void Varn_3D::setMessageStream(std::ostream* pStream) {
    exchangeMessageStream(pStream);
}

}  // namespace VARN3D
