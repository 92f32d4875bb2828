#include "terminal/Paths.hpp"

#include <filesystem>
#include <system_error>

namespace OrvelGui {
namespace fs = std::filesystem;

std::string absolutePath(const std::string &typed)
{
    std::error_code error;
    fs::path path(typed);
    if (path.is_relative())
        path = fs::current_path(error) / path;
    std::string result = path.lexically_normal().string();
    while (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

std::string currentFolder()
{
    std::error_code error;
    const fs::path path = fs::current_path(error);
    return error ? std::string("/") : path.string();
}

bool isRegularFile(const std::string &path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool isFolder(const std::string &path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string joinPath(const std::string &folder, const std::string &name)
{
    return folder == "/" ? "/" + name : folder + "/" + name;
}

} // namespace OrvelGui
