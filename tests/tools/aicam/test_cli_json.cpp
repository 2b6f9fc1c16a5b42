// The --json writer: every line it makes must parse, whatever bytes the module
// sent; the parse is python3's json module, an independent reader.
#include <stdio.h>

#include <gtest/gtest.h>

#include <string>

#include "JsonWriter.h"

namespace {
// What python3 reads back from `json`, printed again with ASCII escapes (so the
// comparison does not depend on this file's encoding); "" when it fails.
std::string Reparsed(const std::string& json)
{
    FILE* file = fopen("line.json", "wb");
    if (!file)
        return "";
    fwrite(json.data(), 1, json.size(), file);
    fclose(file);
    FILE* reader = popen(
        "python3 -c 'import json,sys; print(json.dumps(json.load(open(\"line.json\", encoding=\"utf-8\")), "
        "sort_keys=True))' 2>&1",
        "r");
    if (!reader)
        return "";
    std::string out;
    char buffer[512];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, reader)) > 0)
        out.append(buffer, got);
    return pclose(reader) == 0 ? out : "python3 refused: " + out;
}
}  // namespace

TEST(JsonWriter, QuotesBackslashesAndControlBytesAreEscaped)
{
    EXPECT_EQ("\"a\\\"b\\\\c\\n\\t\\u0001\\u007f\"", JsonString("a\"b\\c\n\t\x01\x7f"));
    const std::string text = JsonObject()
                                 .String("kind", "recognition")
                                 .String("text", "{\"id\":\"al\\ice\"}\r\n")
                                 .Number("binaryBytes", -12)
                                 .Bool("on", false)
                                 .Raw("ids", JsonArray({JsonString("a"), JsonString("b,c")}))
                                 .Text();
    EXPECT_EQ("{\"binaryBytes\": -12, \"ids\": [\"a\", \"b,c\"], \"kind\": \"recognition\", \"on\": false, "
              "\"text\": \"{\\\"id\\\":\\\"al\\\\ice\\\"}\\r\\n\"}\n",
              Reparsed(text));
    EXPECT_EQ("{}\n", Reparsed(JsonObject().Text()));
    EXPECT_EQ("[]", JsonArray({}));
}

TEST(JsonWriter, UnicodeStaysAndBytesThatAreNotUtf8BecomeEscapes)
{
    // e-acute (2 bytes), the euro sign (3), an emoji (4): kept as they are.
    EXPECT_EQ("\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\"", JsonString("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
    // A lone continuation byte, a cut sequence, an overlong slash, a surrogate
    // and a byte past U+10FFFF: each byte escaped on its own.
    EXPECT_EQ("\"\\u0080x\\u00e2\\u0082\\u00c0\\u00af\\u00ed\\u00a0\\u0080\\u00f5\"",
              JsonString("\x80x\xE2\x82\xC0\xAF\xED\xA0\x80\xF5"));
    EXPECT_EQ("\"\\u00e9\\u00ff\\u20ac\"\n", Reparsed(JsonString("\xC3\xA9\xFF\xE2\x82\xAC")));
}
