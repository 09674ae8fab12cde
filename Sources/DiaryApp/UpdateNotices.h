// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Alert.h>
#include <DiaryApp/Updates.h>

#include <QString>

namespace diary {

// What people are told of updates, in the language in use.
namespace UpdateNotices {

QString downloading(const QString &version);
QString ready(const QString &version);
QString outcome(const UpdateStaging::Outcome &outcome);

// What is under way or done already; empty when nothing is. There need not be an updater.
QString state(const Updates *updates);

// Of a check that the user asked for, in a word and at length.
QString status(const Updates::CheckResult &result, bool isSupported);
Alert alert(const Updates::CheckResult &result, bool isSupported, const QString &currentVersion);

} // namespace UpdateNotices

} // namespace diary
