// SPDX-License-Identifier: MIT
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundlePath.h>
#include <DiaryUpdates/MinisignSignature.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>

#include <openssl/evp.h>

namespace diary {

namespace {

constexpr std::string_view keyAlgorithm = "Ed";
constexpr std::string_view hashedAlgorithm = "ED";
constexpr std::string_view untrustedPrefix = "untrusted comment: ";
constexpr std::string_view trustedPrefix = "trusted comment: ";
constexpr std::size_t longestLine = 1024;

using Bytes = std::span<const std::uint8_t>;

std::string base64(std::string_view bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char *>(text.data()),
                                       reinterpret_cast<const unsigned char *>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

// None unless the text is the one way to write so many bytes.
std::optional<std::string> decodedBase64(std::string_view text, std::size_t size) {
    if (text.size() != (size + 2) / 3 * 4)
        return std::nullopt;
    std::string bytes(text.size() / 4 * 3, '\0');
    if (EVP_DecodeBlock(reinterpret_cast<unsigned char *>(bytes.data()),
                        reinterpret_cast<const unsigned char *>(text.data()),
                        static_cast<int>(text.size())) < 0)
        return std::nullopt;
    bytes.resize(size);
    if (base64(bytes) != text)
        return std::nullopt;
    return bytes;
}

template <std::size_t Size>
std::array<std::uint8_t, Size> piece(std::string_view bytes, std::size_t start) {
    std::array<std::uint8_t, Size> found{};
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(start), Size, found.begin());
    return found;
}

std::string_view asText(Bytes bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

Bytes asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()};
}

bool isSignedBy(const MinisignPublicKey &key, const Ed25519Signature &signature, Bytes bytes) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> publicKey(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, key.key.data(), key.key.size()),
        EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    return publicKey && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(context.get(), signature.data(), signature.size(), bytes.data(), bytes.size()) ==
               1;
}

// Takes the next line off the text; a carriage return before its end does not count.
std::string_view takeLine(std::string_view &text) {
    const auto end = text.find('\n');
    auto line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (line.size() > longestLine)
        throw BundleError("the signature has an overlong line");
    return line;
}

} // namespace

std::array<std::uint8_t, 64> blake2b512(std::string_view bytes) {
    std::array<std::uint8_t, 64> digest{};
    unsigned int size = digest.size();
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_blake2b512(), nullptr) != 1 ||
        size != digest.size())
        throw BundleError("no BLAKE2b in this machine's libcrypto");
    return digest;
}

MinisignPublicKey MinisignPublicKey::parse(std::string_view text) {
    MinisignPublicKey key;
    const auto bytes = decodedBase64(text, keyAlgorithm.size() + key.id.size() + key.key.size());
    if (!bytes || !bytes->starts_with(keyAlgorithm))
        throw BundleError("this is no public key: " + readable(text));
    key.id = piece<8>(*bytes, keyAlgorithm.size());
    key.key = piece<32>(*bytes, keyAlgorithm.size() + key.id.size());
    return key;
}

std::string MinisignPublicKey::text() const {
    return base64(std::string(keyAlgorithm).append(asText(id)).append(asText(key)));
}

MinisignSignature MinisignSignature::parse(std::string_view file) {
    MinisignSignature parsed;
    const auto untrusted = takeLine(file);
    const auto first =
        decodedBase64(takeLine(file), hashedAlgorithm.size() + parsed.keyId.size() + parsed.signature.size());
    const auto trusted = takeLine(file);
    const auto global = decodedBase64(takeLine(file), parsed.globalSignature.size());
    if (!untrusted.starts_with(untrustedPrefix) || !first || !trusted.starts_with(trustedPrefix) || !global ||
        !file.empty())
        throw BundleError("the signature is malformed");
    if (!first->starts_with(hashedAlgorithm))
        throw BundleError("the signature is of an unknown kind");
    parsed.keyId = piece<8>(*first, hashedAlgorithm.size());
    parsed.signature = piece<64>(*first, hashedAlgorithm.size() + parsed.keyId.size());
    parsed.trustedComment = trusted.substr(trustedPrefix.size());
    parsed.globalSignature = piece<64>(*global, 0);
    return parsed;
}

std::string MinisignSignature::text(std::string_view untrustedComment) const {
    const auto first = std::string(hashedAlgorithm).append(asText(keyId)).append(asText(signature));
    return std::string(untrustedPrefix)
        .append(untrustedComment)
        .append("\n" + base64(first) + "\n")
        .append(trustedPrefix)
        .append(trustedComment)
        .append("\n" + base64(asText(globalSignature)) + "\n");
}

std::string MinisignSignature::globallySigned() const {
    return std::string(asText(signature)).append(trustedComment);
}

void MinisignSignature::verify(const MinisignPublicKey &key, std::string_view bytes) const {
    if (keyId != key.id)
        throw BundleError("the signature is by another key");
    if (!isSignedBy(key, signature, blake2b512(bytes)))
        throw BundleError("the signature is not of this list");
    const auto signedTogether = globallySigned();
    if (!isSignedBy(key, globalSignature, asBytes(signedTogether)))
        throw BundleError("the signature's comment was altered");
}

} // namespace diary
