// One save of the hand list and one read of a hand, against store files of
// growing size: both should grow in step with the file, one pass each.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include "settings/store_file.h"

namespace felthawk {
namespace {

// A store of about `bytes` bytes: the hands, and lines of other settings.
QString MakeStore(const QTemporaryDir& folder, int64_t bytes) {
    const QString path = folder.filePath(QStringLiteral("FELTHAWK.conf"));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write("[SETTINGS]\nMTRANS=80\nMOUSE=LEFT\n");
    const QByteArray line = "OTHER%1=\"" + QByteArray(100, 'x') + "\"\n";
    for (int64_t written = 0, i = 0; written < bytes; ++i) {
        const QByteArray text = QString::fromLatin1(line).arg(i).toLatin1();
        file.write(text);
        written += text.size();
    }
    return path;
}

void BM_SaveTenHands(benchmark::State& state) {
    QTemporaryDir folder;
    const QString path = MakeStore(folder, state.range(0));
    std::vector<StoreChange> changes;
    for (int place = 1; place <= 10; ++place)
        changes.push_back({QStringLiteral("HAND%1").arg(place), std::nullopt});
    for (int place = 1; place <= 10; ++place) {
        changes.push_back({QStringLiteral("HAND%1").arg(place), QStringLiteral("h:AS,AH,,,,,")});
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(WriteStoreFile(path, QStringLiteral("SETTINGS"), changes));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_ReadAfterAChange(benchmark::State& state) {
    QTemporaryDir folder;
    const QString path = MakeStore(folder, state.range(0));
    for (auto _ : state) {
        // A write in between: the read cannot answer from its last parse.
        state.PauseTiming();
        WriteStoreFile(path, QStringLiteral("SETTINGS"),
                       {{QStringLiteral("HAND1"), QStringLiteral("x")}});
        state.ResumeTiming();
        benchmark::DoNotOptimize(
            ReadStoreText(path, QStringLiteral("SETTINGS"), QStringLiteral("HAND1")));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_SaveTenHands)
    ->Arg(1 << 20)
    ->Arg(1 << 23)
    ->Arg(1 << 24)
    ->Arg(1 << 25)
    ->Arg(1 << 26)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadAfterAChange)
    ->Arg(1 << 20)
    ->Arg(1 << 23)
    ->Arg(1 << 26)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace felthawk

BENCHMARK_MAIN();
