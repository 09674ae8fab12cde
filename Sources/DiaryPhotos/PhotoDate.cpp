// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryPhotos/PhotoDate.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <exiv2/exiv2.hpp>
#include <exiv2/webpimage.hpp>
#include <memory>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::string_view_literals;
using LocalTime = PhotoDate::LocalTime;

// The first photograph that is left is of this year. Clocks that were never set like to say the year 1.
constexpr int earliestYear = 1826;

// Numbers in names are often no dates at all.
constexpr int latestYearInName = 2099;

// Exiv2 reads the pictures of some kinds to their end. One this large is no picture of a day: it goes by its
// name or its time.
constexpr off_t largestReadToTheEnd = 256 << 20;

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::optional<int> numberAt(std::string_view text, std::size_t position, std::size_t digits) {
    if (position + digits > text.size())
        return std::nullopt;
    int number = 0;
    for (const char c : text.substr(position, digits)) {
        if (!isDigit(c))
            return std::nullopt;
        number = number * 10 + (c - '0');
    }
    return number;
}

std::size_t digitsAt(std::string_view text, std::size_t position) {
    std::size_t end = position;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    return end - position;
}

std::optional<std::chrono::local_days> dayOf(std::optional<int> year, std::optional<int> month,
                                             std::optional<int> day, int latestYear) {
    if (!year || !month || !day || *year < earliestYear || *year > latestYear)
        return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok())
        return std::nullopt;
    return std::chrono::local_days(date);
}

std::optional<std::chrono::seconds> timeOfDay(std::optional<int> hour, std::optional<int> minute,
                                              std::optional<int> second) {
    // A leap second is shown by the one before it.
    if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60)
        return std::nullopt;
    return std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
           std::chrono::seconds(std::min(*second, 59));
}

bool isAnyOf(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

// "PM" and "pm" make an hour of twelve one of twenty-four.
std::optional<int> hourByHalfOfDay(int hour, std::string_view rest) {
    for (const auto blank : {" "sv, "\u00a0"sv, "\u202f"sv}) {
        if (rest.starts_with(blank)) {
            rest.remove_prefix(blank.size());
            break;
        }
    }
    if (rest.size() < 2 || !isAnyOf("mM", rest[1]) || !isAnyOf("aApP", rest[0]))
        return hour;
    if (hour < 1 || hour > 12)
        return std::nullopt;
    return hour % 12 + (isAnyOf("pP", rest[0]) ? 12 : 0);
}

// What follows the date in a name: "_101112", " 10.11.12", " at 3.45.12 PM", "-10-11-12-345".
std::optional<std::chrono::seconds> timeAfterDate(std::string_view rest) {
    std::size_t position = 0;
    while (position < rest.size() && isAnyOf(" _-.,T@", rest[position]))
        ++position;
    if (position > 0 && rest.substr(position).starts_with("at "))
        position += 3;
    const auto digits = digitsAt(rest, position);
    if (position == 0 || position > 5)
        return std::nullopt;
    if (digits == 6 || digits == 9) // with thousandths
        return timeOfDay(numberAt(rest, position, 2), numberAt(rest, position + 2, 2),
                         numberAt(rest, position + 4, 2));
    if (digits < 1 || digits > 2)
        return std::nullopt;
    const auto minutes = position + digits + 1;
    const auto seconds = minutes + 3;
    if (seconds + 2 > rest.size() || !isAnyOf(".-_:", rest[minutes - 1]) ||
        rest[seconds - 1] != rest[minutes - 1] || digitsAt(rest, seconds) != 2)
        return std::nullopt;
    const auto hour = hourByHalfOfDay(*numberAt(rest, position, digits), rest.substr(seconds + 2));
    return timeOfDay(hour, numberAt(rest, minutes, 2), numberAt(rest, seconds, 2));
}

// "20240203", alone or with the time behind it.
std::optional<NamedDate> compactDate(std::string_view text, std::size_t digits) {
    const auto day =
        dayOf(numberAt(text, 0, 4), numberAt(text, 4, 2), numberAt(text, 6, 2), latestYearInName);
    if (!day)
        return std::nullopt;
    if (digits == 8)
        return NamedDate{*day, timeAfterDate(text.substr(8))};
    const auto time = timeOfDay(numberAt(text, 8, 2), numberAt(text, 10, 2), numberAt(text, 12, 2));
    return time ? std::optional(NamedDate{*day, time}) : std::nullopt;
}

// "2024-02-03", alone or with the time behind it.
std::optional<NamedDate> separatedDate(std::string_view text) {
    constexpr std::size_t length = 10;
    if (text.size() < length || !isAnyOf("-_. :", text[4]) || text[7] != text[4] || digitsAt(text, 8) != 2)
        return std::nullopt;
    const auto day =
        dayOf(numberAt(text, 0, 4), numberAt(text, 5, 2), numberAt(text, 8, 2), latestYearInName);
    if (!day)
        return std::nullopt;
    return NamedDate{*day, timeAfterDate(text.substr(length))};
}

enum class Kind { None, Jpeg, Png, WebP, Tiff, LargeTiff, Heif };

bool isHeifBrand(std::string_view brand) {
    constexpr std::array brands = {"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv,
                                   "hevx"sv, "mif1"sv, "msf1"sv, "avif"sv, "avis"sv};
    return std::find(brands.begin(), brands.end(), brand) != brands.end();
}

Kind kindOf(std::string_view start) {
    if (start.starts_with("\xff\xd8\xff"sv))
        return Kind::Jpeg;
    if (start.starts_with("\x89PNG\r\n\x1a\n"sv))
        return Kind::Png;
    if (start.starts_with("RIFF"sv) && start.size() >= 12 && start.substr(8, 4) == "WEBP"sv)
        return Kind::WebP;
    if (start.starts_with("II*\0"sv) || start.starts_with("MM\0*"sv))
        return Kind::Tiff;
    if (start.starts_with("II+\0"sv) || start.starts_with("MM\0+"sv))
        return Kind::LargeTiff;
    if (start.size() >= 12 && start.substr(4, 4) == "ftyp"sv) {
        // The brand, a version, and the other brands it goes with.
        for (std::size_t position = 8; position + 4 <= start.size(); position += position == 8 ? 8 : 4) {
            if (isHeifBrand(start.substr(position, 4)))
                return Kind::Heif;
        }
    }
    return Kind::None;
}

// The bytes of a file in memory of their own, where Exiv2 would map the file: a file cut short under a map
// kills the process that reads there. Of a large file only the parts are read where a picture keeps its
// dates, at the start, at the end and at its first directory; the rest is zeros that cost no memory.
class SparseCopy {
public:
    explicit SparseCopy(int file, std::size_t size) : m_size(size) {
        constexpr std::size_t smallSize = 8 << 20;
        constexpr std::size_t window = 1 << 20;
        void *const memory =
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED)
            return;
        m_bytes = static_cast<Exiv2::byte *>(memory);
        if (size <= smallSize) {
            fill(file, 0, size);
            return;
        }
        fill(file, 0, window);
        fill(file, size - window, window);
        const auto order = m_bytes[0] == 'I' ? Exiv2::littleEndian : Exiv2::bigEndian;
        const std::size_t directory = Exiv2::getULong(m_bytes + 4, order);
        if (directory < size)
            fill(file, directory, std::min(window, size - directory));
    }
    SparseCopy(const SparseCopy &) = delete;
    SparseCopy &operator=(const SparseCopy &) = delete;
    ~SparseCopy() {
        if (m_bytes)
            ::munmap(m_bytes, m_size);
    }

    Exiv2::byte *bytes() const { return m_bytes; }

private:
    void fill(int file, std::size_t offset, std::size_t size) {
        while (size > 0) {
            const auto count = ::pread(file, m_bytes + offset, size, static_cast<off_t>(offset));
            if (count <= 0)
                return;
            offset += static_cast<std::size_t>(count);
            size -= static_cast<std::size_t>(count);
        }
    }

    Exiv2::byte *m_bytes = nullptr;
    std::size_t m_size = 0;
};

// A file that was opened before, so that it stays the one that was looked at. It is read, never mapped.
class UnmappedFile : public Exiv2::FileIo {
public:
    UnmappedFile(int file, std::size_t size)
        : FileIo("/proc/self/fd/" + std::to_string(file)), m_file(file), m_size(size) {}
    UnmappedFile(const UnmappedFile &) = delete;
    UnmappedFile &operator=(const UnmappedFile &) = delete;

    Exiv2::byte *mmap(bool /*isWriteable*/) override {
        if (!m_copy)
            m_copy = std::make_unique<SparseCopy>(m_file, m_size);
        if (!m_copy->bytes())
            throw Exiv2::Error(Exiv2::kerCallFailed);
        return m_copy->bytes();
    }
    int munmap() override {
        m_copy.reset();
        return 0;
    }

private:
    int m_file;
    std::size_t m_size;
    std::unique_ptr<SparseCopy> m_copy;
};

void lockXmp(void *mutex, bool lock) {
    if (lock)
        static_cast<std::mutex *>(mutex)->lock();
    else
        static_cast<std::mutex *>(mutex)->unlock();
}

void prepareExiv2() {
    static std::once_flag once;
    static std::mutex xmpMutex;
    std::call_once(once, [] {
        // It has an opinion of every broken file.
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize(lockXmp, &xmpMutex);
        Exiv2::enableBMFF(true);
    });
}

Exiv2::Image::AutoPtr imageOf(Kind kind, int file, std::size_t size) {
    Exiv2::BasicIo::AutoPtr io(new UnmappedFile(file, size));
    switch (kind) {
    case Kind::Jpeg:
        return Exiv2::newJpegInstance(io, false);
    case Kind::Png:
        return Exiv2::newPngInstance(io, false);
    case Kind::WebP:
        return Exiv2::newWebPInstance(io, false);
    case Kind::Tiff:
        return Exiv2::newTiffInstance(io, false);
    case Kind::Heif:
        return Exiv2::newBmffInstance(io, false);
    case Kind::None:
    case Kind::LargeTiff:
        break;
    }
    return Exiv2::Image::AutoPtr();
}

std::optional<PhotoDate> dateAmong(const Exiv2::ExifData &data) {
    constexpr std::uint16_t originalTag = 0x9003;
    constexpr std::uint16_t digitizedTag = 0x9004;
    std::optional<PhotoDate> digitized;
    for (const auto &entry : data) {
        if (entry.tag() != originalTag && entry.tag() != digitizedTag)
            continue;
        const auto group = entry.groupName();
        if (group != "Photo" && group != "Image")
            continue;
        const auto time = exifTime(entry.toString());
        if (time && entry.tag() == originalTag)
            return PhotoDate{*time, PhotoDate::Origin::Original};
        if (time)
            digitized = PhotoDate{*time, PhotoDate::Origin::Digitized};
    }
    return digitized;
}

std::optional<PhotoDate> dateFromCamera(Kind kind, int file, off_t size) {
    // JPEG is read no further than its header, TIFF in parts and not beyond what its offsets reach.
    constexpr off_t largestTiff = 0xffffffff;
    if (kind == Kind::LargeTiff || (kind == Kind::Tiff && size > largestTiff) ||
        (kind != Kind::Jpeg && kind != Kind::Tiff && size > largestReadToTheEnd))
        return std::nullopt;
    prepareExiv2();
    try {
        const auto image = imageOf(kind, file, static_cast<std::size_t>(size));
        if (!image.get())
            return std::nullopt;
        image->readMetadata();
        return dateAmong(image->exifData());
    } catch (const std::exception &) {
        // What a damaged or unusual file says is not known. Exiv2's own exceptions are among these.
        return std::nullopt;
    }
}

} // namespace

std::optional<LocalTime> exifTime(std::string_view text) {
    constexpr std::size_t dateLength = 10;
    const auto isNumber = [&](std::size_t position) {
        return position < text.size() && isDigit(text[position]);
    };
    if (text.size() < dateLength || isNumber(4) || isNumber(7) || isNumber(10))
        return std::nullopt;
    constexpr int latestYear = 9999;
    const auto day = dayOf(numberAt(text, 0, 4), numberAt(text, 5, 2), numberAt(text, 8, 2), latestYear);
    if (!day)
        return std::nullopt;
    if (std::ranges::none_of(text.substr(dateLength), isDigit))
        return *day + 12h;
    const auto time = timeOfDay(numberAt(text, 11, 2), numberAt(text, 14, 2), numberAt(text, 17, 2));
    return time ? std::optional<LocalTime>(*day + *time) : std::nullopt;
}

std::optional<NamedDate> dateInFileName(std::string_view name) {
    for (std::size_t position = 0; position < name.size();) {
        const auto digits = digitsAt(name, position);
        const auto text = name.substr(position);
        std::optional<NamedDate> date;
        if (digits == 8 || digits == 14 || digits == 17) // with the time, and with thousandths
            date = compactDate(text, digits);
        else if (digits == 4)
            date = separatedDate(text);
        if (date)
            return date;
        position += std::max<std::size_t>(digits, 1);
    }
    return std::nullopt;
}

LocalTime localTimeOf(std::int64_t nanoseconds) {
    const auto instant = std::chrono::floor<std::chrono::seconds>(std::chrono::nanoseconds(nanoseconds));
    const auto seconds = static_cast<std::time_t>(instant.count());
    std::tm parts{};
    if (!::localtime_r(&seconds, &parts))
        return LocalTime(instant);
    const std::chrono::year_month_day day(std::chrono::year(parts.tm_year + 1900),
                                          std::chrono::month(static_cast<unsigned>(parts.tm_mon) + 1),
                                          std::chrono::day(static_cast<unsigned>(parts.tm_mday)));
    return std::chrono::local_days(day) + std::chrono::hours(parts.tm_hour) +
           std::chrono::minutes(parts.tm_min) + std::chrono::seconds(parts.tm_sec);
}

PhotoDate dateFromName(const NamedDate &named, LocalTime modified) {
    PhotoDate date{named.day + 12h, PhotoDate::Origin::FileName};
    if (named.timeOfDay)
        date.time = named.day + *named.timeOfDay;
    else if (std::chrono::floor<std::chrono::days>(modified) == named.day)
        date.time = modified;
    return date;
}

std::optional<PhotoReading> readPhoto(const fs::path &path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) < 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    PhotoReading reading;
    reading.stamp = stampOf(status);

    std::array<char, 64> start{};
    const auto count = ::pread(file.get(), start.data(), start.size(), 0);
    if (count < 0)
        return std::nullopt;
    const auto kind = kindOf(std::string_view(start.data(), static_cast<std::size_t>(count)));
    if (kind == Kind::None)
        return reading;
    reading.date = dateFromCamera(kind, file.get(), status.st_size);
    if (reading.date)
        return reading;
    const auto modified = localTimeOf(reading.stamp.modified);
    if (const auto named = dateInFileName(path.filename().native()))
        reading.date = dateFromName(*named, modified);
    else
        reading.date = PhotoDate{modified, PhotoDate::Origin::Modified};
    return reading;
}

FileStamp stampOf(const struct stat &status) {
    // Times beyond what nanoseconds can count, some three centuries away, are as good as that limit.
    constexpr std::int64_t most = 9'000'000'000;
    const std::int64_t seconds = std::clamp<std::int64_t>(status.st_mtim.tv_sec, -most, most);
    return {status.st_size, seconds * 1'000'000'000 + status.st_mtim.tv_nsec};
}

bool hasPhotoExtension(std::string_view name) {
    constexpr std::array extensions = {"jpg"sv, "jpeg"sv, "jpe"sv,  "png"sv,  "webp"sv,
                                       "tif"sv, "tiff"sv, "heic"sv, "heif"sv, "avif"sv};
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return false;
    const auto ending = name.substr(dot + 1);
    const auto lowerCase = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::any_of(extensions.begin(), extensions.end(), [&](std::string_view extension) {
        return std::ranges::equal(ending, extension, {}, lowerCase);
    });
}

} // namespace diary
