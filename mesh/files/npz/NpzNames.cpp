#include "files/npz/NpzNames.h"

#include "files/PercentCodes.h"
#include "files/npz/Texts.h"

#include <utility>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

const std::pair<const String*, const char*> kOwnNames[] = {
    {&sPointComp, "@point"},        {&sFaceComp, "@face"},          {&sFaceVertexComp, "@corner"},
    {&sPointPosition, "@position"}, {&sFaceOffset, "@face_offset"}, {&sFaceVertex, "@face_vertex"}};

}  // namespace

std::string npzName(const String& name)
{
    for (const auto& [own, text] : kOwnNames)
        if (name == *own)
            return text;
    const std::string text = escaped(name.view());
    return text.substr(0, 1) == "@" ? "%40" + text.substr(1) : text;
}

String nameOfNpz(const std::string& text)
{
    for (const auto& [own, ownText] : kOwnNames)
        if (text == ownText)
            return *own;
    return String(percentDecoded(text));
}

}  // namespace TessaryMesh
