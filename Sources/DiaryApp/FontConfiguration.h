// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// What the system says of its fonts (Fontconfig). To read it takes a good part of a start, and Qt would do so
// in the main thread when the first text is laid out.
namespace diary::FontConfiguration {

// Begins to read it on a thread of its own, and goes when that thread has ended. At most one, made by the
// main thread.
class EarlyReading {
public:
    EarlyReading();
    EarlyReading(const EarlyReading &) = delete;
    EarlyReading &operator=(const EarlyReading &) = delete;
    ~EarlyReading();
};

// Before Qt is asked for fonts, which would read all of it once more. Returns at once where nothing is being
// read. Main thread.
void waitUntilRead();

// The installed family that the system shows for this one, which may be an alias such as "serif". The same
// one where there are no fonts. Main thread.
QString meantFamily(const QString &family);

} // namespace diary::FontConfiguration
