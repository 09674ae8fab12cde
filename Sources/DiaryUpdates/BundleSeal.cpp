// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/SystemCalls.h>
#include <DiaryKit/Version.h>
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundlePath.h>
#include <DiaryUpdates/BundleSeal.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view firstLine = "tavelo bundle 1";
constexpr std::string_view sealFolder = "seal";
constexpr std::string_view listName = "contents";
constexpr std::string_view signatureName = "contents.minisig";
constexpr std::size_t largestList = 8U << 20U; // bytes
constexpr std::size_t largestSignature = 4096;
constexpr std::size_t longestWord = 64;
constexpr std::size_t digestDigits = 64;
constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr mode_t programMode = 0755;
constexpr mode_t fileMode = 0644;

std::string hexadecimal(unsigned char byte) {
    return {hexDigits[byte >> 4U], hexDigits[byte & 15U]};
}

// Versions and architectures: nothing that could be mistaken in a file name or on a command line.
bool isPlainWord(std::string_view word) {
    const auto isPlain = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' ||
               c == '-' || c == '+' || c == '_';
    };
    return !word.empty() && word.size() <= longestWord && word.front() != '-' &&
           std::all_of(word.begin(), word.end(), isPlain);
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte <= ' ' || byte > '~' || byte == '%')
            result += "%" + hexadecimal(byte);
        else
            result += character;
    }
    return result;
}

[[noreturn]] void failMalformed() {
    throw BundleError("the list of the bundle's contents is malformed");
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            result += text[index];
            continue;
        }
        const auto digits = text.substr(index + 1, 2);
        unsigned value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
            failMalformed();
        result += static_cast<char>(value);
        index += 2;
    }
    return result;
}

// Takes words and lines off a text; a missing one is malformed.
class Reader {
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    bool atEnd() const { return m_rest.empty(); }

    std::string_view until(char end) {
        const auto position = m_rest.find(end);
        if (position == std::string_view::npos)
            failMalformed();
        const auto word = m_rest.substr(0, position);
        m_rest.remove_prefix(position + 1);
        return word;
    }
    std::string_view word() { return until(' '); }
    std::string_view lastWord() { return until('\n'); }

private:
    std::string_view m_rest;
};

std::uint64_t parsedSize(std::string_view digits) {
    std::uint64_t size = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    if (error != std::errc() || end != digits.data() + digits.size())
        failMalformed();
    return size;
}

constexpr std::array<std::pair<std::string_view, BundleSeal::Kind>, 4> kinds = {{
    {"folder", BundleSeal::Kind::Folder},
    {"program", BundleSeal::Kind::Program},
    {"file", BundleSeal::Kind::File},
    {"link", BundleSeal::Kind::Link},
}};

BundleSeal::Kind kindNamed(std::string_view name) {
    for (const auto &[known, kind] : kinds) {
        if (known == name)
            return kind;
    }
    failMalformed();
}

std::string_view nameOf(BundleSeal::Kind kind) {
    for (const auto &[name, known] : kinds) {
        if (known == kind)
            return name;
    }
    return {};
}

std::pair<std::string, BundleSeal::Entry> readEntry(Reader &reader) {
    BundleSeal::Entry entry;
    entry.kind = kindNamed(reader.word());
    if (entry.kind == BundleSeal::Kind::Link)
        entry.target = unescaped(reader.word());
    if (entry.kind == BundleSeal::Kind::Program || entry.kind == BundleSeal::Kind::File) {
        entry.size = parsedSize(reader.word());
        entry.sha256 = reader.word();
        if (entry.sha256.size() != digestDigits ||
            entry.sha256.find_first_not_of(hexDigits) != std::string::npos)
            failMalformed();
    }
    auto path = unescaped(reader.lastWord());
    bundlePathNames(path);
    if (entry.kind == BundleSeal::Kind::Link && !linkStaysInside(path, entry.target))
        throw BundleError("a link that leads out: " + readable(path));
    return {std::move(path), std::move(entry)};
}

// SHA-256 of a file that is read piece by piece.
class Digest {
public:
    Digest() {
        if (!m_context || EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr) != 1)
            throw BundleError("no SHA-256 in this machine's libcrypto");
    }

    void add(const void *bytes, std::size_t size) {
        if (EVP_DigestUpdate(m_context.get(), bytes, size) != 1)
            throw BundleError("SHA-256 failed");
    }

    std::string text() {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        unsigned int size = 0;
        if (EVP_DigestFinal_ex(m_context.get(), digest.data(), &size) != 1)
            throw BundleError("SHA-256 failed");
        std::string result;
        for (unsigned int index = 0; index < size; ++index)
            result += hexadecimal(digest[index]);
        return result;
    }

private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> m_context{EVP_MD_CTX_new(), EVP_MD_CTX_free};
};

void throwIfStopped(const std::stop_token &stop) {
    if (stop.stop_requested())
        throw BundleError("stopped");
}

FileDescriptor openBelow(int folder, const std::string &name, const std::string &path, int flags) {
    FileDescriptor file(retryingWhenInterrupted([&] {
        return ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | flags);
    }));
    if (!file)
        throw BundleError(readable(path), errno);
    return file;
}

struct stat statusOf(const FileDescriptor &file, const std::string &path) {
    struct stat status {};
    if (::fstat(file.get(), &status) < 0)
        throw BundleError(readable(path), errno);
    return status;
}

[[noreturn]] void failMode(const std::string &path) {
    throw BundleError("a mode that a bundle may not have: " + readable(path));
}

// Lists a bundle's folder. Everything is opened from the folder above it without following links, so that
// nobody can lead the reading elsewhere meanwhile.
class Listing {
public:
    explicit Listing(const std::stop_token &stop) : m_stop(stop) {}

    void addFolder(const FileDescriptor &folder, const std::string &path) {
        if ((statusOf(folder, path).st_mode & 07777U) != programMode)
            failMode(path.empty() ? "the bundle itself" : path);
        for (const auto &name : namesIn(folder, path)) {
            throwIfStopped(m_stop);
            if (path.empty() && name == sealFolder)
                continue;
            addEntry(folder, name, path.empty() ? name : std::string(path).append("/").append(name));
        }
    }

    std::map<std::string, BundleSeal::Entry> take() { return std::move(m_contents); }

    // The names in a folder, bounded like the whole bundle.
    static std::vector<std::string> namesIn(const FileDescriptor &folder, const std::string &path) {
        const int copy = ::fcntl(folder.get(), F_DUPFD_CLOEXEC, 0);
        const std::unique_ptr<DIR, int (*)(DIR *)> stream(copy < 0 ? nullptr : ::fdopendir(copy), ::closedir);
        if (!stream) {
            const int error = errno;
            if (copy >= 0)
                ::close(copy);
            throw BundleError(readable(path), error);
        }
        ::rewinddir(stream.get()); // the copy shares its position
        std::vector<std::string> names;
        errno = 0;
        while (const auto *found = ::readdir(stream.get())) {
            const std::string name = found->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
            if (names.size() > mostBundleEntries)
                throw BundleError("too many files");
            errno = 0;
        }
        if (errno != 0)
            throw BundleError(readable(path), errno);
        return names;
    }

private:
    void addEntry(const FileDescriptor &folder, const std::string &name, const std::string &path) {
        bundlePathNames(path);
        struct stat status {};
        if (::fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) < 0)
            throw BundleError(readable(path), errno);
        if (m_contents.size() >= mostBundleEntries)
            throw BundleError("too many files");

        if (S_ISDIR(status.st_mode)) {
            m_contents[path] = {BundleSeal::Kind::Folder, 0, {}, {}};
            addFolder(openBelow(folder.get(), name, path, O_DIRECTORY), path);
        } else if (S_ISLNK(status.st_mode)) {
            m_contents[path] = {BundleSeal::Kind::Link, 0, {}, targetOf(folder, name, path)};
        } else if (S_ISREG(status.st_mode)) {
            m_contents[path] = fileEntry(openBelow(folder.get(), name, path, 0), path);
        } else {
            throw BundleError("neither file nor folder: " + readable(path));
        }
    }

    static std::string targetOf(const FileDescriptor &folder, const std::string &name,
                                const std::string &path) {
        std::array<char, 2048> buffer{}; // more than a good target has
        const auto size = ::readlinkat(folder.get(), name.c_str(), buffer.data(), buffer.size());
        if (size < 0)
            throw BundleError(readable(path), errno);
        std::string target(buffer.data(), static_cast<std::size_t>(size));
        if (!linkStaysInside(path, target))
            throw BundleError("a link that leads out: " + readable(path));
        return target;
    }

    BundleSeal::Entry fileEntry(const FileDescriptor &file, const std::string &path) {
        const auto status = statusOf(file, path);
        if (!S_ISREG(status.st_mode))
            throw BundleError("neither file nor folder: " + readable(path));
        if (status.st_nlink != 1)
            throw BundleError("a file with a second name: " + readable(path));
        const auto mode = status.st_mode & 07777U;
        if (mode != programMode && mode != fileMode)
            failMode(path);

        BundleSeal::Entry entry;
        entry.kind = mode == programMode ? BundleSeal::Kind::Program : BundleSeal::Kind::File;
        Digest digest;
        for (;;) {
            throwIfStopped(m_stop);
            const auto count =
                retryingWhenInterrupted([&] { return ::read(file.get(), m_buffer.data(), m_buffer.size()); });
            if (count < 0)
                throw BundleError(readable(path), errno);
            if (count == 0)
                break;
            digest.add(m_buffer.data(), static_cast<std::size_t>(count));
            entry.size += static_cast<std::uint64_t>(count);
            m_total += static_cast<std::uint64_t>(count);
            if (m_total > largestBundle)
                throw BundleError("the bundle is too large");
        }
        entry.sha256 = digest.text();
        return entry;
    }

    const std::stop_token &m_stop;
    std::map<std::string, BundleSeal::Entry> m_contents;
    std::vector<char> m_buffer = std::vector<char>(1U << 17U);
    std::uint64_t m_total = 0;
};

FileDescriptor openBundle(const fs::path &bundle) {
    return openBelow(AT_FDCWD, bundle.string(), bundle.string(), O_DIRECTORY);
}

std::string readSealFile(const FileDescriptor &folder, std::string_view name, std::size_t limit) {
    const auto path = std::string(sealFolder).append("/").append(name);
    const auto file = openBelow(folder.get(), std::string(name), path, 0);
    const auto status = statusOf(file, path);
    if (!S_ISREG(status.st_mode) || status.st_nlink != 1)
        throw BundleError("no plain file: " + path);
    if ((status.st_mode & 07777U) != fileMode)
        failMode(path);
    // One byte more than it may have.
    std::string bytes(std::min(static_cast<std::size_t>(status.st_size), limit) + 1, '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const auto count = retryingWhenInterrupted(
            [&] { return ::read(file.get(), bytes.data() + filled, bytes.size() - filled); });
        if (count < 0)
            throw BundleError(path, errno);
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    if (filled == bytes.size())
        throw BundleError("too large: " + path);
    bytes.resize(filled);
    return bytes;
}

// The list, after its signature was found to be good.
BundleSeal signedSeal(const FileDescriptor &bundle, const MinisignPublicKey &key) {
    const std::string folderName(sealFolder);
    const auto folder = openBelow(bundle.get(), folderName, folderName, O_DIRECTORY);
    if ((statusOf(folder, folderName).st_mode & 07777U) != programMode)
        failMode(folderName);
    const auto names = Listing::namesIn(folder, folderName);
    for (const auto &name : names) {
        if (name != listName && name != signatureName)
            throw BundleError("was added: " + readable(std::string(folderName).append("/").append(name)));
    }
    const auto signature = MinisignSignature::parse(readSealFile(folder, signatureName, largestSignature));
    const auto list = readSealFile(folder, listName, largestList);
    signature.verify(key, list);
    return BundleSeal::parse(list);
}

void compare(const std::map<std::string, BundleSeal::Entry> &sealed,
             const std::map<std::string, BundleSeal::Entry> &found) {
    for (const auto &[path, entry] : sealed) {
        const auto same = found.find(path);
        if (same == found.end())
            throw BundleError("is missing: " + readable(path));
        if (same->second != entry)
            throw BundleError("was altered: " + readable(path));
    }
    for (const auto &[path, entry] : found) {
        if (!sealed.contains(path))
            throw BundleError("was added: " + readable(path));
    }
}

} // namespace

BundleSeal BundleSeal::parse(std::string_view text) {
    BundleSeal seal;
    Reader reader(text);
    if (reader.lastWord() != firstLine || reader.word() != "version")
        failMalformed();
    seal.version = reader.lastWord();
    if (reader.word() != "architecture")
        failMalformed();
    seal.architecture = reader.lastWord();
    if (!isPlainWord(seal.version) || !isPlainWord(seal.architecture))
        failMalformed();
    while (!reader.atEnd()) {
        if (seal.contents.size() >= mostBundleEntries)
            throw BundleError("too many files");
        seal.contents.insert(readEntry(reader));
    }
    if (seal.text() != text)
        failMalformed();
    return seal;
}

std::string BundleSeal::text() const {
    auto text = std::string(firstLine) + "\nversion " + version + "\narchitecture " + architecture + "\n";
    for (const auto &[path, entry] : contents) {
        text.append(nameOf(entry.kind)).append(" ");
        if (entry.kind == Kind::Link)
            text.append(escaped(entry.target)).append(" ");
        if (entry.kind == Kind::Program || entry.kind == Kind::File)
            text.append(std::to_string(entry.size)).append(" ").append(entry.sha256).append(" ");
        text.append(escaped(path)).append("\n");
    }
    return text;
}

std::map<std::string, BundleSeal::Entry> bundleContents(const fs::path &bundle, const std::stop_token &stop) {
    Listing listing(stop);
    listing.addFolder(openBundle(bundle), {});
    return listing.take();
}

std::string machineArchitecture() {
    struct utsname names {};
    return ::uname(&names) == 0 ? names.machine : std::string();
}

void verifyBundle(const fs::path &bundle, const BundleExpectation &expected, const std::stop_token &stop) {
    const auto folder = openBundle(bundle);
    const auto seal = signedSeal(folder, expected.key);
    if (seal.version != expected.version)
        throw BundleError("the bundle is version " + seal.version + " and not " + readable(expected.version));
    if (!Version::isNewer(seal.version, expected.runningVersion))
        throw BundleError("version " + seal.version + " is not newer than " +
                          readable(expected.runningVersion));
    if (seal.architecture != expected.architecture)
        throw BundleError("the bundle is for " + seal.architecture + " and not for " +
                          readable(expected.architecture));
    Listing listing(stop);
    listing.addFolder(folder, {});
    compare(seal.contents, listing.take());
}

} // namespace diary
