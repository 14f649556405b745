#include "files/obj/ObjScanner.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"

namespace TessaryMesh {

void ObjScanner::fail(const std::string& what, std::uint64_t line, FileError::Code code) const
{
    throw FileError(code, m_path, atLine(line),
                    inputName(m_path) + ":" + std::to_string(line) + ": " + what);
}

std::string ObjScanner::restOfLine()
{
    std::string text;
    do {
        while (isBlank(*m_at))
            ++m_at;
        const char* const begin = m_at;
        while (*m_at != '\n' && *m_at != '\r' && !(*m_at == '\\' && isContinuation()))
            ++m_at;
        const char* end = m_at;
        while (end > begin && isBlank(end[-1]))
            --end;
        text += text.empty() || begin == end ? "" : " ";
        text.append(begin, end);
    } while (*m_at == '\\' && skipContinuation());
    return text;
}

// Files with numbers such as "3.1+e2" exist, and what they mean leaves no doubt.
float ObjScanner::unusualNumber()
{
    const std::string_view found = word();
    const std::size_t e = found.find_first_of("eE");
    float value;
    if (e != std::string_view::npos && e > 0 && (found[e - 1] == '+' || found[e - 1] == '-')) {
        std::string usual(found);
        std::swap(usual[e - 1], usual[e]);
        const char* const last = usual.data() + usual.size();
        if (scanNumber(usual.data(), last, value) == last) {
            m_misplacedSigns.add(m_line);
            return value;
        }
    }
    fail(quoted(found) + " is not a number; correct the line");
}

void ObjScanner::failAtIndex(const char* begin)
{
    m_at = begin;
    fail(quoted(word()) +
         " is not a corner of a face; write point, point/texture or point/texture/normal");
}

}  // namespace TessaryMesh
