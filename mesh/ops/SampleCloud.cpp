#include <TessaryMesh/Operations.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "base/MessageText.h"
#include "base/ParallelBlocks.h"
#include "base/Scalars.h"
#include "base/Vectors.h"
#include "ops/FanParents.h"
#include "ops/ParentMaps.h"
#include "ops/PropertyPlan.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <type_traits>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using namespace Korvane::Math;
using Common::DataInterpolationMode;

template <class Body>
void forEach(std::size_t count, const Body& body)
{
    forEachRange(count, 1024, [&body](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i)
            body(i);
    });
}

// Real numbers and vectors of them are blended.
template <class T>
constexpr bool isReal =
    Scalars<T>::kRows == 0 && std::is_floating_point_v<typename Scalars<T>::Type>;

template <class T>
T blended(const T& v0, const T& v1, const T& v2, const float* w)
{
    T blend{};
    for (unsigned k = 0; k < Scalars<T>::kCount; ++k)
        scalarsOf(&blend)[k] =
            (scalarsOf(&v1)[k] * w[1] + scalarsOf(&v2)[k] * w[2]) + scalarsOf(&v0)[k] * w[0];
    return blend;
}

int largest(const float* w)
{
    return w[0] >= w[1] && w[0] >= w[2] ? 0 : w[1] >= w[2] ? 1 : 2;
}

// Where samples lie on a polygon mesh.
class Places {
public:
    Places(const Object& mesh, const SurfaceSamples& samples)
        : m_mesh(mesh), m_samples(samples), m_faceIds(makeMutable<Array<uint>>(samples.count()))
    {
        const Ptr<Array<uint>> faces = facesOfTriangles(*m_mesh.faceOffset);
        uint* const ids = m_faceIds->data();
        forEach(samples.count(),
                [&](std::size_t i) { ids[i] = (*faces)[(*samples.triangles)[i]]; });
    }

    std::size_t count() const { return m_faceIds->size(); }
    Ptr<Array<uint>> faceIds() const { return m_faceIds; }
    const float* weights(std::size_t i) const { return m_samples.weights->data() + 3 * i; }

    // Corner k of the fan triangle, numbered in the polygon mesh.
    uint corner(std::size_t i, uint k) const
    {
        const uint face = (*m_faceIds)[i];
        const uint inFan = (*m_samples.triangles)[i] - firstTriangle(face);
        return (*m_mesh.faceOffset)[face] + (k == 0 ? 0 : inFan + k);
    }

    // The element of the component at corner k.
    uint element(const String& component, std::size_t i, uint k) const
    {
        return component == sFaceComp         ? (*m_faceIds)[i]
               : component == sFaceVertexComp ? corner(i, k)
                                              : (*m_mesh.faceVertex)[corner(i, k)];
    }

private:
    uint firstTriangle(uint face) const { return (*m_mesh.faceOffset)[face] - 2 * face; }

    MeshArrays m_mesh;
    const SurfaceSamples& m_samples;
    MutablePtr<Array<uint>> m_faceIds;
};

// The values of one property, by element.
template <class T>
class Source {
public:
    Source(const Object& mesh, const ElementProperty& property, const Array<T>& values)
        : m_component(property.component), m_values(values)
    {
        const Ptr<Object> object = getDataGeoProperty(mesh, property.name);
        m_default = entryOf<T>(*object, sDefault).value_or(T());
        m_blends = isReal<T> && m_component != sFaceComp &&
                   entryOf<DataInterpolationMode>(*object, sInterp) != DataInterpolationMode::None;
        if (!property.range.empty())
            m_indices = getRangeGeoPropIndices(*getRangeGeoProperty(mesh, property.range));
    }

    // The value at a sample, and whether there is one.
    bool valueAt(const Places& places, std::size_t i, T& out) const
    {
        const float* const w = places.weights(i);
        if constexpr (isReal<T>)
            if (m_blends) {
                const T* v[3];
                for (uint k = 0; k < 3; ++k)
                    v[k] = find(places.element(m_component, i, k));
                const bool has = v[0] && v[1] && v[2];
                out = has ? blended(*v[0], *v[1], *v[2], w) : m_default;
                return has;
            }
        const T* const picked = find(places.element(m_component, i, static_cast<uint>(largest(w))));
        out = picked ? *picked : m_default;
        return picked != nullptr;
    }

private:
    const T* find(uint element) const
    {
        const uint index = m_indices ? (*m_indices)[element] : element;
        return index < m_values.size() ? &m_values[index] : nullptr;
    }

    const String& m_component;
    const Array<T>& m_values;
    Ptr<Array<uint>> m_indices;
    T m_default{};
    bool m_blends = false;
};

Ptr<Array<float3>> weightVectors(const Places& places)
{
    const auto vectors = makeMutable<Array<float3>>(places.count());
    forEach(places.count(), [&](std::size_t i) {
        const float* const w = places.weights(i);
        (*vectors)[i] = {w[0], w[1], w[2]};
    });
    return vectors;
}

Ptr<Array<float3>> normals(const Object& mesh, const Places& places)
{
    const Array<float3>& points = *dataArray<float3>(mesh, sPointPosition);
    const auto result = makeMutable<Array<float3>>(places.count());
    forEach(places.count(), [&](std::size_t i) {
        const auto point = [&](uint k) { return points[places.element(sPointComp, i, k)]; };
        const float3 apex = point(0);
        (*result)[i] = unit(cross(difference(point(1), apex), difference(point(2), apex)));
    });
    return result;
}

class CloudMaker {
public:
    CloudMaker(const Object& mesh, const SurfaceSamples& samples, const Carry& carry,
               bool withPlaces, const ParentMaps& parents)
        : m_mesh(mesh), m_plan(planProperties(mesh, carry, Onto::Samples)), m_places(mesh, samples)
    {
        m_result.mesh = Korvane::createObject();
        m_result.parents.face = through(m_places.faceIds(), parents.face);
        m_result.parents.triangle = samples.triangles;
        m_result.warnings = m_plan.warnings;
        populatePointCloud(samples.positions, *m_result.mesh);
        if (withPlaces) {
            add("weight", weightVectors(m_places));
            add("face_id", m_result.parents.face);
            add("triangle_id", samples.triangles);
        }
        if (!(isCarried("normal") || (isCarried("nx") && isCarried("ny") && isCarried("nz"))))
            add("normal", normals(mesh, m_places));
    }

    Result make()
    {
        for (const CarriedProperty& property : m_plan.carried)
            if (property.kind == CarriedProperty::Kind::Values)
                carry(property);
            else
                m_result.mesh->setProperty(property.name, m_mesh.getProperty(property.name));
        return std::move(m_result);
    }

private:
    template <class T>
    void add(const String& name, Ptr<Array<T>> values)
    {
        addDataGeoProperty<T>(*m_result.mesh, name, sPointComp, std::move(values));
    }

    bool isCarried(const String& name) const
    {
        return std::any_of(m_plan.carried.begin(), m_plan.carried.end(), [&](const auto& property) {
            return property.name == name && property.kind == CarriedProperty::Kind::Values;
        });
    }

    void carry(const ElementProperty& property)
    {
        const Ptr<Object> source = getDataGeoProperty(m_mesh, property.name);
        Korvane::visitArray(source->getProperty(sData),
                            [&](const auto& array, const char*) { carryValues(property, *array); });
    }

    template <class T>
    void carryValues(const ElementProperty& property, const Array<T>& values)
    {
        const Source<T> source(m_mesh, property, values);
        const auto result = makeMutable<Array<T>>(m_places.count());
        std::atomic<std::size_t> missing{0};
        forEach(m_places.count(), [&](std::size_t i) {
            if (!source.valueAt(m_places, i, (*result)[i]))
                missing.fetch_add(1, std::memory_order_relaxed);
        });
        if (missing > 0)
            m_result.warnings.push_back("property " + quoted(property.name.view()) +
                                        " has no value at " + std::to_string(missing) +
                                        " samples, which get its default");
        add<T>(freeName(property.name), result);
    }

    String freeName(const String& name)
    {
        if (!m_result.mesh->hasProperty(name))
            return name;
        std::string other = "mesh_" + std::string(name.view());
        while (m_mesh.hasProperty(other) || m_result.mesh->hasProperty(other))
            other += '_';
        m_result.warnings.push_back("property " + quoted(name.view()) + " of the mesh is called " +
                                    quoted(other) + " here, as the samples have their own");
        return other;
    }

    const Object& m_mesh;
    const PropertyPlan m_plan;
    Places m_places;
    Result m_result;
};

}  // namespace

Result makeSampleCloud(const Object& mesh, const SurfaceSamples& samples, const Carry& carry,
                       bool withPlaces, const ParentMaps& parents)
{
    return guarded([&] { return CloudMaker(mesh, samples, carry, withPlaces, parents).make(); });
}

SampleResult sample(const Object& mesh, const SampleOptions& options, const Carry& carry)
{
    if ((options.count > 0) == (options.distance != 0))
        throw ArgumentError("distance", "either a distance or a count is needed, not both");
    Result split{nullptr, {}, {}};
    if (options.concave == Concave::Split)
        split = splitConcaveFaces(mesh, carry);
    const Object& fans = split.mesh ? *split.mesh : mesh;
    const SampledSurface surface(fans);
    const SurfaceSamples samples = options.count > 0
                                       ? surface.sampleCount(options.count, options.seed)
                                       : surface.sample(options.distance, options.seed);
    SampleResult result;
    static_cast<Result&>(result) =
        makeSampleCloud(fans, samples, carry, options.withPlaces, split.parents);
    result.warnings.insert(result.warnings.begin(), split.warnings.begin(), split.warnings.end());
    result.distance = samples.distance;
    result.area = surface.area();
    return result;
}

}  // namespace TessaryMesh
