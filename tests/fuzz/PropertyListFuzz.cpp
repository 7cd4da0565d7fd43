// Fuzz entry point for the Info.plist reader; build and run as told in README.md.
// Its saved inputs under corpus/plist replay in the update tests.
#include "update/PropertyList.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace cuewright;
    const auto strings = PropertyList::parseStrings(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!strings)
        return 0;

    // Written back as a plain property list, the entries must read the same.
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
    for (const auto& [key, value] : *strings)
        xml += "<key>" + escaped(key) + "</key><string>" + escaped(value) + "</string>\n";
    xml += "</dict>\n</plist>\n";
    if (PropertyList::parseStrings(xml) != strings)
        std::abort();
    return 0;
}
