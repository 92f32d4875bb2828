// Util::Base64Encode and Util::Base64Decode on 64 MiB of data, against a
// plain table-driven loop over the same bytes. Both return a new string, as
// the library's interface does. With malloc's defaults a block this large is
// mapped afresh for every call, so its pages are first touched inside the
// timing; scripts/bench.sh also runs this with an allocator that keeps freed
// memory.
#include "BenchTable.hpp"

#include <OrvelGUIDialogs/Util.hpp>

#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kBytes = 64u << 20;
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

const std::vector<unsigned char> &data()
{
    static const std::vector<unsigned char> bytes = [] {
        std::vector<unsigned char> random(kBytes);
        std::mt19937_64 generator(42);
        for (auto &byte : random)
            byte = static_cast<unsigned char>(generator());
        return random;
    }();
    return bytes;
}

const std::string &text()
{
    static const std::string encoded = OrvelDialogs::Util::Base64Encode(data().data(), kBytes);
    return encoded;
}

std::string plainEncode(const unsigned char *bytes, size_t length)
{
    std::string out((length + 2) / 3 * 4, '=');
    size_t o = 0, i = 0;
    for (; i + 3 <= length; i += 3) {
        const unsigned b0 = bytes[i], b1 = bytes[i + 1], b2 = bytes[i + 2];
        out[o++] = kAlphabet[b0 >> 2];
        out[o++] = kAlphabet[((b0 & 3) << 4) | (b1 >> 4)];
        out[o++] = kAlphabet[((b1 & 15) << 2) | (b2 >> 6)];
        out[o++] = kAlphabet[b2 & 63];
    }
    if (i < length) {
        const unsigned b0 = bytes[i], b1 = i + 1 < length ? bytes[i + 1] : 0;
        out[o++] = kAlphabet[b0 >> 2];
        out[o++] = kAlphabet[((b0 & 3) << 4) | (b1 >> 4)];
        if (i + 1 < length)
            out[o] = kAlphabet[(b1 & 15) << 2];
    }
    return out;
}

std::string plainDecode(const std::string &encoded)
{
    static const auto values = [] {
        std::vector<int> table(256, -1);
        for (int i = 0; i < 64; ++i)
            table[static_cast<unsigned char>(kAlphabet[i])] = i;
        return table;
    }();
    std::string out(encoded.size() / 4 * 3 + 3, '\0');
    size_t o = 0;
    unsigned group = 0;
    int held = 0;
    for (const char c : encoded) {
        const int value = values[static_cast<unsigned char>(c)];
        if (value < 0)
            break;
        group = group << 6 | static_cast<unsigned>(value);
        if (++held == 4) {
            out[o++] = static_cast<char>(group >> 16);
            out[o++] = static_cast<char>(group >> 8);
            out[o++] = static_cast<char>(group);
            held = 0;
            group = 0;
        }
    }
    if (held >= 2)
        out[o++] = static_cast<char>(group << (6 * (4 - held)) >> 16);
    if (held == 3)
        out[o++] = static_cast<char>(group << 6 >> 8);
    out.resize(o);
    return out;
}

void Encode_Ours(benchmark::State &state)
{
    const auto &bytes = data();
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(OrvelDialogs::Util::Base64Encode(bytes.data(), kBytes));
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void Encode_Baseline(benchmark::State &state)
{
    const auto &bytes = data();
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(plainEncode(bytes.data(), kBytes));
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void Decode_Ours(benchmark::State &state)
{
    const auto &encoded = text();
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(OrvelDialogs::Util::Base64Decode(encoded));
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void Decode_Baseline(benchmark::State &state)
{
    const auto &encoded = text();
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(plainDecode(encoded));
    state.SetBytesProcessed(state.iterations() * kBytes);
}

BENCHMARK(Encode_Ours)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Encode_Baseline)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Decode_Ours)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Decode_Baseline)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    // Both codecs must agree before their speed means anything.
    if (OrvelDialogs::Util::Base64Decode(text()) != plainDecode(text()) ||
        plainEncode(data().data(), kBytes) != text()) {
        std::fprintf(stderr, "the baseline codec disagrees with the library\n");
        return 1;
    }
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        for (const std::string operation : {"Encode", "Decode"}) {
            const auto &oursResult = OrvelBench::find(results, operation + "_Ours");
            const auto &baselineResult = OrvelBench::find(results, operation + "_Baseline");
            const double ours = oursResult.counter("bytes_per_second");
            const double baseline = baselineResult.counter("bytes_per_second");
            std::string what = "Util::Base64";
            what += operation;
            what += ", 64 MiB";
            table.row(what, OrvelBench::fixed(ours / 1e9) + " GB/s" + OrvelBench::faults(oursResult),
                      OrvelBench::fixed(baseline / 1e9) + " GB/s" + OrvelBench::faults(baselineResult) +
                          " (plain table-driven loop)",
                      OrvelBench::fixed(ours / baseline), ">= 1.4 GB/s and >= baseline",
                      ours >= 1.4e9 && ours >= baseline);
        }
    });
}
