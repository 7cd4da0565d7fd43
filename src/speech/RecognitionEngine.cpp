#include "speech/RecognitionEngine.h"

#include "speech/PocketSphinxEngine.h"

#include <algorithm>
#include <cctype>

namespace cuewright {

RecognitionEngineFamilies installedRecognitionEngines()
{
    return { std::make_shared<PocketSphinxEngineFamily>() };
}

bool sameLocaleIdentifier(const std::string& a, const std::string& b)
{
    auto canonical
        = [](char c) { return c == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c))); };
    return std::ranges::equal(a, b, [&](char x, char y) { return canonical(x) == canonical(y); });
}

} // namespace cuewright
