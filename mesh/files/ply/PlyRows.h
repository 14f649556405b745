#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include "files/ply/PlyFormat.h"
#include <TessaryMesh/Errors.h>

#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh::Ply {

/// Pieces of rows are copied on different threads.
inline constexpr std::size_t kRowsPerPiece = std::size_t(1) << 14;

/// The rows of one element, found in the body and known to lie inside it.
struct Rows {
    const Element* element;
    /// Where every kRowsPerPiece-th row begins, the first one included.
    std::vector<const unsigned char*> pieces;
    /// Per property: where the list of each row begins among the entries of all rows, and the end;
    /// nothing for scalars.
    std::vector<Array<uint>> offsets;

    std::size_t count() const { return static_cast<std::size_t>(element->count); }
};

/// Walks through a body in binary form and finds the elements' rows.
///
/// Every size is checked against the bytes that are left before anything is allocated for it, so
/// memory is bounded by the size of the body.
class RowFinder {
public:
    /// Byte numbers in messages count from `byteOfBody`.
    RowFinder(std::string_view body, std::size_t byteOfBody, bool swap, const std::string& path);

    Rows take(const Element& element);

    std::size_t bytesLeft() const { return static_cast<std::size_t>(m_end - m_position); }

private:
    struct List;

    [[noreturn]] void fail(const Element& element, std::uint64_t row, const std::string& what,
                           FileError::Code code = FileError::Code::Malformed) const;
    [[noreturn]] void failList(const Element& element, std::uint64_t row, const List& list) const;
    void requireBytes(const Element& element, std::size_t rowSize);
    void walkLists(const Element& element, const std::vector<List>& lists, std::size_t scalarsAfter,
                   std::vector<const unsigned char*>& pieces);
    bool skip(std::size_t bytes);
    bool skipList(const List& list, std::uint64_t row);

    const std::string& m_path;
    const unsigned char* m_begin;
    const unsigned char* m_position;
    const unsigned char* m_end;
    std::size_t m_byteOfBody;
    bool m_swap;
};

/// Where the values of a property go, in the body's byte order: the scalar of row i to
/// first + i * stride, the lists of all rows one after the other from `first` on. Null for nowhere.
struct Sink {
    unsigned char* first = nullptr;
    std::size_t stride = 0;
};

/// Copies the values of the rows, `sinks` having an entry per property, on all threads.
void copyRows(const Rows& rows, const std::vector<Sink>& sinks);

/// The body of an ASCII file in the binary form of this machine; `bytesLeft` becomes what follows the
/// rows. Reads blocks of lines on all threads, whose size changes nothing. Throws FileError with the
/// first line that is wrong.
Array<unsigned char> binaryOfText(const Header& header, const Input& input, const std::string& path,
                                  std::size_t blockSize, std::size_t& bytesLeft);

}  // namespace TessaryMesh::Ply
