#include <gtest/gtest.h>
#include <winrt/Windows.Data.Json.h>

#include <limits>

#include "codeOf.h"

using namespace winrt::Windows::Data::Json;

namespace {

JsonValue text(const wchar_t* value) {
    return JsonValue::CreateStringValue(value);
}

}  // namespace

TEST(JsonTest, WritesWhatWasInserted) {
    JsonObject object;
    EXPECT_FALSE(object.Insert(L"z", text(L"a \"quoted\" \\ line\nü\U0001F600")));
    object.Insert(L"whole", JsonValue::CreateNumberValue(1700000000));
    object.Insert(L"part", JsonValue::CreateNumberValue(-0.5));
    object.Insert(L"a", JsonValue::CreateBooleanValue(true));
    object.Insert(L"none", JsonValue::CreateNullValue());
    EXPECT_TRUE(object.Insert(L"a", JsonValue::CreateBooleanValue(false)));
    EXPECT_EQ(
        winrt::to_string(object.Stringify()),
        "{\"z\":\"a \\\"quoted\\\" \\\\ line\\nü\U0001F600\",\"whole\":1700000000,\"part\":-0.5,\"a\":false,"
        "\"none\":null}");
}

// Values are objects, not copies: a list that grows after it was inserted grows where it was inserted.
TEST(JsonTest, SharesWhatWasInserted) {
    const JsonObject answer;
    const JsonArray items;
    answer.Insert(L"Items", items);
    EXPECT_EQ(answer.Stringify(), L"{\"Items\":[]}");
    const JsonObject item;
    items.Append(item);
    item.Insert(L"Name", text(L"n"));
    EXPECT_EQ(answer.Stringify(), L"{\"Items\":[{\"Name\":\"n\"}]}");
}

TEST(JsonTest, RefusesWithThePlatformsCodes) {
    for (const wchar_t* invalid :
         {L"", L"x", L"[]", L"\"text\"", L"{", L"{\"a\":}", L"{'a':1}", L"{\"a\":1,}", L"{} {}",
          L"{\"a\":01}", L"{\"a\":1e999}", L"{\"a\":\"\\ud800\"}", L"{\"a\":\"line\n\"}"}) {
        EXPECT_EQ(codeOf([&] { JsonObject::Parse(invalid); }), WEB_E_INVALID_JSON_STRING)
            << winrt::to_string(invalid);
    }
    const auto object = JsonObject::Parse(L"{\"n\":1,\"s\":\"1\",\"o\":null}");
    EXPECT_EQ(codeOf([&] { object.GetNamedValue(L"missing"); }), WEB_E_JSON_VALUE_NOT_FOUND);
    EXPECT_EQ(codeOf([&] { object.GetNamedValue(L"n").GetString(); }), E_ILLEGAL_METHOD_CALL);
    EXPECT_EQ(codeOf([&] { object.GetNamedValue(L"s").GetNumber(); }), E_ILLEGAL_METHOD_CALL);
    EXPECT_EQ(codeOf([&] { object.GetNamedValue(L"o").GetBoolean(); }), E_ILLEGAL_METHOD_CALL);
    EXPECT_EQ(codeOf([&] { object.Insert(L"x", JsonValue(nullptr)); }), E_POINTER);
    EXPECT_EQ(codeOf([&] { JsonValue::CreateNumberValue(std::numeric_limits<double>::quiet_NaN()); }),
              E_INVALIDARG);
}

TEST(JsonTest, SurvivesNestingWithoutEnd) {
    std::wstring deep = L"{\"a\":";
    for (int i = 0; i < 200'000; ++i) {
        deep += L'[';
    }
    EXPECT_EQ(codeOf([&] { JsonObject::Parse(deep); }), WEB_E_INVALID_JSON_STRING);
    for (int i = 0; i < 200'000; ++i) {
        deep += L']';
    }
    EXPECT_EQ(codeOf([&] { JsonObject::Parse(deep + L"}"); }), WEB_E_INVALID_JSON_STRING);

    const JsonObject self;
    self.Insert(L"self", self);
    EXPECT_EQ(codeOf([&] { self.Stringify(); }), E_ILLEGAL_METHOD_CALL);
    self.Insert(L"self", JsonValue::CreateNullValue());
}
