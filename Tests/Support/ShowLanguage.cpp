// SPDX-License-Identifier: MIT
//
// Shows what the language of the interface comes to in a process of its own, a line each: the resource
// bundle, the code of the language, the locale, the name of March, the text of "Today", Qt's text of
// "Cancel".

#include <DiaryApp/Localization.h>
#include <DiaryApp/Text.h>

#include <QCoreApplication>

#include <iostream>

int main(int argc, char *argv[]) {
    using namespace diary;
    const QCoreApplication application(argc, argv);
    const auto today = L("Today");
    const auto locale = Localization::locale();
    for (const auto &line :
         {pathToQString(Localization::resourceBundle()), Localization::effectiveLanguage(), locale.name(),
          locale.standaloneMonthName(3), today, QCoreApplication::translate("QPlatformTheme", "Cancel")})
        std::cout << line.toStdString() << '\n';
    return 0;
}
