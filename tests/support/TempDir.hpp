// Temporary folders, and whole files read and written at once.
#pragma once

#include <string>
#include <string_view>

namespace OrvelTest {

// A new empty directory under $TMPDIR (or /tmp).
std::string makeTempDir();
void removeTree(const std::string &path);
std::string readFile(const std::string &path);
// Writes `bytes` with the folders above them and the permissions `mode`.
std::string writeFile(const std::string &path, std::string_view bytes, unsigned mode = 0644);

// A temporary folder that lasts as long as the object.
class TempFolder {
public:
    TempFolder() : path(makeTempDir()) {}
    ~TempFolder() { removeTree(path); }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;
    std::string operator/(const std::string &name) const { return path + "/" + name; }
    const std::string path;
};

} // namespace OrvelTest
