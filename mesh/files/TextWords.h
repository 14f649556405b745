#pragma once

#include "files/NumberText.h"
#include <TessaryMesh/Errors.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace TessaryMesh {

/// Walks through text word by word, or line by line. A line ends with LF, CR LF or CR; blanks are spaces,
/// tabs, form feeds and vertical tabs. A `comment` character, where there is one, hides the rest of its line.
class TextWords {
public:
    TextWords(std::string_view text, const std::string& path, char comment = '\0');

    std::uint64_t line() const { return m_line; }

    /// FileError with the file and the current line.
    [[noreturn]] void fail(const std::string& what,
                           FileError::Code code = FileError::Code::Malformed) const;

    /// The next word, on this line or a later one; empty at the end of the text.
    std::string_view word();

    /// The next word of this line; empty where there is none.
    std::string_view wordOfLine();

    /// The rest of this line without the blanks around it.
    std::string_view restOfLine();

    /// Goes to the next line that has a word; false at the end.
    bool nextLine();

    /// The word, which is a number of that type. `what` is said where it is none: "a coordinate".
    template <class T>
    T numberOf(std::string_view found, const char* what) const
    {
        T value;
        const char* const last = found.data() + found.size();
        if (found.empty() || scanNumber(found.data(), last, value) != last)
            failAtNumber(found, what);
        return value;
    }
    template <class T>
    T number(const char* what)
    {
        return numberOf<T>(word(), what);
    }

private:
    [[noreturn]] void failAtNumber(std::string_view found, const char* what) const;
    bool atLineEnd() const { return m_at == m_end || *m_at == '\n' || *m_at == '\r'; }
    void skipBlanks();
    void skipLineEnd();

    const char* m_at;
    const char* const m_end;
    const std::string& m_path;
    const char m_comment;
    std::uint64_t m_line = 1;
};

}  // namespace TessaryMesh
