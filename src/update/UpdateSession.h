#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace cuewright {

// How the updater reaches the network. Only https is spoken, with full certificate checks.
struct UpdateSession {
    // When set, the only authorities trusted instead of the system's store (a test's own CA on loopback).
    std::filesystem::path trustedCertificateAuthorities;
};

// A failure of the transfer itself (no connection, TLS refused, timeout), with libcurl's description.
class UpdateTransferError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace cuewright
