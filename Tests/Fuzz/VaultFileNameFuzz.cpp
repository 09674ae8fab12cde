// SPDX-License-Identifier: MIT
#include "Support/VaultFileNames.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view name(reinterpret_cast<const char *>(data), size);
    const auto falsehood = diary::testing::falsehoodAbout(name);
    if (!falsehood.empty()) {
        std::fprintf(stderr, "%s\n", falsehood.c_str());
        std::abort();
    }
    return 0;
}
