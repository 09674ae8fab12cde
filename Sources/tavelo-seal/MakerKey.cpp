// SPDX-License-Identifier: MIT
#include "MakerKey.h"

#include <DiaryKit/DurableFile.h>
#include <DiaryUpdates/BundleError.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

#include <fcntl.h>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <unistd.h>

namespace diary {

namespace {

using Bio = std::unique_ptr<BIO, decltype(&BIO_free)>;

Ed25519Signature signatureOf(EVP_PKEY *key, const void *bytes, std::size_t size) {
    Ed25519Signature signature{};
    std::size_t length = signature.size();
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!context || EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key) != 1 ||
        EVP_DigestSign(context.get(), signature.data(), &length, static_cast<const unsigned char *>(bytes),
                       size) != 1 ||
        length != signature.size())
        throw BundleError("signing failed");
    return signature;
}

} // namespace

MakerKey::MakerKey(Key key) : m_key(std::move(key)) {
    std::size_t size = m_publicKey.key.size();
    if (!m_key || EVP_PKEY_get_id(m_key.get()) != EVP_PKEY_ED25519 ||
        EVP_PKEY_get_raw_public_key(m_key.get(), m_publicKey.key.data(), &size) != 1)
        throw BundleError("this is no Ed25519 key");
    const auto digest = blake2b512({reinterpret_cast<const char *>(m_publicKey.key.data()), size});
    std::copy_n(digest.begin(), m_publicKey.id.size(), m_publicKey.id.begin());
}

MakerKey MakerKey::make() {
    return MakerKey(Key(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), EVP_PKEY_free));
}

MakerKey MakerKey::load(const std::filesystem::path &file) {
    std::error_code error;
    const auto text = readWholeFile(file, error);
    if (!text)
        throw BundleError(file.string(), error.value());
    const Bio memory(BIO_new_mem_buf(text->data(), static_cast<int>(text->size())), BIO_free);
    // Without asking for a passphrase.
    const auto noPassphrase = [](char *, int, int, void *) { return 0; };
    return MakerKey(
        Key(PEM_read_bio_PrivateKey(memory.get(), nullptr, noPassphrase, nullptr), EVP_PKEY_free));
}

void MakerKey::save(const std::filesystem::path &file) const {
    const Bio memory(BIO_new(BIO_s_mem()), BIO_free);
    if (!memory ||
        PEM_write_bio_PKCS8PrivateKey(memory.get(), m_key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1)
        throw BundleError("the key cannot be written");
    char *text = nullptr;
    const auto size = BIO_get_mem_data(memory.get(), &text);
    const FileDescriptor output(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!output || ::write(output.get(), text, static_cast<std::size_t>(size)) != size ||
        ::fsync(output.get()) < 0)
        throw BundleError(file.string(), errno);
}

MinisignSignature MakerKey::sign(std::string_view bytes, const std::string &trustedComment) const {
    if (trustedComment.find_first_of("\r\n") != std::string::npos)
        throw BundleError("a comment of several lines");
    MinisignSignature signature;
    signature.keyId = m_publicKey.id;
    const auto digest = blake2b512(bytes);
    signature.signature = signatureOf(m_key.get(), digest.data(), digest.size());
    signature.trustedComment = trustedComment;
    const auto both = signature.globallySigned();
    signature.globalSignature = signatureOf(m_key.get(), both.data(), both.size());
    return signature;
}

} // namespace diary
