#include "foundation/CTivManager.h"

#include <thread>

#include "foundation/CTivString.h"
#include "foundation/CTivVector.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "tests/support/library.h"

TEST(ErrorChannel, TextPassesASecondFormattingThatCarriesNothingOut) {
    const struct {
        std::string given, kept;
    } cases[] = {{"plain", "plain"},
                 {"100%% sure", "100% sure"},
                 {"a%d.bmp", "a.bmp"},
                 {"%s%n%p|", "|"},
                 {"%-08.3lf end", " end"},
                 {"%*d%", ""},
                 {"snow%\xc3\xa9", "snow\xc3\xa9"}};
    for (const auto& each : cases) {
        EXPECT_FALSE(CTivManager::Refuse(each.given));
        EXPECT_EQ(LastError(), each.kept) << each.given;
    }
}

TEST(ErrorChannel, LongTextIsCutAt1023Characters) {
    CTivManager::ReportError("%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(LastError(), std::string(1023, 'x'));
}

TEST(ErrorChannel, CodesHaveTheirTextsAndAnswerTheLevel) {
    EXPECT_EQ(nur_report(1, NUR_REPORT_MEMORY, "who", 12), 1);
    EXPECT_EQ(LastError(), "who: memory allocation failed (12 bytes)\n");
    nur_report(1, NUR_REPORT_TYPE, "who", "RGB");
    EXPECT_EQ(LastError(), "who: cannot process object type \"RGB\"\n");
    nur_report(1, NUR_REPORT_CAST, "who", "RGB", "LAB");
    EXPECT_EQ(LastError(), "who: cannot cast type \"RGB\" to \"LAB\"\n");
    nur_report(1, NUR_REPORT_SYNTAX, "who", "x+", 2);
    EXPECT_EQ(LastError(), "who: syntax error in \"x+\" at position 2\n");
    nur_report(1, NUR_REPORT_NO_THREAD);
    EXPECT_EQ(LastError(), "");
    nur_report(1, NUR_REPORT_FORMAT, "%d of %s", 3, "100%d");
    EXPECT_EQ(LastError(), "3 of 100%d");
}

TEST(ErrorChannel, AFinishedTextIsToldAsItStands) {
    EXPECT_EQ(nur_refuse("50% of %s%n"), 1);
    EXPECT_EQ(LastError(), "50% of %s%n");
    EXPECT_EQ(nur_refuse_format("%d of %s", 3, "100%d"), 1);
    EXPECT_EQ(LastError(), "3 of 100%d");
}

TEST(ErrorChannel, OnlyTheThreadThatStartedTheLibraryHasAText) {
    CTivManager::ReportError("mine");
    const char* text = "unset";
    std::thread([&] {
        CTivManager::ReportError("theirs");
        text = CTivManager::GetLastErrorText();
    }).join();
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(LastError(), "mine");
}

TEST(ErrorChannel, AFurtherThreadHasATextOfItsOwnWhileItIsRegistered) {
    CTivManager::ReportError("mine");
    std::string text;
    const char* later = "unset";
    std::thread([&] {
        {
            const NurReportingThread registered;
            CTivManager::ReportError("theirs");
            text = LastError();
        }
        later = CTivManager::GetLastErrorText();
    }).join();
    EXPECT_EQ(text, "theirs");
    EXPECT_EQ(later, nullptr);
    EXPECT_EQ(LastError(), "mine");
}

TEST(ErrorChannel, ModesShowThrowCallOrKeepSilent) {
    std::string shown;
    nur_set_message_box([&](const std::string& title, const std::string& text) { shown += title + "|" + text + ";"; });
    CTivManager::SetErrorMode(ErrorModeMessageBox);
    CTivManager::ReportError("one");
    CTivManager::SetErrorMode(7);
    CTivManager::ReportError("two");
    CTivManager::SetErrorMode(ErrorModeUser);
    CTivManager::ReportError("three");
    static std::string heard;
    nur_set_user_callback([](const char* text) { heard = text; });
    CTivManager::ReportError("four");
    nur_set_user_callback(nullptr);
    CTivManager::SetErrorMode(ErrorModeException);
    EXPECT_THROW(CTivManager::ReportError("five"), std::runtime_error);
    CTivManager::SetErrorMode(ErrorModeNone);
    nur_set_message_box({});
    EXPECT_EQ(shown,
              "Zelvan Processing Error|one;Zelvan Processing Error|Error mode is set to \"User\" while no user "
              "callback function has been registered;");
    EXPECT_EQ(heard, "four");
    EXPECT_EQ(LastError(), "five");
}

TEST(ErrorChannel, ASecondStartLeavesModeAndTextAlone) {
    CTivManager::ReportError("kept");
    CTivManager::Initialize();
    EXPECT_EQ(LastError(), "kept");
}

TEST(Manager, InstanceCountFollowsObjectsOnEveryThread) {
    const long before = CTivManager::GetInstanceCount();
    {
        const CTivVector vector;
        EXPECT_GT(CTivManager::GetInstanceCount(), before);
        std::thread([] { const CTivVector other; }).join();
    }
    EXPECT_EQ(CTivManager::GetInstanceCount(), before);
}

TEST(TypeTable, ElementBitsAreTheLowerLayersOwn) {
    EXPECT_EQ(nur_element_bits(NUR_OBJ_QUAD), 256);
    EXPECT_EQ(nur_element_bits(NUR_OBJ_BINARY), 1);
    EXPECT_EQ(nur_element_bits(NUR_OBJ_LINE), 224);
    EXPECT_EQ(nur_element_bits(54), 0);
    EXPECT_EQ(nur_element_bits(-1), 0);
    EXPECT_TRUE(nur_is_type(CTivData::FormatFile, {CTivData::FormatString}));
    EXPECT_TRUE(nur_is_type(CTivData::FormatRgb, {CTivData::FormatGeneric}));
    EXPECT_FALSE(nur_is_type(CTivData::FormatRgb, {CTivData::FormatHsv, CTivData::FormatYuv}));
}

TEST(String, NarrowAndWideHoldOneText) {
    const CTivString name(
        "Bleu d\xe2\x80\x99"
        "Auvergne \xf0\x9f\x8e\xa8");
    EXPECT_STREQ(name.GetWide(), L"Bleu d\u2019Auvergne \U0001F3A8");
    EXPECT_STREQ(CTivString("a\xff\xc3").GetWide(), L"a\uFFFD\uFFFD");
    CTivString copy;
    EXPECT_EQ(copy.GetNarrow(), nullptr);
    EXPECT_EQ(copy.GetWide(), nullptr);
    copy = name;
    EXPECT_EQ(copy.ToString(), name.ToString());
}
