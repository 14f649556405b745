#include "peers/FileRows.h"

#include <vtkOBJReader.h>
#include <vtkOBJWriter.h>
#include <vtkPLYReader.h>
#include <vtkPLYWriter.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Bench {
namespace {

template <class Reader>
void read(Row& row, const DemoFile& file, const char* peer, const char* difference)
{
    vtkSmartPointer<Reader> reader;
    std::size_t faces = 0;
    const Contender other{[&] { reader->Update(); },
                          [&] {
                              reader = vtkSmartPointer<Reader>::New();
                              reader->SetFileName(file.path().c_str());
                          },
                          [&] {
                              faces =
                                  static_cast<std::size_t>(reader->GetOutput()->GetNumberOfPolys());
                              reader = nullptr;
                          }};
    compareReads(row, file, {peer, other, difference}, faces);
}

// What VTK holds of the mesh is what its reader made of our file.
template <class Reader, class Writer>
void write(Row& row, const DemoFile& file, bool isText, const char* peer, const char* difference)
{
    const auto reader = vtkSmartPointer<Reader>::New();
    reader->SetFileName(file.path().c_str());
    reader->Update();
    const std::string path = file.path() + ".vtk";
    const Contender other{[&] {
        const auto writer = vtkSmartPointer<Writer>::New();
        if constexpr (std::is_same_v<Writer, vtkPLYWriter>)
            isText ? writer->SetFileTypeToASCII() : writer->SetFileTypeToBinary();
        writer->SetFileName(path.c_str());
        writer->SetInputData(reader->GetOutput());
        writer->Write();
    }};
    Contender kernel;
    kernel.run = [&] { file.write(); };
    kernel.hash = [&] {
        std::ifstream written(file.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(written), {}};
        return hashBytes(content.data(), content.size());
    };
    row.compare(file.work(), kernel, {peer, other, difference});
    std::filesystem::remove(path);
}

void addRows()
{
    const char* const fewer = "on one thread, with fewer properties, unchecked";
    const char* const objReader = "VTK vtkOBJReader";
    addFileRows("readMesh", "OBJ", "obj", objReader, [=](Row& row, const DemoFile& file) {
        read<vtkOBJReader>(row, file, objReader, fewer);
    });
    const char* const objWriter = "VTK vtkOBJWriter";
    addFileRows("writeMesh", "OBJ", "obj", objWriter, [=](Row& row, const DemoFile& file) {
        write<vtkOBJReader, vtkOBJWriter>(row, file, true, objWriter, fewer);
    });
    const char* const plyReader = "VTK vtkPLYReader";
    const char* const plyWriter = "VTK vtkPLYWriter";
    for (const auto& [input, format] : {std::pair{"PLY", "ply"}, {"PLY ASCII", "ply-ascii"}}) {
        const bool isText = std::string(format) == "ply-ascii";
        addFileRows("readMesh", input, format, plyReader, [=](Row& row, const DemoFile& file) {
            read<vtkPLYReader>(row, file, plyReader, fewer);
        });
        addFileRows("writeMesh", input, format, plyWriter, [=](Row& row, const DemoFile& file) {
            write<vtkPLYReader, vtkPLYWriter>(row, file, isText, plyWriter, fewer);
        });
    }
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
