#include "sampling/SamplingCases.h"
#include "support/Cancellation.h"

#include <Pelon/RuntimeServices.h>

#include <vector>

using namespace TestSupport;
using Pelon::RuntimeMessageCategory;

namespace {

// An object that holds one value, to see whether a call touches it.
MutablePtr<Object> marked()
{
    MutablePtr<Object> out = Korvane::createObject();
    out->setProperty("mark", 1);
    return out;
}

bool isUntouched(const Object& out)
{
    return out.propertyNames() == Array<String>{"mark"} && out.getProperty("mark").get<int>() &&
           *out.getProperty("mark").get<int>() == 1;
}

// What a refused call says, category first.
std::string messagesOf(float distance, const Object& mesh)
{
    std::string log;
    Pelon::RuntimeServices services(
        [&log](RuntimeMessageCategory category, Pelon::StringView text) {
            log += std::to_string(static_cast<int>(category)) + ' ' + std::string(text.view());
        });
    const MutablePtr<Object> out = marked();
    Tessary::poissonSampleTriMesh(distance, 1, mesh, *out, &services);
    EXPECT_TRUE(isUntouched(*out));
    services.setLogEnabled(RuntimeMessageCategory::Error, false);
    const std::string before = log;
    Tessary::poissonSampleTriMesh(distance, 1, mesh, *out, &services);
    Tessary::poissonSampleTriMesh(distance, 1, mesh, *out, nullptr);
    EXPECT_TRUE(isUntouched(*out));
    EXPECT_EQ(log, before);
    return log;
}

Mesh unitTriangles(uint count)
{
    Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}};
    for (uint c = 0; c < 3 * count; ++c)
        mesh.faceVertex.push_back(c % 3);
    return mesh;
}

MutablePtr<Object> without(const MutablePtr<Object>& mesh, const String& name)
{
    mesh->setProperty(name, {});
    return mesh;
}

TEST(PoissonSample, RefusesInOneLineOrSilentlyWithoutPointsAndLeavesTheOutputAlone)
{
    EXPECT_EQ(messagesOf(1, *Korvane::createObject()), "");
    EXPECT_EQ(messagesOf(1, *objectOf({{}, {0, 1, 2}})), "");

    const auto triangle = objectOf(unitTriangles(1));
    const std::string distance =
        "1 min_distance must be greater than zero in poissonSampleTriMesh\n";
    for (const float bad : {0.0f, -0.0f, -1.0f, -HUGE_VALF, std::nanf("")})
        EXPECT_EQ(messagesOf(bad, *triangle), distance) << bad;
    EXPECT_EQ(messagesOf(0, *Korvane::createObject()), distance);  // asked first

    const auto bare = without(objectOf(unitTriangles(1)), Geometry::sPointPosition);
    EXPECT_EQ(messagesOf(1, *bare), "1 Missing vp_ptr in poissonSampleTriMesh\n");
    Geometry::addDataGeoProperty<float>(*bare, Geometry::sPointPosition, Geometry::sPointComp,
                                        shared({1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(messagesOf(1, *without(bare, Geometry::sFaceVertex)),
              "1 Missing vp_ptr in poissonSampleTriMesh\n");
    EXPECT_EQ(messagesOf(1, *without(triangle, Geometry::sFaceVertex)),
              "1 Missing tri_vertices_ptr in poissonSampleTriMesh\n");
    EXPECT_EQ(messagesOf(1, *meshOf(5, {{0, 1, 2}, {0, 1, 2, 3}})),
              "1 Mesh must only contain triangle faces in poissonSampleTriMesh\n");
}

TEST(PoissonSample, CountsTheFacesOfTheComponentIn64Bits)
{
    const auto mesh = objectOf({unitTriangles(1).points, {0, 1}});
    Geometry::setElementCount(Geometry::sFaceComp, 0x55555556, *mesh);  // three times it: 2^32 + 2
    EXPECT_EQ(messagesOf(1, *mesh),
              "1 Mesh must only contain triangle faces in poissonSampleTriMesh\n");

    const auto plain = without(objectOf(unitTriangles(2)), Geometry::sFaceOffset);
    const MutablePtr<Object> out = Korvane::createObject();
    Tessary::poissonSampleTriMesh(0.1f, 3, *plain, *out, nullptr);
    expectSame(resultOf(*out), Reference::poissonSample(unitTriangles(2), 0.1f, 3));
}

void expectProperty(const Object& out, const String& name, const String& component)
{
    EXPECT_EQ(entryOf<String>(out, name, Geometry::sTarget), component);
    EXPECT_TRUE(entryOf<Ptr<Array<String>>>(out, name, Geometry::sDependsOn)->empty());
    EXPECT_EQ(entryOf<Geometry::Common::DataInterpolationMode>(out, name, Geometry::sInterp),
              Geometry::Common::DataInterpolationMode::Linear);
}

void expectCloud(const Object& out, std::size_t samples)
{
    EXPECT_EQ(Geometry::getElementCount(out, Geometry::sPointComp), samples);
    EXPECT_EQ(Geometry::getElementCount(out, "sample_component"), samples);
    EXPECT_EQ(resultOf(out).samples.weights.size(), 3 * samples);
    EXPECT_EQ(resultOf(out).samples.positions.size(), samples);
    expectProperty(out, "weight", "sample_component");
    expectProperty(out, "face_id", "sample_component");
    expectProperty(out, "face_sample_offset", Geometry::sFaceComp);
    EXPECT_EQ(entryOf<float>(out, "weight", Geometry::sDefault), 0.0f);
    EXPECT_EQ(entryOf<uint>(out, "face_id", Geometry::sDefault), kNone);
    EXPECT_EQ(entryOf<uint>(out, "face_sample_offset", Geometry::sDefault), kNone);
}

TEST(PoissonSample, MakesAPointCloudWithAComponentOfSamples)
{
    const auto some = sampled(unitTriangles(2), 0.1f, 1);
    EXPECT_GT(resultOf(*some).samples.faceIds.size(), 30u);
    expectCloud(*some, resultOf(*some).samples.faceIds.size());

    // Nothing to draw, or only the sample that is left out.
    for (const float distance : {100.0f, 1.7f})
        expectCloud(*sampled(unitTriangles(2), distance, 1), 0);
    const auto faceless = sampled(unitTriangles(0), 1, 1);
    expectCloud(*faceless, 0);
    EXPECT_EQ(resultOf(*faceless).faceOffset, Array<uint>{0});
}

// A second call replaces the first one's properties and no one else's.
TEST(PoissonSample, OverwritesWhatTheOutputHeldAndCopiesWhatIsShared)
{
    const MutablePtr<Object> out = marked();
    Tessary::poissonSampleTriMesh(0.1f, 1, *objectOf(unitTriangles(2)), *out, nullptr);
    const Object earlier = *out;
    const Result first = resultOf(*out);
    Tessary::poissonSampleTriMesh(0.2f, 2, *objectOf(unitTriangles(3)), *out, nullptr);
    expectSame(resultOf(earlier), first);
    expectSame(resultOf(*out), Reference::poissonSample(unitTriangles(3), 0.2f, 2));
    expectCloud(*out, resultOf(*out).samples.faceIds.size());
    EXPECT_TRUE(out->hasProperty("mark"));
}

// Loops over one element are never polled, all others once they are over.
TEST(PoissonSample, ACancelledJobThrowsAndLeavesTheOutputAlone)
{
    const auto ends = [](uint triangles, float distance) {
        const MutablePtr<Object> out = marked();
        const auto mesh = objectOf(unitTriangles(triangles));
        const bool ended = endsWhenCancelled(
            [&] { Tessary::poissonSampleTriMesh(distance, 1, *mesh, *out, nullptr); });
        EXPECT_EQ(isUntouched(*out), ended);
        EXPECT_EQ(out->hasProperty("weight"), !ended);
        return ended;
    };
    EXPECT_TRUE(ends(2, 100));    // no candidates
    EXPECT_FALSE(ends(1, 100));   // no loop at all
    EXPECT_FALSE(ends(1, 1.5f));  // one candidate
    EXPECT_TRUE(ends(1, 1.1f));   // two
    EXPECT_FALSE(ends(0, 1));
}

}  // namespace
