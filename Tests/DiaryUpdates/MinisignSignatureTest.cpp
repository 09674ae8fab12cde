// SPDX-License-Identifier: MIT
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/MinisignSignature.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include <tavelo-seal/MakerKey.h>

namespace diary {
namespace {

// Made by minisign 0.11.
constexpr std::string_view publicKey = "RWSKv5XN6u6bWGQlxXLf5+jH80XSGyQ88QBj4f2zGU+LoXb6x1+Z2QIp";
constexpr std::string_view message = "tavelo bundle 1\n";
const std::string signatureFile =
    "untrusted comment: a comment\n"
    "RUSKv5XN6u6bWCO4fFaiVSxFQH8eCFJo7ZsRWV2Fv5RPn56AWza1fstmw6T6TmFEw9GrXvmHVEmAY3jOj3CUbF3mseamvfpNmwk=\n"
    "trusted comment: Tavelo 1.4.2\n"
    "I4c71LHdYI3RktkYlmtT6QjmCFEyY0jKNjA2+WJHemV9GxS3cMkAS1WJBjppb9gje+zTOlK7j31P63PiUCNQCA==\n";
const std::string oldSignatureFile =
    "untrusted comment: c\n"
    "RWSKv5XN6u6bWOoAvv1DFl8ftfHwUkRmvzatOhQ+mgImgHvRKGH7gCjPL89jxHHZulhkgFUYAtKURZUX1fomWK/g3Ic3abarZAM=\n"
    "trusted comment: legacy\n"
    "NmWO22lw54eQk2qXJ7JH47Vh0kxnIs3darMBQGWnFJQ6IiyFKjkNk7p3guePk5GPdXK1suC+icwJt6v5tyv1CQ==\n";

std::string replaced(std::string text, std::string_view what, std::string_view by) {
    return text.replace(text.find(what), what.size(), by);
}

std::string errorOf(std::string_view file, std::string_view bytes = message,
                    std::string_view key = publicKey) {
    try {
        MinisignSignature::parse(file).verify(MinisignPublicKey::parse(key), bytes);
    } catch (const BundleError &error) {
        return error.what();
    }
    return {};
}

TEST(MinisignSignature, ofMinisignIsVerified) {
    EXPECT_EQ(errorOf(signatureFile), "");
    EXPECT_EQ(MinisignSignature::parse(signatureFile).trustedComment, "Tavelo 1.4.2");
}

TEST(MinisignSignature, isWrittenAsMinisignWritesIt) {
    EXPECT_EQ(MinisignSignature::parse(signatureFile).text("a comment"), signatureFile);
    EXPECT_EQ(MinisignPublicKey::parse(publicKey).text(), publicKey);
}

TEST(MinisignSignature, isNotOfOtherBytes) {
    EXPECT_EQ(errorOf(signatureFile, "tavelo bundle 2\n"), "the signature is not of this list");
    EXPECT_EQ(errorOf(signatureFile, ""), "the signature is not of this list");
}

TEST(MinisignSignature, ofAnotherKeyFails) {
    const auto other = MakerKey::make().publicKey();
    EXPECT_EQ(errorOf(signatureFile, message, other.text()), "the signature is by another key");

    // Also when the other key bears the same id.
    auto sameId = other;
    sameId.id = MinisignPublicKey::parse(publicKey).id;
    EXPECT_EQ(errorOf(signatureFile, message, sameId.text()), "the signature is not of this list");
}

TEST(MinisignSignature, holdsForTheTrustedCommentToo) {
    EXPECT_EQ(errorOf(replaced(signatureFile, "Tavelo 1.4.2", "Tavelo 1.4.3")),
              "the signature's comment was altered");
    EXPECT_EQ(errorOf(replaced(signatureFile, "a comment", "another comment")), "");
}

TEST(MinisignSignature, ofTheOldKindIsNotTaken) {
    EXPECT_EQ(errorOf(oldSignatureFile), "the signature is of an unknown kind");
}

TEST(MinisignSignature, failsWithEveryByteOfItsProofsAltered) {
    const auto firstLine = signatureFile.find('\n') + 1;
    for (auto index = firstLine; index < signatureFile.size(); ++index) {
        auto altered = signatureFile;
        altered[index] = altered[index] == 'A' ? 'B' : 'A';
        EXPECT_NE(errorOf(altered), "") << index;
    }
}

TEST(MinisignSignature, failsWhenItIsCutAnywhere) {
    // Without its last line break it is whole.
    EXPECT_EQ(errorOf(signatureFile.substr(0, signatureFile.size() - 1)), "");
    for (std::size_t size = 0; size + 1 < signatureFile.size(); ++size)
        EXPECT_NE(errorOf(signatureFile.substr(0, size)), "") << size;
}

TEST(MinisignSignature, failsWithMoreThanFourLines) {
    EXPECT_EQ(errorOf(signatureFile + "more\n"), "the signature is malformed");
    EXPECT_EQ(errorOf(signatureFile + "\n"), "the signature is malformed");
}

TEST(MinisignSignature, failsWithAnOverlongLine) {
    EXPECT_EQ(errorOf(replaced(signatureFile, "a comment", std::string(2000, 'c'))),
              "the signature has an overlong line");
}

TEST(MinisignPublicKey, isNothingElse) {
    for (const std::string &text :
         {std::string(), std::string("key"), std::string(publicKey.substr(1)), std::string(publicKey) + "A",
          std::string(publicKey) + "\n", replaced(std::string(publicKey), "RWS", "RUS"), std::string(56, '='),
          std::string(56, '\0')})
        EXPECT_THROW(MinisignPublicKey::parse(text), BundleError) << text;
}

TEST(MinisignPublicKey, isQuotedShortlyWhenItIsNone) {
    try {
        MinisignPublicKey::parse(std::string(100'000, '\n'));
        FAIL();
    } catch (const BundleError &error) {
        EXPECT_LT(std::string_view(error.what()).size(), 200U);
        EXPECT_EQ(std::string_view(error.what()).find('\n'), std::string_view::npos);
    }
}

} // namespace
} // namespace diary
