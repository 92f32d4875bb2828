// The library's peak memory while a 50 MiB document goes to the signature
// window: the Base64 value, the argument list and the sealed memory file that
// carries the value. Measured once, in a fresh process, against the responder:
// the peak resident memory above what the host held before the call (its
// document included), plus the memory file, which is shared memory outside
// the resident figure. Target: under four times the document.
#include "BenchTable.hpp"

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr size_t kDocumentBytes = size_t{50} << 20;

// A field of /proc/self/status in bytes.
size_t statusBytes(const std::string &field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(field + ":", 0) == 0)
            return std::stoull(line.substr(field.size() + 1)) * 1024;
    return 0;
}

// Sets the peak (VmHWM) back to what is resident now.
bool resetPeak()
{
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    clear.flush();
    return static_cast<bool>(clear);
}

std::string megabytes(size_t bytes)
{
    return OrvelBench::fixed(static_cast<double>(bytes) / (1 << 20), 1) + " MiB";
}

} // namespace

int main()
{
    std::string document;
    document.reserve(kDocumentBytes);
    for (size_t clause = 1; document.size() < kDocumentBytes; ++clause)
        document += "Clause " + std::to_string(clause) + ": the buyer pays the agreed price on delivery.\n";
    document.resize(kDocumentBytes);
    std::string der(1500, '\x30'), subject = "CN=Signer", date = "2030-01-01";
    ORV_Certificate certificate{der.data(), static_cast<unsigned int>(der.size()), subject.data(), date.data(),
                                date.data(), 365, false, false};
    ORV_SetAppPath(ORVEL_BENCH_RESPONDER_BUNDLE);
    ORV_SetOrvelSignVersion("1.0");
    unsigned int selected = 0;
    bool confirmed = true;
    // Once small, so that what any first dialog sets up is not counted.
    if (ORV_ConfirmSignature(&certificate, 1, &selected, "warm-up", nullptr, "SHA-256", "00", &confirmed) != 0) {
        std::fprintf(stderr, "the warm-up dialog failed\n");
        return 1;
    }

    const size_t before = statusBytes("VmRSS");
    if (!resetPeak()) {
        std::fprintf(stderr, "cannot reset the peak through /proc/self/clear_refs\n");
        return 1;
    }
    const long result =
        ORV_ConfirmSignature(&certificate, 1, &selected, document.c_str(), nullptr, "SHA-256", "00", &confirmed);
    const size_t peak = statusBytes("VmHWM") - before;
    // The memory file holds the Base64 of the document.
    const size_t sealedFile = (kDocumentBytes + 2) / 3 * 4;
    const size_t total = peak + sealedFile;
    const double ratio = static_cast<double>(total) / kDocumentBytes;
    OrvelBench::Table table;
    table.row("library's peak memory, ORV_ConfirmSignature with a 50 MiB document (resident above the host's "
              "own, plus the sealed memory file), vs the document",
              megabytes(total) + " (" + megabytes(peak) + " resident + " + megabytes(sealedFile) + " file)",
              megabytes(kDocumentBytes), OrvelBench::fixed(ratio), "ratio < 4.00", result == 0 && ratio < 4.0);
    return result == 0 ? 0 : 1;
}
