// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>

namespace diary {

// Whether the code unit is a letter or a sign of Latin, Greek, Cyrillic, Han, Kana or Hangul text that stands
// for itself: it neither joins its neighbours nor is stacked above or below them. Control characters are
// among these. Any thread.
constexpr bool isOfSimpleScript(QChar unit) {
    const char16_t c = unit.unicode();
    const auto isWithin = [c](char16_t first, char16_t last) { return c >= first && c <= last; };
    return c < 0x0300                   // Latin
           || isWithin(0x0370, 0x0482)  // Greek, Cyrillic
           || isWithin(0x048A, 0x052F)  // more Cyrillic
           || isWithin(0x2010, 0x2027)  // dashes, quotation marks
           || isWithin(0x3000, 0x3029)  // Han punctuation
           || isWithin(0x3041, 0x3096)  // Hiragana
           || isWithin(0x30A0, 0x30FF)  // Katakana
           || isWithin(0x3400, 0x4DBF)  // Han
           || isWithin(0x4E00, 0x9FFF)  // Han
           || isWithin(0xAC00, 0xD7A3)  // Hangul syllables
           || isWithin(0xFF01, 0xFF9D); // fullwidth forms
}

} // namespace diary
