// The files that carry values too large for the command line: what the
// library makes, and what the GUI application accepts before it reads one.
#include "platform/SealedFile.hpp"
#include "protocol/ValueFiles.hpp"
#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <functional>

using OrvelDialogs::Platform::UniqueFd;

namespace {

UniqueFd memoryFile(const std::string &bytes, unsigned seals)
{
    UniqueFd fd(memfd_create("test", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    EXPECT_EQ(write(fd.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    EXPECT_EQ(fcntl(fd.get(), F_ADD_SEALS, seals), 0);
    return fd;
}

TEST(ValueFiles, TheGuiReadsOnlyASealedOrUnlinkedFileOfTheAnnouncedSize)
{
    const OrvelTest::TempFolder folder;
    const std::string linked = OrvelTest::writeFile(folder / "value", "hello");
    const unsigned all = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;
    const struct {
        const char *what;
        std::function<UniqueFd()> file;
        std::uint64_t size;
        std::string problem; // empty: the value is read
    } cases[] = {
        {"the library's sealed file", [] { return OrvelDialogs::Platform::sealedFileHolding("hello"); }, 5, ""},
        {"its unlinked stand-in, copied", [] { return OrvelDialogs::Platform::unlinkedFileHolding("hello"); }, 5, ""},
        {"a memory file without seals is unlinked too", [] { return memoryFile("hello", 0); }, 5, ""},
        {"an empty value", [&] { return memoryFile("", all); }, 0, ""},
        {"shorter than announced", [&] { return memoryFile("hello", all); }, 6, "is no file of the 6 bytes"},
        {"longer than announced", [&] { return memoryFile("hello", all); }, 4, "is no file of the 4 bytes"},
        {"a file with a name", [&] { return UniqueFd(open(linked.c_str(), O_RDONLY | O_CLOEXEC)); }, 5,
         "neither a sealed memory file nor an unlinked file"},
        {"a pipe", [] { return OrvelDialogs::Platform::makePipe().readEnd; }, 0, "is no file"},
        {"a closed descriptor", [] { return UniqueFd(); }, 5, "is not open"},
    };
    for (const auto &c : cases) {
        const UniqueFd fd = c.file();
        OrvelGui::ValueFile file;
        std::string problem;
        const bool read = file.read(fd.valid() ? fd.get() : 1000, c.size, problem);
        EXPECT_EQ(read, c.problem.empty()) << c.what << ": " << problem;
        EXPECT_NE(problem.find(c.problem), std::string::npos) << c.what << ": " << problem;
        if (read) {
            EXPECT_EQ(file.bytes(), std::string("hello").substr(0, c.size)) << c.what;
        }
    }
    // What the library makes holds every seal; its stand-in has no name.
    const UniqueFd sealed = OrvelDialogs::Platform::sealedFileHolding("x");
    EXPECT_EQ(fcntl(sealed.get(), F_GET_SEALS), static_cast<int>(all));
    struct stat status{};
    const UniqueFd unlinked = OrvelDialogs::Platform::unlinkedFileHolding("x");
    ASSERT_EQ(fstat(unlinked.get(), &status), 0);
    EXPECT_EQ(status.st_nlink, 0u);
    EXPECT_EQ(status.st_mode & 0077, 0u);
}

} // namespace
