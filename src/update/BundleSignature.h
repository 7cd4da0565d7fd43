#pragma once

#include <filesystem>
#include <string>

// The signature test of an application bundle; internal to the update layer.
//
// Contents/_CodeSignature/CodeResources lists every other file of the bundle, one line each:
// "F <sha256> <path>" for a file, "L <sha256 of the link text> <path>" for a symbolic link, paths
// relative to the bundle. Contents/_CodeSignature/CodeSignature.p7s is a detached DER CMS signature
// of CodeResources. tools/sign-bundle writes both.
namespace cuewright::BundleSignature {

inline constexpr const char* resourcesPath = "Contents/_CodeSignature/CodeResources";
inline constexpr const char* signaturePath = "Contents/_CodeSignature/CodeSignature.p7s";

// True when the signature chains to the PEM certificate(s) in `anchor`, every signer's subject OU is
// `teamID`, and the bundle holds exactly the listed files with the listed digests.
bool isValid(const std::filesystem::path& bundle, const std::filesystem::path& anchor, const std::string& teamID);

} // namespace cuewright::BundleSignature
