#include "files/TextWords.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"

namespace TessaryMesh {
namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\f' || c == '\v';
}

}  // namespace

TextWords::TextWords(std::string_view text, const std::string& path, char comment)
    : m_at(text.data()), m_end(text.data() + text.size()), m_path(path), m_comment(comment)
{
    if (text.substr(0, 3) == "\xEF\xBB\xBF")
        m_at += 3;
}

void TextWords::fail(const std::string& what, FileError::Code code) const
{
    throw FileError(code, m_path, atLine(m_line),
                    inputName(m_path) + ":" + std::to_string(m_line) + ": " + what);
}

void TextWords::failAtNumber(std::string_view found, const char* what) const
{
    if (found.empty())
        fail(std::string("the file ends where ") + what + " was expected");
    fail(quoted(found) + " is not " + what + "; correct the line");
}

void TextWords::skipBlanks()
{
    while (m_at != m_end && isBlank(*m_at))
        ++m_at;
    if (m_comment != '\0' && m_at != m_end && *m_at == m_comment)
        while (!atLineEnd())
            ++m_at;
}

void TextWords::skipLineEnd()
{
    const bool carriageReturn = *m_at++ == '\r';
    m_at += carriageReturn && m_at != m_end && *m_at == '\n';
    ++m_line;
}

std::string_view TextWords::word()
{
    nextLine();
    return wordOfLine();
}

bool TextWords::nextLine()
{
    for (skipBlanks(); m_at != m_end && atLineEnd(); skipBlanks())
        skipLineEnd();
    return m_at != m_end;
}

std::string_view TextWords::wordOfLine()
{
    skipBlanks();
    const char* const begin = m_at;
    while (!atLineEnd() && !isBlank(*m_at) && (m_comment == '\0' || *m_at != m_comment))
        ++m_at;
    return {begin, static_cast<std::size_t>(m_at - begin)};
}

std::string_view TextWords::restOfLine()
{
    skipBlanks();
    const char* const begin = m_at;
    while (!atLineEnd())
        ++m_at;
    const char* end = m_at;
    while (end > begin && isBlank(end[-1]))
        --end;
    return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace TessaryMesh
