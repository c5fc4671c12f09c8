// Reading a banner list: parse and keep, for lists of growing length up to
// what fits in the list's 1 MB bound. The time must grow with the length,
// not with its square, so that a long list never holds the window.
#include <benchmark/benchmark.h>

#include <QByteArray>

#include "online/banner_service.h"
#include "online/banners.h"
#include "online/xml_document.h"

namespace {

QByteArray List(int count) {
    QByteArray list = "<banners>";
    for (int i = 0; i < count; ++i)
        list += "<b><p>http://x.example/" + QByteArray::number(i) + "</p><p/><p>5</p><p/></b>";
    return list + "</banners>";
}

void BM_ReadBannerList(benchmark::State& state) {
    const QByteArray list = List(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        felthawk::XmlDocument document;
        benchmark::DoNotOptimize(document.LoadXml(list));
        felthawk::Banners banners;
        felthawk::ReadBannerList(document, banners);
        benchmark::DoNotOptimize(banners.Count());
    }
    state.SetComplexityN(state.range(0));
    state.counters["bytes"] = static_cast<double>(list.size());
}
BENCHMARK(BM_ReadBannerList)->RangeMultiplier(4)->Range(250, 16000)->Complexity();

// Keys looked up by name across a full strip.
void BM_BannerKeys(benchmark::State& state) {
    felthawk::Banners banners;
    for (int i = 0; i < state.range(0); ++i) banners.Add(u'A' + QString::number(i));
    for (auto _ : state) {
        for (int i = 0; i < state.range(0); i += 97)
            benchmark::DoNotOptimize(&banners.Item(u'a' + QString::number(i)));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_BannerKeys)->RangeMultiplier(4)->Range(250, 16000)->Complexity();

}  // namespace

BENCHMARK_MAIN();
