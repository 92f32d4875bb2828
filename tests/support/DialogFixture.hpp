// A dialog test: the fake GUI scripted for this test, the library pointed at
// it, a scratch folder, and the log as it grew during the test.
#pragma once

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include "support/FakeGui.hpp"
#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace OrvelTest {

class DialogTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ORV_SetAppPath(FakeGui::bundlePath().c_str());
        logStart_ = logText().size();
    }

    // What the log gained since the test started or since the last call.
    std::string newLog()
    {
        const std::string log = logText();
        const std::string added = log.substr(logStart_);
        logStart_ = log.size();
        return added;
    }

    // `call` with the library pointed at `path`, then at the fake again.
    long withAppPath(const std::string &path, const std::function<long()> &call)
    {
        ORV_SetAppPath(path.c_str());
        const long result = call();
        ORV_SetAppPath(FakeGui::bundlePath().c_str());
        return result;
    }

    FakeGui gui;
    TempFolder scratch;

private:
    size_t logStart_ = 0;
};

// The start of the exception path's entry, with the reason line cut off.
inline bool isExceptionEntry(const std::string &log)
{
    return log.rfind("Exception occured:\n", 0) == 0 && log.size() > 20;
}

// Host-owned certificate records with their own storage: "DER<i>", signed by
// "CN=Signer <i>", 30 - i days left, the second one to be renewed.
struct Records {
    explicit Records(unsigned int count) : data(count), subjects(count)
    {
        for (unsigned int i = 0; i < count; ++i) {
            data[i] = "DER" + std::to_string(i);
            subjects[i] = "CN=Signer " + std::to_string(i);
            records.push_back({data[i].data(), static_cast<unsigned int>(data[i].size()), subjects[i].data(),
                               notAfter.data(), deadline.data(), 30 - static_cast<int>(i), i == 1, false});
        }
    }
    std::vector<std::string> data, subjects;
    std::string notAfter = "2027-01-31", deadline = "2026-12-31";
    std::vector<ORV_Certificate> records;
};

} // namespace OrvelTest
