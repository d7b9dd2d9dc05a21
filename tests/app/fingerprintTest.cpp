// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/fingerprint.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FingerprintTest : public testing::Test
{
protected:
    std::optional<SessionFile> find(const std::string& name)
    {
        fault.clear();
        return fingerprintOf(name, {}, fault);
    }

    const TemporaryFolder folder;
    std::string fault;
};

} // namespace

TEST_F(FingerprintTest, IsTheLengthAndTheKnownSha256OfTheContent)
{
    // The example of FIPS 180-4.
    const auto abc = find(folder.write("abc", "abc"));
    ASSERT_TRUE(abc) << fault;
    EXPECT_EQ(abc->bytes, 3U);
    EXPECT_EQ(abc->digest, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    const auto empty = find(folder.write("empty", ""));
    ASSERT_TRUE(empty) << fault;
    EXPECT_EQ(empty->digest, "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_F(FingerprintTest, IsThatOfAllOfALongFile)
{
    std::string text(3 << 20, 'x');
    const auto before = find(folder.write("long", text));
    text.back() = 'y';
    const auto after = find(folder.write("long", text));
    ASSERT_TRUE(before && after);
    EXPECT_EQ(before->bytes, after->bytes);
    EXPECT_NE(before->digest, after->digest);
}

TEST_F(FingerprintTest, TellsOfAFileThatIsNotThereAndNothingOnceItIsStopped)
{
    const std::string missing = folder.path("missing");
    EXPECT_FALSE(find(missing));
    EXPECT_THAT(fault, testing::StartsWith(missing + ": "));
    fault.clear();
    EXPECT_FALSE(fingerprintOf(
        folder.write("abc", "abc"), [] { return false; }, fault));
    EXPECT_EQ(fault, "");
}

TEST_F(FingerprintTest, FilesThatChangedAreTold)
{
    const std::string kept = folder.write("kept", "1 2 3"), longer = folder.write("longer", "1"),
                      other = folder.write("other", "abc"), gone = folder.write("gone", "1");
    std::vector<SessionFile> files;
    for (const std::string& name : {kept, longer, other, gone})
        files.push_back(*find(name));
    EXPECT_THAT(findChanged(files, {}), IsEmpty());
    folder.write("longer", "1 2");
    folder.write("other", "abd");
    std::filesystem::remove(gone);
    const std::string tail = ": has changed since the session was saved";
    EXPECT_THAT(findChanged(files, {}), ElementsAre(longer + tail, other + tail));
}

TEST_F(FingerprintTest, OfAFolderItIsThatOfTheNamesAndLengthsInIt)
{
    const std::string series = folder.path("series");
    std::filesystem::create_directory(series);
    folder.write("series/f1.txt", "1 2 3");
    const auto before = find(series);
    ASSERT_TRUE(before);
    EXPECT_EQ(before->bytes, 5U);
    EXPECT_THAT(findChanged({*before}, {}), IsEmpty());
    folder.write("series/f2.txt", "");
    EXPECT_THAT(findChanged({*before}, {}), testing::SizeIs(1));
}

} // namespace strandview
