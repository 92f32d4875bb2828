// The tool's command line, read with CLI11: common options (before or after
// the command), one subcommand per dialog with its own options and help.
#pragma once

#include "HostCertificates.hpp"

#include <optional>
#include <string>
#include <vector>

namespace OrvelTool {

// The tool's own failures, above every dialog result code.
constexpr int kUsageError = 64;
constexpr int kBadCommandInput = 65; // a command on reinsert's stdin that is not one
constexpr int kInputError = 66;

struct Invocation {
    std::string command;
    // Common options.
    std::optional<std::string> app;
    std::optional<std::string> lang;
    std::optional<std::string> parentWindow;
    bool log = false;
    bool json = false;
    bool answerStatus = false;
    // Dialog options; texts are checked to be UTF-8.
    std::optional<std::string> message;
    std::optional<std::string> messageFile;
    std::optional<std::string> info;
    int icon = 0;
    int button = 0;
    std::optional<std::string> filter;
    std::optional<std::string> filename;
    unsigned bufferSize = 4096;
    std::optional<std::string> data;
    std::optional<std::string> dataFile;
    std::optional<std::string> rtf;
    std::string hashAlg = "SHA-256";
    std::optional<std::string> hashValue;
    std::optional<std::string> signVersion;
    unsigned selected = 0;
    RenewalRules rules;
    std::vector<std::string> files;
    bool showPassword = false;
};

// Fills `call` and returns nothing, or the exit status once help, the version
// or a usage error has been printed.
std::optional<int> parseCommandLine(int argc, char **argv, Invocation &call);

// A usage error found after parsing, worded like the parser's own.
int usageError(const std::string &message);

} // namespace OrvelTool
