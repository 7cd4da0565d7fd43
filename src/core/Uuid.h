#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cuewright {

// A 128-bit identifier; its text form is the 36-character upper-case form.
class Uuid {
public:
    Uuid() = default; // the nil UUID

    static Uuid generate();
    static std::optional<Uuid> parse(std::string_view text);

    std::string toString() const;
    bool isNull() const;
    const std::array<std::uint8_t, 16>& bytes() const { return m_bytes; }

    friend auto operator<=>(const Uuid&, const Uuid&) = default;

private:
    std::array<std::uint8_t, 16> m_bytes{};
};

} // namespace cuewright

template <>
struct std::hash<cuewright::Uuid> {
    std::size_t operator()(const cuewright::Uuid& id) const noexcept;
};
