#include "files/PercentCodes.h"

namespace TessaryMesh {
namespace {

int hexDigit(char c)
{
    return c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

}  // namespace

std::string percentDecoded(std::string_view coded)
{
    std::string text;
    for (std::size_t i = 0; i < coded.size(); ++i) {
        const bool isCode = coded[i] == '%' && i + 2 < coded.size() &&
                            hexDigit(coded[i + 1]) >= 0 && hexDigit(coded[i + 2]) >= 0;
        text += isCode ? static_cast<char>(hexDigit(coded[i + 1]) * 16 + hexDigit(coded[i + 2]))
                       : coded[i];
        i += isCode ? 2 : 0;
    }
    return text;
}

}  // namespace TessaryMesh
