// OrvelDialogs::Util's whole-file helpers. Each opens its file through a
// standard file stream, does its work in one go and closes the file before it
// returns; failures are a false result, never a message or an exception.
#include <OrvelGUIDialogs/Util.hpp>

#include <cerrno>
#include <fstream>
#include <ios>

namespace {

// The streams retry reads and writes interrupted by a signal, but not the
// open itself (a FIFO or a slow file system can be interrupted there).
template <typename Stream>
bool openStream(Stream &stream, const std::string &path, std::ios_base::openmode mode)
{
    for (;;) {
        errno = 0;
        stream.open(path, mode);
        if (stream.is_open())
            return true;
        if (errno != EINTR)
            return false;
        stream.clear();
    }
}

} // namespace

namespace OrvelDialogs {

bool Util::SaveToFile(const std::string &path, const std::string &content)
{
    std::ofstream file;
    if (!openStream(file, path, std::ios::out | std::ios::trunc | std::ios::binary))
        return false;
    // Once the file is open the result is true: write and close errors are
    // not reported to the caller.
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    return true;
}

bool Util::LoadFile(const std::string &path, std::string &output)
{
    output.clear();
    std::ifstream file;
    if (!openStream(file, path, std::ios::in))
        return false;
    // Word extraction skips every whitespace character the stream's locale
    // knows; the words are joined with nothing between them. A read error
    // ends the words like the end of the file does.
    std::string word;
    while (file >> word)
        output += word;
    return true;
}

bool Util::ShrinkBinaryFile(const std::string &path, unsigned long size)
{
    if (path.empty())
        return false;

    std::string tail;
    {
        std::ifstream input;
        if (!openStream(input, path, std::ios::in | std::ios::binary))
            return false;
        if (!input.seekg(0, std::ios::end))
            return false;
        const std::streamoff length = input.tellg();
        if (length < 0)
            return false;
        if (static_cast<unsigned long long>(length) <= size)
            return true;

        // size < length, so it fits a stream offset and a std::string.
        tail.resize(size);
        if (!input.seekg(-static_cast<std::streamoff>(size), std::ios::end))
            return false;
        if (!input.read(tail.data(), static_cast<std::streamsize>(size)))
            return false;
    }

    // Only now is the file emptied: every failure above left it untouched.
    std::ofstream output;
    if (!openStream(output, path, std::ios::out | std::ios::trunc | std::ios::binary))
        return false;
    output.write(tail.data(), static_cast<std::streamsize>(tail.size()));
    output.close();
    return true;
}

} // namespace OrvelDialogs
