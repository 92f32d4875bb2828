// Util::Base64Encode and Util::Base64Decode on 64 MiB, 64 KiB and 1 KiB of
// data, against a plain table-driven loop over the same bytes. Both return a
// new string, as the library's interface does. With malloc's defaults a
// block of 64 MiB is mapped afresh for every call, so its pages are first
// touched inside the timing, for ours and the baseline alike.
#include "BenchTable.hpp"

#include <OrvelGUIDialogs/Util.hpp>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kLargest = 64u << 20;
constexpr long kSizes[] = {64L << 20, 64L << 10, 1L << 10};
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

const std::vector<unsigned char> &data()
{
    static const std::vector<unsigned char> bytes = [] {
        std::vector<unsigned char> random(kLargest);
        std::mt19937_64 generator(42);
        for (auto &byte : random)
            byte = static_cast<unsigned char>(generator());
        return random;
    }();
    return bytes;
}

// The Base64 text of the first `bytes` bytes of data().
const std::string &text(size_t bytes)
{
    static std::map<size_t, std::string> encoded;
    auto &text = encoded[bytes];
    if (text.empty())
        text = OrvelDialogs::Util::Base64Encode(data().data(), static_cast<unsigned>(bytes));
    return text;
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
    const auto size = static_cast<size_t>(state.range(0));
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(OrvelDialogs::Util::Base64Encode(bytes.data(), static_cast<unsigned>(size)));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void Encode_Baseline(benchmark::State &state)
{
    const auto &bytes = data();
    const auto size = static_cast<size_t>(state.range(0));
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(plainEncode(bytes.data(), size));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void Decode_Ours(benchmark::State &state)
{
    const auto &encoded = text(static_cast<size_t>(state.range(0)));
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(OrvelDialogs::Util::Base64Decode(encoded));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void Decode_Baseline(benchmark::State &state)
{
    const auto &encoded = text(static_cast<size_t>(state.range(0)));
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(plainDecode(encoded));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    for (const long size : kSizes)
        benchmark->Arg(size);
}

BENCHMARK(Encode_Ours)->Apply(sizes)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(Encode_Baseline)->Apply(sizes)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(Decode_Ours)->Apply(sizes)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(Decode_Baseline)->Apply(sizes)->UseRealTime()->Unit(benchmark::kMicrosecond);

std::string sizeName(long size)
{
    return size >= (1L << 20) ? std::to_string(size >> 20) + " MiB" : std::to_string(size >> 10) + " KiB";
}

} // namespace

int main(int argc, char **argv)
{
    // Both codecs must agree before their speed means anything.
    if (OrvelDialogs::Util::Base64Decode(text(kLargest)) != plainDecode(text(kLargest)) ||
        plainEncode(data().data(), kLargest) != text(kLargest)) {
        std::fprintf(stderr, "the baseline codec disagrees with the library\n");
        return 1;
    }
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        for (const std::string operation : {"Encode", "Decode"})
            for (const long size : kSizes) {
                std::string suffix = "/";
                suffix += std::to_string(size);
                suffix += '/';
                const auto &oursResult = OrvelBench::find(results, operation + "_Ours" + suffix);
                const auto &baselineResult = OrvelBench::find(results, operation + "_Baseline" + suffix);
                const double ours = oursResult.counter("bytes_per_second");
                const double baseline = baselineResult.counter("bytes_per_second");
                // Only the large size has a speed of its own to meet; small
                // ones must merely not lose to the plain loop.
                const bool large = size == static_cast<long>(kLargest);
                std::string what = "Util::Base64" + operation + ", " + sizeName(size) + " vs a plain table-driven loop";
                table.row(what, OrvelBench::fixed(ours / 1e9) + " GB/s" + OrvelBench::faults(oursResult),
                          OrvelBench::fixed(baseline / 1e9) + " GB/s" + OrvelBench::faults(baselineResult),
                          OrvelBench::fixed(ours / baseline), large ? ">= 1.4 GB/s and >= baseline" : ">= baseline",
                          ours >= baseline && (!large || ours >= 1.4e9));
            }
    });
}
