#include "core/Uuid.h"

#include <uuid/uuid.h>

#include <cstring>

namespace cuewright {

Uuid Uuid::generate()
{
    Uuid id;
    uuid_generate_random(id.m_bytes.data());
    return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text)
{
    if (text.size() != 36)
        return std::nullopt;
    char buffer[37];
    std::memcpy(buffer, text.data(), 36);
    buffer[36] = '\0';
    Uuid id;
    if (uuid_parse(buffer, id.m_bytes.data()) != 0)
        return std::nullopt;
    return id;
}

std::string Uuid::toString() const
{
    char buffer[37];
    uuid_unparse_upper(m_bytes.data(), buffer);
    return std::string(buffer, 36);
}

bool Uuid::isNull() const
{
    for (auto b : m_bytes)
        if (b != 0)
            return false;
    return true;
}

} // namespace cuewright

std::size_t std::hash<cuewright::Uuid>::operator()(const cuewright::Uuid& id) const noexcept
{
    std::uint64_t a;
    std::uint64_t b;
    std::memcpy(&a, id.bytes().data(), 8);
    std::memcpy(&b, id.bytes().data() + 8, 8);
    return static_cast<std::size_t>(a ^ (b * 0x9E3779B97F4A7C15ull));
}
