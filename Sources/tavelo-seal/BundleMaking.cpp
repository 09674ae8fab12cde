// SPDX-License-Identifier: MIT
#include "BundleMaking.h"

#include "MakerKey.h"

#include <DiaryKit/DurableFile.h>
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundleSeal.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <archive.h>
#include <archive_entry.h>
#include <openssl/evp.h>
#include <sys/stat.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path &file) {
    std::error_code error;
    auto bytes = readWholeFile(file, error);
    if (!bytes)
        throw BundleError(file.string(), error.value());
    return *bytes;
}

void writeSealFile(const fs::path &file, std::string_view bytes) {
    replaceFileDurably(file, bytes);
    fs::permissions(file, static_cast<fs::perms>(0644));
}

class ZipWriter {
public:
    ZipWriter(const fs::path &file, std::int64_t time) : m_time(time) {
        if (!m_archive)
            throw BundleError("no memory for the archive");
        require(archive_write_set_format_zip(m_archive.get()));
        require(
            archive_write_set_options(m_archive.get(), "zip:compression=deflate,zip:compression-level=9"));
        require(archive_write_set_bytes_in_last_block(m_archive.get(), 1));
        require(archive_write_open_filename(m_archive.get(), file.c_str()));
    }

    void add(const std::string &path, unsigned type, mode_t mode, const std::string &bytes) {
        const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                                  archive_entry_free);
        archive_entry_set_pathname(entry.get(), path.c_str());
        archive_entry_set_filetype(entry.get(), type);
        archive_entry_set_perm(entry.get(), mode);
        archive_entry_set_mtime(entry.get(), m_time, 0);
        if (type == AE_IFLNK)
            archive_entry_set_symlink(entry.get(), bytes.c_str());
        else
            archive_entry_set_size(entry.get(), static_cast<la_int64_t>(bytes.size()));
        require(archive_write_header(m_archive.get(), entry.get()));
        if (type == AE_IFREG && archive_write_data(m_archive.get(), bytes.data(), bytes.size()) !=
                                    static_cast<la_ssize_t>(bytes.size()))
            require(ARCHIVE_FATAL);
    }

    void close() { require(archive_write_close(m_archive.get())); }

private:
    void require(int result) const {
        if (result != ARCHIVE_OK) {
            const char *reason = archive_error_string(m_archive.get());
            throw BundleError(std::string("the archive cannot be written: ") +
                              (reason ? reason : "unknown error"));
        }
    }

    std::unique_ptr<struct archive, decltype(&archive_write_free)> m_archive{archive_write_new(),
                                                                             archive_write_free};
    std::int64_t m_time;
};

std::string sha256(std::string_view bytes) {
    std::vector<unsigned char> digest(EVP_MAX_MD_SIZE);
    unsigned int size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw BundleError("SHA-256 failed");
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (unsigned int index = 0; index < size; ++index)
        text.append({digits[digest[index] >> 4U], digits[digest[index] & 15U]});
    return text;
}

} // namespace

void sealBundle(const fs::path &bundle, const std::string &version, const std::string &architecture,
                const MakerKey &key) {
    const BundleSeal seal{version, architecture, bundleContents(bundle, {})};
    const auto list = seal.text();
    BundleSeal::parse(list); // what nobody would accept is not signed
    const auto signature = key.sign(list, "Tavelo " + version + " for " + architecture);
    const auto folder = bundle / "seal";
    fs::remove_all(folder);
    fs::create_directory(folder);
    fs::permissions(folder, static_cast<fs::perms>(0755));
    writeSealFile(folder / "contents", list);
    writeSealFile(folder / "contents.minisig", signature.text("signature of the bundle's contents"));
}

void archiveBundle(const fs::path &bundle, const fs::path &archive, std::int64_t time) {
    using Kind = BundleSeal::Kind;
    auto contents = bundleContents(bundle, {});
    contents["seal"].kind = Kind::Folder;
    contents["seal/contents"].kind = Kind::File;
    contents["seal/contents.minisig"].kind = Kind::File;

    ZipWriter writer(archive, time);
    const auto top = bundle.filename().string();
    writer.add(top + "/", AE_IFDIR, 0755, {});
    for (const auto &[path, entry] : contents) {
        const auto name = std::string(top).append("/").append(path);
        switch (entry.kind) {
        case Kind::Folder:
            writer.add(name + "/", AE_IFDIR, 0755, {});
            break;
        case Kind::Link:
            writer.add(name, AE_IFLNK, 0777, entry.target);
            break;
        case Kind::Program:
            writer.add(name, AE_IFREG, 0755, contentOf(bundle / path));
            break;
        case Kind::File:
            writer.add(name, AE_IFREG, 0644, contentOf(bundle / path));
            break;
        }
    }
    writer.close();
}

std::string feedText(const std::string &version, const std::string &url, const fs::path &archive) {
    const nlohmann::ordered_json feed = {
        {"version", version}, {"url", url}, {"sha256", sha256(contentOf(archive))}};
    return feed.dump(2) + "\n";
}

} // namespace diary
