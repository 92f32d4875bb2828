// The shared library exports its interface and nothing else: no platform
// layer, no libplist, no standard-library instantiations; the C functions and
// the state under their plain names.
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

} // namespace
