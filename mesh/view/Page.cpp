#include <TessaryMesh/Page.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "view/PageArrays.h"
#include "view/PageContents.h"
#include "view/PageTemplate.h"
#include "view/PageText.h"

#include <functional>
#include <string_view>

namespace TessaryMesh {
namespace {

using Write = std::function<void(std::string_view)>;

constexpr std::size_t kAllowance = 1000000;  // beside the arrays
constexpr std::string_view kBeforePart =
    "<script type=\"application/octet-stream\" class=\"part\">";
constexpr std::string_view kAfterPart = "</script>\n";

/// What stands between the template's pieces.
struct Filling {
    std::string contents;
    std::vector<std::string> parts;
    std::size_t arrayBytes = 0;
};

Filling fillingOf(const std::vector<PageModel>& models, bool quantise)
{
    PageArrays arrays(quantise);
    std::vector<std::string> contents;
    contents.reserve(models.size());
    for (const PageModel& model : models)
        contents.push_back(contentsOf(model, arrays));
    return {jsonList(contents), arrays.compressed(), arrays.byteCount()};
}

bool isSmallAsBase64(const Filling& filling, const PageTemplate& page)
{
    std::size_t size = page.beforeEncoding.size() + page.beforeContents.size() +
                       filling.contents.size() + page.afterContents.size() + 1000;
    for (const std::string& part : filling.parts)
        size += kBeforePart.size() + (part.size() + 2) / 3 * 4 + kAfterPart.size();
    return size <= filling.arrayBytes + kAllowance;
}

void writePage(const std::vector<PageModel>& models, const PageOptions& options, const Write& write)
{
    if (models.empty() || models.size() > 2)
        throw ArgumentError("models",
                            "a page shows one model or two, not " + std::to_string(models.size()));
    const Filling filling = fillingOf(models, options.quantise);
    const PageTemplate page = pageTemplate();
    const bool isAscii = options.ascii || isSmallAsBase64(filling, page);
    write(page.beforeEncoding);
    write(isAscii ? "utf-8" : "windows-1252");
    write(page.beforeContents);
    write("<script type=\"application/json\" id=\"contents\">");
    write(JsonObject()
              .addText("encoding", isAscii ? "base64" : "escaped")
              .add("bytes", filling.arrayBytes)
              .add("models", filling.contents)
              .text());
    write("</script>\n");
    for (const std::string& part : filling.parts) {
        throwIfCancelled();
        write(kBeforePart);
        write(isAscii ? base64(part) : escapedBytes(part));
        write(kAfterPart);
    }
    write(page.afterContents);
}

}  // namespace

std::string makePage(const std::vector<PageModel>& models, const PageOptions& options)
{
    return guarded([&] {
        std::string page;
        writePage(models, options, [&page](std::string_view text) { page += text; });
        return page;
    });
}

void writePage(const std::vector<PageModel>& models, OutputFile& output, const PageOptions& options)
{
    guarded([&] {
        writePage(models, options, [&output](std::string_view text) { output.write(text); });
    });
}

}  // namespace TessaryMesh
