// The shared library exports its interface and nothing else: no platform
// layer, no libplist, no standard-library instantiations.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <string>

namespace {

std::set<std::string> exportedSymbols()
{
    std::set<std::string> names;
    const std::string command = std::string("nm -D --defined-only -C '") + ORVEL_LIBRARY_PATH + "'";
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return names;
    char line[4096];
    while (fgets(line, sizeof line, pipe) != nullptr) {
        std::string text(line);
        if (!text.empty() && text.back() == '\n')
            text.pop_back();
        // "address type name"
        if (text.size() > 19)
            names.insert(text.substr(19));
    }
    pclose(pipe);
    return names;
}

std::set<std::string> intendedSymbols()
{
    std::set<std::string> names;
    std::ifstream list(std::string(ORVEL_SOURCE_DIR) + "/tests/exported_symbols.txt");
    for (std::string line; std::getline(list, line);)
        if (!line.empty() && line[0] != '#')
            names.insert(line);
    return names;
}

TEST(ExportedSymbols, AreExactlyTheIntendedInterface)
{
    const auto exported = exportedSymbols();
    const auto intended = intendedSymbols();
    ASSERT_FALSE(exported.empty());
    for (const auto &name : exported)
        EXPECT_TRUE(intended.count(name)) << "exported but not intended: " << name;
    for (const auto &name : intended)
        EXPECT_TRUE(exported.count(name)) << "intended but not exported: " << name;
}

TEST(ExportedSymbols, CFunctionsAndStateKeepTheirPlainNames)
{
    const auto exported = exportedSymbols();
    for (const char *name : {"ORV_SetAppPath", "ORV_SetLanguage", "ORV_SetOrvelSignVersion", "ORV_GetLog",
                             "ORV_MessageBox", "ORV_YesNoDialog", "ORV_FileOpenDialog", "ORV_FileSaveDialog",
                             "ORV_ReinsertCardShow", "ORV_ReinsertCardSwitchText", "ORV_ReinsertCardClose",
                             "ORV_DisplayCertificate", "ORV_SelectCertificate", "ORV_ConfirmSignature",
                             "ORV_SelectPKCS12", "appLchr", "g_appLanguage", "g_appPath[abi:cxx11]",
                             "g_logBuffer[abi:cxx11]", "g_orvelSignVersion[abi:cxx11]"})
        EXPECT_TRUE(exported.count(name)) << name;
}

} // namespace
