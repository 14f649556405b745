#pragma once

#include "Arrays.h"

#include <Korvane/Object.h>
#include <Pelon/Ptr.h>
#include <TessaryMesh/Check.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace TessaryPython {

/// A mesh or a point cloud as the package holds it: never changed once it is made, so that threads may
/// work on it while others replace its properties, which makes another one.
///
/// The kernels trust their callers with what a mesh holds, and Python must not crash. So nothing is handed
/// to a kernel that was not validated since anybody could last have changed it.
class Geometry {
public:
    using ObjectPtr = Pelon::Ptr<Korvane::Object>;
    enum class Trust {
        Checked,    ///< known to be without errors
        Unchecked,  ///< to be validated when it is first used
        Changeable  ///< of memory that Python can write into: to be looked at whenever it is used
    };

    Geometry(ObjectPtr object, Trust trust) : m_object(std::move(object)), m_trust(trust) {}
    Geometry(const Geometry& other)
        : m_object(other.m_object), m_trust(other.trust()), m_concave(other.knownConcave())
    {}
    Geometry& operator=(const Geometry&) = delete;

    const ObjectPtr& object() const { return m_object; }
    Trust trust() const { return m_trust.load(std::memory_order_relaxed); }

    /// Of what is made of this: it shares arrays.
    Trust resultTrust() const
    {
        return trust() == Trust::Changeable ? Trust::Changeable : Trust::Checked;
    }

    bool hasFaces() const;
    std::size_t pointCount() const;
    std::size_t cornerCount() const;

    /// Throws InvalidMesh, now or not, as trust() says. Needs no lock of the interpreter.
    void requireValid() const;

    /// Of a mesh without errors, looked for once where nobody can change it. Needs no lock of the interpreter.
    std::shared_ptr<const TessaryMesh::ConcaveFaces> concaveFaces() const;

    /// What a copy found out, this knows too.
    void learnFrom(const Geometry& copy) const;

private:
    using ConcavePtr = std::shared_ptr<const TessaryMesh::ConcaveFaces>;

    ConcavePtr knownConcave() const;

    ObjectPtr m_object;
    mutable std::atomic<Trust> m_trust;
    mutable std::mutex m_mutex;
    mutable ConcavePtr m_concave;  // guarded by m_mutex; null where nobody looked
};

}  // namespace TessaryPython
