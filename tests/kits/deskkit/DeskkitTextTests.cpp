// Label escaping and the path variables: publishing, reading back, expansion.

#include <gtest/gtest.h>

#include "EscapeAmpersand.h"
#include "QlsPathVariables.h"
#include "VStringI.h"

TEST(EscapeAmpersandTest, DoublesEveryAmpersand) {
    const struct {
        const wchar_t* text;
        const wchar_t* escaped;
    } cases[] = {
        {L"", L""}, {L"plain", L"plain"}, {L"&", L"&&"}, {L"R&D && QA&", L"R&&D &&&& QA&&"}};
    for (const auto& test : cases) EXPECT_EQ(EscapeAmpersand(test.text), test.escaped) << test.text;
    EXPECT_TRUE(EscapeAmpersand(VUnicodeString(L"p&ss", Str::Sensitive)).IsSensitive());
}

TEST(PathVariablesTest, GettersAndExpansionGiveThePublishedFolders) {
    SetQlsConfigPathSub(L"C:\\Config");
    SetQlsInstallPathSub(L"D:\\");
    SetQlsUserDataPathSub(L"C:\\Users\\me\\Documents");
    const struct {
        const wchar_t* value;
        const wchar_t* expanded;
    } cases[] = {
        {L"${QLS_CONFIG_PATH}\\Keys", L"C:\\Config\\Keys"},
        {L"${qls_config_path}/x;${QLS_USER_DATA_PATH}", L"C:\\Config/x;C:\\Users\\me\\Documents"},
        {L"${QLS_INSTALL_PATH}\\bin", L"D:\\bin"},  // the root's separator is not doubled
        {L"${QLS_INSTALL_PATH}", L"D:\\"},
        {L"${QLS_SSH_DATA_PATH}\\id", L"\\id"},
        {L"${HOME}\\${QLS_CONFIG", L"${HOME}\\${QLS_CONFIG"},
        {L"$${QLS_CONFIG_PATH}}", L"$C:\\Config}"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(ExpandQlsPathVariables(test.value), test.expanded) << test.value;

    VUnicodeStringI folder(L"old content");
    GetQlsInstallPathSub(folder);
    EXPECT_EQ(folder, L"D:\\");
    GetQlsSshDataPathSub(folder);
    EXPECT_TRUE(folder.IsEmpty());
}
