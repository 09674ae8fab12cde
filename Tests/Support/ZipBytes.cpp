// SPDX-License-Identifier: MIT
#include "Support/ZipBytes.h"

#include <cstddef>
#include <string_view>

namespace diary::testing {

namespace {

std::uint32_t crc32(std::string_view bytes) {
    std::uint32_t crc = 0xffffffffU;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
    }
    return ~crc;
}

void append(std::string &bytes, std::size_t value, int size) {
    for (int index = 0; index < size; ++index, value >>= 8U)
        bytes += static_cast<char>(value & 0xffU);
}

// What stands both before the content and in the table of contents, from the version needed on.
void appendCommon(std::string &bytes, const ZipEntry &entry, std::size_t nameSize) {
    append(bytes, 20, 2);
    append(bytes, entry.flags, 2);
    append(bytes, 0, 2);          // stored
    append(bytes, 0x00210000, 4); // the first day there is
    append(bytes, entry.checksum.value_or(crc32(entry.bytes)), 4);
    append(bytes, entry.bytes.size(), 4);
    append(bytes, entry.bytes.size(), 4);
    append(bytes, nameSize, 2);
    append(bytes, 0, 2); // nothing extra
}

} // namespace

std::string zipBytes(const std::vector<ZipEntry> &entries) {
    std::string bytes;
    std::string table;
    for (const auto &entry : entries) {
        constexpr std::size_t unix20 = 3U << 8U | 20U;
        table += "PK\x01\x02";
        append(table, unix20, 2);
        appendCommon(table, entry, entry.name.size());
        append(table, 0, 2); // no comment
        append(table, 0, 4);
        append(table, static_cast<std::size_t>(entry.mode) << 16U, 4);
        append(table, bytes.size(), 4);
        table += entry.name;

        const auto &name = entry.nameBeforeContent.value_or(entry.name);
        bytes += "PK\x03\x04";
        appendCommon(bytes, entry, name.size());
        bytes += name + entry.bytes;
    }
    const auto start = bytes.size();
    bytes += table + std::string("PK\x05\x06");
    append(bytes, 0, 4);
    append(bytes, entries.size(), 2);
    append(bytes, entries.size(), 2);
    append(bytes, table.size(), 4);
    append(bytes, start, 4);
    append(bytes, 0, 2);
    return bytes;
}

} // namespace diary::testing
