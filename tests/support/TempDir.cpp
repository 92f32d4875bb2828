#include "support/TempDir.hpp"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace OrvelTest {

std::string makeTempDir()
{
    const char *base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/orvel-test-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("mkdtemp failed");
    return pattern;
}

void removeTree(const std::string &path)
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace OrvelTest
