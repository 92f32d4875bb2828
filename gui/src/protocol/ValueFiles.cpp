#include "protocol/ValueFiles.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <set>
#include <utility>

namespace OrvelGui {
namespace {

struct Reference {
    std::string option;
    int fd = -1;
    std::uint64_t size = 0;
};

template <typename Number>
bool readNumber(std::string_view text, Number &out)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

// "<option>:<descriptor>:<bytes>" entries joined by ","; false for anything
// else, a descriptor below 3, or an option or descriptor named twice.
bool parseAnnouncement(std::string_view text, std::vector<Reference> &references)
{
    std::set<std::string_view> options;
    std::set<int> fds;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        std::string_view entry = text.substr(0, comma);
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
        const std::size_t first = entry.find(':');
        const std::size_t second = first == std::string_view::npos ? first : entry.find(':', first + 1);
        Reference reference;
        if (second == std::string_view::npos || first < 2 || entry[0] != '-' ||
            !readNumber(entry.substr(first + 1, second - first - 1), reference.fd) ||
            !readNumber(entry.substr(second + 1), reference.size) || reference.fd < 3 ||
            !options.insert(entry.substr(0, first)).second || !fds.insert(reference.fd).second)
            return false;
        reference.option = entry.substr(0, first);
        references.push_back(std::move(reference));
    }
    return true;
}

#ifdef F_GET_SEALS
constexpr int kContentSeals = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW;
#endif

bool sealed(int fd)
{
#ifdef F_GET_SEALS
    const int seals = ::fcntl(fd, F_GET_SEALS);
    return seals >= 0 && (seals & kContentSeals) == kContentSeals;
#else
    (void)fd;
    return false;
#endif
}

// Exactly `size` bytes from the start, and nothing after them.
bool readWhole(int fd, char *buffer, std::size_t size)
{
    std::size_t done = 0;
    for (;;) {
        char probe = 0;
        const bool more = done < size;
        const ssize_t n = more ? ::pread(fd, buffer + done, size - done, static_cast<off_t>(done))
                               : ::pread(fd, &probe, 1, static_cast<off_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (!more)
            return n == 0;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
}

} // namespace

ValueFile::~ValueFile()
{
    if (mapping_ != nullptr)
        ::munmap(mapping_, size_);
}

ValueFile::ValueFile(ValueFile &&other) noexcept
    : data_(std::exchange(other.data_, "")), size_(std::exchange(other.size_, 0)),
      mapping_(std::exchange(other.mapping_, nullptr)), copy_(std::move(other.copy_))
{
}

bool ValueFile::read(int fd, std::uint64_t size, std::string &problem)
{
    struct stat status{};
    if (::fstat(fd, &status) != 0) {
        problem = std::string("descriptor ") + std::to_string(fd) + " is not open: " + std::strerror(errno);
        return false;
    }
    if (!S_ISREG(status.st_mode) || static_cast<std::uint64_t>(status.st_size) != size) {
        problem = "descriptor " + std::to_string(fd) + " is no file of the " + std::to_string(size) +
                  " bytes announced";
        return false;
    }
    const bool isSealed = sealed(fd);
    if (!isSealed && status.st_nlink != 0) {
        problem = "descriptor " + std::to_string(fd) + " is neither a sealed memory file nor an unlinked file";
        return false;
    }
    size_ = static_cast<std::size_t>(size);
    if (size_ == 0)
        return true;
    if (isSealed) {
        void *mapping = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, fd, 0);
        if (mapping != MAP_FAILED) {
            mapping_ = mapping;
            data_ = static_cast<const char *>(mapping);
            return true;
        }
    }
    copy_ = std::make_unique_for_overwrite<char[]>(size_);
    if (!readWhole(fd, copy_.get(), size_)) {
        problem = "descriptor " + std::to_string(fd) + " did not hold exactly the " + std::to_string(size) +
                  " bytes announced";
        return false;
    }
    data_ = copy_.get();
    return true;
}

bool readValueFiles(const char *announcement, std::map<std::string, std::string_view> &options,
                    std::vector<ValueFile> &files, GuiLog &log)
{
    if (announcement == nullptr)
        return true;
    std::vector<Reference> references;
    bool good = parseAnnouncement(announcement, references);
    if (!good)
        log.add(std::string("Bad command line: ") + kValueFilesVariable + " is malformed: " + announcement);
    files.reserve(references.size());
    for (auto reference = references.begin(); good && reference != references.end(); ++reference) {
        const auto option = options.find(reference->option);
        const std::string expected = "@fd:" + std::to_string(reference->fd);
        std::string problem;
        if (option == options.end())
            problem = "the command line has no such option";
        else if (option->second != expected)
            problem = "its value is not the reference " + expected;
        else if (ValueFile file; file.read(reference->fd, reference->size, problem))
            option->second = files.emplace_back(std::move(file)).bytes();
        if (!problem.empty()) {
            log.add("Bad command line: the value file of " + reference->option + ": " + problem + ".");
            good = false;
        }
    }
    // Read or refused, they are of no further use, and nothing this
    // application starts takes them for its own.
    for (const Reference &reference : references)
        ::close(reference.fd);
    ::unsetenv(kValueFilesVariable);
    return good;
}

} // namespace OrvelGui
