#pragma once

#include "files/NumberText.h"
#include <TessaryMesh/Errors.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace TessaryMesh {

/// How often something was met, and where first.
struct Tally {
    std::uint64_t count = 0;
    std::uint64_t firstLine = 0;

    void add(std::uint64_t line)
    {
        if (count++ == 0)
            firstLine = line;
    }

    /// What was met further on, in text that begins `linesBefore` it.
    void add(const Tally& later, std::uint64_t linesBefore)
    {
        if (count == 0)
            firstLine = later.firstLine + linesBefore;
        count += later.count;
    }
};

/// Walks through the words of OBJ text, statement by statement.
///
/// A line ends with LF, CR LF or CR; a backslash before it continues the statement on the next
/// line. Blanks are spaces and tabs. A "#" starts a comment, save in names.
///
/// The text is empty or ends with a line end that continues no statement, so that nothing inside of
/// one has to look for the end of the text.
class ObjScanner {
public:
    /// The text begins on line `line` of the file.
    ObjScanner(std::string_view text, std::uint64_t line, const std::string& path)
        : m_at(text.data()), m_end(text.data() + text.size()), m_path(path), m_line(line)
    {}

    std::uint64_t line() const { return m_line; }

    /// FileError with the file and the current line, or an earlier one.
    [[noreturn]] void fail(const std::string& what, FileError::Code code = kMalformed) const
    {
        fail(what, m_line, code);
    }
    [[noreturn]] void fail(const std::string& what, std::uint64_t line,
                           FileError::Code code = kMalformed) const;

    bool atEnd() const { return m_at == m_end; }

    /// Skips blanks; whether the statement's last word lies behind.
    bool atLineEnd()
    {
        while (isBlank(*m_at) || *m_at == '\\')
            if (isBlank(*m_at))
                ++m_at;
            else if (!skipContinuation())
                return false;
        return *m_at == '\n' || *m_at == '\r' || *m_at == '#';
    }

    /// Goes to the beginning of the next line.
    void nextLine()
    {
        while (*m_at != '\n' && *m_at != '\r')
            ++m_at;
        skipLineEnd();
    }

    /// The word that begins here.
    std::string_view word()
    {
        const char* const begin = m_at;
        while (!atSeparator())
            ++m_at;
        return {begin, static_cast<std::size_t>(m_at - begin)};
    }

    /// The rest of the statement without the blanks around it; one blank where it was continued.
    std::string restOfLine();

    /// The number that begins here.
    float number()
    {
        float value;
        const char* const end = scanNumberInText(m_at, m_end - 1, value);
        const char* const begin = m_at;
        if (end) {
            m_at = end;
            if (atSeparator())
                return value;
            m_at = begin;
        }
        return unusualNumber();
    }

    /// The index that begins here, of any sign. Fails where there is none, or none of at most 18
    /// digits.
    std::int64_t index()
    {
        const char* const begin = m_at;
        const bool negative = *m_at == '-';
        m_at += negative || *m_at == '+';
        const char* const digits = m_at;
        std::uint64_t value = 0;
        m_at = ShortDecimal::scanDigits(digits, value);
        if (m_at == digits || m_at - digits > 18)
            failAtIndex(begin);
        const auto index = static_cast<std::int64_t>(value);
        return negative ? -index : index;
    }

    /// Steps over a slash, if one is here.
    bool slash()
    {
        const bool found = *m_at == '/';
        m_at += found;
        return found;
    }

    /// Whether a word ends here.
    bool atSeparator() const
    {
        return isBlank(*m_at) || *m_at == '\n' || *m_at == '\r' || *m_at == '#' ||
               (*m_at == '\\' && isContinuation());
    }

    bool atSlash() const { return *m_at == '/'; }

    const char* position() const { return m_at; }

    /// Fails at the word that begins at `begin`, which should be the corner of a face.
    [[noreturn]] void failAtIndex(const char* begin);

    /// Numbers with the sign before the "e", read as if it stood behind; they ought to be mentioned.
    const Tally& misplacedSigns() const { return m_misplacedSigns; }

private:
    static constexpr FileError::Code kMalformed = FileError::Code::Malformed;

    static bool isBlank(char c) { return c == ' ' || c == '\t'; }

    bool isContinuation() const { return m_at[1] == '\n' || m_at[1] == '\r'; }

    bool skipContinuation()
    {
        if (!isContinuation())
            return false;
        ++m_at;
        skipLineEnd();
        return true;
    }

    void skipLineEnd()
    {
        const bool carriageReturn = *m_at++ == '\r';
        m_at += carriageReturn && m_at < m_end && *m_at == '\n';
        ++m_line;
    }

    float unusualNumber();

    const char* m_at;
    const char* const m_end;
    const std::string& m_path;
    std::uint64_t m_line;
    Tally m_misplacedSigns;
};

}  // namespace TessaryMesh
