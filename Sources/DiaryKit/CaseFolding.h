// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

// How letters are compared without regard to case.
namespace diary {

enum class CaseRules {
    Default,
    Turkic // I is the capital of ı, and İ of i: Turkish and Azeri
};

// By the user's locale.
CaseRules userCaseRules();

enum class Equivalence {
    CodePoints, // as written
    Canonical   // é is é, composed or not; other marks on a letter make another letter
};

// The text with its case folded in full (ß becomes ss) and, for canonical equivalence, composed.
std::u32string folded(std::string_view utf8, CaseRules rules, Equivalence equivalence);
std::u32string folded(std::u32string_view text, CaseRules rules, Equivalence equivalence);

// One character that folds to one.
char32_t foldedAlone(char32_t character, CaseRules rules);

// True for the characters that fold to several: those of status F in Unicode's CaseFolding.txt, which no
// version may add to for existing characters, and their neighbours.
bool mayFoldToSeveral(char32_t character);

} // namespace diary
