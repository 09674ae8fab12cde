// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/VaultFileName.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace diary::testing {

struct NamedKind {
    std::string name;
    VaultFileName::Kind kind;
};

// Names that are found in vaults, of 14 March where they have a day, each with what it is.
const std::vector<NamedKind> &vaultFileNames();

// With every character taken apart into base and marks, as some systems store names. Valid UTF-8 only.
std::string decomposed(std::string_view name);

// What VaultFileName::classify says about the name that cannot be true, or nothing.
std::string falsehoodAbout(std::string_view name);

// Endless names that look like those in vaults, most of them damaged; the same for the same seed.
class RandomVaultFileNames {
public:
    explicit RandomVaultFileNames(std::uint32_t seed) : m_random(seed) {}
    std::string next();

private:
    std::size_t below(std::size_t limit);
    std::string assembled();
    std::string damaged(std::string name);

    std::mt19937 m_random;
};

} // namespace diary::testing
