#include "core/Uuid.h"

#include <pthread.h>
#include <sys/random.h>
#include <uuid/uuid.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace cuewright {

namespace {

    // libuuid makes several system calls per identifier; a file of ten thousand cues needs
    // as many identifiers. Random bytes are therefore drawn in batches per thread, and a
    // forked child draws afresh so that it never repeats its parent's identifiers.
    std::atomic<unsigned> forkGeneration { 0 };

    struct RandomPool {
        std::array<std::uint8_t, 4096> bytes {};
        std::size_t used = bytes.size();
        unsigned generation = 0;

        bool refill()
        {
            std::size_t filled = 0;
            while (filled < bytes.size()) {
                const auto n = getrandom(bytes.data() + filled, bytes.size() - filled, 0);
                if (n < 0) {
                    if (errno == EINTR)
                        continue;
                    return false;
                }
                filled += static_cast<std::size_t>(n);
            }
            used = 0;
            return true;
        }
    };

} // namespace

Uuid Uuid::generate()
{
    static const bool forkHandled
        = pthread_atfork(nullptr, nullptr, [] { forkGeneration.fetch_add(1, std::memory_order_relaxed); }) == 0;
    thread_local RandomPool pool;

    Uuid id;
    const unsigned generation = forkGeneration.load(std::memory_order_relaxed);
    if (!forkHandled || pool.generation != generation || pool.used + 16 > pool.bytes.size()) {
        pool.generation = generation;
        if (!forkHandled || !pool.refill()) {
            pool.used = pool.bytes.size();
            uuid_generate_random(id.m_bytes.data());
            return id;
        }
    }
    std::memcpy(id.m_bytes.data(), pool.bytes.data() + pool.used, 16);
    pool.used += 16;
    id.m_bytes[6] = static_cast<std::uint8_t>((id.m_bytes[6] & 0x0F) | 0x40); // version 4
    id.m_bytes[8] = static_cast<std::uint8_t>((id.m_bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text)
{
    // By hand: libuuid's parser goes through strtoul per group, which dominates loading a
    // long project.
    if (text.size() != 36)
        return std::nullopt;
    // A table: random digits defeat branch prediction.
    static constexpr auto digits = [] {
        std::array<std::int8_t, 256> table {};
        table.fill(-1);
        for (int c = '0'; c <= '9'; ++c)
            table[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(c - '0');
        for (int c = 'a'; c <= 'f'; ++c) {
            table[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(c - 'a' + 10);
            table[static_cast<std::size_t>(c - 'a' + 'A')] = static_cast<std::int8_t>(c - 'a' + 10);
        }
        return table;
    }();
    auto hex = [](char c) -> int { return digits[static_cast<unsigned char>(c)]; };
    if (text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-')
        return std::nullopt;
    static constexpr std::array<std::uint8_t, 16> offsets { 0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34 };
    Uuid id;
    int invalid = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        const int high = hex(text[offsets[i]]);
        const int low = hex(text[offsets[i] + 1]);
        invalid |= high | low;
        id.m_bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
    }
    if (invalid < 0)
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
