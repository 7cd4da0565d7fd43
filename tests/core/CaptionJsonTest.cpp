#include "core/CaptionJson.h"
#include "core/CaptionJsonReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

using namespace cuewright;
using ::testing::HasSubstr;

namespace {

const Uuid fixedId = *Uuid::parse("0A359167-289B-4EF9-954A-148DFCFBDB08");

CaptionProject talkProject()
{
    CaptionCue cue(fixedId, 1.5, 3.25, "Hello", 0.5, 0.5);
    return CaptionProject { "/Movies/talk.mov", CaptionDocument({ cue }), defaultCaptionStyle() };
}

template <typename F> CaptionJsonError decodeError(F&& decode)
{
    try {
        decode();
    } catch (const CaptionJsonError& error) {
        return error;
    }
    ADD_FAILURE() << "decoded without error";
    return CaptionJsonError(CaptionJsonError::Kind::invalidJSON, {}, "");
}

CaptionJsonError projectError(const std::string& json)
{
    return decodeError([&] { CaptionJson::decodeProject(json); });
}

} // namespace

TEST(CaptionJson, writesTheCompactFormByteForByte)
{
    EXPECT_EQ(CaptionJson::encode(talkProject()),
        R"({"videoPath":"\/Movies\/talk.mov","document":{"cues":[{"id":"0A359167-289B-4EF9-954A-148DFCFBDB08",)"
        R"("start":1.5,"end":3.25,"text":"Hello","positionX":0.5,"positionY":0.5}]},"style":{"fontName":)"
        R"(".AppleSystemUIFont","fontSize":54,"textColor":{"red":1,"green":1,"blue":1,"alpha":1},)"
        R"("backgroundColor":{"red":0,"green":0,"blue":0,"alpha":0.72},"backgroundEnabled":true,)"
        R"("shadowEnabled":true,"bottomMargin":0.09}})");

    CaptionCue unplaced(fixedId, 0, 2, "a");
    EXPECT_EQ(
        CaptionJson::encode(unplaced), R"({"id":"0A359167-289B-4EF9-954A-148DFCFBDB08","start":0,"end":2,"text":"a"})");
    unplaced.positionY = 1;
    EXPECT_EQ(CaptionJson::encode(unplaced),
        R"({"id":"0A359167-289B-4EF9-954A-148DFCFBDB08","start":0,"end":2,"text":"a","positionY":1})");
}

TEST(CaptionJson, writesNumbersInTheShortestFormThatReadsBack)
{
    const std::pair<double, const char*> cases[] = {
        { 54.0, "54" },
        { 0.1, "0.1" },
        { 1.0 / 3.0, "0.3333333333333333" },
        { -0.0, "-0" },
        { -2.5, "-2.5" },
        { 1e21, "1e+21" },
        { 123456789012.0, "123456789012" },
        { 5e-324, "5e-324" },
        { DBL_MAX, "1.7976931348623157e+308" },
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(CaptionJson::encode(RGBAColor { value, 0, 0, 1 }),
            std::string(R"({"red":)") + text + R"(,"green":0,"blue":0,"alpha":1})");
}

TEST(CaptionJson, escapesStringsAsTheDefaultEncoder)
{
    CaptionStyle style = defaultCaptionStyle();
    style.fontName = "a/b\"c\\d\n\t\r\b\f\x01\x1f caf\u00E9 \u2014 \U0001F600";
    const std::string json = CaptionJson::encode(style);
    EXPECT_THAT(json,
        HasSubstr(R"("a\/b\"c\\d\n\t\r\b\f\u0001\u001f caf)"
                  "\u00E9 \u2014 \U0001F600\""));
    EXPECT_EQ(CaptionJson::decodeStyle(json), style);

    style.fontName = "bad \xFF byte";
    EXPECT_EQ(CaptionJson::decodeStyle(CaptionJson::encode(style)).fontName, "bad \uFFFD byte");
}

TEST(CaptionJson, roundTripKeepsEveryValueAndTheCueOrder)
{
    std::vector<CaptionCue> cues {
        CaptionCue(Uuid::generate(), 9, 10, "later"),
        CaptionCue(Uuid::generate(), 1, 2, "line one\nline two \u00AB\u00BB / \\ \"q\" \U0001F3AC", 0.25, 1.0),
    };
    CaptionCue raw(Uuid::generate(), 0, 1, "");
    raw.start = -3.5; // decoded values are not clamped
    raw.end = -1e-300;
    raw.positionX = 7.5;
    raw.positionY = -DBL_MAX;
    cues.push_back(raw);
    CaptionCue tiny(Uuid::generate(), 0, 1, "x");
    tiny.start = 5e-324;
    tiny.end = DBL_MAX;
    tiny.positionY = 0;
    cues.push_back(tiny);

    CaptionStyle style { "Noto Sans \u65E5\u672C", 1e-9, { 7, -1, 0.5, 1e300 }, RGBAColor::black(), false, true,
        -0.25 };
    const CaptionProject project { "/home/\u00E9mile/a b/\u4F1A\u8BAE.mov", CaptionDocument::unsorted(CueList(cues)),
        style };

    const CaptionProject decoded = CaptionJson::decodeProject(CaptionJson::encode(project));
    EXPECT_EQ(decoded, project);
    ASSERT_EQ(decoded.document.cues.size(), 4u);
    EXPECT_EQ(decoded.document.cues[0].text, "later");
    EXPECT_FALSE(decoded.document.cues[0].positionX.has_value());
    EXPECT_EQ(decoded.document.cues[2].start, -3.5);

    EXPECT_EQ(CaptionJson::decodeDocument(CaptionJson::encode(project.document)), project.document);
    EXPECT_EQ(CaptionJson::decodeCue(CaptionJson::encode(cues[1])), cues[1]);
    EXPECT_EQ(CaptionJson::decodeColor(CaptionJson::encode(style.textColor)), style.textColor);
}

TEST(CaptionJson, refusesNumbersJsonCannotHoldNamingThem)
{
    CaptionProject project = talkProject();
    project.document.cues.push_back(CaptionCue(fixedId, 4, 5, "b"));
    project.document.cues.mutableAt(1).end = std::numeric_limits<double>::quiet_NaN();
    try {
        CaptionJson::encode(project);
        FAIL();
    } catch (const CaptionJsonError& error) {
        EXPECT_EQ(error.kind, CaptionJsonError::Kind::nonFiniteNumber);
        EXPECT_EQ(error.path, "document.cues[1].end");
        EXPECT_STREQ(error.what(),
            "The data couldn\u2019t be written because \u201Cdocument.cues[1].end\u201D is not a finite number.");
    }

    project = talkProject();
    project.style.backgroundColor.alpha = INFINITY;
    EXPECT_THROW(CaptionJson::encode(project), CaptionJsonError);
    project.style.backgroundColor.alpha = 1;
    project.document.cues.mutableAt(0).positionX = -INFINITY;
    EXPECT_THROW(CaptionJson::encode(project), CaptionJsonError);
}

TEST(CaptionJson, readsAnyValidSpellingAndIgnoresUnknownKeys)
{
    const std::string json
        = "\xEF\xBB\xBF { \"extra\" : [ {\"cues\": 1}, null, [[]] ],\n"
          " \"style\": {\"bottomMargin\": 9E-2, \"shadowEnabled\": true, \"backgroundEnabled\": true,"
          "  \"backgroundColor\": {\"alpha\": 0.72, \"blue\": 0, \"green\": 0.0, \"red\": -0, \"tint\": {}},"
          "  \"textColor\": {\"red\": 1, \"green\": 1E0, \"blue\": 10e-1, \"alpha\": 1, \"x\": \"y\"},"
          "  \"fontSize\": 5.4e1, \"fontName\": \"\\u002EAppleSystemUIFont\", \"weight\": 700},"
          " \"document\": {\"version\": 3, \"cues\": [{\"text\": \"Hello\", \"end\": 3.25,"
          "   \"start\": 1.5, \"id\": \"0a359167-289b-4ef9-954a-148dfcfbdb08\", \"positionY\": 0.5,"
          "   \"positionX\": 5e-1, \"speaker\": {\"name\": [1, {\"a\": null}]}}]},"
          " \"videoPath\": \"\\/Movies/talk.mov\" } ";
    EXPECT_EQ(CaptionJson::decodeProject(json), talkProject());
}

TEST(CaptionJson, optionalPositionsReadNullAsAbsentButRefuseOtherTypes)
{
    const std::string base = R"({"id":"0A359167-289B-4EF9-954A-148DFCFBDB08","start":1,"end":2,"text":"a")";
    const CaptionCue cue = CaptionJson::decodeCue(base + R"(,"positionX":null,"positionY":0.25})");
    EXPECT_FALSE(cue.positionX.has_value());
    EXPECT_EQ(cue.positionY, 0.25);

    const auto error = decodeError([&] { CaptionJson::decodeCue(base + R"(,"positionX":"0.5"})"); });
    EXPECT_EQ(error.kind, CaptionJsonError::Kind::wrongType);
    EXPECT_STREQ(
        error.what(), "The data couldn\u2019t be read because \u201CpositionX\u201D is a string instead of a number.");
}

// Every required value of a project, missing, null and of another type, fails the whole read
// and names where.
TEST(CaptionJson, failsOnEachRequiredValueMissingNullOrMistyped)
{
    const nlohmann::json valid = nlohmann::json::parse(CaptionJson::encode(talkProject()));
    const std::vector<std::string> pointers {
        "/videoPath",
        "/document",
        "/document/cues",
        "/document/cues/0/id",
        "/document/cues/0/start",
        "/document/cues/0/end",
        "/document/cues/0/text",
        "/style",
        "/style/fontName",
        "/style/fontSize",
        "/style/textColor",
        "/style/textColor/red",
        "/style/textColor/green",
        "/style/textColor/blue",
        "/style/textColor/alpha",
        "/style/backgroundColor",
        "/style/backgroundColor/alpha",
        "/style/backgroundEnabled",
        "/style/shadowEnabled",
        "/style/bottomMargin",
    };
    for (const auto& pointerText : pointers) {
        SCOPED_TRACE(pointerText);
        const nlohmann::json::json_pointer pointer(pointerText);
        std::string path = pointerText.substr(1);
        for (auto& c : path)
            if (c == '/')
                c = '.';
        const auto at = path.find(".0");
        if (at != std::string::npos)
            path.replace(at, 2, "[0]");
        const std::string quoted = "\u201C" + path + "\u201D";

        nlohmann::json missing = valid;
        missing[pointer.parent_pointer()].erase(pointer.back());
        auto error = projectError(missing.dump());
        EXPECT_EQ(error.kind, CaptionJsonError::Kind::missingValue);
        EXPECT_EQ(error.path, path);
        EXPECT_EQ(error.what(), "The data couldn\u2019t be read because " + quoted + " is missing.");

        nlohmann::json null = valid;
        null[pointer] = nullptr;
        error = projectError(null.dump());
        EXPECT_EQ(error.kind, CaptionJsonError::Kind::nullValue);
        EXPECT_THAT(error.what(), HasSubstr(quoted + " is null instead of "));

        nlohmann::json mistyped = valid;
        mistyped[pointer] = valid[pointer].is_string() ? nlohmann::json(1) : nlohmann::json("1");
        error = projectError(mistyped.dump());
        EXPECT_EQ(error.kind, CaptionJsonError::Kind::wrongType);
        EXPECT_EQ(error.path, path);

        if (!valid[pointer].is_array()) {
            nlohmann::json asArray = valid;
            asArray[pointer] = nlohmann::json::array();
            EXPECT_EQ(projectError(asArray.dump()).kind, CaptionJsonError::Kind::wrongType);
        }
    }

    EXPECT_EQ(projectError(R"({"videoPath":"a","document":{"cues":[]},"style":{}})").path, "style.fontName");
    EXPECT_STREQ(projectError(R"({"videoPath":"a","document":{"cues":[]}})").what(),
        "The data couldn\u2019t be read because \u201Cstyle\u201D is missing.");
    EXPECT_STREQ(
        projectError("[]").what(), "The data couldn\u2019t be read because it is an array instead of an object.");
    EXPECT_STREQ(projectError(R"({"videoPath":"a","document":{"cues":[7]}})").what(),
        "The data couldn\u2019t be read because \u201Cdocument.cues[0]\u201D is a number instead of an object.");
    EXPECT_STREQ(projectError(R"({"videoPath":true})").what(),
        "The data couldn\u2019t be read because \u201CvideoPath\u201D is true or false instead of a string.");

    nlohmann::json badId = valid;
    badId["document"]["cues"][0]["id"] = "0A359167-289B-4EF9-954A-148DFCFBDB0G";
    auto error = projectError(badId.dump());
    EXPECT_EQ(error.kind, CaptionJsonError::Kind::invalidIdentifier);
    EXPECT_STREQ(error.what(),
        "The data couldn\u2019t be read because \u201Cdocument.cues[0].id\u201D is not a valid identifier.");

    EXPECT_EQ(decodeError([] {
        CaptionJson::decodeStyle(
            R"({"fontName":"a","fontSize":1,"textColor":{"red":1,"green":1,"blue":1},"backgroundColor":{"red":0,"green":0,"blue":0,"alpha":1},"backgroundEnabled":true,"shadowEnabled":true,"bottomMargin":0})");
    }).path,
        "textColor.alpha");
}

TEST(CaptionJson, malformedInputSaysWhere)
{
    EXPECT_STREQ(projectError("{\"videoPath\":\n  \"a\",,}").what(),
        "The data couldn\u2019t be read because it isn\u2019t valid JSON (line 2, column 7).");
    EXPECT_STREQ(projectError("").what(), "The data couldn\u2019t be read because it is empty.");
    EXPECT_STREQ(projectError(R"({"videoPath":"\u00e9", "x": 1e400})").what(),
        "The data couldn\u2019t be read because the number at line 1, column 29 is too large.");
    // Malformed JSON wins over a fault in the values before it.
    EXPECT_EQ(projectError("{} {}").kind, CaptionJsonError::Kind::invalidJSON);
    EXPECT_EQ(projectError(R"({"videoPath":1,"document":{"cues":[{"id":"x"}]},"style":)").kind,
        CaptionJsonError::Kind::invalidJSON);
}

namespace {

struct AcceptAll {
    std::size_t events = 0;
    CaptionJsonReader::JsonSyntax syntax = CaptionJsonReader::JsonSyntax::invalid;
    bool null() { return ++events; }
    bool boolean(bool) { return ++events; }
    bool number(double) { return ++events; }
    bool string(std::string&) { return ++events; }
    bool key(std::string_view) { return ++events; }
    bool start_object() { return ++events; }
    bool end_object() { return ++events; }
    bool start_array() { return ++events; }
    bool end_array() { return ++events; }
    void syntaxError(std::size_t, CaptionJsonReader::JsonSyntax what) { syntax = what; }
};

bool readerAccepts(std::string_view text, CaptionJsonReader::JsonSyntax* syntax = nullptr)
{
    AcceptAll handler;
    const bool ok = CaptionJsonReader::read(text, handler);
    if (syntax)
        *syntax = handler.syntax;
    return ok;
}

} // namespace

// The reader must accept exactly the JSON a general parser accepts.
TEST(CaptionJsonReader, agreesWithAGeneralParserOnEdgesAndMutations)
{
    const std::vector<std::string> edges {
        "[1,2]",
        "[01]",
        "[1.]",
        "[.5]",
        "[-]",
        "[-0]",
        "[1e]",
        "[1E+2]",
        "[1e-2]",
        "[+1]",
        "[0x10]",
        "[1.5e3.2]",
        R"(["\u00e9\uD83D\uDE00"])",
        R"(["\ud800"])",
        R"(["\udc00x"])",
        R"(["\uD800\u0041"])",
        R"(["\x"])",
        "[\"\xff\"]",
        "[\"\xc0\xaf\"]",
        "[\"\xed\xa0\x80\"]",
        "[\"\xf4\x90\x80\x80\"]",
        "[\"\xe2\x82\"]",
        "[\"a\tb\"]",
        "[\"a\x7f\"]",
        "[1,]",
        "{\"a\":1,}",
        "{\"a\" 1}",
        "{1:1}",
        "{\"a\":}",
        "tru",
        "nul",
        "nulll",
        " [ ] ",
        "[] x",
        "",
        " ",
        "\xEF\xBB\xBF{}",
        "{}{}",
        "[\"a\"\"b\"]",
        "[[[[]]]]",
        "[[[[]]]",
        "{\"a\":[}]",
        "\"\\u12\"",
        "\"abc",
        "true",
        "false null",
        "1 ",
        "-",
        "[1,,2]",
        "{\"\":\"\"}",
        "[\"\\/\\b\\f\\n\\r\\t\\\"\\\\\"]",
        std::string(100000, '[') + std::string(100000, ']'),
    };
    for (const auto& text : edges)
        EXPECT_EQ(readerAccepts(text), nlohmann::json::accept(text)) << text.substr(0, 40);

    // Random damage to a real project, seeded so that failures repeat.
    CaptionProject project = talkProject();
    project.document.cues.push_back(CaptionCue(Uuid::generate(), 2, 3.5e-7, "tw\u00F6 \"q\" \\ /", std::nullopt, 1));
    const std::string valid = CaptionJson::encode(project);
    std::mt19937 random(20240601);
    const std::string alphabet = "{}[]\",:\\/-+.eE0123456789aeflnrstu \t\n\x80\xC3\xA9\xFF";
    for (int round = 0; round < 3000; ++round) {
        std::string text = valid;
        const int edits = 1 + static_cast<int>(random() % 3);
        for (int e = 0; e < edits; ++e) {
            const std::size_t at = random() % text.size();
            switch (random() % 3) {
            case 0:
                text.erase(at, 1 + random() % 3);
                break;
            case 1:
                text.insert(at, 1, alphabet[random() % alphabet.size()]);
                break;
            default:
                text[at] = alphabet[random() % alphabet.size()];
            }
        }
        CaptionJsonReader::JsonSyntax syntax {};
        const bool ours = readerAccepts(text, &syntax);
        if (!ours && syntax == CaptionJsonReader::JsonSyntax::numberOutOfRange)
            continue; // refused on purpose; a general parser keeps infinity
        ASSERT_EQ(ours, nlohmann::json::accept(text)) << text;
    }
}

TEST(CaptionJsonReader, readsNumbersAndStringsToTheSameValues)
{
    const std::string text = R"([0.1, -0, 1e-400, 4.9e-324, 1.7976931348623157e308, 123456789012345678901234567890,)"
                             R"( 9007199254740993, 2.2250738585072011e-308, "a\u0000b\uD834\uDD1E/\/"])";
    struct Collect : AcceptAll {
        std::vector<double> numbers;
        std::vector<std::string> strings;
        bool number(double v) { return numbers.push_back(v), true; }
        bool string(std::string& s) { return strings.push_back(std::move(s)), true; }
    } collected;
    ASSERT_TRUE(CaptionJsonReader::read(text, collected));
    const nlohmann::json reference = nlohmann::json::parse(text);
    ASSERT_EQ(collected.numbers.size(), 8u);
    for (std::size_t i = 0; i < collected.numbers.size(); ++i)
        EXPECT_EQ(collected.numbers[i], reference[i].get<double>()) << i;
    EXPECT_TRUE(std::signbit(collected.numbers[1]));
    ASSERT_EQ(collected.strings.size(), 1u);
    EXPECT_EQ(collected.strings[0], reference[8].get<std::string>());
}
