// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <type_traits>
#include <variant>
#include <vector>

namespace diary {

// What a text's placeholder stands for: %d for a whole number, %@ for a text.
using TextArgument = std::variant<qlonglong, QString>;

// The pattern with its placeholders replaced in order: `%d` by a number in plain decimal digits, `%@` by a
// text, `%%` by a percent sign. A translation may name them by position instead, `%2$d`. A placeholder
// without an argument of its kind stands as it is.
QString formatted(const QString &pattern, const std::vector<TextArgument> &arguments);

// The text of a key in the language in use; the key itself when there is no translation. Main thread only.
QString L(const char *key);

// The same, formatted: L("%d chars", count).
template <typename... Arguments>
QString L(const char *key, const Arguments &...arguments) {
    const auto argument = [](const auto &value) -> TextArgument {
        if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>)
            return static_cast<qlonglong>(value);
        else
            return QString(value);
    };
    return formatted(L(key), {argument(arguments)...});
}

} // namespace diary
