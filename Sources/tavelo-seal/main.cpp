// SPDX-License-Identifier: MIT
//
// The maker's side of updates: keys, seals, archives and the feed. Never installed with the application.

#include "BundleMaking.h"
#include "MakerKey.h"

#include <DiaryKit/DurableFile.h>
#include <DiaryUpdates/BundleSeal.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace diary;
using Words = std::vector<std::string>;

constexpr const char *help =
    R"(Usage: tavelo-seal COMMAND ...

  make-key SECRET                     makes a key pair: the file SECRET, which is not encrypted and must
                                      stay with you, and the public key, which is printed
  public-key SECRET                   prints the public key, the value of TAVELO_UPDATE_KEY in a build
  seal SECRET BUNDLE VERSION [ARCH]   lists what is in the bundle and signs the list; ARCH is what
                                      uname -m prints, of this machine when left out
  verify PUBLIC BUNDLE VERSION [ARCH] whether the owner of the public key sealed the bundle
  archive BUNDLE ZIP                  the zip archive of the bundle; SOURCE_DATE_EPOCH, in seconds since
                                      1970, is the time of its files
  feed VERSION URL ZIP                prints the feed that announces the archive

The public key and the signatures are in minisign's format. Ends with 0 when all went well, with 1 and a
message when not, with 2 when called otherwise.
)";

std::string architecture(const Words &words, std::size_t index) {
    return words.size() > index ? words[index] : machineArchitecture();
}

void makeKey(const Words &words) {
    const auto key = MakerKey::make();
    key.save(words[0]);
    std::cout << key.publicKey().text() << '\n';
}

void printPublicKey(const Words &words) {
    std::cout << MakerKey::load(words[0]).publicKey().text() << '\n';
}

void seal(const Words &words) {
    sealBundle(words[1], words[2], architecture(words, 3), MakerKey::load(words[0]));
}

void verify(const Words &words) {
    // Newer than any, since nothing runs here.
    verifyBundle(words[1], {MinisignPublicKey::parse(words[0]), words[2], "", architecture(words, 3)}, {});
}

void archive(const Words &words) {
    std::int64_t time = 0;
    if (const char *epoch = std::getenv("SOURCE_DATE_EPOCH"))
        std::from_chars(epoch, epoch + std::strlen(epoch), time);
    archiveBundle(words[0], words[1], time);
}

void feed(const Words &words) {
    std::cout << feedText(words[0], words[1], words[2]);
}

struct Command {
    std::size_t fewest;
    std::size_t most;
    std::function<void(const Words &)> run;
};

const std::map<std::string, Command> commands = {
    {"make-key", {1, 1, makeKey}}, {"public-key", {1, 1, printPublicKey}}, {"seal", {3, 4, seal}},
    {"verify", {3, 4, verify}},    {"archive", {2, 2, archive}},           {"feed", {3, 3, feed}},
};

} // namespace

int main(int argc, char **argv) {
    try {
        const Words words(argv + (argc > 1 ? 2 : argc), argv + argc);
        const auto command = commands.find(argc > 1 ? argv[1] : "");
        if (argc == 2 && argv[1] == std::string("--help")) {
            std::cout << help;
            return 0;
        }
        if (command == commands.end() || words.size() < command->second.fewest ||
            words.size() > command->second.most) {
            std::cerr << help;
            return 2;
        }
        command->second.run(words);
        std::cout.flush();
        return std::cout ? 0 : 1;
    } catch (const std::exception &error) {
        std::cerr << "tavelo-seal: " << error.what() << '\n';
        return 1;
    }
}
