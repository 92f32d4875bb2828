// Values too large for the command line arrive in files that the library
// hands over as descriptors 3, 4, ...: in the value's place stands the
// reference "@fd:N", and the environment variable ORVEL_GUI_VALUE_FILES
// announces each one as "<option>:<descriptor>:<bytes>", joined by ",". Only
// announced options are read this way: any other value that looks like a
// reference is a value like every other.
#pragma once

#include "protocol/GuiLog.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

inline constexpr const char *kValueFilesVariable = "ORVEL_GUI_VALUE_FILES";

// The bytes of one value file, for as long as the object lives: a sealed
// memory file is mapped (nothing can change or shrink it under the mapping);
// an unsealed stand-in (an unlinked file, where the library had no memory
// files) is copied at once, so that what was checked is what is shown.
class ValueFile {
public:
    ValueFile() = default;
    ~ValueFile();
    ValueFile(ValueFile &&other) noexcept;
    ValueFile &operator=(ValueFile &&other) = delete;
    ValueFile(const ValueFile &) = delete;

    std::string_view bytes() const { return {data_, size_}; }

    // Reads descriptor `fd`, which must be a sealed memory file or an
    // unlinked file of exactly `size` bytes. False with the reason in
    // `problem` otherwise.
    bool read(int fd, std::uint64_t size, std::string &problem);

private:
    const char *data_ = "";
    std::size_t size_ = 0;
    void *mapping_ = nullptr;
    std::unique_ptr<char[]> copy_;
};

// Replaces the value of each option that `announcement` (the variable's
// value; null when it is not set) names by the bytes of its file, kept in
// `files`, and closes the announced descriptors. False after logging what is
// wrong with a reference: the command line is then bad.
bool readValueFiles(const char *announcement, std::map<std::string, std::string_view> &options,
                    std::vector<ValueFile> &files, GuiLog &log);

} // namespace OrvelGui
