#include "core/CaptionCodec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace cuewright;

namespace {

struct Read {
    double start;
    double end;
    std::string text;
    friend bool operator==(const Read&, const Read&) = default;
    friend void PrintTo(const Read& r, std::ostream* os) { *os << r.start << "-" << r.end << " \"" << r.text << "\""; }
};

std::vector<Read> reads(const CaptionDocument& document)
{
    std::vector<Read> result;
    for (const auto& cue : document.cues)
        result.push_back({ cue.start, cue.end, cue.text });
    return result;
}

std::vector<Read> readText(std::string_view text)
{
    return reads(CaptionCodec::decode(text));
}

std::vector<Read> readBytes(const std::string& bytes)
{
    return reads(CaptionCodec::decode(
        std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size())));
}

CaptionCodecError errorOf(std::string_view text)
{
    try {
        CaptionCodec::decode(text);
    } catch (const CaptionCodecError& error) {
        return error;
    }
    ADD_FAILURE() << "no error for: " << text;
    return CaptionCodecError::noCues();
}

std::string utf16(std::u16string_view text, bool littleEndian, bool mark)
{
    std::string out;
    auto put = [&](char16_t unit) {
        const char hi = static_cast<char>(unit >> 8);
        const char lo = static_cast<char>(unit & 0xFF);
        out += littleEndian ? lo : hi;
        out += littleEndian ? hi : lo;
    };
    if (mark)
        put(0xFEFF);
    for (char16_t unit : text)
        put(unit);
    return out;
}

const std::string subRip = "1\n00:00:01,000 --> 00:00:02,500\nHello\nthere\n\n"
                           "2\n00:00:03,000 --> 00:00:04,000\n<i>Second</i> &amp; more\n";

} // namespace

TEST(CaptionCodec, lineEndsAndIndexLinesReadAlike)
{
    const std::vector<Read> expected { { 1, 2.5, "Hello\nthere" }, { 3, 4, "<i>Second</i> &amp; more" } };
    EXPECT_EQ(readText(subRip), expected);

    std::string crlf, cr;
    for (char c : subRip) {
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
        cr += c == '\n' ? '\r' : c;
    }
    EXPECT_EQ(readText(crlf), expected);
    EXPECT_EQ(readText(cr), expected);

    // An index is never looked at; a cue identifier goes the same way.
    EXPECT_EQ(readText("intro\n00:01.000 --> 00:02.000\nHi"), (std::vector<Read> { { 1, 2, "Hi" } }));
}

TEST(CaptionCodec, webVttHeaderNotesAndStyleBlocksArePassedOver)
{
    EXPECT_EQ(readText("WEBVTT - title\n\nNOTE this\nspans lines\n\nSTYLE\n::cue { color: red }\n\n"
                       "00:01.000 --> 00:02.000 align:start position:10%\nHi\n\n"
                       "REGION\nid:fred\n\n"
                       "note lower case\n00:03 --> 00:04\nThere"),
        (std::vector<Read> { { 1, 2, "Hi" }, { 3, 4, "There" } }));

    // A cue in the header's block is lost with it.
    EXPECT_EQ(errorOf("WEBVTT\n00:01.000 --> 00:02.000\nHi").kind, CaptionCodecError::Kind::noCues);
    // Two lines in front of the timing line: only one is removed, so the block is loose text.
    EXPECT_EQ(errorOf("1\nextra\n00:01 --> 00:02\nHi").kind, CaptionCodecError::Kind::noCues);
}

TEST(CaptionCodec, nothingToReadIsNoCues)
{
    for (std::string_view text :
        { "", "   \n \t ", "WEBVTT", "WEBVTT\n\n", "1\n00:01 --> 00:02\n\n", "00:01 --> 00:02", "just some words" }) {
        const auto error = errorOf(text);
        EXPECT_EQ(error, CaptionCodecError::noCues()) << text;
        EXPECT_STREQ(error.what(), "No captions were found in the file.");
    }
}

TEST(CaptionCodec, badTimingStopsTheWholeImport)
{
    const auto error = errorOf("1\n00:00:01,000 --> 00:00:02,000\nFine\n\n2\nx --> 00:02\nHi");
    EXPECT_EQ(error, CaptionCodecError::invalidTiming("x --> 00:02"));
    EXPECT_STREQ(error.what(), "The caption timing \u2018x --> 00:02\u2019 is not valid.");

    EXPECT_EQ(errorOf("1 --> 2 --> 3\nHi"), CaptionCodecError::invalidTiming("1 --> 2 --> 3"));
    EXPECT_EQ(errorOf("1 -->\nHi"), CaptionCodecError::invalidTiming("1 -->"));
    // Checked even when no text follows.
    EXPECT_EQ(errorOf("00:01 --> soon"), CaptionCodecError::invalidTiming("00:01 --> soon"));
    // The line as it stood, CR LF aside, settings included.
    EXPECT_EQ(errorOf("1,5 --> 2:x align:start\r\nHi"), CaptionCodecError::invalidTiming("1,5 --> 2:x align:start"));
}

TEST(CaptionCodec, timesAreClampedByTheCueNotRejected)
{
    EXPECT_EQ(readText("1 --> 2\nHi"), (std::vector<Read> { { 1, 2, "Hi" } }));
    const auto reversed = readText("00:02.000 --> 00:01.000\nHi");
    ASSERT_EQ(reversed.size(), 1u);
    EXPECT_EQ(reversed[0].start, 2);
    EXPECT_DOUBLE_EQ(reversed[0].end, 2.05);
    EXPECT_EQ(readText("-5 --> 1\nHi"), (std::vector<Read> { { 0, 1, "Hi" } }));
}

TEST(CaptionCodec, textKeepsInnerLinesAndMarkupAndIsTrimmed)
{
    EXPECT_EQ(readText("1\n1 --> 2\n  one\ntwo\n \nthree  \n"), (std::vector<Read> { { 1, 2, "one\ntwo\n \nthree" } }));
    // Three newlines leave a block that begins with one: that empty line goes as the index
    // line would, so a cue identifier after it makes the block loose text.
    EXPECT_EQ(readText("1 --> 2\nA\n\n\n3 --> 4\nB"), (std::vector<Read> { { 1, 2, "A" }, { 3, 4, "B" } }));
    EXPECT_EQ(readText("1\n1 --> 2\nA\n\n\n2\n3 --> 4\nB"), (std::vector<Read> { { 1, 2, "A" } }));
}

TEST(CaptionCodec, cuesAreSortedByStartKeepingFileOrderOnTies)
{
    EXPECT_EQ(readText("5 --> 6\nlate\n\n1 --> 3\nfirst\n\n1 --> 2\nsecond"),
        (std::vector<Read> { { 1, 3, "first" }, { 1, 2, "second" }, { 5, 6, "late" } }));
}

TEST(CaptionCodec, bytesAsUtf8OrUtf16WithAnyMark)
{
    const std::vector<Read> expected { { 1, 2, "Caf\u00e9 \U0001F600" } };
    const std::string text = "1\n00:00:01,000 --> 00:00:02,000\nCaf\u00e9 \U0001F600\n";
    const std::u16string text16 = u"1\n00:00:01,000 --> 00:00:02,000\nCaf\u00e9 \U0001F600\n";

    EXPECT_EQ(readBytes(text), expected);
    EXPECT_EQ(readBytes("\xEF\xBB\xBF" + text), expected);
    EXPECT_EQ(readBytes(utf16(text16, true, true)), expected);
    EXPECT_EQ(readBytes(utf16(text16, false, true)), expected);
    EXPECT_EQ(readBytes(utf16(text16, true, false)), expected);
    EXPECT_EQ(readBytes(utf16(text16, false, false)), expected);

    // A mark in front of a timing line would otherwise make it an index line.
    EXPECT_EQ(readBytes("\xEF\xBB\xBF"
                        "1 --> 2\nHi"),
        (std::vector<Read> { { 1, 2, "Hi" } }));
    EXPECT_EQ(readBytes(utf16(u"WEBVTT\n\n1 --> 2\nHi", true, true)), (std::vector<Read> { { 1, 2, "Hi" } }));

    // Neither UTF-8 nor UTF-16 (an odd length with invalid UTF-8).
    EXPECT_THROW(readBytes("\xFF\xFF\xFF"), CaptionCodecError);
    // A lone high surrogate.
    EXPECT_THROW(readBytes(std::string("\xFF\xFE\x00\xD8", 4)), CaptionCodecError);
}

TEST(CaptionCodec, parseTimeForms)
{
    struct Case {
        const char* text;
        std::optional<double> seconds;
    };
    const Case cases[] = {
        { "00:00:01,500", 1.5 },
        { "1:2:3.5", 3723.5 },
        { "00:99:99", 6039 },
        { "-1:30", -30 },
        { "  01:02 \n", 62 },
        { "1::2", 62 },
        { ":1:", 1 },
        { "0x10", 16 },
        { "5.", 5 },
        { "00:00:00.123456789", 0.123456789 },
        { "1234567890123456789", 1234567890123456789.0 },
        { "", std::nullopt },
        { "1:2:3:4", std::nullopt },
        { "1 :2", std::nullopt },
        { "1,2,3", std::nullopt },
    };
    for (const auto& c : cases)
        EXPECT_EQ(CaptionCodec::parseTime(c.text), c.seconds) << c.text;

    EXPECT_TRUE(std::isinf(*CaptionCodec::parseTime("inf")));
    EXPECT_TRUE(std::isnan(*CaptionCodec::parseTime("nan")));
}

TEST(CaptionCodec, formatTimeRoundsHalfAwayAndNeverFails)
{
    const double inf = std::numeric_limits<double>::infinity();
    struct Case {
        double seconds;
        const char* text;
    };
    const Case cases[] = {
        { 1.2345, "00:00:01,235" },
        { 0.0005, "00:00:00,001" },
        { 0.0004, "00:00:00,000" },
        { -1, "00:00:00,000" },
        { 3723.5, "01:02:03,500" },
        { 360000, "100:00:00,000" },
        { NAN, "00:00:00,000" },
        { -inf, "00:00:00,000" },
        { inf, "2562047788015:12:55,807" },
    };
    for (const auto& c : cases)
        EXPECT_EQ(CaptionCodec::formatTime(c.seconds, true), c.text) << c.seconds;
    EXPECT_EQ(CaptionCodec::formatTime(1.5, false), "00:00:01.500");
}

TEST(CaptionCodec, encodeWritesSortedNumberedCuesWithLfEnds)
{
    const auto late = CaptionCue(Uuid::generate(), 5, 6, "late", 0.5, 0.5);
    const auto early = CaptionCue(Uuid::generate(), 1.5, 3.25, "Hello\nthere");
    const auto document = CaptionDocument::unsorted(CueList { late, early });

    EXPECT_EQ(CaptionCodec::encode(document, CaptionFormat::srt),
        "1\n00:00:01,500 --> 00:00:03,250\nHello\nthere\n\n2\n00:00:05,000 --> 00:00:06,000\nlate\n\n");
    EXPECT_EQ(CaptionCodec::encode(document, CaptionFormat::vtt),
        "WEBVTT\n\n00:00:01.500 --> 00:00:03.250\nHello\nthere\n\n00:00:05.000 --> 00:00:06.000\nlate\n\n");
    EXPECT_EQ(document.cues[0], late); // the given document is left alone

    EXPECT_EQ(CaptionCodec::encode(CaptionDocument(), CaptionFormat::srt), "");
    EXPECT_EQ(CaptionCodec::encode(CaptionDocument(), CaptionFormat::vtt), "WEBVTT\n\n");
}

TEST(CaptionCodec, whatIsWrittenReadsBack)
{
    std::vector<CaptionCue> cues;
    for (int i = 0; i < 200; ++i)
        cues.emplace_back(Uuid::generate(), i * 2.0 + 0.0015 * i, i * 2.0 + 1.7,
            "Line " + std::to_string(i) + "\nsecond \u00e9", 0.2, 0.8);
    const CaptionDocument document(cues);
    for (auto format : allCaptionFormats) {
        const auto back = CaptionCodec::decode(CaptionCodec::encode(document, format));
        ASSERT_EQ(back.cues.size(), cues.size());
        for (std::size_t i = 0; i < cues.size(); ++i) {
            EXPECT_EQ(std::round(back.cues[i].start * 1000), std::round(cues[i].start * 1000));
            EXPECT_EQ(std::round(back.cues[i].end * 1000), std::round(cues[i].end * 1000));
            EXPECT_EQ(back.cues[i].text, cues[i].text);
            EXPECT_NE(back.cues[i].id, cues[i].id);
            EXPECT_FALSE(back.cues[i].positionX);
        }
    }
}
