// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryUpdates/MinisignSignature.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <openssl/types.h>

namespace diary {

// The key with which the maker signs bundles. Its file is the usual PKCS #8 text of an Ed25519 key, not
// encrypted: whoever reads it can sign updates, so it belongs on no machine that others use. The id of the
// key is the beginning of the public key's BLAKE2b digest.
//
// All operations throw BundleError.
class MakerKey {
public:
    static MakerKey make();
    static MakerKey load(const std::filesystem::path &file);

    // Makes the file, which must not exist yet, readable for its owner only.
    void save(const std::filesystem::path &file) const;

    const MinisignPublicKey &publicKey() const { return m_publicKey; }

    // The comment must be one line.
    MinisignSignature sign(std::string_view bytes, const std::string &trustedComment) const;

private:
    using Key = std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)>;

    explicit MakerKey(Key key);

    Key m_key;
    MinisignPublicKey m_publicKey;
};

} // namespace diary
