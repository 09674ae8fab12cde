// SPDX-License-Identifier: MIT
#include <DiaryPhotos/JpegFrame.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace diary {

namespace {

enum Marker : unsigned {
    StartOfFrameFirst = 0xC0, // baseline
    HuffmanTables = 0xC4,
    ReservedForExtensions = 0xC8,
    ArithmeticConditioning = 0xCC,
    StartOfFrameLast = 0xCF,
    RestartFirst = 0xD0,
    StartOfImage = 0xD8,
    EndOfImage = 0xD9,
    StartOfScan = 0xDA,
    TemporaryUse = 0x01,
};

// The header of a picture has a few segments; one with thousands is no picture.
constexpr int mostSegments = 1000;

bool isStartOfFrame(unsigned marker) {
    return marker >= StartOfFrameFirst && marker <= StartOfFrameLast && marker != HuffmanTables &&
           marker != ReservedForExtensions && marker != ArithmeticConditioning;
}

bool isProgressive(unsigned marker) {
    constexpr std::array progressive{0xC2U, 0xC6U, 0xCAU, 0xCEU};
    return std::find(progressive.begin(), progressive.end(), marker) != progressive.end();
}

bool standsAlone(unsigned marker) {
    return marker == TemporaryUse || (marker >= RestartFirst && marker <= StartOfImage);
}

// Reads the file byte after byte, in pieces.
class Bytes {
public:
    explicit Bytes(const PhotoFile &file) : m_file(file) {}

    std::optional<unsigned> next() {
        if (m_next == m_filled) {
            m_filled = m_file.readAt(m_offset, m_piece.data(), m_piece.size());
            m_offset += static_cast<std::int64_t>(m_filled);
            m_next = 0;
            if (m_filled == 0)
                return std::nullopt;
        }
        return static_cast<unsigned char>(m_piece[m_next++]);
    }

    std::optional<unsigned> nextTwo() {
        const auto high = next();
        const auto low = next();
        return high && low ? std::optional(*high << 8U | *low) : std::nullopt;
    }

    void skip(std::size_t count) {
        const auto here = std::min(count, m_filled - m_next);
        m_next += here;
        m_offset += static_cast<std::int64_t>(count - here);
    }

    // The next marker, over whatever stands before it.
    std::optional<unsigned> nextMarker() {
        for (auto byte = next(); byte; byte = next()) {
            while (byte == 0xFFU) {
                byte = next();
                if (byte && *byte != 0 && *byte != 0xFFU)
                    return byte;
            }
            if (!byte)
                break;
        }
        return std::nullopt;
    }

private:
    const PhotoFile &m_file;
    std::int64_t m_offset = 0; // of the piece to be read next
    std::array<char, 4096> m_piece{};
    std::size_t m_next = 0;
    std::size_t m_filled = 0;
};

struct Frame {
    QSize size;
    bool isProgressive = false;
    unsigned components = 0;
    std::int64_t coefficientBytes = 0;
};

// The content of a frame's segment: precision, height, width, and for each component its identifier, its
// sampling and its table.
std::optional<Frame> parseFrame(Bytes &bytes, unsigned marker) {
    const auto precision = bytes.next();
    const auto height = bytes.nextTwo();
    const auto width = bytes.nextTwo();
    const auto components = bytes.next();
    if (!precision || !height || !width || !components || *height == 0 || *width == 0 || *components == 0)
        return std::nullopt;
    unsigned samples = 0;
    unsigned widest = 1;
    unsigned highest = 1;
    for (unsigned i = 0; i < *components; ++i) {
        bytes.next();
        const auto sampling = bytes.next();
        if (!bytes.next() || !sampling)
            return std::nullopt;
        samples += (*sampling >> 4U) * (*sampling & 0xFU);
        widest = std::max(widest, *sampling >> 4U);
        highest = std::max(highest, *sampling & 0xFU);
    }
    // Blocks of eight by eight, in units of as many as the sampling needs, two bytes a coefficient.
    const auto across = (*width + 8 * widest - 1) / (8 * widest);
    const auto down = (*height + 8 * highest - 1) / (8 * highest);
    return Frame{.size = {static_cast<int>(*width), static_cast<int>(*height)},
                 .isProgressive = isProgressive(marker),
                 .components = *components,
                 .coefficientBytes = std::int64_t{across} * down * samples * 64 * 2};
}

} // namespace

std::optional<JpegFrame> readJpegFrame(const PhotoFile &file) {
    Bytes bytes(file);
    if (bytes.nextTwo() != 0xFFD8U)
        return std::nullopt;
    std::optional<Frame> frame;
    for (int segments = 0; segments < mostSegments; ++segments) {
        const auto marker = bytes.nextMarker();
        if (!marker || marker == EndOfImage)
            return std::nullopt;
        if (standsAlone(*marker))
            continue;
        const auto length = bytes.nextTwo();
        if (!length || *length < 2)
            return std::nullopt;
        if (isStartOfFrame(*marker)) {
            if (frame || !(frame = parseFrame(bytes, *marker)))
                return std::nullopt;
        } else if (marker == StartOfScan) {
            const auto components = bytes.next();
            if (!frame || !components)
                return std::nullopt;
            const bool isWhole = !frame->isProgressive && *components == frame->components;
            return JpegFrame{.size = frame->size, .coefficientBytes = isWhole ? 0 : frame->coefficientBytes};
        } else {
            bytes.skip(*length - 2);
        }
    }
    return std::nullopt;
}

int countJpegScans(const PhotoFile &file, int limit) {
    Bytes bytes(file);
    int scans = 0;
    bytes.nextTwo();
    while (scans < limit) {
        const auto marker = bytes.nextMarker();
        if (!marker || marker == EndOfImage)
            break;
        scans += marker == StartOfScan ? 1 : 0;
        if (standsAlone(*marker))
            continue;
        // Segments may hold a small picture with scans of its own.
        const auto length = bytes.nextTwo();
        if (!length || *length < 2)
            break;
        bytes.skip(*length - 2);
    }
    return scans;
}

} // namespace diary
