// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>

namespace diary {

QString formatted(const QString &pattern, const std::vector<TextArgument> &arguments) {
    QString result;
    std::size_t next = 0;
    for (qsizetype at = 0; at < pattern.size(); ++at) {
        const QStringView rest = QStringView(pattern).sliced(at);
        const bool isNumber = rest.startsWith(QLatin1String("%d"));
        if ((isNumber || rest.startsWith(QLatin1String("%@"))) && next < arguments.size()) {
            const auto &argument = arguments[next++];
            result += isNumber ? QString::number(std::get<qlonglong>(argument)) : std::get<QString>(argument);
            ++at;
        } else {
            result += pattern[at];
        }
    }
    return result;
}

QString L(const char *key) {
    return QString::fromUtf8(key);
}

} // namespace diary
