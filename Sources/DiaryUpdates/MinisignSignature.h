// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// Detached signatures in minisign's format, by Ed25519 over the BLAKE2b-512 digest of the signed bytes.
namespace diary {

using MinisignKeyId = std::array<std::uint8_t, 8>;
using Ed25519Signature = std::array<std::uint8_t, 64>;

// With what a signature is checked.
struct MinisignPublicKey {
    MinisignKeyId id{};
    std::array<std::uint8_t, 32> key{};

    // From the line that minisign prints: base64 of "Ed", the id and the key. Throws BundleError when the
    // text is anything else.
    static MinisignPublicKey parse(std::string_view text);
    std::string text() const;

    bool operator==(const MinisignPublicKey &) const = default;
};

// What stands in a signature's file:
//
//     untrusted comment: anything
//     base64 of "ED", the key's id and the signature of the digest
//     trusted comment: anything
//     base64 of the signature of the first signature and the trusted comment
//
// Signatures over the bytes themselves ("Ed", from old versions of minisign) are not taken.
struct MinisignSignature {
    MinisignKeyId keyId{};
    Ed25519Signature signature{};
    std::string trustedComment;
    Ed25519Signature globalSignature{};

    // Throws BundleError.
    static MinisignSignature parse(std::string_view file);
    // The whole file.
    std::string text(std::string_view untrustedComment) const;

    // What the global signature signs.
    std::string globallySigned() const;

    // Throws BundleError unless the owner of the key signed these bytes and the trusted comment.
    void verify(const MinisignPublicKey &key, std::string_view bytes) const;
};

std::array<std::uint8_t, 64> blake2b512(std::string_view bytes);

} // namespace diary
