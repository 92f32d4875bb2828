// 1,000 certificate records of 2 KiB each turned into the "-certs" text, as
// the certificate dialogs do, against libplist's plist_to_xml of the same
// dictionaries, built beforehand, plus one plain Base64 pass.
#include "BenchTable.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>

#include <plist/plist.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned kCount = 1000;
constexpr size_t kDataBytes = 2048;

struct Records {
    Records()
    {
        std::mt19937 generator(7);
        for (unsigned i = 0; i < kCount; ++i) {
            data.emplace_back(kDataBytes, '\0');
            for (char &byte : data.back())
                byte = static_cast<char>(generator());
            subjects.push_back("CN=Signer " + std::to_string(i) + ", O=Orvel & Partners <signing>");
        }
        for (unsigned i = 0; i < kCount; ++i)
            records.push_back({data[i].data(), static_cast<unsigned>(kDataBytes), subjects[i].data(),
                               notAfter.data(), deadline.data(), static_cast<int>(i % 400) - 30, i % 7 == 0,
                               i % 5 == 0});
    }
    std::vector<std::string> data, subjects;
    std::string notAfter = "2027-01-31 23:59:59", deadline = "2026-12-31";
    std::vector<ORV_Certificate> records;
};

const Records &records()
{
    static const Records all;
    return all;
}

std::string plainBase64(const char *bytes, size_t length)
{
    static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto *in = reinterpret_cast<const unsigned char *>(bytes);
    std::string out((length + 2) / 3 * 4, '=');
    size_t o = 0, i = 0;
    for (; i + 3 <= length; i += 3) {
        const unsigned v = in[i] << 16 | in[i + 1] << 8 | in[i + 2];
        out[o++] = kAlphabet[v >> 18];
        out[o++] = kAlphabet[(v >> 12) & 63];
        out[o++] = kAlphabet[(v >> 6) & 63];
        out[o++] = kAlphabet[v & 63];
    }
    if (i < length) {
        const unsigned v = in[i] << 16 | (i + 1 < length ? in[i + 1] << 8 : 0);
        out[o++] = kAlphabet[v >> 18];
        out[o++] = kAlphabet[(v >> 12) & 63];
        if (i + 1 < length)
            out[o] = kAlphabet[(v >> 6) & 63];
    }
    return out;
}

// The dictionaries of the list, as the library builds them.
plist_t dictionaries()
{
    plist_t array = plist_new_array();
    for (const ORV_Certificate &record : records().records) {
        plist_t dictionary = plist_new_dict();
        plist_dict_set_item(dictionary, "data", plist_new_string(plainBase64(record.data, record.dataLength).c_str()));
        plist_dict_set_item(dictionary, "subjectStr", plist_new_string(record.subjectStr));
        plist_dict_set_item(dictionary, "notAfterStr", plist_new_string(record.notAfterStr));
        plist_dict_set_item(dictionary, "renewDeadlineStr", plist_new_string(record.renewDeadlineStr));
        plist_dict_set_item(dictionary, "validDaysRemaining",
                            plist_new_uint(static_cast<uint64_t>(static_cast<int64_t>(record.validDaysRemaining))));
        plist_dict_set_item(dictionary, "forceRenew", plist_new_bool(record.forceRenew));
        plist_dict_set_item(dictionary, "warnRenew", plist_new_bool(record.warnRenew));
        plist_array_append_item(array, dictionary);
    }
    return array;
}

void CertificateList_Ours(benchmark::State &state)
{
    const auto &all = records().records;
    // The list text goes into a string the caller reuses, as the baseline's
    // Base64 pass reuses the room malloc keeps for it.
    std::string text;
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state) {
        std::vector<Certificate> certificates(kCount);
        for (unsigned i = 0; i < kCount; ++i)
            certificates[i].initWithCertificate(all[i]);
        if (Certificate::encodeCertificateArrayToPropertyList(certificates, text) != 0) {
            state.SkipWithError("encoding failed");
            break;
        }
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(CertificateList_Ours)->UseRealTime()->Unit(benchmark::kMillisecond);

void CertificateList_Baseline(benchmark::State &state)
{
    const std::unique_ptr<void, decltype(&plist_free)> array(dictionaries(), &plist_free);
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state) {
        char *xml = nullptr;
        uint32_t length = 0;
        plist_to_xml(array.get(), &xml, &length);
        benchmark::DoNotOptimize(plainBase64(xml, length));
        plist_to_xml_free(xml);
    }
}
BENCHMARK(CertificateList_Baseline)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        table.timeRow("1,000 certificate records (2 KiB each) to the -certs text vs plist_to_xml + one Base64 pass",
                      OrvelBench::find(results, "CertificateList_Ours"),
                      OrvelBench::find(results, "CertificateList_Baseline"), " (dictionaries built beforehand)",
                      OrvelBench::milliseconds, 1.5);
    });
}
