#pragma once

#include "core/ContentTypeLookup.h"

#include <cstddef>
#include <functional>
#include <string_view>

namespace cuewright {

// What a location handed to the application is. Used like an enumeration:
// switch (CaptionOpenItem::classify(location, types)) { case CaptionOpenItem::project: ... }
class CaptionOpenItem {
public:
    enum Value { project, video, unsupported };

    constexpr CaptionOpenItem(Value value)
        : m_value(value)
    {
    }
    constexpr operator Value() const { return m_value; }

    // A project by its extension alone (the contents are not read), else a video as
    // VideoFileDrop::accepts decides, else unsupported.
    static CaptionOpenItem classify(std::string_view location, const ContentTypeLookup& types);

private:
    Value m_value;
};

} // namespace cuewright

template <> struct std::hash<cuewright::CaptionOpenItem> {
    std::size_t operator()(cuewright::CaptionOpenItem item) const noexcept
    {
        return static_cast<std::size_t>(static_cast<cuewright::CaptionOpenItem::Value>(item));
    }
};
