// SPDX-License-Identifier: MIT
#include "Arguments.h"
#include "CommandList.h"
#include "Commands.h"
#include "StandardStreams.h"

#include <DiaryKit/DiaryDay.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace diary::cli;

enum ExitStatus { Success = 0, Failure = 1, WrongUsage = 2 };

ExitStatus obey(const Arguments &arguments) {
    switch (arguments.action) {
    case Arguments::Action::Run:
        return run(arguments) ? Success : Failure;
    case Arguments::Action::ShowHelp:
        writeStandardOutput(helpText(arguments.command));
        break;
    case Arguments::Action::ShowVersion:
        writeStandardOutput("tavelo-cli " TAVELO_VERSION "\n");
        break;
    }
    return Success;
}

} // namespace

int main(int argc, char **argv) {
    secureStandardStreams();
    try {
        const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
        return obey(parseArguments(words, diary::DiaryDay::today()));
    } catch (const UsageError &error) {
        reportError(error.what() + std::string(" (see tavelo-cli --help)"));
        return WrongUsage;
    } catch (const std::filesystem::filesystem_error &error) {
        const auto path = error.path1().string();
        reportError((path.empty() ? std::string("the diary's folder") : path) + ": " +
                    error.code().message());
    } catch (const std::exception &error) {
        reportError(error.what());
    }
    return Failure;
}
