// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <thread>

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

// Has Qt list the installed families on a thread of its own, as it would do in the main thread for the first
// text, and goes when that thread has ended. Made by the main thread when there is an application object, and
// gone before that is.
class EarlyListing {
public:
    EarlyListing();
    EarlyListing(const EarlyListing &) = delete;
    EarlyListing &operator=(const EarlyListing &) = delete;
    ~EarlyListing();

private:
    std::thread m_thread;
};

// Before Qt is asked for fonts, which would read all of it once more. Returns at once where nothing is being
// read. Main thread.
void waitUntilRead();

// The installed family that the system shows for this one, which may be an alias such as "serif". The same
// one where there are no fonts. Main thread.
QString meantFamily(const QString &family);

} // namespace diary::FontConfiguration
