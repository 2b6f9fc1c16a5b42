// The parts of aicam that need no module: the command line, the result texts
// and exit statuses, the slicing of payloads and the progress bar.
#include <gtest/gtest.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "Arguments.h"
#include "FileData.h"
#include "ProgressBar.h"
#include "ResultText.h"

namespace {
Arguments Words(std::vector<std::string> words) { return Arguments(std::move(words)); }

std::string ReadBack(FILE* file)
{
    std::string text;
    rewind(file);
    int c;
    while ((c = fgetc(file)) != EOF)
        text += static_cast<char>(c);
    return text;
}
}  // namespace

TEST(CommandLine, OptionsAreTakenWhereverTheyStandInBothForms)
{
    Arguments args = Words({"alice", "--slice", "512", "photo.jpg", "--md5=abc", "--all"});
    std::string md5, id, file;
    long slice = 0;
    EXPECT_TRUE(args.Flag("--all"));
    EXPECT_FALSE(args.Flag("--all"));
    EXPECT_TRUE(args.Number("--slice", 1, 8192, slice));
    EXPECT_EQ(512, slice);
    EXPECT_TRUE(args.Option("--md5", md5));
    EXPECT_EQ("abc", md5);
    EXPECT_TRUE(args.Next("ID", id));
    EXPECT_TRUE(args.Next("FILE", file));
    EXPECT_EQ("alice", id);
    EXPECT_EQ("photo.jpg", file);
    EXPECT_EQ(0, args.Finish("faces add-image"));
}

TEST(CommandLine, EachMistakeIsOneLineAndCodeMinusFour)
{
    struct Case {
        std::vector<std::string> words;
        std::string line;
    };
    const Case cases[] = {
        {{}, "aicam: ping: missing TEXT; see 'aicam ping --help' (-4)\n"},
        {{"--count"}, "aicam: ping: --count needs a value; see 'aicam ping --help' (-4)\n"},
        {{"--count", "0x10000000"}, "aicam: ping: --count must be a whole number from 1 to 100, not '0x10000000'; see "
                                    "'aicam ping --help' (-4)\n"},
        {{"text", "extra"}, "aicam: ping: unexpected 'extra'; see 'aicam ping --help' (-4)\n"},
        {{"text", "--colour"}, "aicam: ping: unexpected '--colour'; see 'aicam ping --help' (-4)\n"},
    };
    for (const Case& test : cases) {
        Arguments args(test.words);
        long count = 0;
        std::string text;
        args.Number("--count", 1, 100, count);
        args.Next("TEXT", text);
        testing::internal::CaptureStderr();
        EXPECT_EQ(-4, args.Finish("ping"));
        EXPECT_EQ(test.line, testing::internal::GetCapturedStderr());
    }
}

TEST(CommandLine, NumbersMustBeWholeAndInRange)
{
    long value = 7;
    EXPECT_TRUE(ParseNumber("0x1f", 0, 100, value));
    EXPECT_EQ(31, value);
    EXPECT_TRUE(ParseNumber("-3", -5, 5, value));
    EXPECT_EQ(-3, value);
    for (const char* bad : {"", "12abc", "4.5", "101", "-6", "99999999999999999999"})
        EXPECT_FALSE(ParseNumber(bad, -5, 100, value)) << bad;
    EXPECT_EQ(-3, value);
}

TEST(ResultCodes, ExitStatusIsTheNegatedCodeOrTheModuleStatus)
{
    EXPECT_EQ(0, ExitStatus(0));
    EXPECT_EQ(6, ExitStatus(-6));
    EXPECT_EQ(20, ExitStatus(kFileUnreadable));
    EXPECT_EQ(50, ExitStatus(50));
    EXPECT_EQ(255, ExitStatus(255));
    EXPECT_EQ(1, ExitStatus(-1));
}

TEST(ResultCodes, EveryCodeHasASentence)
{
    EXPECT_EQ("the module did not answer within 10 s", ResultText(-6));
    EXPECT_EQ("the module refused the request with status 50 (0x32)", ResultText(50));
    EXPECT_EQ("the library failed with an unknown code", ResultText(-99));
    for (int code : {-1, -2, -4, -5, -7, -8, -9, -10, -11, -20, -21, -22}) {
        std::string text = ResultText(code);
        EXPECT_NE("the library failed with an unknown code", text) << code;
        EXPECT_NE(std::string::npos, ExitStatusHelp().find(text)) << code;
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(-10, Fail("snapshot", -10));
    EXPECT_EQ("aicam: snapshot: the video stream could not be opened (-10)\n", testing::internal::GetCapturedStderr());
}

TEST(Slicing, SlicesCoverThePayloadInOrderAndOnlyTheLastIsLast)
{
    ByteVector data(10000);
    for (size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<unsigned char>(i * 7);
    ByteVector joined;
    std::vector<unsigned int> offsets;
    std::vector<bool> lasts;
    auto collect = [&](unsigned int offset, const unsigned char* bytes, unsigned int size, bool isLast) {
        offsets.push_back(offset);
        lasts.push_back(isLast);
        joined.insert(joined.end(), bytes, bytes + size);
        return 0;
    };
    int result = SendInSlices(data, 4096, collect);
    EXPECT_EQ(0, result);
    EXPECT_EQ((std::vector<unsigned int>{0, 4096, 8192}), offsets);
    EXPECT_EQ((std::vector<bool>{false, false, true}), lasts);
    EXPECT_EQ(data, joined);
}

TEST(Slicing, TheFirstFailureStopsTheSending)
{
    ByteVector data(4096 * 3);
    int calls = 0;
    int result = SendInSlices(data, 4096, [&](unsigned int offset, const unsigned char*, unsigned int, bool) {
        ++calls;
        return offset == 4096 ? 20 : 0;
    });
    EXPECT_EQ(20, result);
    EXPECT_EQ(2, calls);
}

TEST(Slicing, APayloadOfExactlyOneSliceIsOneLastSlice)
{
    ByteVector data(4096);
    std::vector<bool> lasts;
    SendInSlices(data, 4096, [&](unsigned int, const unsigned char*, unsigned int size, bool isLast) {
        EXPECT_EQ(4096u, size);
        lasts.push_back(isLast);
        return 0;
    });
    EXPECT_EQ(std::vector<bool>{true}, lasts);
}

TEST(Progress, TheBarShowsBytesRateAndTimeLeftAndEndsItsLine)
{
    FILE* out = tmpfile();
    ASSERT_NE(nullptr, out);
    ProgressBar bar(out, 2048);
    bar.Update(1024);
    bar.Update(2048);
    bar.Finish();
    const std::string text = ReadBack(out);
    fclose(out);
    EXPECT_NE(std::string::npos, text.find("\r[###############---------------]  50% 1024/2048 bytes  "));
    EXPECT_NE(std::string::npos, text.find("\r[##############################] 100% 2048/2048 bytes  "));
    EXPECT_NE(std::string::npos, text.find("iB/s  0:00 left \n"));
    EXPECT_EQ('\n', text.back());
}
