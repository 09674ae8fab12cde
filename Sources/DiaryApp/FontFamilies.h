// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// Decides which font families stand for the diary's text, its figures and its labels, each as a list in which
// a character is looked for from front to back.
//
// At most one family of Han characters is in a list, by the reader's language: the same character is drawn
// differently in China, Japan and Korea, and a text must not mix them.
namespace diary::FontFamilies {

// What the choice depends on.
struct Surroundings {
    QStringList languages; // the reader's, as codes, the preferred one first
    std::function<bool(const QString &)> isInstalled;
};

// The desktop's families below are those of real fonts: of the list for a text, Qt passes over an alias like
// "monospace" as over a font that is not installed.

// The diary's own text: the user's choice, else "PingFang SC", else "Songti SC", whichever is installed
// first, else a serif, which is the desktop's when no better one is installed.
QStringList body(const std::optional<QString> &chosen, const QStringList &desktop,
                 const Surroundings &surroundings);

// Names and numbers: "IBM Plex Mono", else the desktop's families of fixed width.
QStringList mono(const QStringList &desktop, const Surroundings &surroundings);

// Code within the diary's text: "Menlo", else as above.
QStringList code(const QStringList &desktop, const Surroundings &surroundings);

// Labels and buttons: the desktop's own families.
QStringList system(const QStringList &desktop, const Surroundings &surroundings);

} // namespace diary::FontFamilies
