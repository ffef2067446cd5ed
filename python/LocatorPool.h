#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "dt3Library/PointLocator.h"

namespace varn3d_python {

/// Locators to be used again: each knows where its last query ended and what it has learnt of the
/// mesh, and only one thread at a time may use it.
class LocatorPool {
  public:
    explicit LocatorPool(const VARN3D::Varn_3D& theMesh) : mesh(theMesh) {}

    /// Lends a locator for the time of its scope.
    class Loan {
      public:
        explicit Loan(LocatorPool& thePool) : pool(thePool), locator(pool.take()) {}
        ~Loan() { pool.giveBack(std::move(locator)); }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        VARN3D::PointLocator* operator->() { return locator.get(); }

      private:
        LocatorPool& pool;
        std::unique_ptr<VARN3D::PointLocator> locator;
    };

  private:
    std::unique_ptr<VARN3D::PointLocator> take() {
        const std::lock_guard<std::mutex> alone(access);
        if (idle.empty()) {
            // So that giving it back needs no memory.
            idle.reserve(++numMade);
            return std::make_unique<VARN3D::PointLocator>(mesh);
        }
        auto locator = std::move(idle.back());
        idle.pop_back();
        return locator;
    }
    void giveBack(std::unique_ptr<VARN3D::PointLocator> locator) {
        const std::lock_guard<std::mutex> alone(access);
        idle.push_back(std::move(locator));
    }

    const VARN3D::Varn_3D& mesh;
    std::mutex access;
    std::size_t numMade = 0;
    std::vector<std::unique_ptr<VARN3D::PointLocator>> idle;
};

}  // namespace varn3d_python
