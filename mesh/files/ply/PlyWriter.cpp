#include "files/ply/Ply.h"

#include "base/Host.h"
#include "files/ply/PlyFields.h"
#include "files/ply/PlyNames.h"
#include "files/ply/PlyRowWriter.h"

namespace TessaryMesh {
namespace {

using namespace Ply;

void appendDeclaration(std::string& header, const Declaration& declaration)
{
    header += "comment property ";
    header += nameOf(declaration.owner);
    header += ' ' + declaration.type + ' ' + encodedName(declaration.name);
    for (const std::string& column : declaration.columns)
        header += ' ' + column;
    header += '\n';
}

void appendElement(std::string& header, const ElementFields& element)
{
    header += "element " + element.name + ' ' + std::to_string(element.count) + '\n';
    for (const Field& field : element.fields)
        for (const std::string& name : field.names) {
            header += "property ";
            if (field.isList())
                header += std::string("list ") + nameOf(field.countType) + ' ';
            header += nameOf(field.type) + (' ' + name) + '\n';
        }
}

std::string headerText(const MeshFields& fields, Encoding encoding)
{
    std::string header = std::string("ply\nformat ") + nameOf(encoding) + " 1.0\n";
    for (const Declaration& declaration : fields.declarations)
        appendDeclaration(header, declaration);
    appendElement(header, fields.points);
    if (!fields.faces.fields.empty())
        appendElement(header, fields.faces);
    return header + "end_header\n";
}

}  // namespace

std::vector<std::string> writePly(const Object& mesh, Encoding encoding, OutputFile& output)
{
    MeshFields fields = fieldsOfMesh(mesh);
    output.write(headerText(fields, encoding));
    writeSections({rowsOf(fields.points, encoding), rowsOf(fields.faces, encoding)}, output);
    return std::move(fields.warnings);
}

}  // namespace TessaryMesh
